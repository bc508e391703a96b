#include "sending/onebyonebench.h"

using namespace Qt::StringLiterals;
using namespace corvane;

/// What changes while a run is under way: which edits reach the next mail, and a server that comes and goes.
class TestOneByOneChanges : public QObject, private OneByOneBench {
    Q_OBJECT

private Q_SLOTS:
    void init() { begin(); }
    void cleanup() { end(); }

    void editsOfSubjectAndContentReachTheFollowingMails();
    void editsOfOtherFieldsDoNot();
    void macrosChangedInTheMiddleReachTheNextRecipient();
    void folderIsPackedOnceForAllMails();
    void serverThatDiesAndComesBackCostsItsMailsOnly();
    void proxyThatIsTurnedOnBetweenTwoMailsIsNotBypassed();
};

void TestOneByOneChanges::editsOfSubjectAndContentReachTheFollowingMails()
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

void TestOneByOneChanges::editsOfOtherFieldsDoNot()
{
    m_bench->progress.afterCounter = [this](const QString &text) {
        if (text.startsWith(u"Sending 1/"_s)) {
            m_bench->window.setText(Field::To, u"other@y.org"_s);
            m_bench->window.setText(Field::Sender, u"Other <other@x.org>"_s);
            m_bench->window.setPriority(Message::Priority::High);
            m_bench->window.setFormat(Message::Format::Rich);
        }
    };
    runAndExpect(3);
    QCOMPARE(m_server->Mails.size(), 3);
    for (const QByteArray &mail : std::as_const(m_server->Mails)) {
        QVERIFY(!mail.contains("other@") && !mail.contains("X-Priority: 1") && mail.contains("hello."));
    }
}

void TestOneByOneChanges::macrosChangedInTheMiddleReachTheNextRecipient()
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

void TestOneByOneChanges::folderIsPackedOnceForAllMails()
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

void TestOneByOneChanges::serverThatDiesAndComesBackCostsItsMailsOnly()
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

void TestOneByOneChanges::proxyThatIsTurnedOnBetweenTwoMailsIsNotBypassed()
{
    testsupport::ScriptedServer proxy; // no proxy at all, so that what goes through it fails
    m_bench->progress.afterCounter = [&](const QString &text) {
        if (text.startsWith(u"Sending 2/"_s)) {
            const QString line = u"Socks5\t127.0.0.1\t%1\tN\t\t\t/PSEND"_s.arg(proxy.port());
            corvane::storeSetting(m_bench->tree.globals, Setting::DefaultProxy, line);
            corvane::storeSetting(m_bench->tree.globals, Setting::ProxyUse, u"True"_s);
        }
    };
    ExpectedPrompts asked([](const QString &) {});
    m_bench->run();
    QCOMPARE(m_server->Mails.size(), 1);
    QCOMPARE(proxy.Connections, 2);
}

QTEST_GUILESS_MAIN(TestOneByOneChanges)
#include "test_onebyonechanges.moc"
