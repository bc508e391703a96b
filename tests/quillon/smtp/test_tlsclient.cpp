#include "quillon/mail/smtptls.h"
#include "quillon/smtp/memoryserver.h"
#include "support/certificates.h"

#include <QScopeGuard>
#include <QTemporaryFile>
#include <QTest>

using namespace quillon;
using namespace Qt::StringLiterals;

/// The client's side of TLS alone, against the library's server in memory: trust, names, sessions, the end.
class TestTlsClient : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() { SmtpTls::setAuthorities({m_certificates.authority()}); }
    void cleanup() { SmtpTls::setAuthorities({}); }

    void textGoesBothWays_data();
    void textGoesBothWays();
    void nothingIsEncryptedBeforeTheHandshakeIsOver();
    void aPeerIsVerified_data();
    void aPeerIsVerified();
    void onlyAWholeLabelStandsForAnyName_data();
    void onlyAWholeLabelStandsForAnyName();
    void theSystemsAuthoritiesCountWithoutOthers();
    void anOldVersionIsNoTls();
    void garbageInTheHandshakeFails();
    void garbageBehindTheHandshakeFails();
    void theEndIsSeen();
    void theEndIsToldAndNothingMoreIsSaid();
    void anEndWithinTheHandshakeIsAFault();
    void onlyANameIsToldInTheClear();
    void aSessionIsKeptForItsHostAndPort();
    void aSessionWhoseHandshakeFailedIsForgotten();
    void newTrustForgetsAllSessions();
    void sessionsAreKeptForAtMostSixtyFourPeers();

private:
    std::unique_ptr<MemoryServer> server(int mostVersion = TLS1_3_VERSION) const
    {
        return std::make_unique<MemoryServer>(m_certificates.localhostFile(), m_certificates.localhostKeyFile(),
                                              mostVersion);
    }

    testsupport::Certificates m_certificates;
};

namespace {

// Whether the next connection to that host and port was a session taken up again.
bool resumes(MemoryServer &server, const QString &host, quint16 port)
{
    server.begin();
    TlsClient client(host, port);
    server.converse(client);
    if (client.state() != TlsClient::State::Ready) {
        qWarning("no connection: %s", qPrintable(client.fault()));
    }
    return server.isResumed();
}

} // namespace

void TestTlsClient::initTestCase()
{
    QVERIFY2(m_certificates.isValid(), qPrintable(m_certificates.fault()));
}

void TestTlsClient::textGoesBothWays_data()
{
    QTest::addColumn<int>("version");
    QTest::newRow("TLS 1.2") << TLS1_2_VERSION;
    QTest::newRow("TLS 1.3") << TLS1_3_VERSION;
}

void TestTlsClient::textGoesBothWays()
{
    QFETCH(int, version);
    const auto peer = server(version);
    peer->begin();
    TlsClient client(u"localhost"_s, 465);
    QCOMPARE(client.state(), TlsClient::State::Handshake);
    peer->converse(client);
    QCOMPARE(client.state(), TlsClient::State::Ready);
    QCOMPARE(client.fault(), QString());
    // More than one record of 16 KB each, at once.
    const QByteArray large = QByteArray("0123456789abcdef").repeated(5'000);
    client.write(large);
    client.write({});
    peer->say(large + "end");
    peer->converse(client);
    QCOMPARE(peer->Heard, large);
    QCOMPARE(peer->Told, large + "end");
    QVERIFY(client.read().isEmpty());
    QCOMPARE(client.state(), TlsClient::State::Ready);
}

void TestTlsClient::nothingIsEncryptedBeforeTheHandshakeIsOver()
{
    TlsClient client(u"localhost"_s, 465);
    client.write("early");
    QCOMPARE(client.takeOutput(), QByteArray());
    QCOMPARE(client.read(), QByteArray());
    QCOMPARE(client.state(), TlsClient::State::Handshake);
    client.shakeHands();
    QVERIFY(!client.takeOutput().isEmpty());
    QCOMPARE(client.takeOutput(), QByteArray());
}

void TestTlsClient::aPeerIsVerified_data()
{
    QTest::addColumn<QString>("host");
    QTest::addColumn<bool>("trusted");
    QTest::addColumn<QString>("fault");
    const QString other = u"the server's certificate is for another host name"_s;
    QTest::newRow("its name") << u"localhost"_s << true << QString();
    QTest::newRow("its name in capitals") << u"LocalHost"_s << true << QString();
    QTest::newRow("its address") << u"127.0.0.1"_s << true << QString();
    QTest::newRow("another name") << u"elsewhere.example"_s << true << other;
    QTest::newRow("a name that begins alike") << u"localhost.example"_s << true << other;
    QTest::newRow("a name below it") << u"a.localhost"_s << true << other;
    QTest::newRow("another address") << u"127.0.0.2"_s << true << other;
    QTest::newRow("unknown authority") << u"localhost"_s << false
                                       << u"the server's certificate is not accepted (unable to get local issuer "
                                          "certificate)"_s;
}

void TestTlsClient::aPeerIsVerified()
{
    QFETCH(QString, host);
    QFETCH(bool, trusted);
    QFETCH(QString, fault);
    if (!trusted) {
        SmtpTls::setAuthorities({});
    }
    const auto peer = server();
    peer->begin();
    TlsClient client(host, 465);
    peer->converse(client);
    QCOMPARE(client.fault(), fault);
    QCOMPARE(client.state(), fault.isEmpty() ? TlsClient::State::Ready : TlsClient::State::Failed);
    client.write("secret");
    peer->converse(client);
    QCOMPARE(peer->Heard, fault.isEmpty() ? QByteArray("secret") : QByteArray());
}

void TestTlsClient::onlyAWholeLabelStandsForAnyName_data()
{
    QTest::addColumn<QString>("host");
    QTest::addColumn<bool>("verified");
    QTest::newRow("any label") << u"mail.wild.example"_s << true;
    QTest::newRow("two labels") << u"a.mail.wild.example"_s << false;
    QTest::newRow("no label") << u"wild.example"_s << false;
    QTest::newRow("begin of a label") << u"party.some.example"_s << false;
}

void TestTlsClient::onlyAWholeLabelStandsForAnyName()
{
    // RFC 9525, 6.3: a wildcard is the whole of the leftmost label or nothing.
    QFETCH(QString, host);
    QFETCH(bool, verified);
    MemoryServer peer(m_certificates.elsewhereFile(), m_certificates.elsewhereKeyFile());
    peer.begin();
    TlsClient client(host, 465);
    peer.converse(client);
    QCOMPARE(client.state(), verified ? TlsClient::State::Ready : TlsClient::State::Failed);
}

void TestTlsClient::theSystemsAuthoritiesCountWithoutOthers()
{
    QTemporaryFile file;
    QVERIFY(file.open() && file.write(m_certificates.authority().toPem()) > 0 && file.flush());
    // By this name the library finds the system's file; that of the test's process is this one for the moment.
    const QByteArray before = qgetenv("SSL_CERT_FILE");
    qputenv("SSL_CERT_FILE", file.fileName().toLocal8Bit());
    const auto restore =
        qScopeGuard([&before] { before.isNull() ? qunsetenv("SSL_CERT_FILE") : qputenv("SSL_CERT_FILE", before); });
    SmtpTls::setAuthorities({});
    const auto peer = server();
    peer->begin();
    TlsClient client(u"localhost"_s, 465);
    peer->converse(client);
    QCOMPARE(client.fault(), QString());
    QCOMPARE(client.state(), TlsClient::State::Ready);
}

void TestTlsClient::anOldVersionIsNoTls()
{
    const auto peer = server(TLS1_1_VERSION);
    peer->begin();
    TlsClient client(u"localhost"_s, 465);
    peer->converse(client);
    QCOMPARE(client.state(), TlsClient::State::Failed);
    QVERIFY(!client.fault().isEmpty());
    // Whatever the system's settings of the library allow.
    const std::unique_ptr<SSL, decltype(&SSL_free)> connection(SmtpTls::newConnection(), SSL_free);
    QCOMPARE(static_cast<int>(SSL_get_min_proto_version(connection.get())), TLS1_2_VERSION);
}

void TestTlsClient::garbageInTheHandshakeFails()
{
    TlsClient client(u"localhost"_s, 465);
    client.shakeHands();
    client.feed("220 mail.example.org\r\n");
    client.shakeHands();
    QCOMPARE(client.state(), TlsClient::State::Failed);
    QVERIFY2(client.fault().contains(u"wrong version number"_s), qPrintable(client.fault()));
    client.shakeHands();
    QCOMPARE(client.state(), TlsClient::State::Failed);
}

void TestTlsClient::garbageBehindTheHandshakeFails()
{
    const auto peer = server();
    peer->begin();
    TlsClient client(u"localhost"_s, 465);
    peer->converse(client);
    client.feed("250 in the clear\r\n");
    QCOMPARE(client.read(), QByteArray());
    QCOMPARE(client.state(), TlsClient::State::Failed);
    QVERIFY(!client.fault().isEmpty());
}

void TestTlsClient::theEndIsSeen()
{
    const auto peer = server();
    peer->begin();
    TlsClient client(u"localhost"_s, 465);
    peer->converse(client);
    peer->say("221 bye\r\n");
    peer->end();
    peer->converse(client);
    QCOMPARE(peer->Told, "221 bye\r\n");
    QCOMPARE(client.state(), TlsClient::State::Ended);
    QCOMPARE(client.fault(), QString());
}

void TestTlsClient::theEndIsToldAndNothingMoreIsSaid()
{
    const auto peer = server();
    peer->begin();
    TlsClient client(u"localhost"_s, 465);
    client.close(); // before the handshake there is nothing to end
    QCOMPARE(client.state(), TlsClient::State::Handshake);
    peer->converse(client);
    QVERIFY(!peer->heardEnd());
    client.close();
    QCOMPARE(client.state(), TlsClient::State::Ended);
    client.write("too late");
    peer->converse(client);
    QVERIFY(peer->heardEnd());
    QCOMPARE(peer->Heard, QByteArray());
    // It says nothing against the session.
    QVERIFY(resumes(*peer, u"localhost"_s, 465));
}

void TestTlsClient::anEndWithinTheHandshakeIsAFault()
{
    TlsClient client(u"localhost"_s, 465);
    client.shakeHands();
    client.feed(QByteArray::fromHex("15030300020100")); // an alert, "close notify"
    client.shakeHands();
    QCOMPARE(client.state(), TlsClient::State::Failed);
    QVERIFY(!client.fault().isEmpty());
}

void TestTlsClient::onlyANameIsToldInTheClear()
{
    for (const QString &host : {u"localhost"_s, u"127.0.0.1"_s}) {
        const auto peer = server(TLS1_2_VERSION);
        peer->begin();
        TlsClient client(host, 465);
        peer->converse(client);
        QCOMPARE(client.state(), TlsClient::State::Ready);
        QCOMPARE(peer->askedName(), host == u"localhost" ? QByteArray("localhost") : QByteArray());
    }
}

void TestTlsClient::aSessionIsKeptForItsHostAndPort()
{
    for (const int version : {TLS1_2_VERSION, TLS1_3_VERSION}) {
        SmtpTls::setAuthorities({m_certificates.authority()});
        const auto peer = server(version);
        QVERIFY(!resumes(*peer, u"localhost"_s, 465));
        QVERIFY(resumes(*peer, u"localhost"_s, 465));
        QVERIFY(resumes(*peer, u"LOCALHOST"_s, 465));
        QVERIFY(!resumes(*peer, u"localhost"_s, 587));
        QVERIFY(!resumes(*peer, u"127.0.0.1"_s, 465));
        QVERIFY(resumes(*peer, u"localhost"_s, 465));
    }
}

void TestTlsClient::aSessionWhoseHandshakeFailedIsForgotten()
{
    // A server that cannot bear the session would otherwise be asked to take it up again for ever.
    const auto peer = server();
    QVERIFY(!resumes(*peer, u"localhost"_s, 465));
    QVERIFY(!resumes(*peer, u"localhost"_s, 587));
    {
        TlsClient client(u"LocalHost"_s, 465);
        client.shakeHands();
        client.feed("garbage\r\n");
        client.shakeHands();
        QCOMPARE(client.state(), TlsClient::State::Failed);
    }
    QVERIFY(!resumes(*peer, u"localhost"_s, 465));
    QVERIFY(resumes(*peer, u"localhost"_s, 587));
}

void TestTlsClient::newTrustForgetsAllSessions()
{
    const auto peer = server();
    QVERIFY(!resumes(*peer, u"localhost"_s, 465));
    SmtpTls::setAuthorities({m_certificates.authority()});
    QVERIFY(!resumes(*peer, u"localhost"_s, 465));
}

void TestTlsClient::sessionsAreKeptForAtMostSixtyFourPeers()
{
    const auto peer = server();
    for (quint16 port = 1; port <= 64; ++port) {
        QVERIFY(!resumes(*peer, u"localhost"_s, port));
    }
    QVERIFY(resumes(*peer, u"localhost"_s, 1));
    QVERIFY(resumes(*peer, u"localhost"_s, 64));
    QVERIFY(!resumes(*peer, u"localhost"_s, 65));
    QVERIFY(!resumes(*peer, u"localhost"_s, 64));
    QVERIFY(resumes(*peer, u"localhost"_s, 65));
}

QTEST_GUILESS_MAIN(TestTlsClient)
#include "test_tlsclient.moc"
