#include "sending/sendinglog.h"
#include "support/testclock.h"
#include "support/treefixture.h"

#include <QProcess>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace corvane;

class TestSendingLog : public QObject, protected TreeFixture {
    Q_OBJECT

private Q_SLOTS:
    void init() { makeTree(); }
    void cleanup() { dropTree(); }

    void fileIsNamedAfterYearAndMonth();
    void runAcrossTheMonthsEndStaysInItsFile();
    void dividerIsSeventyFiveDashes();
    void valueWithLineBreaksSpreadsOverLines();
    void momentIsMonthDayYearAndTime();
    void monthIsTheLocalesAndDigitsAreOurs_data();
    void monthIsTheLocalesAndDigitsAreOurs();
    void dateTextHasNoLeadingZeroInTheDay();
    void writeThatFailsIsIgnored();
    void everyDayAndMonthHasItsEnglishName();
    void entryOfNothingIsItsHeading();
    void momentIsThePresentOne();

private:
    [[nodiscard]] QByteArray log(const QString &name = u"202611.log"_s) const
    {
        return contentOf(m_tree->globals.paths.logs + u'/' + name);
    }
};

void TestSendingLog::fileIsNamedAfterYearAndMonth()
{
    QCOMPARE(logPathAt(m_tree->globals, QDateTime(QDate(2026, 3, 1), QTime(0, 0))),
             m_tree->globals.paths.logs + u"/202603.log"_s);
}

void TestSendingLog::runAcrossTheMonthsEndStaysInItsFile()
{
    TestClock clock(QDateTime(QDate(2026, 11, 30), QTime(23, 59, 59)));
    const SendingLog run(m_tree->globals, clock.now());
    clock.present = clock.present.addSecs(2);
    run.entry(u"Subject"_s, u"late"_s);
    QCOMPARE(log(), QByteArray("Subject: late\r\n"));
    QCOMPARE(log(u"202612.log"_s), QByteArray());
}

void TestSendingLog::dividerIsSeventyFiveDashes()
{
    SendingLog(m_tree->globals, QDateTime(QDate(2026, 11, 1), QTime(0, 0))).divider();
    QCOMPARE(log(), QByteArray("---------------------------------------------------------------------------\r\n"));
}

void TestSendingLog::valueWithLineBreaksSpreadsOverLines()
{
    SendingLog(m_tree->globals, QDateTime(QDate(2026, 11, 1), QTime(0, 0)))
        .entry(u"To"_s, u"a@x.org,\r\nÄ <b@x.org>"_s);
    QCOMPARE(log(), QByteArray("To: a@x.org,\r\n\xC3\x84 <b@x.org>\r\n"));
}

void TestSendingLog::momentIsMonthDayYearAndTime()
{
    const TestClock clock(QDateTime(QDate(2026, 11, 5), QTime(7, 8, 9)));
    SendingLog(m_tree->globals, clock.now()).moment(u"Begin"_s);
    const QString month = QLocale::system().toString(QDate(2026, 11, 5), u"MMM"_s);
    QCOMPARE(QString::fromUtf8(log()), u"Begin: "_s + month + u" 05 2026 07:08:09\r\n"_s);
}

void TestSendingLog::monthIsTheLocalesAndDigitsAreOurs_data()
{
    QTest::addColumn<QString>("locale");
    QTest::newRow("Persian") << u"fa_IR"_s;
    QTest::newRow("Arabic") << u"ar_EG"_s;
    QTest::newRow("German") << u"de_DE"_s;
    QTest::newRow("English") << u"en_US"_s;
}

void TestSendingLog::monthIsTheLocalesAndDigitsAreOurs()
{
    // The system's locale is read from the environment once, so that a process of its own writes the line.
    QFETCH(const QString, locale);
    if (qEnvironmentVariable("LC_ALL") != locale) {
        QProcess child;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"LC_ALL"_s, locale);
        child.setProcessEnvironment(environment);
        child.setProcessChannelMode(QProcess::MergedChannels);
        child.start(QCoreApplication::applicationFilePath(),
                    {u"%1:%2"_s.arg(QString::fromLatin1(QTest::currentTestFunction()),
                                    QString::fromLatin1(QTest::currentDataTag()))});
        QVERIFY(child.waitForFinished(-1));
        const QByteArray said = child.readAll();
        QVERIFY2(child.exitStatus() == QProcess::NormalExit && child.exitCode() == 0, said.constData());
        QVERIFY2(said.contains("3 passed, 0 failed, 0 skipped"), said.constData());
        return;
    }
    QCOMPARE(QLocale::system().name(), locale);
    const TestClock clock(QDateTime(QDate(2026, 11, 5), QTime(7, 8, 9)));
    SendingLog(m_tree->globals, clock.now()).moment(u"Begin"_s);
    const QString month = QLocale(locale).monthName(11, QLocale::ShortFormat);
    QCOMPARE(QString::fromUtf8(log()), u"Begin: "_s + month + u" 05 2026 07:08:09\r\n"_s);
}

void TestSendingLog::dateTextHasNoLeadingZeroInTheDay()
{
    QCOMPARE(mailDateText(m_tree->globals, QDate(2026, 11, 1), QTime(4, 5, 6)), u"Sun, 1 Nov 2026 04:05:06"_s);
    QCOMPARE(mailDateText(m_tree->globals, QDate(2026, 2, 28), QTime(23, 59, 59)), u"Sat, 28 Feb 2026 23:59:59"_s);
}

void TestSendingLog::writeThatFailsIsIgnored()
{
    QVERIFY(QDir(m_tree->globals.paths.logs).removeRecursively());
    writeFile(m_tree->globals.paths.logs, "in the way");
    SendingLog(m_tree->globals, QDateTime(QDate(2026, 11, 1), QTime(0, 0))).divider();
    QCOMPARE(contentOf(m_tree->globals.paths.logs), QByteArray("in the way"));
}

void TestSendingLog::everyDayAndMonthHasItsEnglishName()
{
    const QStringList days{u"Sun"_s, u"Mon"_s, u"Tue"_s, u"Wed"_s, u"Thu"_s, u"Fri"_s, u"Sat"_s};
    for (int i = 0; i < 7; ++i) {
        QCOMPARE(mailDateText(m_tree->globals, QDate(2026, 11, 1 + i), QTime(0, 0)),
                 days.at(i) + u", %1 Nov 2026 00:00:00"_s.arg(1 + i));
    }
    const QStringList months{u"Jan"_s, u"Feb"_s, u"Mar"_s, u"Apr"_s, u"May"_s, u"Jun"_s,
                             u"Jul"_s, u"Aug"_s, u"Sep"_s, u"Oct"_s, u"Nov"_s, u"Dec"_s};
    for (int i = 0; i < 12; ++i) {
        const QString text = mailDateText(m_tree->globals, QDate(2026, 1 + i, 10), QTime(13, 0));
        QVERIFY2(text.contains(u" 10 "_s + months.at(i) + u" 2026 13:00:00"_s), qPrintable(text));
    }
    QVERIFY(mailDateText(m_tree->globals, QDate(826, 1, 31), QTime(9, 9, 9)).endsWith(u", 31 Jan 0826 09:09:09"_s));
}

void TestSendingLog::entryOfNothingIsItsHeading()
{
    SendingLog(m_tree->globals, QDateTime(QDate(2026, 11, 1), QTime(0, 0))).entry(u"Subject"_s, QString());
    QCOMPARE(log(), QByteArray("Subject: \r\n"));
}

void TestSendingLog::momentIsThePresentOne()
{
    TestClock clock(QDateTime(QDate(2026, 11, 30), QTime(23, 59, 59)));
    const SendingLog run(m_tree->globals, clock.now());
    clock.present = QDateTime(QDate(2026, 12, 1), QTime(0, 0, 9));
    run.moment(u"End"_s);
    QVERIFY2(log().endsWith(" 01 2026 00:00:09\r\n"), log().constData());
}

QTEST_GUILESS_MAIN(TestSendingLog)
#include "test_sendinglog.moc"
