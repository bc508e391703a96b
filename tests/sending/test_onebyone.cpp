#include "sendbench.h"
#include "support/scriptedserver.h"
#include "support/testclock.h"

#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace corvane;
using Field = MessageWindow::Field;

class TestOneByOne : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_bench = std::make_unique<SendBench>();
        m_server = std::make_unique<testsupport::ScriptedServer>();
        m_bench->useServer(u"127.0.0.1"_s, m_server->port());
        m_bench->window.setOneByOne(true);
        m_bench->window.setText(Field::To, u"Bob B <bob@y.org>, cy@y.org"_s);
        m_bench->window.setText(Field::BCC, u"Bea <bea@y.org>"_s);
    }
    void cleanup()
    {
        m_bench.reset();
        m_server.reset();
    }

    void everyRecipientGetsAPersonalMailInTo();
    void logTellsAllSent();
    void someFailuresAreToldByNameAndTheBoxGivesTheTotal();
    void allFailuresAreLoggedAsNoneSentAndTheBoxGivesTheTotalAsSent();
    void duplicatesGetTwoMails();
    void eachMailHasItsOwnConnectionAndTheFirstOnlyProvesTheAccount();
    void intervalZeroNeitherWaitsNorSaysSo();
    void intervalStandsInFrontOfEveryMail();
    void intervalThatIsNoNumberDoesNotWait();
    void cancelInTheWaitStillSendsThatMail();
    void cancelInAMailUnderWayLetsItEnd();
    void cancelBeforeTheFirstPassSendsNothing();
    void cancelledRunHasNoResultEntryAndNoBox();
    void editsOfSubjectAndContentReachTheFollowingMails();
    void editsOfOtherFieldsDoNot();
    void macrosChangedInTheMiddleReachTheNextRecipient();
    void countersFollowTheRun();
    void folderIsPackedOnceForAllMails();
    void moreRecipientsThanCanBeCountedSendNothing();
    void serverThatDiesAndComesBackCostsItsMailsOnly();
    void logTellsTheModeOfTheRun();
    void exitUnwindsWithoutAFurtherWord();
    void exitUnwindsWithoutAFurtherWord_data();
    void windowIsAliveBeforeTheWait();
    void fractionsAreWaitedAndHugeIntervalsAreBounded();
    void cancelWhileTheMessageIsFilledStopsBeforeTheFirstMail();
    void largestCountableRollIsCounted();
    void everyThirdRecipientRefusedIsToldByName();
    void lastConnectionIsEnded();
    void proxyThatIsTurnedOnBetweenTwoMailsIsNotBypassed();

private:
    void runAndExpect(int total)
    {
        ExpectedPrompts asked;
        asked.expectBox(boxText(total), quillon::InformationBox);
        m_bench->run();
    }
    static QString boxText(int total)
    {
        return u"text of SENT_SUCCA "_s + QString::number(total) + u" text of SENT_SUCCB!"_s;
    }
    void refuse(const QByteArray &address) const { m_server->answer("RCPT TO:<" + address, "550 unknown\r\n"); }
    /// The log from the result entry on, or from the end line where there is none.
    [[nodiscard]] QStringList result() const
    {
        const QStringList log = m_bench->log();
        const qsizetype begin = log.indexOf(QRegularExpression(u"^(text of|End: ).*"_s));
        return log.sliced(begin);
    }

    std::unique_ptr<SendBench> m_bench;
    std::unique_ptr<testsupport::ScriptedServer> m_server;
};

void TestOneByOne::everyRecipientGetsAPersonalMailInTo()
{
    m_bench->window.setText(Field::CC, u"Cid <cid@y.org>"_s);
    runAndExpect(4);
    QCOMPARE(m_server->Mails.size(), 4);
    const QList<QByteArray> names = {"Bob", "cy", "Cid", "Bea"};
    const QList<QByteArray> addresses = {"bob@y.org", "cy@y.org", "cid@y.org", "bea@y.org"};
    for (qsizetype i = 0; i < 4; ++i) {
        const QByteArray mail = "\r\n" + m_server->Mails.at(i);
        QVERIFY(mail.contains("Dear " + names.at(i) + ","));
        const qsizetype to = mail.indexOf("\r\nTo: ");
        QVERIFY(mail.sliced(to, mail.indexOf("\r\n", to + 2) - to).contains(addresses.at(i)));
        QVERIFY(!mail.contains("\r\nCc: ") && !mail.contains("\r\nBcc: "));
        for (const QByteArray &other : addresses) {
            QVERIFY(other == addresses.at(i) || !mail.contains(other));
        }
    }
}

void TestOneByOne::logTellsAllSent()
{
    runAndExpect(3);
    QCOMPARE(result(), (QStringList{u"text of SENT_SUCCA 3 text of SENT_SUCCB:"_s,
                                    u"Bob B <bob@y.org>, cy@y.org, Bea <bea@y.org>"_s, u"End: (moment)"_s}));
}

void TestOneByOne::someFailuresAreToldByNameAndTheBoxGivesTheTotal()
{
    refuse("bob@y.org");
    refuse("bea@y.org");
    ExpectedPrompts asked([](const QString &) {});
    m_bench->run();
    QCOMPARE(result(),
             (QStringList{u"text of SENT_SUCCA 1 text of SENT_SUCCB:"_s, u"cy@y.org"_s, u"text of FAIL_ADDR"_s,
                          u"Bob B <bob@y.org>, Bea <bea@y.org>"_s, u"End: (moment)"_s}));
    QCOMPARE(asked.log().size(), 3);
    QVERIFY(asked.log().at(0).contains(u"bob@y.org"_s) && asked.log().at(0).contains(u"style 16"_s));
    QCOMPARE(asked.log().at(2), u"box SENT_SUCCA style 64: "_s + boxText(3));
    QCOMPARE(m_bench->log().filter(QRegularExpression(u"^Error: "_s)).size(), 2);
}

void TestOneByOne::allFailuresAreLoggedAsNoneSentAndTheBoxGivesTheTotalAsSent()
{
    m_server->answer("RCPT", "550 unknown\r\n");
    ExpectedPrompts asked([](const QString &) {});
    m_bench->run();
    QCOMPARE(result(), (QStringList{u"text of SENT_SUCCA 3 text of SENT_UNSUCCB"_s,
                                    u"Bob B <bob@y.org>, cy@y.org, Bea <bea@y.org>"_s, u"End: (moment)"_s}));
    QCOMPARE(asked.log().last(), u"box SENT_SUCCA style 64: "_s + boxText(3));
}

void TestOneByOne::duplicatesGetTwoMails()
{
    m_bench->window.setText(Field::BCC, u"cy@y.org"_s);
    runAndExpect(3);
    QCOMPARE(m_server->count("RCPT TO:<cy@y.org>"), 2);
}

void TestOneByOne::eachMailHasItsOwnConnectionAndTheFirstOnlyProvesTheAccount()
{
    runAndExpect(3);
    QCOMPARE(m_server->Connections, 4);
    QTRY_COMPARE(m_server->Ended, 4);
}

void TestOneByOne::intervalZeroNeitherWaitsNorSaysSo()
{
    const TestClock clock(QDateTime::currentDateTime());
    runAndExpect(3);
    QCOMPARE(clock.waits, QList<qint64>());
    QVERIFY(m_bench->progress.activities.filter(u"interval"_s).isEmpty());
}

void TestOneByOne::intervalStandsInFrontOfEveryMail()
{
    TestClock clock(QDateTime::currentDateTime());
    QList<qsizetype> mailsBefore;
    clock.whileWaiting = [&] { mailsBefore.append(m_server->Mails.size()); };
    m_bench->tree.globals.settings.other[OboInterval] = u"5"_s;
    runAndExpect(3);
    QCOMPARE(clock.waits, (QList<qint64>{5000, 5000, 5000}));
    QCOMPARE(mailsBefore, (QList<qsizetype>{0, 1, 2}));
    QCOMPARE(m_bench->progress.activities.count(u"Making OBO sending interval: 5 seconds..."_s), 3);
}

void TestOneByOne::intervalThatIsNoNumberDoesNotWait()
{
    const TestClock clock(QDateTime::currentDateTime());
    for (const QString &text : {QString(), u"soon"_s, u"inf"_s, u"nan"_s}) {
        m_bench->tree.globals.settings.other[OboInterval] = text;
        runAndExpect(3);
    }
    QCOMPARE(clock.waits, QList<qint64>());
}

void TestOneByOne::cancelInTheWaitStillSendsThatMail()
{
    TestClock clock(QDateTime::currentDateTime());
    clock.whileWaiting = [this] { m_bench->window.pblnStop = true; };
    m_bench->tree.globals.settings.other[OboInterval] = u"2"_s;
    const ExpectedPrompts asked;
    m_bench->run();
    QCOMPARE(m_server->Mails.size(), 1);
    QCOMPARE(clock.waits.size(), 1);
}

void TestOneByOne::cancelInAMailUnderWayLetsItEnd()
{
    m_server->Responder = [this](const QByteArray &line) -> std::optional<QByteArray> {
        if (line.startsWith("RCPT TO:<cy@")) {
            m_bench->window.pblnStop = true;
        }
        return std::nullopt;
    };
    const ExpectedPrompts asked;
    m_bench->run();
    QCOMPARE(m_server->Mails.size(), 2);
    QVERIFY(!m_bench->window.pblnStop);
}

void TestOneByOne::cancelBeforeTheFirstPassSendsNothing()
{
    m_server->Responder = [this](const QByteArray &line) -> std::optional<QByteArray> {
        if (line.startsWith("EHLO")) {
            m_bench->window.pblnStop = true; // while the account is being proved
        }
        return std::nullopt;
    };
    const ExpectedPrompts asked;
    m_bench->run();
    QCOMPARE(m_server->Mails.size(), 0);
    QCOMPARE(m_server->Connections, 1);
}

void TestOneByOne::cancelledRunHasNoResultEntryAndNoBox()
{
    m_bench->progress.afterCounter = [this](const QString &text) {
        m_bench->window.pblnStop = text.startsWith(u"Sending 1/"_s) || m_bench->window.pblnStop;
    };
    const ExpectedPrompts asked;
    m_bench->run();
    QCOMPARE(result(), QStringList{u"End: (moment)"_s});
    QVERIFY(!m_bench->progress.visible);
    QVERIFY(!m_bench->window.Sending);
    QCOMPARE(m_bench->window.statusText(), u" Ready."_s);
}

void TestOneByOne::editsOfSubjectAndContentReachTheFollowingMails()
{
    m_bench->progress.afterCounter = [this](const QString &text) {
        if (text.startsWith(u"Sending 2/"_s)) {
            m_bench->window.setText(Field::Subject, u"Changed "_s);
            m_bench->window.setText(Field::PlainContent, u"New for {Full Name of The Recipient}"_s);
        }
    };
    runAndExpect(3);
    QVERIFY(m_server->Mails.at(0).contains("Subject: Hello\r\n") && m_server->Mails.at(0).contains("Dear Bob,"));
    QVERIFY(m_server->Mails.at(1).contains("Subject: Changed\r\n") && m_server->Mails.at(1).contains("New for cy"));
    QVERIFY(m_server->Mails.at(2).contains("New for Bea"));
}

void TestOneByOne::editsOfOtherFieldsDoNot()
{
    m_bench->progress.afterCounter = [this](const QString &text) {
        if (text.startsWith(u"Sending 1/"_s)) {
            m_bench->window.setText(Field::To, u"other@y.org"_s);
            m_bench->window.setText(Field::Sender, u"Other <other@x.org>"_s);
            m_bench->window.setPriority(MessageWindow::Priority::High);
            m_bench->window.setFormat(MessageWindow::Format::Rich);
        }
    };
    runAndExpect(3);
    QCOMPARE(m_server->Mails.size(), 3);
    for (const QByteArray &mail : std::as_const(m_server->Mails)) {
        QVERIFY(!mail.contains("other@") && !mail.contains("X-Priority: 1") && mail.contains("hello."));
    }
}

void TestOneByOne::macrosChangedInTheMiddleReachTheNextRecipient()
{
    m_bench->window.setText(Field::PlainContent, u"{club}"_s);
    m_bench->progress.afterCounter = [this](const QString &text) {
        if (text.startsWith(u"Sending 2/"_s)) {
            m_bench->tree.globals.lines.AppendLine(m_bench->tree.globals.paths.macrosFile,
                                                   u"{club}\tChess\tOther Information\tU"_s);
        }
    };
    runAndExpect(3);
    QVERIFY(m_server->Mails.at(0).contains("{club}"));
    QVERIFY(m_server->Mails.at(1).contains("Chess"));
}

void TestOneByOne::countersFollowTheRun()
{
    runAndExpect(3);
    QCOMPARE(m_bench->progress.counters.filter(u"Sending "_s),
             (QStringList{u"Sending 1/3 emails..."_s, u"Sending 2/3 emails..."_s, u"Sending 3/3 emails..."_s,
                          u"Sending emails..."_s, u"Sending emails..."_s}));
    QCOMPARE(m_bench->progress.steps,
             (QList<std::pair<int, int>>{{1, 3}, {2, 3}, {3, 3}, {0, 0}, {0, 0}})); // at rest for the next run
    QVERIFY(!m_bench->progress.visible);
}

void TestOneByOne::folderIsPackedOnceForAllMails()
{
    const QString folder = m_bench->tree.path(u"photos"_s);
    QVERIFY(QDir().mkpath(folder));
    writeFile(folder + u"/a"_s, "one");
    m_bench->window.setAttachmentPaths({folder});
    m_bench->progress.afterCounter = [&](const QString &) { writeFile(folder + u"/a"_s, "changed"); };
    runAndExpect(3);
    // A zip archive begins with "PK", which is "UEsD" in Base64.
    const auto archiveIn = [](const QByteArray &mail) {
        const qsizetype begin = mail.indexOf("UEsD");
        return begin < 0 ? QByteArray() : mail.sliced(begin, mail.indexOf("\r\n--", begin) - begin);
    };
    QCOMPARE(archiveIn(m_server->Mails.at(2)), archiveIn(m_server->Mails.at(0)));
    QVERIFY(!archiveIn(m_server->Mails.at(0)).isEmpty());
}

void TestOneByOne::moreRecipientsThanCanBeCountedSendNothing()
{
    QStringList many;
    for (int i = 0; i < 32768; ++i) {
        many.append(u"a"_s + QString::number(i) + u"@y.org"_s);
    }
    m_bench->window.setText(Field::To, many.join(u','));
    m_bench->window.setText(Field::BCC, QString());
    const int faults = quillon::faultCount();
    runAndExpect(0);
    QCOMPARE(m_server->Mails.size(), 0);
    QCOMPARE(quillon::faultCount(), faults + 1);
    QCOMPARE(result(), (QStringList{u"text of SENT_SUCCA 0 text of SENT_UNSUCCB"_s, QString(), u"End: (moment)"_s}));
}

void TestOneByOne::serverThatDiesAndComesBackCostsItsMailsOnly()
{
    const quint16 port = m_server->port();
    m_bench->progress.afterCounter = [&](const QString &text) {
        if (text.startsWith(u"Sending 2/"_s)) {
            m_server->close();
        } else if (text.startsWith(u"Sending 3/"_s)) {
            QVERIFY(m_server->listen(QHostAddress::LocalHost, port));
        }
    };
    ExpectedPrompts asked([](const QString &) {});
    m_bench->run();
    QCOMPARE(asked.log().size(), 2); // one error of the connection, none of the sending behind it
    QCOMPARE(result(),
             (QStringList{u"text of SENT_SUCCA 2 text of SENT_SUCCB:"_s, u"Bob B <bob@y.org>, Bea <bea@y.org>"_s,
                          u"text of FAIL_ADDR"_s, u"cy@y.org"_s, u"End: (moment)"_s}));
}

void TestOneByOne::logTellsTheModeOfTheRun()
{
    runAndExpect(3);
    QVERIFY(m_bench->log().contains(u"One By One: Yes"_s));
    QCOMPARE(m_bench->log().count(QString(75, u'-')), 1);
    QVERIFY(m_bench->log().contains(u"Dear {First Name of The Recipient},"_s));
}

void TestOneByOne::exitUnwindsWithoutAFurtherWord_data()
{
    QTest::addColumn<QString>("stage");
    QTest::addColumn<qsizetype>("mails");
    QTest::newRow("in the yield") << u"yield"_s << qsizetype(0);
    QTest::newRow("in the wait") << u"wait"_s << qsizetype(0);
    QTest::newRow("while connecting") << u"EHLO"_s << qsizetype(0);
    QTest::newRow("while sending") << u"RCPT"_s << qsizetype(1);
}

void TestOneByOne::exitUnwindsWithoutAFurtherWord()
{
    QFETCH(const QString, stage);
    QFETCH(const qsizetype, mails);
    TestClock clock(QDateTime::currentDateTime());
    m_bench->tree.globals.settings.other[OboInterval] = u"1"_s;
    qsizetype shown = 0;
    const auto exit = [this, &shown] {
        shown = m_bench->progress.activities.size();
        m_bench->sender.abandon();
    };
    m_bench->progress.afterCounter = [&](const QString &text) {
        if (stage == u"yield" && text.startsWith(u"Sending 1/"_s)) {
            QMetaObject::invokeMethod(this, exit, Qt::QueuedConnection);
        }
    };
    clock.whileWaiting = [&] {
        if (stage == u"wait") {
            exit();
        }
    };
    m_server->Responder = [&](const QByteArray &line) -> std::optional<QByteArray> {
        if (m_server->Connections == 2 && line.startsWith(stage.toLatin1())) {
            exit();
        }
        return std::nullopt;
    };
    const ExpectedPrompts asked; // none may come
    m_bench->run();
    QVERIFY(m_server->Mails.size() <= mails);
    QCOMPARE(m_bench->progress.activities.size(), shown); // the forms are not touched any more
    QVERIFY(m_bench->log().contains(u"Subject: Hello"_s));
    QVERIFY(m_bench->log().filter(QRegularExpression(u"^(Error|End|text)"_s)).isEmpty());
}

void TestOneByOne::windowIsAliveBeforeTheWait()
{
    TestClock clock(QDateTime::currentDateTime());
    m_bench->tree.globals.settings.other[OboInterval] = u"1"_s;
    int handled = 0;
    QList<int> handledBefore;
    m_bench->progress.afterCounter = [&](const QString &text) {
        if (text.startsWith(u"Sending "_s) && text.contains(u'/')) {
            QMetaObject::invokeMethod(
                this, [&] { ++handled; }, Qt::QueuedConnection);
        }
    };
    clock.whileWaiting = [&] { handledBefore.append(handled); };
    runAndExpect(3);
    QCOMPARE(handledBefore, (QList<int>{1, 2, 3}));
}

void TestOneByOne::fractionsAreWaitedAndHugeIntervalsAreBounded()
{
    TestClock clock(QDateTime::currentDateTime());
    for (const auto &[text, milliseconds] :
         {std::pair(u"1.5"_s, 1500LL), std::pair(u"1e30"_s, 1'000'000'000LL), std::pair(u"-4"_s, 0LL)}) {
        clock.waits.clear();
        m_bench->tree.globals.settings.other[OboInterval] = text;
        runAndExpect(3);
        QCOMPARE(clock.waits, (QList<qint64>{milliseconds, milliseconds, milliseconds}));
    }
}

void TestOneByOne::cancelWhileTheMessageIsFilledStopsBeforeTheFirstMail()
{
    /// Lets the user press Cancel at the moment that the message's date is filled in.
    class CancellingClock : public TestClock {
    public:
        using TestClock::TestClock;
        [[nodiscard]] QDateTime now() const override
        {
            if (++calls == 3) {
                QMetaObject::invokeMethod(qApp, cancel, Qt::QueuedConnection);
            }
            return TestClock::now();
        }
        mutable int calls = 0;
        std::function<void()> cancel;
    } clock(QDateTime::currentDateTime());
    clock.cancel = [this] { m_bench->window.pblnStop = true; };
    const ExpectedPrompts asked;
    m_bench->run();
    QVERIFY(clock.calls > 3);
    QCOMPARE(m_server->Mails.size(), 0);
    QCOMPARE(result(), QStringList{u"End: (moment)"_s});
}

void TestOneByOne::largestCountableRollIsCounted()
{
    QStringList many;
    for (int i = 0; i < 32767; ++i) {
        many.append(u"a"_s + QString::number(i) + u"@y.org"_s);
    }
    m_bench->window.setText(Field::To, many.join(u','));
    m_bench->window.setText(Field::BCC, QString());
    m_bench->progress.afterCounter = [this](const QString &) { m_bench->window.pblnStop = true; };
    const ExpectedPrompts asked;
    m_bench->run();
    QVERIFY(m_bench->progress.counters.contains(u"Sending 1/32767 emails..."_s));
}

void TestOneByOne::everyThirdRecipientRefusedIsToldByName()
{
    QStringList people;
    for (int i = 1; i <= 9; ++i) {
        people.append(u"a%1@y.org"_s.arg(i));
    }
    m_bench->window.setText(Field::To, people.join(u", "_s));
    m_bench->window.setText(Field::BCC, QString());
    for (const char *bad : {"a3@y.org", "a6@y.org", "a9@y.org"}) {
        refuse(bad);
    }
    ExpectedPrompts asked([](const QString &) {});
    m_bench->run();
    QCOMPARE(result(), (QStringList{u"text of SENT_SUCCA 6 text of SENT_SUCCB:"_s,
                                    u"a1@y.org, a2@y.org, a4@y.org, a5@y.org, a7@y.org, a8@y.org"_s,
                                    u"text of FAIL_ADDR"_s, u"a3@y.org, a6@y.org, a9@y.org"_s, u"End: (moment)"_s}));
}

void TestOneByOne::lastConnectionIsEnded()
{
    runAndExpect(3);
    QTRY_COMPARE(m_server->count("QUIT"), 4);
}

void TestOneByOne::proxyThatIsTurnedOnBetweenTwoMailsIsNotBypassed()
{
    testsupport::ScriptedServer proxy; // no proxy at all, so that what goes through it fails
    m_bench->progress.afterCounter = [&](const QString &text) {
        if (text.startsWith(u"Sending 2/"_s)) {
            const QString line = u"Socks5\t127.0.0.1\t%1\tN\t\t\t/PSEND"_s.arg(proxy.port());
            corvane::storeSetting(m_bench->tree.globals, u"Proxy Server"_s, u"Default"_s, line);
            corvane::storeSetting(m_bench->tree.globals, u"Proxy Server"_s, u"Use"_s, u"True"_s);
        }
    };
    ExpectedPrompts asked([](const QString &) {});
    m_bench->run();
    QCOMPARE(m_server->Mails.size(), 1);
    QCOMPARE(proxy.Connections, 2);
}

QTEST_GUILESS_MAIN(TestOneByOne)
#include "test_onebyone.moc"
