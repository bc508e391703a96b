#include "sending/sendinglog.h"
#include "support/testclock.h"
#include "support/treefixture.h"

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
    void dateTextHasNoLeadingZeroInTheDay();
    void writeThatFailsIsIgnored();

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

QTEST_GUILESS_MAIN(TestSendingLog)
#include "test_sendinglog.moc"
