#include "quillon/smtp/dialogue.h"

using namespace dialogue;

/// What a session tells of its course: each stage once, in its turn, under its own number, and only within a call.
class TestSmtpProgress : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { MailTransport::setTimeouts(30'000, 30'000, 30'000); }
    void cleanup() { SmtpTls::setAuthorities({}); }

    void everyStageIsToldOnceInItsTurn();
    void anOldServerIsGreetedTwice();
    void aRefusalEndsWithTakingTheMessageBack();
    void aMailOfNothingIsAllSent();
    void betweenTwoCallsNothingIsTold();
    void whatIsToldComesBeforeTheEndOfTheCall();

private:
    testsupport::Certificates m_certificates;
};

namespace {

/// The numbers and texts that a transport tells.
struct Told {
    QStringList Lines;

    explicit Told(MailTransport &transport)
    {
        QObject::connect(&transport, &MailTransport::Progress, &transport,
                         [this](int id, const QString &text) { Lines += u"%1 %2"_s.arg(QString::number(id), text); });
    }
};

} // namespace

void TestSmtpProgress::everyStageIsToldOnceInItsTurn()
{
    QVERIFY2(m_certificates.isValid(), qPrintable(m_certificates.fault()));
    SmtpTls::setAuthorities({m_certificates.authority()});
    const auto run = [this](int security) {
        ScriptedServer server;
        server.Certificate = m_certificates.localhost();
        server.Key = m_certificates.localhostKey();
        server.ImplicitTls = security == MailTransport::Ssl;
        server.Offers = {"STARTTLS", "AUTH PLAIN"};
        Client client;
        const Told told(client.Transport);
        client.Transport.Security = security;
        client.Transport.User = u"user"_s;
        client.Transport.Password = u"geheim"_s;
        client.connectTo(server.port(), u"localhost"_s);
        client.send(text);
        QStringList lines = told.Lines;
        return lines.replaceInStrings(QString::number(server.port()), u"PORT"_s);
    };
    const QStringList login{u"8 Logging in at localhost (AUTH PLAIN)"_s, u"9 Connected to localhost"_s};
    const QStringList mail{u"10 Sending the addresses"_s, u"10 Sending the message: 100 %"_s,
                           u"9 Connected to localhost"_s};
    const QStringList greeting{u"3 Waiting for the greeting of localhost"_s, u"4 Greeting localhost (EHLO)"_s};
    const QStringList connecting{u"1 Connecting to localhost, port PORT,"_s};
    QCOMPARE(run(MailTransport::NoSecurity), connecting + greeting + login + mail);
    const QString securing = u"Securing the connection to localhost (TLS)"_s;
    const QStringList implicit{u"2 "_s + securing};
    const QStringList starting{u"6 Asking localhost for encryption (STARTTLS)"_s, u"7 "_s + securing,
                               u"4 Greeting localhost (EHLO)"_s};
    QCOMPARE(run(MailTransport::Ssl), connecting + implicit + greeting + login + mail);
    QCOMPARE(run(MailTransport::StartTls), connecting + greeting + starting + login + mail);
}

void TestSmtpProgress::anOldServerIsGreetedTwice()
{
    ScriptedServer server;
    server.answer("EHLO", "500 what\r\n");
    Client client;
    const Told told(client.Transport);
    QCOMPARE(client.connectTo(server.port()), 2);
    QCOMPARE(told.Lines.mid(2), (QStringList{u"4 Greeting 127.0.0.1 (EHLO)"_s, u"5 Greeting 127.0.0.1 (HELO)"_s,
                                             u"9 Connected to 127.0.0.1"_s}));
}

void TestSmtpProgress::aRefusalEndsWithTakingTheMessageBack()
{
    ScriptedServer server;
    server.answer("RCPT", "550 no\r\n");
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    const Told told(client.Transport);
    QVERIFY(!client.send(text));
    QCOMPARE(told.Lines, (QStringList{u"10 Sending the addresses"_s, u"11 Taking the message back (RSET)"_s}));
}

void TestSmtpProgress::aMailOfNothingIsAllSent()
{
    ScriptedServer server;
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    const Told told(client.Transport);
    QVERIFY(client.send(""));
    QCOMPARE(told.Lines.at(1), u"10 Sending the message: 100 %"_s);
}

void TestSmtpProgress::betweenTwoCallsNothingIsTold()
{
    MailTransport::setTimeouts(30'000, 30'000, shortGrace);
    ScriptedServer server;
    server.Greeting = "";
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(client.Progress.last().startsWith(u"Waiting for the greeting"_s));
    client.Progress.clear();
    server.say("220 late\r\n");
    QTRY_VERIFY(server.heard("EHLO"));
    waitFor(nextTurn());
    QVERIFY(client.accepted());
    QVERIFY2(!client.Progress.contains(u"Greeting 127.0.0.1 (EHLO)"_s), qPrintable(client.Progress.join(u'\n')));
}

void TestSmtpProgress::whatIsToldComesBeforeTheEndOfTheCall()
{
    ScriptedServer server;
    Client client;
    QStringList order;
    connect(&client.Transport, &MailTransport::Progress, &server,
            [&order](int, const QString &line) { order += line; });
    connect(&client.Transport, &MailTransport::Error, &server, [&order] { order += u"Error"_s; });
    Pending<> connecting = client.Transport.Connect(u"127.0.0.1"_s, server.port(), 0, 0);
    connecting.whenSettled([&order] { order += u"settled"_s; });
    QTRY_VERIFY(connecting.isSettled());
    QCOMPARE(order.mid(order.size() - 2), (QStringList{u"Connected to 127.0.0.1"_s, u"settled"_s}));

    order.clear();
    server.answer("MAIL", "550 no\r\n");
    Pending<bool> sending = client.Transport.SendEncoded(Client::mailOf(text), u"a@b.c"_s, {u"d@e.f"_s});
    sending.whenSettled([&order] { order += u"settled"_s; });
    QTRY_VERIFY(sending.isSettled());
    QCOMPARE(order,
             (QStringList{u"Sending the addresses"_s, u"Taking the message back (RSET)"_s, u"Error"_s, u"settled"_s}));
}

QTEST_GUILESS_MAIN(TestSmtpProgress)
#include "test_smtpprogress.moc"
