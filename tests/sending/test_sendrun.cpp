#include "sendbench.h"
#include "support/scriptedserver.h"
#include "support/testclock.h"

#include <QRegularExpression>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;
using namespace corvane;
using Field = MessageWindow::Field;

namespace {
const QString divider = QString(75, u'-');
const QString sendingPanel = u" Sending email, please click here to display the progress..."_s;
} // namespace

class TestSendRun : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_bench = std::make_unique<SendBench>();
        m_server = std::make_unique<testsupport::ScriptedServer>();
        m_bench->useServer(u"127.0.0.1"_s, m_server->port());
    }
    void cleanup()
    {
        m_bench.reset();
        m_server.reset();
    }

    void wholeListSendLogsEveryFieldInItsOrder();
    void oneMessageReachesToCcAndBcc();
    void onlyBccIsNotLoggedAsToAndGivesTheMacrosTheirRecipient();
    void senderIsSentInItsCaseAsTyped();
    void secondRunIsRefusedAndLeavesTheFirstAlone();
    void refusedMessageIsReportedByTheTransportFirst();
    void failedConnectionLogsDividerBeginErrorAndEndOnly();
    void vanishedAccountEndsInAnEmptyServerAndPort();
    void blankTransportErrorIsNeitherLoggedNorShown();
    void otherTagLogsTheErrorAndShowsNothing();
    void customDateTakesDateAndTimeFromTheirFields();
    void actualDateIsLeftToTheTransport();
    void unknownEncodingIsNotLogged();
    void encodingListStaysOnTheMatch();
    void noSubjectLeavesItsLineOut();
    void prioritiesAreNumbered();
    void prioritiesAreNumbered_data();
    void receiptGoesToTheAccountsReceiver();
    void attachmentsAreLogged();
    void twoRunsStandInOneFile();
    void recipientsAreRememberedBeforeTheBccLine();
    void valuesAreThoseThatTheChecksSaw();
    void statusBarAndProgressFollowTheRun();
    void progressOfTheTransportIsShown();
    void automaticRunShowsNoProgress();
    void exitDuringARunUnwindsWithoutAFurtherWord();
    void exitWhileConnectingUnwindsWithoutAFurtherWord();
    void exitInACheckSendsNothing();
    void connectionIsEndedAfterTheMail();
    void replyReceiverIsInTheMail();
    void blanksAroundTheAccountAreNoPartOfIt();
    void errorsGoToTheMonthOfTheirMoment();
    void passwordIsNeverLogged();
    void htmlMessageIsLoggedAsRichText();

private:
    /// Runs with the box of a success expected.
    void sendWell()
    {
        ExpectedPrompts asked;
        asked.expectBox(u"SENT_SUCC"_s, quillon::InformationBox);
        m_bench->run();
    }
    [[nodiscard]] QByteArray mail(qsizetype index = 0) const { return m_server->Mails.value(index); }

    std::unique_ptr<SendBench> m_bench;
    std::unique_ptr<testsupport::ScriptedServer> m_server;
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

void TestSendRun::onlyBccIsNotLoggedAsToAndGivesTheMacrosTheirRecipient()
{
    m_bench->window.setText(Field::To, QString());
    m_bench->window.setText(Field::BCC, u"Bea B <bea@y.org>"_s);
    sendWell();
    QVERIFY(m_bench->log().filter(QRegularExpression(u"^To: "_s)).isEmpty());
    QVERIFY(m_bench->log().contains(u"BCC: Bea B <bea@y.org>"_s));
    QVERIFY(mail().contains("Dear Bea,"));
}

void TestSendRun::senderIsSentInItsCaseAsTyped()
{
    m_bench->window.setText(Field::Sender, u"Ada KING <Ada@X.org>"_s);
    sendWell();
    QVERIFY(m_server->heard("MAIL FROM:<Ada@X.org>") || m_server->heard("MAIL FROM:<Ada@x.org>"));
    QVERIFY(mail().contains("Ada KING"));
    QVERIFY(m_bench->log().contains(u"Sender: Ada KING <Ada@X.org>"_s));
}

void TestSendRun::secondRunIsRefusedAndLeavesTheFirstAlone()
{
    m_bench->progress.afterCounter = [this](const QString &text) {
        if (text == "Sending 1/1 email..."_L1) {
            const QStringList before = m_bench->log();
            m_bench->run();
            QCOMPARE(m_bench->log(), before);
            QVERIFY(m_bench->window.Sending);
        }
    };
    ExpectedPrompts asked;
    asked.expectBox(u"OTHER_RUN"_s, quillon::InformationBox).expectBox(u"SENT_SUCC"_s, quillon::InformationBox);
    m_bench->run();
    QCOMPARE(m_server->Mails.size(), 1);
}

void TestSendRun::refusedMessageIsReportedByTheTransportFirst()
{
    m_server->answer("RCPT", "550 nobody of that name\r\n");
    ExpectedPrompts asked([](const QString &) {}); // the transport's own text is looked at below
    m_bench->run();
    QCOMPARE(asked.log().size(), 2);
    QVERIFY2(asked.log().at(0).contains(u"style 16"_s) && asked.log().at(0).contains(u"bob@y.org"_s) &&
                 asked.log().at(0).contains(u"550 nobody of that name"_s),
             qPrintable(asked.log().at(0)));
    QVERIFY(asked.log().at(1).startsWith(u"box SENT_UNSUCC style 48"_s));
    const QStringList log = m_bench->log();
    QVERIFY(log.at(log.size() - 3).startsWith(u"Error: "_s));
    QCOMPARE(log.at(log.size() - 2), u"text of SENT_UNSUCC"_s);
    QCOMPARE(log.last(), u"End: (moment)"_s);
    QVERIFY(m_server->Mails.isEmpty());
    QVERIFY(!m_bench->window.Sending);
}

void TestSendRun::failedConnectionLogsDividerBeginErrorAndEndOnly()
{
    m_server->Greeting = "554 not today\r\n";
    ExpectedPrompts asked([](const QString &) {});
    m_bench->run();
    const QString connection = u"text of CONN_FAILED 127.0.0.1:"_s + QString::number(m_server->port());
    QStringList log = m_bench->log();
    QCOMPARE(log.size(), 5);
    QVERIFY(log.at(2).startsWith(u"Error: "_s) && log.at(2).contains(u"554 not today"_s));
    log.removeAt(2);
    QCOMPARE(log, (QStringList{divider, u"Begin: (moment)"_s, u"Error: "_s + connection, u"End: (moment)"_s}));
    QCOMPARE(asked.log().size(), 2);
    QVERIFY(asked.log().at(0).contains(u"style 16"_s));
    QCOMPARE(asked.log().at(1), u"box CONN_FAILED style 48: "_s + connection);
    QCOMPARE(m_bench->window.statusText(), u" Ready."_s);
}

void TestSendRun::vanishedAccountEndsInAnEmptyServerAndPort()
{
    writeFile(m_bench->tree.globals.paths.smtpFile, "");
    ExpectedPrompts asked([](const QString &) {});
    m_bench->run();
    QCOMPARE(asked.log().last(), u"box CONN_FAILED style 48: text of CONN_FAILED :"_s);
    QVERIFY(m_bench->log().contains(u"Error: text of CONN_FAILED :"_s));
}

void TestSendRun::blankTransportErrorIsNeitherLoggedNorShown()
{
    quillon::MailTransport *transport = nullptr;
    m_bench->progress.afterCounter = [&](const QString &text) {
        transport = m_bench->sender.transport();
        if (transport && text == "Sending 1/1 email..."_L1) {
            Q_EMIT transport->Error(1, u" \r\n "_s);
            Q_EMIT transport->Error(1, QString());
        }
    };
    sendWell();
    QVERIFY(transport);
    QVERIFY(m_bench->log().filter(u"Error"_s).isEmpty());
}

void TestSendRun::otherTagLogsTheErrorAndShowsNothing()
{
    m_bench->progress.afterCounter = [this](const QString &text) {
        if (text == "Sending 1/1 email..."_L1) {
            m_bench->window.Tag = u"X"_s;
            Q_EMIT m_bench->sender.transport()->Error(1, u"something"_s);
        }
    };
    sendWell();
    QVERIFY(m_bench->log().contains(u"Error: something"_s));
}

void TestSendRun::customDateTakesDateAndTimeFromTheirFields()
{
    m_bench->window.setActual(MessageWindow::Choice::Date, false);
    m_bench->window.setCustomDateTime(QDate(2027, 3, 5), QTime(6, 7, 8));
    sendWell();
    QVERIFY(m_bench->log().contains(u"Date & Time: Fri, 5 Mar 2027 06:07:08"_s));
    QVERIFY(mail().contains("Date: Fri, 5 Mar 2027 06:07:08 ") || mail().contains("Date: Fri, 05 Mar 2027 06:07:08 "));
}

void TestSendRun::actualDateIsLeftToTheTransport()
{
    sendWell();
    const QByteArray headers = "\r\n" + mail();
    const qsizetype date = headers.indexOf("\r\nDate: ");
    QVERIFY(date >= 0);
    const QByteArray text = headers.sliced(date + 8, headers.indexOf("\r\n", date + 2) - date - 8);
    const QDateTime stamped = QDateTime::fromString(QString::fromLatin1(text), Qt::RFC2822Date);
    QVERIFY2(stamped.isValid(), text.constData());
    QVERIFY(qAbs(stamped.secsTo(QDateTime::currentDateTime())) < 600);
}

void TestSendRun::unknownEncodingIsNotLogged()
{
    m_bench->window.encodings = {u"utf-8 | Unicode (UTF-8)"_s, u"koi8-r | Cyrillic (KOI8-R)"_s};
    m_bench->window.setText(Field::Encoding, u"unicode (utf-8)"_s);
    sendWell();
    QVERIFY(m_bench->log().filter(u"Encoding"_s).isEmpty());
    QCOMPARE(m_bench->window.encodingIndex, 1);
}

void TestSendRun::encodingListStaysOnTheMatch()
{
    m_bench->window.encodings = {u"utf-8 | Unicode (UTF-8)"_s, u"koi8-r | Cyrillic (KOI8-R)"_s, u"big5 | Chinese"_s};
    m_bench->window.setText(Field::Encoding, u"Cyrillic (KOI8-R)"_s);
    m_bench->window.setText(Field::PlainContent, u"привет"_s);
    sendWell();
    QCOMPARE(m_bench->window.encodingIndex, 1);
    QVERIFY(m_bench->log().contains(u"Encoding: koi8-r"_s));
    QVERIFY(mail().toLower().contains("charset=koi8-r") || mail().toLower().contains("charset=\"koi8-r\""));
}

void TestSendRun::noSubjectLeavesItsLineOut()
{
    m_bench->window.setText(Field::Subject, u"  "_s);
    sendWell();
    const QStringList log = m_bench->log();
    QVERIFY(log.filter(QRegularExpression(u"^Subject"_s)).isEmpty());
    QVERIFY(log.contains(u"Content: "_s));
}

void TestSendRun::prioritiesAreNumbered_data()
{
    QTest::addColumn<MessageWindow::Priority>("priority");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("header");
    QTest::newRow("high") << MessageWindow::Priority::High << u"High"_s << QByteArray("Importance: high");
    QTest::newRow("normal") << MessageWindow::Priority::Normal << u"Normal"_s << QByteArray();
    QTest::newRow("low") << MessageWindow::Priority::Low << u"Low"_s << QByteArray("Importance: low");
}

void TestSendRun::prioritiesAreNumbered()
{
    QFETCH(const MessageWindow::Priority, priority);
    QFETCH(const QString, name);
    QFETCH(const QByteArray, header);
    m_bench->window.setPriority(priority);
    sendWell();
    QVERIFY(m_bench->log().contains(u"Priority: "_s + name));
    QVERIFY2(header.isEmpty() || mail().toLower().contains(header.toLower()), mail().constData());
}

void TestSendRun::receiptGoesToTheAccountsReceiver()
{
    m_bench->window.setReceipt(true);
    sendWell();
    QVERIFY(mail().contains("Disposition-Notification-To: "));
    QVERIFY(mail().contains("<receipts@x.org>"));
}

void TestSendRun::attachmentsAreLogged()
{
    const QString folder = m_bench->tree.path(u"photos"_s);
    QVERIFY(QDir().mkpath(folder));
    writeFile(folder + u"/a"_s, "x");
    const QString file = m_bench->tree.path(u"list.txt"_s);
    writeFile(file, "x");
    m_bench->window.setAttachmentPaths({file, m_bench->tree.path(u"gone"_s), folder});
    sendWell();
    QVERIFY(m_bench->log().contains(u"Attachments: "_s + file + u"; "_s + folder));
    QVERIFY(mail().contains("list.txt") && mail().contains("photos.zip"));
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
    m_bench->window.pblnStop = true;
    m_bench->progress.afterCounter = [this](const QString &) { QVERIFY(m_bench->progress.visible); };
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
    QVERIFY(!m_bench->window.pblnStop);
    QVERIFY(!m_bench->window.Sending);
    QCOMPARE(m_bench->window.Tag, u"M"_s);
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
    m_bench->progress.afterCounter = [this](const QString &text) {
        if (text == "Sending 1/1 email..."_L1) {
            m_bench->window.Tag = u"A"_s;
            m_bench->progress.activities.clear();
        }
    };
    sendWell();
    QCOMPARE(m_bench->progress.activities, QStringList{QString()});
}

void TestSendRun::exitDuringARunUnwindsWithoutAFurtherWord()
{
    m_server->Responder = [this](const QByteArray &line) -> std::optional<QByteArray> {
        if (line.startsWith("MAIL")) {
            // What the exit does: the run is abandoned and every nested loop ends.
            QTimer::singleShot(0, this, [this] {
                m_bench->sender.abandon();
                m_server->hangUp();
            });
            return QByteArray();
        }
        return std::nullopt;
    };
    const ExpectedPrompts asked; // none may come
    m_bench->run();
    QVERIFY(!m_bench->window.Sending);
    QVERIFY(m_bench->log().contains(u"Subject: Hello"_s));
    QVERIFY(m_bench->log().filter(QRegularExpression(u"^(Error|End|text)"_s)).isEmpty());
}

void TestSendRun::exitWhileConnectingUnwindsWithoutAFurtherWord()
{
    m_server->Responder = [this](const QByteArray &line) -> std::optional<QByteArray> {
        if (line.startsWith("EHLO")) {
            m_bench->sender.abandon(); // the exit's first word; the greeting goes on as if nothing were
        }
        return std::nullopt;
    };
    const ExpectedPrompts asked; // none may come
    m_bench->run();
    QVERIFY(m_server->Mails.isEmpty());
    QCOMPARE(m_bench->log(), (QStringList{divider, u"Begin: (moment)"_s}));
}

void TestSendRun::exitInACheckSendsNothing()
{
    m_bench->tree.globals.settings.proxy = {u"True"_s, QString()};
    ExpectedPrompts asked;
    asked
        .expectBox(u"PROXY_ADDRESS"_s, quillon::InformationBox, quillon::BoxAnswer::Ok, std::nullopt,
                   [this] { m_bench->sender.abandon(); })
        .expectForm(u"frmPubOptions"_s, 0);
    m_bench->progress.makeVisible();
    m_bench->run();
    QVERIFY(m_bench->progress.visible); // the forms are not touched any more
    QCOMPARE(m_server->Connections, 0);
}

void TestSendRun::connectionIsEndedAfterTheMail()
{
    sendWell();
    QTRY_VERIFY(m_server->heard("QUIT"));
    QTRY_COMPARE(m_server->Ended, 1);
    QVERIFY(!m_bench->sender.transport());
}

void TestSendRun::replyReceiverIsInTheMail()
{
    sendWell();
    const QByteArray headers = "\r\n" + mail();
    const qsizetype reply = headers.indexOf("\r\nReply-To: ");
    QVERIFY(reply >= 0);
    QVERIFY(headers.sliced(reply, headers.indexOf("\r\n", reply + 2) - reply).contains("reply@x.org"));
}

void TestSendRun::blanksAroundTheAccountAreNoPartOfIt()
{
    m_bench->window.setText(Field::Account, u" ada@x.org "_s);
    sendWell();
    QVERIFY(m_bench->log().contains(u"Account: ada@x.org"_s));
}

void TestSendRun::errorsGoToTheMonthOfTheirMoment()
{
    TestClock clock(QDateTime(QDate(2026, 11, 30), QTime(23, 59, 59)));
    const QString november = m_bench->logPath();
    m_server->answer("RCPT", "550 nobody of that name\r\n");
    m_bench->progress.afterCounter = [&](const QString &) {
        clock.present = QDateTime(QDate(2026, 12, 1), QTime(0, 0));
    };
    ExpectedPrompts asked([](const QString &) {});
    m_bench->run();
    QVERIFY(m_bench->log().filter(u"550 nobody"_s).size() == 1 && m_bench->log().size() == 1);
    const QByteArray first = contentOf(november);
    QVERIFY(first.contains("text of SENT_UNSUCC") && first.contains("End: ") && !first.contains("Error: "));
}

void TestSendRun::passwordIsNeverLogged()
{
    m_server->Offers = {"AUTH PLAIN LOGIN"};
    m_server->answer("AUTH", "535 wrong: c2VjcmV0LXdvcmQ=\r\n");
    m_bench->useServer(u"127.0.0.1"_s, m_server->port(), u"N"_s, u"Y\tada\tsecret-word"_s);
    ExpectedPrompts asked([](const QString &) {});
    m_bench->run();
    const QString everything = m_bench->log().join(u'\n') + asked.log().join(u'\n');
    QVERIFY(!everything.contains(u"secret-word"_s));
    QVERIFY(!everything.contains(QString::fromLatin1(QByteArray("\0ada\0secret-word", 16).toBase64())));
}

void TestSendRun::htmlMessageIsLoggedAsRichText()
{
    m_bench->window.setFormat(MessageWindow::Format::Rich);
    m_bench->window.setText(Field::RichContent, u"<p>Dear {First Name of The Recipient}</p>"_s);
    sendWell();
    QVERIFY(m_bench->log().contains(u"Message Type: Rich Text (HTML)"_s));
    QVERIFY(mail().contains("multipart/alternative"));
    QVERIFY(mail().contains("<p>Dear Bob</p>"));
}

QTEST_GUILESS_MAIN(TestSendRun)
#include "test_sendrun.moc"
