#include "quillon/smtp/realserverbench.h"

using namespace quillon;
using namespace Qt::StringLiterals;
using testsupport::ChildServer;

/// TLS with servers that others wrote: which certificates are trusted, and what follows where TLS is not to be had.
class TestSmtpServerTls : public QObject, private RealServerBench {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { prepare(); }
    void init() { renew(); }

    void anUntrustedCertificateIsAnErrorAndNothingIsSent_data();
    void anUntrustedCertificateIsAnErrorAndNothingIsSent();
    void aCertificateForAnotherHostIsAnErrorAndNothingIsSent_data();
    void aCertificateForAnotherHostIsAnErrorAndNothingIsSent();
    void tlsWithAServerThatSpeaksNoneIsAnError();
    void plainTalkWithATlsServerIsAnError();
    void tlsSessionsAreResumed_data();
    void tlsSessionsAreResumed();
};

void TestSmtpServerTls::anUntrustedCertificateIsAnErrorAndNothingIsSent_data()
{
    addLinks();
}

void TestSmtpServerTls::anUntrustedCertificateIsAnErrorAndNothingIsSent()
{
    QFETCH(QString, kind);
    QFETCH(int, security);
    SmtpTls::setAuthorities({}); // the system's, which do not know the throw-away one
    ChildServer server;
    QVERIFY2(server.startPython(u"smtp_server.py"_s, tlsArguments(kind) + QStringList{u"--auth"_s, u"PLAIN"_s}),
             qPrintable(server.fault()));
    Client client;
    client.Transport.Security = security;
    client.Transport.User = u"user"_s;
    client.Transport.Password = u"geheim"_s;
    QVERIFY(client.connectTo(server.port(), u"localhost"_s) != 2);
    QCOMPARE(client.Errors.size(), 1);
    const QString error = client.Errors.first();
    QVERIFY2(error.contains(u"TLS") && error.contains(u"certificate"), qPrintable(error));
    QVERIFY(!client.send(text));
    QVERIFY(received(1).isEmpty());
}

void TestSmtpServerTls::aCertificateForAnotherHostIsAnErrorAndNothingIsSent_data()
{
    addLinks();
}

void TestSmtpServerTls::aCertificateForAnotherHostIsAnErrorAndNothingIsSent()
{
    QFETCH(QString, kind);
    QFETCH(int, security);
    ChildServer server;
    QVERIFY2(server.startPython(u"smtp_server.py"_s, tlsArguments(kind, true)), qPrintable(server.fault()));
    for (const QString &host : {u"localhost"_s, u"127.0.0.1"_s}) {
        Client client;
        client.Transport.Security = security;
        QVERIFY(client.connectTo(server.port(), host) != 2);
        QCOMPARE(client.Errors.size(), 1);
        QVERIFY2(client.Errors.first().contains(u"host name"), qPrintable(client.Errors.first()));
        QVERIFY(!client.send(text));
    }
    QVERIFY(received(1).isEmpty());
}

void TestSmtpServerTls::tlsWithAServerThatSpeaksNoneIsAnError()
{
    // A plain server waits for a command and gets TLS octets: it refuses them in its own tongue.
    testsupport::ScriptedServer server;
    Client client;
    client.Transport.Security = MailTransport::Ssl;
    QVERIFY(client.connectTo(server.port(), u"localhost"_s) != 2);
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY2(client.Errors.first().contains(u"TLS"), qPrintable(client.Errors.first()));
}

void TestSmtpServerTls::plainTalkWithATlsServerIsAnError()
{
    // Such a server says nothing until the client has begun TLS, so only the time for silence ends it.
    MailTransport::setTimeouts(60'000, 150, 30);
    testsupport::ScriptedServer server;
    server.ImplicitTls = true;
    server.Certificate = m_certificates->localhost();
    server.Key = m_certificates->localhostKey();
    Client client;
    QCOMPARE(client.connectTo(server.port(), u"localhost"_s), 2);
    QVERIFY(!client.accepted());
    QCOMPARE(client.Errors.size(), 1);
}

void TestSmtpServerTls::tlsSessionsAreResumed_data()
{
    addLinks();
}

void TestSmtpServerTls::tlsSessionsAreResumed()
{
    // Python's sink tells for each connection whether it was resumed.
    QFETCH(int, security);
    ChildServer server;
    QStringList arguments = {u"--certificate"_s, m_certificates->localhostFile(), u"--key"_s,
                             m_certificates->localhostKeyFile()};
    if (security == MailTransport::StartTls) {
        arguments += u"--starttls"_s;
    }
    QVERIFY2(server.startPython(u"sink_server.py"_s, arguments), qPrintable(server.fault()));
    for (int i = 0; i < 3; ++i) {
        Client client;
        client.Transport.Security = security;
        QCOMPARE(client.connectTo(server.port(), u"localhost"_s), 2);
        QVERIFY2(client.send(text), qPrintable(client.Errors.join(u'\n')));
        server.waitForLine("MAIL ");
    }
    QList<QByteArray> tls;
    const QList<QByteArray> lines = server.lines();
    for (const QByteArray &line : lines) {
        if (line.startsWith("TLS ")) {
            tls += line;
        }
    }
    QCOMPARE(tls, (QList<QByteArray>{"TLS new", "TLS resumed", "TLS resumed"}));
}

QTEST_GUILESS_MAIN(TestSmtpServerTls)
#include "test_smtpservertls.moc"
