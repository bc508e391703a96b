#include "sending/servedbench.h"
#include "support/testclock.h"

using namespace Qt::StringLiterals;
using namespace corvane;

namespace {
const QString sendingPanel = u" Sending email, please click here to display the progress..."_s;
} // namespace

/// A send run from its beginning to its end.
class TestSendRun : public QObject, private ServedBench {
    Q_OBJECT

private Q_SLOTS:
    void init() { begin(); }
    void cleanup() { end(); }

    void wholeListSendLogsEveryFieldInItsOrder();
    void oneMessageReachesToCcAndBcc();
    void secondRunIsRefusedAndLeavesTheFirstAlone();
    void twoRunsStandInOneFile();
    void recipientsAreRememberedBeforeTheBccLine();
    void valuesAreThoseThatTheChecksSaw();
    void statusBarAndProgressFollowTheRun();
    void progressOfTheTransportIsShown();
    void automaticRunShowsNoProgress();
    void connectionIsEndedAfterTheMail();
};

void TestSendRun::wholeListSendLogsEveryFieldInItsOrder()
{
    const TestClock clock(QDateTime(QDate(2026, 11, 1), QTime(14, 5, 9)));
    m_bench->window.setText(Field::To, u" Bob <bob@y.org>, "_s);
    m_bench->window.setText(Field::CC, u"cid@y.org"_s);
    m_bench->window.setText(Field::BCC, u"bea@y.org"_s);
    m_bench->window.setReceipt(true);
    sendWell();
    QCOMPARE(m_bench->log(), (QStringList{divider,
                                          u"Begin: (moment)"_s,
                                          u"Account: ada@x.org"_s,
                                          u"Sender: Ada King <ada@x.org>"_s,
                                          u"ReplyTo: reply@x.org"_s,
                                          u"To: Bob <bob@y.org>,"_s,
                                          u"CC: cid@y.org"_s,
                                          u"BCC: bea@y.org"_s,
                                          u"Date & Time: Sun, 1 Nov 2026 14:05:09"_s,
                                          u"Message Type: Plain Text"_s,
                                          u"Encoding: utf-8"_s,
                                          u"Priority: Normal"_s,
                                          u"Request Read Receipt: Yes"_s,
                                          u"Receipt Receiver: Ada's desk <receipts@x.org>"_s,
                                          u"One By One: No"_s,
                                          u"Sending Method: Manual"_s,
                                          u"Subject: Hello"_s,
                                          u"Content: "_s,
                                          u"Dear {First Name of The Recipient},"_s,
                                          u"hello."_s,
                                          u"text of SENT_SUCC"_s,
                                          u"End: (moment)"_s}));
}

void TestSendRun::oneMessageReachesToCcAndBcc()
{
    m_bench->window.setText(Field::To, u"Bob <bob@y.org>, Cy <cy@y.org>"_s);
    m_bench->window.setText(Field::CC, u"cid@y.org"_s);
    m_bench->window.setText(Field::BCC, u"bea@y.org"_s);
    sendWell();
    QCOMPARE(m_server->Mails.size(), 1);
    for (const char *recipient : {"bob@y.org", "cy@y.org", "cid@y.org", "bea@y.org"}) {
        QCOMPARE(m_server->count("RCPT TO:<" + QByteArray(recipient)), 1);
    }
    QVERIFY(mail().contains("Dear Bob,"));
    QVERIFY(!mail().contains("bea@y.org"));
    QVERIFY(mail().contains("Subject: Hello\r\n"));
    QCOMPARE(m_server->Connections, 1);
}

void TestSendRun::secondRunIsRefusedAndLeavesTheFirstAlone()
{
    m_bench->progress.afterCounter = [this](const QString &text) {
        if (text == "Sending 1/1 email..."_L1) {
            const QStringList before = m_bench->log();
            m_bench->sender.run();
            QCOMPARE(m_bench->log(), before);
            QVERIFY(m_bench->sender.state().Sending());
        }
    };
    ExpectedPrompts asked;
    asked.expectBox(u"OTHER_RUN"_s, quillon::InformationBox).expectBox(u"SENT_SUCC"_s, quillon::InformationBox);
    m_bench->run();
    QCOMPARE(m_server->Mails.size(), 1);
}

void TestSendRun::twoRunsStandInOneFile()
{
    sendWell();
    sendWell();
    QCOMPARE(m_bench->log().count(divider), 2);
    QCOMPARE(m_bench->log().count(u"End: (moment)"_s), 2);
}

void TestSendRun::recipientsAreRememberedBeforeTheBccLine()
{
    m_bench->window.setText(Field::BCC, u"bea@y.org"_s);
    sendWell();
    QCOMPARE(contentOf(m_bench->tree.globals.paths.promptsFile), QByteArray("Bob <bob@y.org>\r\nbea@y.org\r\n"));
    QCOMPARE(m_bench->prompts.entries(), (QStringList{u"Bob <bob@y.org>"_s, u"bea@y.org"_s}));
}

void TestSendRun::valuesAreThoseThatTheChecksSaw()
{
    // The user edits the message while the connection is being made.
    m_server->Responder = [this](const QByteArray &line) -> std::optional<QByteArray> {
        if (line.startsWith("EHLO")) {
            m_bench->window.setText(Field::To, u"other@y.org, nonsense"_s);
            m_bench->window.setText(Field::Subject, u"Other"_s);
            m_bench->window.setText(Field::Sender, u"Other <other@x.org>"_s);
        }
        return std::nullopt;
    };
    sendWell();
    QVERIFY(m_server->heard("RCPT TO:<bob@y.org>"));
    QVERIFY(!m_server->heard("RCPT TO:<other@y.org>"));
    QVERIFY(mail().contains("Subject: Hello\r\n"));
}

void TestSendRun::statusBarAndProgressFollowTheRun()
{
    m_bench->progress.afterCounter = [this](const QString &text) {
        QVERIFY(m_bench->progress.visible);
        if (text == "Sending 1/1 email..."_L1) {
            m_bench->sender.requestStop(); // there is no next mail that it could stop
        }
    };
    ExpectedPrompts asked;
    asked.expectBox(u"SENT_SUCC"_s, quillon::InformationBox, quillon::BoxAnswer::Ok, std::nullopt, [this] {
        QVERIFY(m_bench->progress.visible);
        QCOMPARE(m_bench->progress.counter(), u"Sending emails..."_s);
        QCOMPARE(m_bench->progress.activity(), QString());
        QCOMPARE(m_bench->window.statusText(), sendingPanel);
        m_bench->progress.afterCounter = nullptr;
    });
    m_bench->run();
    QCOMPARE(m_bench->window.statusTexts, (QStringList{sendingPanel, u" Ready."_s}));
    QVERIFY(m_bench->progress.counters.contains(u"Sending 1/1 email..."_s));
    QCOMPARE(m_bench->progress.counter(), u"Sending emails..."_s);
    QVERIFY(!m_bench->progress.visible);
    QVERIFY(!m_bench->sender.state().pblnStop());
    QVERIFY(!m_bench->sender.state().Sending());
    QCOMPARE(m_server->Mails.size(), 1);
}

void TestSendRun::progressOfTheTransportIsShown()
{
    sendWell();
    QVERIFY(m_bench->progress.activities.size() > 2);
    QVERIFY(!m_bench->progress.activities.filter(u"100 %"_s).isEmpty() ||
            !m_bench->progress.activities.filter(u"100%"_s).isEmpty());
}

void TestSendRun::automaticRunShowsNoProgress()
{
    SendRun automatic(m_bench->rooms(), RunMode::Automatic);
    ExpectedPrompts asked;
    asked.expectBox(u"SENT_SUCC"_s, quillon::InformationBox);
    SendBench::run(automatic);
    QCOMPARE(m_bench->progress.activities, QStringList{QString()});
    QVERIFY(m_bench->log().contains(u"Sending Method: Automatic"_s));
}

void TestSendRun::connectionIsEndedAfterTheMail()
{
    sendWell();
    QTRY_VERIFY(m_server->heard("QUIT"));
    QTRY_COMPARE(m_server->Ended, 1);
}

QTEST_GUILESS_MAIN(TestSendRun)
#include "test_sendrun.moc"
