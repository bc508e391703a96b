#include "quillon/mail/addressrace.h"
#include "quillon/smtp/client.h"
#include "quillon/smtp/knownaddresses.h"
#include "quillon/smtp/silentaddress.h"
#include "support/childserver.h"
#include "support/scriptedserver.h"

#include <QTcpSocket>
#include <QTest>

#include <memory>

using namespace quillon;
using namespace Qt::StringLiterals;
using testsupport::ChildServer;
using testsupport::ScriptedServer;

namespace {

const QString host = u"mail.example.test"_s;
const QByteArray text = "Subject: x\r\n\r\nhello\r\n";

} // namespace

/// Hosts of several addresses, and names that lead to none.
class TestAddressRace : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { MailTransport::setTimeouts(20'000, 60'000, 60'000); }

    void familiesTakeTurnsAndNoAddressComesTwice_data();
    void familiesTakeTurnsAndNoAddressComesTwice();
    void localhostAndNamesBelowItAreThisMachine_data();
    void localhostAndNamesBelowItAreThisMachine();
    void anAddressThatDoesNotAnswerDoesNotHoldTheNext();
    void manyThatDoNotAnswerArePassedOneAfterTheOther();
    void aRefusalLetsTheNextBeginAtOnce();
    void theFirstThatAnswersIsTheOnlyOneInUse();
    void whenAllRefuseThatIsTheError();
    void whenNoneAnswersTheTimeForConnectingEndsIt();
    void oneThatAnswersLateIsStillTaken();
    void aNameThatIsNotFoundIsAnError_data();
    void aNameThatIsNotFoundIsAnError();
    void theSystemsAnswersAreAddressesOrAReason();
    void localhostNeedsNobodyToBeAsked_data();
    void localhostNeedsNobodyToBeAsked();
    void anAddressNeedsNoLookup_data();
    void anAddressNeedsNoLookup();
    void theNameBehindAProxyIsNotLookedUp();
    void aLookupThatTakesLongIsWaitedFor();
    void quitEndsALookup();
    void quitEndsAttemptsThatDoNotAnswer();
    void theTransportMayGoWhileAddressesAreTried();
};

void TestAddressRace::familiesTakeTurnsAndNoAddressComesTwice_data()
{
    QTest::addColumn<QStringList>("found");
    QTest::addColumn<QStringList>("order");
    const QStringList four{u"10.0.0.1"_s, u"10.0.0.2"_s, u"10.0.0.3"_s};
    const QStringList six{u"2001:db8::1"_s, u"2001:db8::2"_s};
    QTest::newRow("none") << QStringList() << QStringList();
    QTest::newRow("one") << four.mid(0, 1) << four.mid(0, 1);
    QTest::newRow("one family") << four << four;
    QTest::newRow("IPv6 first") << six + four << QStringList{six[0], four[0], six[1], four[1], four[2]};
    QTest::newRow("IPv4 first") << four + six << QStringList{four[0], six[0], four[1], six[1], four[2]};
    QTest::newRow("twice") << four + four + six + six << QStringList{four[0], six[0], four[1], six[1], four[2]};
}

void TestAddressRace::familiesTakeTurnsAndNoAddressComesTwice()
{
    QFETCH(const QStringList, found);
    QFETCH(const QStringList, order);
    QList<QHostAddress> addresses;
    for (const QString &address : found) {
        addresses += QHostAddress(address);
    }
    QStringList turns;
    for (const QHostAddress &address : AddressRace::takingTurns(addresses)) {
        turns += address.toString();
    }
    QCOMPARE(turns, order);
}

void TestAddressRace::localhostAndNamesBelowItAreThisMachine_data()
{
    QTest::addColumn<bool>("local");
    for (const char *name : {"localhost", "LOCALHOST", "localhost.", "mail.localhost", "a.b.LocalHost."}) {
        QTest::newRow(name) << true;
    }
    for (const char *name :
         {"", ".", "localhost..", "localhosts", "mylocalhost", "localhost.example.org", "localhos"}) {
        QTest::addRow("\"%s\"", name) << false;
    }
}

void TestAddressRace::localhostAndNamesBelowItAreThisMachine()
{
    QFETCH(const bool, local);
    QCOMPARE(isLocalhost(QString::fromLatin1(QTest::currentDataTag()).remove(u'"')), local);
}

void TestAddressRace::anAddressThatDoesNotAnswerDoesNotHoldTheNext()
{
    ScriptedServer server;
    const SilentAddress silent(QHostAddress(u"127.0.0.2"_s), server.port());
    QVERIFY(silent.isSilent());
    const KnownAddresses known({u"127.0.0.2"_s, u"127.0.0.1"_s});
    Client client;
    QCOMPARE(client.connectTo(server.port(), host), 2);
    QVERIFY2(client.send(text), qPrintable(client.Errors.join(u'\n')));
    QCOMPARE(known.Asked, QStringList{host});
    QCOMPARE(server.Mails.size(), 1);
    QVERIFY(server.heard("EHLO"));
    QVERIFY(client.Errors.isEmpty());
    QCOMPARE(client.Progress.constFirst(), u"Connecting to %1, port %2,"_s.arg(host).arg(server.port()));
}

void TestAddressRace::manyThatDoNotAnswerArePassedOneAfterTheOther()
{
    ScriptedServer server;
    const SilentAddress second(QHostAddress(u"127.0.0.2"_s), server.port());
    const SilentAddress third(QHostAddress(u"127.0.0.3"_s), server.port());
    QVERIFY(second.isSilent() && third.isSilent());
    const KnownAddresses known({u"127.0.0.2"_s, u"127.0.0.3"_s, u"127.0.0.1"_s});
    Client client;
    QCOMPARE(client.connectTo(server.port(), host), 2);
    QVERIFY2(client.send(text), qPrintable(client.Errors.join(u'\n')));
}

void TestAddressRace::aRefusalLetsTheNextBeginAtOnce()
{
    // A quarter of a second for each would take longer than the time for connecting.
    MailTransport::setTimeouts(5'000, 60'000, 60'000);
    ScriptedServer server;
    QStringList addresses;
    for (int i = 2; i < 82; ++i) {
        addresses += u"127.0.0.%1"_s.arg(i);
    }
    const KnownAddresses known(addresses + QStringList{u"127.0.0.1"_s});
    Client client;
    QCOMPARE(client.connectTo(server.port(), host), 2);
    QVERIFY2(client.send(text), qPrintable(client.Errors.join(u'\n')));
}

void TestAddressRace::theFirstThatAnswersIsTheOnlyOneInUse()
{
    ScriptedServer first;
    QTcpServer second;
    QVERIFY(second.listen(QHostAddress(u"127.0.0.2"_s), first.port()));
    const KnownAddresses known({u"127.0.0.1"_s, u"127.0.0.2"_s});
    Client client;
    QCOMPARE(client.connectTo(first.port(), host), 2);
    waitFor(elapsed(400)); // longer than the next would have to wait
    QVERIFY2(client.send(text), qPrintable(client.Errors.join(u'\n')));
    QCOMPARE(first.Connections, 1);
    QVERIFY(!second.hasPendingConnections());
}

void TestAddressRace::whenAllRefuseThatIsTheError()
{
    const quint16 port = ScriptedServer().port(); // nobody's any more
    const KnownAddresses known({u"127.0.0.2"_s, u"127.0.0.1"_s, u"::1"_s});
    Client client;
    QCOMPARE(client.connectTo(port, host), 0);
    QCOMPARE(client.Errors,
             QStringList{u"Connecting to %1, port %2, failed: Connection refused."_s.arg(host).arg(port)});
}

void TestAddressRace::whenNoneAnswersTheTimeForConnectingEndsIt()
{
    MailTransport::setTimeouts(600, 60'000, 60'000);
    ScriptedServer other;
    const SilentAddress second(QHostAddress(u"127.0.0.2"_s), other.port());
    const SilentAddress third(QHostAddress(u"127.0.0.3"_s), other.port());
    QVERIFY(second.isSilent() && third.isSilent());
    // The refusal in between is no reason to end while others may still answer.
    const KnownAddresses known({u"127.0.0.2"_s, u"127.0.0.4"_s, u"127.0.0.3"_s});
    Client client;
    QCOMPARE(client.connectTo(other.port(), host), 0);
    QCOMPARE(
        client.Errors,
        QStringList{u"Connecting to %1, port %2, failed: there was no answer for 1 s."_s.arg(host).arg(other.port())});
    QCOMPARE(other.Connections, 0);
}

void TestAddressRace::oneThatAnswersLateIsStillTaken()
{
    // It is asked first, nobody answers; the refusal of the other must not end it.
    ScriptedServer server;
    auto silent = std::make_unique<SilentAddress>(QHostAddress(u"127.0.0.2"_s), server.port());
    QVERIFY(silent->isSilent());
    ScriptedServer late;
    late.close();
    const quint16 port = server.port();
    const KnownAddresses known({u"127.0.0.2"_s, u"127.0.0.3"_s});
    Client client;
    Pending<> connecting = client.Transport.Connect(host, port, 0, 0);
    waitFor(elapsed(400));
    QCOMPARE(client.Transport.State(), 1);
    silent.reset(); // the system asks again, and somebody answers now
    QVERIFY(late.listen(QHostAddress(u"127.0.0.2"_s), port));
    waitFor(std::move(connecting));
    QCOMPARE(client.Transport.State(), 2);
    QVERIFY2(client.send(text), qPrintable(client.Errors.join(u'\n')));
    QCOMPARE(late.Mails.size(), 1);
}

void TestAddressRace::aNameThatIsNotFoundIsAnError_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<QString>("reason");
    QTest::newRow("with a reason") << u"No\nsuch host"_s << u"No such host"_s;
    QTest::newRow("without one") << QString() << u"the server was not found"_s;
}

void TestAddressRace::aNameThatIsNotFoundIsAnError()
{
    QFETCH(const QString, fault);
    QFETCH(const QString, reason);
    KnownAddresses known;
    known.Found.Fault = fault;
    Client client;
    QCOMPARE(client.connectTo(25, host), 0);
    QCOMPARE(client.Errors, QStringList{u"Connecting to %1, port 25, failed: %2."_s.arg(host, reason)});
    QVERIFY(!client.send(text));
    QCOMPARE(client.Errors.size(), 1);
}

void TestAddressRace::theSystemsAnswersAreAddressesOrAReason()
{
    const HostAddresses none = waitFor(resolver().lookUp(QString()));
    QVERIFY(none.Addresses.isEmpty());
    QVERIFY(!none.Fault.isEmpty());
    const HostAddresses one = waitFor(resolver().lookUp(u"127.0.0.9"_s));
    QCOMPARE(one.Addresses, QList<QHostAddress>{QHostAddress(u"127.0.0.9"_s)});
    QCOMPARE(one.Fault, QString());
}

void TestAddressRace::localhostNeedsNobodyToBeAsked_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("listening");
    QTest::newRow("IPv4") << u"localhost"_s << u"127.0.0.1"_s;
    QTest::newRow("IPv6") << u"localhost"_s << u"::1"_s;
    QTest::newRow("capitals") << u"LocalHost"_s << u"127.0.0.1"_s;
    QTest::newRow("a name below it") << u"mail.localhost"_s << u"127.0.0.1"_s;
}

void TestAddressRace::localhostNeedsNobodyToBeAsked()
{
    QFETCH(const QString, name);
    QFETCH(const QString, listening);
    const KnownAddresses nobody;
    ScriptedServer server;
    server.close();
    if (!server.listen(QHostAddress(listening))) {
        QSKIP("this machine has no such loopback address");
    }
    Client client;
    QCOMPARE(client.connectTo(server.serverPort(), name), 2);
    QVERIFY2(client.send(text), qPrintable(client.Errors.join(u'\n')));
    QCOMPARE(nobody.Asked, QStringList());
    QCOMPARE(server.Connections, 1);
}

void TestAddressRace::anAddressNeedsNoLookup_data()
{
    QTest::addColumn<QString>("address");
    QTest::newRow("IPv4") << u"127.0.0.1"_s;
    QTest::newRow("IPv6") << u"::1"_s;
}

void TestAddressRace::anAddressNeedsNoLookup()
{
    QFETCH(const QString, address);
    const KnownAddresses nobody;
    ScriptedServer server;
    server.close();
    if (!server.listen(QHostAddress(address))) {
        QSKIP("this machine has no such loopback address");
    }
    Client client;
    QCOMPARE(client.connectTo(server.serverPort(), address), 2);
    QVERIFY2(client.send(text), qPrintable(client.Errors.join(u'\n')));
    QCOMPARE(nobody.Asked, QStringList());
}

void TestAddressRace::theNameBehindAProxyIsNotLookedUp()
{
    const KnownAddresses nobody;
    ScriptedServer server;
    for (const QString &name : {host, u"localhost"_s}) {
        ChildServer proxy;
        QVERIFY2(proxy.startPython(u"socks_stub.py"_s, {u"--target"_s, QString::number(server.port())}),
                 qPrintable(proxy.fault()));
        Client client;
        client.Transport.ProxyServer = u"127.0.0.1"_s;
        client.Transport.ProxyPort = proxy.port();
        QCOMPARE(client.connectTo(2525, name), 2);
        QVERIFY2(client.send(text), qPrintable(client.Errors.join(u'\n')));
        QCOMPARE(proxy.waitForLine("ASKED "), "name " + name.toLatin1() + " 2525");
    }
    QCOMPARE(nobody.Asked, QStringList());
}

void TestAddressRace::aLookupThatTakesLongIsWaitedFor()
{
    ScriptedServer server;
    KnownAddresses known({u"127.0.0.1"_s});
    known.Holds = true;
    Client client;
    Pending<> connecting = client.Transport.Connect(host, server.port(), 0, 0);
    waitFor(nextTurn());
    QCOMPARE(client.Transport.State(), 1);
    QCOMPARE(server.Connections, 0);
    known.answer();
    waitFor(std::move(connecting));
    QCOMPARE(client.Transport.State(), 2);
    QVERIFY2(client.send(text), qPrintable(client.Errors.join(u'\n')));
}

void TestAddressRace::quitEndsALookup()
{
    ScriptedServer server;
    KnownAddresses known({u"127.0.0.1"_s});
    known.Holds = true;
    Client client;
    Pending<> connecting = client.Transport.Connect(host, server.port(), 0, 0);
    QVERIFY(known.isWanted());
    client.Transport.Quit();
    waitFor(std::move(connecting));
    waitFor(nextTurn());
    QVERIFY(!known.isWanted());
    known.answer();
    waitFor(elapsed(50));
    QCOMPARE(server.Connections, 0);
    QCOMPARE(client.Transport.State(), 0);
    QVERIFY(client.Errors.isEmpty());
}

void TestAddressRace::quitEndsAttemptsThatDoNotAnswer()
{
    ScriptedServer server;
    const SilentAddress silent(QHostAddress(u"127.0.0.2"_s), server.port());
    QVERIFY(silent.isSilent());
    const KnownAddresses known({u"127.0.0.2"_s, u"127.0.0.1"_s});
    Client client;
    Pending<> connecting = client.Transport.Connect(host, server.port(), 0, 0);
    client.Transport.Quit();
    waitFor(std::move(connecting));
    waitFor(elapsed(400)); // when the next would have begun
    QCOMPARE(server.Connections, 0);
    QVERIFY(client.Errors.isEmpty());
}

void TestAddressRace::theTransportMayGoWhileAddressesAreTried()
{
    ScriptedServer server;
    const SilentAddress silent(QHostAddress(u"127.0.0.2"_s), server.port());
    QVERIFY(silent.isSilent());
    KnownAddresses known({u"127.0.0.2"_s, u"127.0.0.1"_s});
    for (const bool holds : {false, true}) {
        known.Holds = holds;
        {
            Client client;
            Pending<> connecting = client.Transport.Connect(host, server.port(), 0, 0);
            waitFor(nextTurn());
        }
        if (holds) {
            known.answer();
        }
        waitFor(elapsed(400));
        QCOMPARE(server.Connections, 0);
    }
    // And from within the error that tells of the failure.
    auto transport = std::make_unique<MailTransport>();
    known.Holds = false;
    known.Found.Addresses = {QHostAddress(u"127.0.0.3"_s)};
    connect(transport.get(), &MailTransport::Error, this, [&transport] { transport.reset(); });
    waitFor(transport->Connect(host, server.port(), 0, 0));
    QVERIFY(!transport);
}

QTEST_GUILESS_MAIN(TestAddressRace)
#include "test_addressrace.moc"
