#include "quillon/smtp/dialogue.h"

#include <QTemporaryDir>

using namespace dialogue;

/// A session that breaks: refused, closed, silent or garbled at each of its stages, a file that is not what it was.
class TestSmtpFailures : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { MailTransport::setTimeouts(30'000, 30'000, 30'000); }

    void aRefusalIsReportedAtEachStage_data();
    void aRefusalIsReportedAtEachStage();
    void aRefusalOfConnectClosesAndIsReportedOnce_data();
    void aRefusalOfConnectClosesAndIsReportedOnce();
    void closingIsReportedAtEachStage_data();
    void closingIsReportedAtEachStage();
    void silenceIsReportedAtEachStage_data();
    void silenceIsReportedAtEachStage();
    void garbageIsReportedAtEachStage_data();
    void garbageIsReportedAtEachStage();
    void anEndlessLineIsReported();
    void plainWordsInPlaceOfTlsAreQuoted_data();
    void plainWordsInPlaceOfTlsAreQuoted();

    void aFileThatVanishesEndsTheConnectionWithoutTheFinalDot();
    void aFileThatHasGrownEndsTheConnectionWithoutTheFinalDot();
};

namespace {

QString writeFile(const QTemporaryDir &folder, qint64 size)
{
    const QString path = folder.filePath(u"attachment.bin"_s);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || !file.resize(size)) {
        qFatal("cannot write the test's file");
    }
    return path;
}

} // namespace

void TestSmtpFailures::aRefusalIsReportedAtEachStage_data()
{
    addStages(true, true);
}

void TestSmtpFailures::aRefusalIsReportedAtEachStage()
{
    QFETCH(QByteArray, command);
    QFETCH(QString, stage);
    for (const QByteArray &code : {QByteArray("554"), QByteArray("451"), QByteArray("421")}) {
        ScriptedServer server;
        setReply(server, command, code + "-5.7.1 Not\r\n" + code + " today\r\n");
        Client client;
        QVERIFY(!runSession(client, server));
        QCOMPARE(client.Errors.size(), 1);
        const QString error = client.Errors.first();
        QVERIFY2(error.contains(stage), qPrintable(error));
        QVERIFY2(error.contains(QString::fromLatin1(code) + u" 5.7.1 Not today"_s), qPrintable(error));
        QVERIFY2(error.endsWith(u'.') && !error.contains(u'\n'), qPrintable(error));
        QVERIFY2(!error.contains(u"geheim"), qPrintable(error));
        QCOMPARE(client.Codes.first(), code.toInt());
        QVERIFY(server.Mails.isEmpty() || command == ".");
    }
}

void TestSmtpFailures::aRefusalOfConnectClosesAndIsReportedOnce_data()
{
    addStages(true, false);
}

void TestSmtpFailures::aRefusalOfConnectClosesAndIsReportedOnce()
{
    QFETCH(QByteArray, command);
    ScriptedServer server;
    setReply(server, command, "554 no\r\n");
    Client client;
    client.Transport.User = u"user"_s;
    client.Transport.Password = u"geheim"_s;
    QCOMPARE(client.connectTo(server.port()), 0);
    QCOMPARE(client.Errors.size(), 1);
    QTRY_COMPARE(server.Ended, 1);
    QVERIFY(!client.send(text));
    QVERIFY(!client.sendMessage(MailMessage()));
    QVERIFY(!client.accepted());
    client.Transport.Quit();
    QCOMPARE(client.Errors.size(), 1);
    QCOMPARE(server.Connections, 1);
}

void TestSmtpFailures::closingIsReportedAtEachStage_data()
{
    addStages(true, true);
}

void TestSmtpFailures::closingIsReportedAtEachStage()
{
    QFETCH(QByteArray, command);
    ScriptedServer server;
    setReply(server, command, "");
    server.closeAt(command);
    server.closeAt(command == "EHLO" ? "HELO" : command);
    Client client;
    QVERIFY(!runSession(client, server));
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY2(client.Errors.first().contains(u"the server has closed the connection"),
             qPrintable(client.Errors.first()));
    QVERIFY(client.Transport.State() != 2);
}

void TestSmtpFailures::silenceIsReportedAtEachStage_data()
{
    addStages(true, true);
}

void TestSmtpFailures::silenceIsReportedAtEachStage()
{
    QFETCH(QByteArray, command);
    MailTransport::setTimeouts(30'000, shortSilence, shortGrace);
    ScriptedServer server;
    setReply(server, command, "");
    Client client;
    QVERIFY(!runSession(client, server));
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY2(client.Errors.first().contains(u"there was no answer for"), qPrintable(client.Errors.first()));
    QVERIFY(client.Transport.State() != 2);
}

void TestSmtpFailures::garbageIsReportedAtEachStage_data()
{
    addStages(true, true);
}

void TestSmtpFailures::garbageIsReportedAtEachStage()
{
    QFETCH(QByteArray, command);
    for (const QByteArray &garbage : {QByteArray("HTTP/1.1 400 Bad Request\r\n\r\n"), QByteArray("\0\xff\x16\r\n", 5),
                                      QByteArray("250-a\r\n354 b\r\n"), QByteArray("999 no\r\n")}) {
        ScriptedServer server;
        setReply(server, command, garbage);
        Client client;
        QVERIFY(!runSession(client, server));
        QCOMPARE(client.Errors.size(), 1);
        QVERIFY2(client.Errors.first().contains(u"not SMTP"), qPrintable(client.Errors.first()));
        QVERIFY(client.Transport.State() != 2);
    }
}

void TestSmtpFailures::anEndlessLineIsReported()
{
    ScriptedServer server;
    server.Greeting = "220 " + QByteArray(10'000'000, 'x');
    Client client;
    QVERIFY(client.connectTo(server.port()) != 2);
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY2(client.Errors.first().contains(u"a line without end"), qPrintable(client.Errors.first()));
    QVERIFY(client.Errors.first().size() < 500);
}

void TestSmtpFailures::plainWordsInPlaceOfTlsAreQuoted_data()
{
    QTest::addColumn<QByteArray>("words");
    QTest::addColumn<int>("cutAt");
    QTest::addColumn<bool>("closes");
    QTest::addColumn<QString>("quoted");
    const QByteArray refusal = "421 Too many concurrent SMTP connections\r\n";
    const QString words = u"421 Too many concurrent SMTP connections"_s;
    QTest::newRow("a refusal") << refusal << 0 << true << words;
    QTest::newRow("of a server that stays") << refusal << 0 << false << words;
    QTest::newRow("in two parts") << refusal << 3 << false << words;
    QTest::newRow("by an octet") << refusal << 1 << false << words;
    QTest::newRow("two lines") << QByteArray("421-Too many\r\n421 Go away\r\n") << 0 << false
                               << u"421-Too many 421 Go away"_s;
    QTest::newRow("no line end") << QByteArray("421 Too many") << 0 << true << u"421 Too many"_s;
    QTest::newRow("a greeting") << QByteArray("220 mail.example.org\r\n") << 0 << false << u"220 mail.example.org"_s;
    QTest::newRow("no SMTP") << QByteArray("HTTP/1.1 400 Bad Request\r\n") << 0 << false
                             << u"HTTP/1.1 400 Bad Request"_s;
}

void TestSmtpFailures::plainWordsInPlaceOfTlsAreQuoted()
{
    QFETCH(QByteArray, words);
    QFETCH(int, cutAt);
    QFETCH(bool, closes);
    QFETCH(QString, quoted);
    const QString error =
        u"Securing the connection to 127.0.0.1 (TLS) failed: the server answered in plain text, “%1”."_s.arg(quoted);
    {
        ScriptedServer server;
        server.Greeting = words;
        server.CutAt = cutAt;
        if (closes) {
            server.closeAt(QByteArray());
        }
        Client client;
        client.Transport.Security = MailTransport::Ssl;
        QCOMPARE(client.connectTo(server.port()), 0);
        QCOMPARE(client.Errors, QStringList{error});
    }
    // The same behind STARTTLS, as soon as the handshake has begun.
    ScriptedServer server;
    server.Offers = {"STARTTLS"};
    Client client;
    client.Transport.Security = MailTransport::StartTls;
    connect(&client.Transport, &MailTransport::Progress, &server, [&](int, const QString &stage) {
        if (stage.startsWith(u"Securing")) {
            server.say(words);
            closes ? server.hangUp() : void();
        }
    });
    QCOMPARE(client.connectTo(server.port()), 0);
    QCOMPARE(client.Errors, QStringList{error});
}

void TestSmtpFailures::aFileThatVanishesEndsTheConnectionWithoutTheFinalDot()
{
    const QTemporaryDir folder;
    const QString path = writeFile(folder, 1'000'000);
    const EncodedMail mail = Client::mailWithFile(path);
    QVERIFY(QFile::remove(path));
    ScriptedServer server;
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(!waitFor(client.Transport.SendEncoded(mail, u"a@b.c"_s, {u"d@e.f"_s})));
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY2(client.Errors.first().contains(u"attachment.bin"), qPrintable(client.Errors.first()));
    QTRY_COMPARE(server.Ended, 1);
    QVERIFY(server.Mails.isEmpty());
    QVERIFY(client.Transport.State() != 2);
}

void TestSmtpFailures::aFileThatHasGrownEndsTheConnectionWithoutTheFinalDot()
{
    const QTemporaryDir folder;
    const QString path = writeFile(folder, 1'000'000);
    const EncodedMail mail = Client::mailWithFile(path);
    writeFile(folder, 1'000'001);
    ScriptedServer server;
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(!waitFor(client.Transport.SendEncoded(mail, u"a@b.c"_s, {u"d@e.f"_s})));
    QCOMPARE(client.Errors.size(), 1);
    QTRY_COMPARE(server.Ended, 1);
    QVERIFY(server.Mails.isEmpty());
}

QTEST_GUILESS_MAIN(TestSmtpFailures)
#include "test_smtpfailures.moc"
