#include "quillon/mail/socksclient.h"

#include "quillon/mail/mailtexts.h"

#include <QHostAddress>
#include <QtEndian>

#include <array>
#include <utility>

namespace quillon {

namespace {

constexpr char version = 5;
constexpr char loginVersion = 1; // RFC 1929
constexpr char noLogin = 0;
constexpr char withLogin = 2;
constexpr char connectCommand = 1;
constexpr uchar ipv4 = 1;
constexpr uchar name = 3;
constexpr uchar ipv6 = 4;
constexpr qsizetype replyHead = 4; // version, reply, a blank one, the kind of the address
constexpr qsizetype portOctets = 2;

// What each reply means, from 1 on (RFC 1928, 6).
constexpr std::array<const OwnText *, 8> replies = {
    &mailtexts::proxyGeneralFailure,  &mailtexts::proxyNotAllowed,    &mailtexts::proxyNetworkUnreachable,
    &mailtexts::proxyHostUnreachable, &mailtexts::proxyServerRefused, &mailtexts::proxyTimeToLive,
    &mailtexts::proxyNoCommand,       &mailtexts::proxyNoAddressType};

QByteArray withLength(const QByteArray &octets)
{
    return static_cast<char>(octets.size()) + octets;
}

} // namespace

SocksClient::SocksClient(const QString &host, quint16 port, const QString &user, const QString &password)
    : m_host(host.toUtf8()), m_port(port), m_user(user.toUtf8()), m_password(password.toUtf8())
{
    QByteArray methods(1, noLogin);
    if (!m_user.isEmpty()) {
        methods += withLogin;
    }
    m_out = version + withLength(methods);
}

void SocksClient::feed(const QByteArray &octets)
{
    m_in += octets;
    while (m_state == State::Talking && handleAnswer()) {
    }
}

QByteArray SocksClient::takeOutput()
{
    return std::exchange(m_out, QByteArray());
}

QByteArray SocksClient::takeRest()
{
    return std::exchange(m_in, QByteArray());
}

bool SocksClient::handleAnswer()
{
    if (m_in.size() < 2) {
        return false;
    }
    switch (m_step) {
    case Step::Method:
        return handleMethod();
    case Step::Login:
        return handleLogin();
    case Step::Request:
        break;
    }
    return handleReply();
}

bool SocksClient::handleMethod()
{
    if (m_in.at(0) != version) {
        return fail(say(mailtexts::proxyNotSocks));
    }
    const char method = m_in.at(1);
    m_in.remove(0, 2);
    if (method == noLogin) {
        request();
        return true;
    }
    if (method != withLogin || m_user.isEmpty()) {
        return fail(say(m_user.isEmpty() ? mailtexts::proxyWantsLogin : mailtexts::proxyNoMethod));
    }
    m_step = Step::Login;
    m_out += loginVersion + withLength(m_user) + withLength(m_password);
    return true;
}

bool SocksClient::handleLogin()
{
    if (m_in.at(1) != 0) {
        return fail(say(mailtexts::proxyLoginRefused));
    }
    m_in.remove(0, 2);
    request();
    return true;
}

void SocksClient::request()
{
    m_step = Step::Request;
    m_out += QByteArray{1, version} + connectCommand + '\0';
    const QHostAddress address(QString::fromUtf8(m_host));
    if (address.protocol() == QAbstractSocket::IPv4Protocol) {
        std::array<char, 4> octets{};
        qToBigEndian(address.toIPv4Address(), octets.data());
        m_out += static_cast<char>(ipv4) + QByteArray(octets.data(), octets.size());
    } else if (address.protocol() == QAbstractSocket::IPv6Protocol) {
        const Q_IPV6ADDR octets = address.toIPv6Address();
        m_out += static_cast<char>(ipv6) + QByteArray(reinterpret_cast<const char *>(&octets), sizeof octets);
    } else {
        m_out += static_cast<char>(name) + withLength(m_host);
    }
    std::array<char, portOctets> port{};
    qToBigEndian(m_port, port.data());
    m_out += QByteArray(port.data(), port.size());
}

bool SocksClient::handleReply()
{
    if (m_in.at(0) != version) {
        return fail(say(mailtexts::proxyNotSocks));
    }
    const auto reply = static_cast<uchar>(m_in.at(1));
    if (reply > replies.size()) {
        return fail(say(mailtexts::proxyUnknownReply, QString::number(reply)));
    }
    if (reply != 0) {
        return fail(say(*replies[reply - 1U]));
    }
    if (m_in.size() <= replyHead) {
        return false;
    }
    qsizetype address = 0;
    switch (static_cast<uchar>(m_in.at(replyHead - 1))) {
    case ipv4:
        address = 4;
        break;
    case ipv6:
        address = 16;
        break;
    case name:
        address = 1 + static_cast<uchar>(m_in.at(replyHead));
        break;
    default:
        return fail(say(mailtexts::proxyNotSocks));
    }
    const qsizetype whole = replyHead + address + portOctets;
    if (m_in.size() < whole) {
        return false;
    }
    m_in.remove(0, whole);
    m_state = State::Open;
    return false;
}

bool SocksClient::fail(const QString &fault)
{
    m_fault = fault;
    m_state = State::Failed;
    return false;
}

} // namespace quillon
