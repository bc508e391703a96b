#include "quillon/mail/socksclient.h"

#include <QTest>

using namespace quillon;
using namespace Qt::StringLiterals;
using State = SocksClient::State;

/// The dialogue with a SOCKS5 proxy, octet by octet.
class TestSocksClient : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theMethodsOfferedDependOnTheUser();
    void aProxyMayWantNoLoginAlthoughThereIsAUser();
    void theLoginIsLengthsAndUtf8();
    void theTargetGoesAsNameOrAddress_data();
    void theTargetGoesAsNameOrAddress();
    void whatComesBehindTheAnswerIsTheServers_data();
    void whatComesBehindTheAnswerIsTheServers();
    void everyRefusalIsToldAsItIs_data();
    void everyRefusalIsToldAsItIs();
    void afterAFailureNothingIsSaid();
};

namespace {

QByteArray hex(const char *digits)
{
    return QByteArray::fromHex(digits);
}

/// One that has asked for its target.
SocksClient asking()
{
    SocksClient client(u"h"_s, 25, {}, {});
    client.feed(hex("0500"));
    client.takeOutput();
    return client;
}

} // namespace

void TestSocksClient::theMethodsOfferedDependOnTheUser()
{
    SocksClient without(u"h"_s, 25, {}, u"unused"_s);
    QCOMPARE(without.takeOutput(), hex("050100"));
    QCOMPARE(without.takeOutput(), QByteArray());
    QCOMPARE(SocksClient(u"h"_s, 25, u"u"_s, {}).takeOutput(), hex("05020002"));
}

void TestSocksClient::aProxyMayWantNoLoginAlthoughThereIsAUser()
{
    SocksClient client(u"h"_s, 25, u"user"_s, u"secret"_s);
    client.takeOutput();
    client.feed(hex("0500"));
    QCOMPARE(client.takeOutput(), hex("0501000301680019"));
}

void TestSocksClient::theLoginIsLengthsAndUtf8()
{
    SocksClient client(u"h"_s, 25, u"ü"_s, QString(255, u'p'));
    client.takeOutput();
    client.feed("\x05");
    QCOMPARE(client.takeOutput(), QByteArray());
    client.feed("\x02");
    QCOMPARE(client.takeOutput(), hex("0102c3bcff") + QByteArray(255, 'p'));
    client.feed("\x01");
    QCOMPARE(client.takeOutput(), QByteArray());
    client.feed(QByteArray(1, '\0'));
    QCOMPARE(client.takeOutput(), hex("0501000301680019"));
    QCOMPARE(client.state(), State::Talking);
}

void TestSocksClient::theTargetGoesAsNameOrAddress_data()
{
    QTest::addColumn<QString>("host");
    QTest::addColumn<int>("port");
    QTest::addColumn<QByteArray>("request");
    QTest::newRow("name") << u"mail.x"_s << 587 << hex("0501000306") + "mail.x" + hex("024b");
    QTest::newRow("longest name") << QString(255, u'a') << 65535
                                  << hex("05010003ff") + QByteArray(255, 'a') + hex("ffff");
    QTest::newRow("IPv4") << u"192.0.2.130"_s << 1 << hex("05010001c00002820001");
    QTest::newRow("IPv6") << u"2001:db8::1f"_s << 256 << hex("0501000420010db800000000000000000000001f0100");
}

void TestSocksClient::theTargetGoesAsNameOrAddress()
{
    QFETCH(const QString, host);
    QFETCH(const int, port);
    QFETCH(const QByteArray, request);
    SocksClient client(host, static_cast<quint16>(port), {}, {});
    client.takeOutput();
    client.feed(hex("0500"));
    QCOMPARE(client.takeOutput(), request);
}

void TestSocksClient::whatComesBehindTheAnswerIsTheServers_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::newRow("IPv4") << hex("05000001c0000201") + hex("0019");
    QTest::newRow("IPv6") << hex("05000004") + QByteArray(16, 'x') + hex("0019");
    QTest::newRow("name") << hex("0500000303") + "abc" + hex("0019");
    QTest::newRow("empty name") << hex("0500000300") + hex("0019");
    QTest::newRow("long name") << hex("05000003ff") + QByteArray(255, 'n') + hex("0019");
}

void TestSocksClient::whatComesBehindTheAnswerIsTheServers()
{
    QFETCH(const QByteArray, answer);
    SocksClient whole = asking();
    whole.feed(answer + "220 mail");
    QCOMPARE(whole.state(), State::Open);
    QCOMPARE(whole.takeRest(), QByteArray("220 mail"));
    SocksClient pieces = asking();
    for (qsizetype i = 0; i < answer.size(); ++i) {
        QCOMPARE(pieces.state(), State::Talking);
        pieces.feed(answer.mid(i, 1));
    }
    QCOMPARE(pieces.state(), State::Open);
    QCOMPARE(pieces.takeRest(), QByteArray());
    QCOMPARE(pieces.takeOutput(), QByteArray());
}

void TestSocksClient::everyRefusalIsToldAsItIs_data()
{
    QTest::addColumn<QString>("user");
    QTest::addColumn<QByteArray>("said");
    QTest::addColumn<QString>("fault");
    const QString user = u"user"_s;
    const QString none;
    const QString notSocks = u"the answer of the proxy is not SOCKS5"_s;
    const QString noMethod = u"the proxy accepts neither a user name with a password nor a connection without"_s;
    const QString wantsLogin = u"the proxy wants a user name and a password"_s;
    const QString notAccepted = u"the proxy does not accept the user name or the password"_s;
    QTest::newRow("no method, user") << user << hex("05ff") << noMethod;
    QTest::newRow("no method, none") << none << hex("05ff") << wantsLogin;
    QTest::newRow("a login that was not offered") << none << hex("0502") << wantsLogin;
    QTest::newRow("GSSAPI") << user << hex("0501") << noMethod;
    QTest::newRow("another version") << none << hex("0400") << notSocks;
    QTest::newRow("a web server") << none << QByteArray("HTTP/1.1 400") << notSocks;
    QTest::newRow("wrong password") << user << hex("05020101") << notAccepted;
    QTest::newRow("wrong password, 255") << user << hex("050201ff") << notAccepted;
    QTest::newRow("another version of the reply") << none << hex("05000400") << notSocks;
    QTest::newRow("unknown kind of address") << none << hex("05000500000200") << notSocks;
    const QList<QString> replies = {u"the proxy reports a general failure"_s,
                                    u"the proxy does not allow this connection"_s,
                                    u"the proxy reports that the network cannot be reached"_s,
                                    u"the proxy reports that the host cannot be reached"_s,
                                    u"the proxy reports that the server refused the connection"_s,
                                    u"the proxy reports that the time to live is over"_s,
                                    u"the proxy does not know the command"_s,
                                    u"the proxy does not know this kind of address"_s};
    for (qsizetype i = 0; i < replies.size(); ++i) {
        QTest::addRow("reply %d", static_cast<int>(i) + 1)
            << none << hex("050005") + static_cast<char>(i + 1) << replies.at(i);
    }
    QTest::newRow("reply 9") << none << hex("05000509") << u"the proxy answers with the unknown code 9"_s;
    QTest::newRow("reply 255") << none << hex("050005ff") << u"the proxy answers with the unknown code 255"_s;
}

void TestSocksClient::everyRefusalIsToldAsItIs()
{
    QFETCH(const QString, user);
    QFETCH(const QByteArray, said);
    QFETCH(const QString, fault);
    SocksClient whole(u"h"_s, 25, user, u"secret"_s);
    whole.feed(said);
    QCOMPARE(whole.state(), State::Failed);
    QCOMPARE(whole.fault(), fault);
    SocksClient pieces(u"h"_s, 25, user, u"secret"_s);
    for (const char octet : said) {
        pieces.feed(QByteArray(1, octet));
    }
    QCOMPARE(pieces.fault(), fault);
}

void TestSocksClient::afterAFailureNothingIsSaid()
{
    SocksClient client(u"h"_s, 25, u"user"_s, u"secret"_s);
    client.takeOutput();
    client.feed(hex("05ff"));
    client.feed(hex("0502") + hex("0100"));
    QCOMPARE(client.state(), State::Failed);
    QCOMPARE(client.takeOutput(), QByteArray());
}

QTEST_GUILESS_MAIN(TestSocksClient)
#include "test_socksclient.moc"
