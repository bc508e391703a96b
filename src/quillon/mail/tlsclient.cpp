#include "quillon/mail/tlsclient.h"

#include "quillon/mail/mailtexts.h"
#include "quillon/mail/smtpreply.h"
#include "quillon/mail/smtptls.h"

#include <QHostAddress>

#include <array>
#include <openssl/err.h>
#include <openssl/ssl.h>
#include <openssl/x509v3.h>

namespace quillon {

namespace {

constexpr size_t recordSize = 16 * 1024; // the most that one record of TLS holds

// The first fault that the library noted, which is the one at the root of the others.
QString libraryFault()
{
    const unsigned long code = ERR_get_error();
    ERR_clear_error();
    const char *const reason = code == 0 ? nullptr : ERR_reason_error_string(code);
    return reason == nullptr ? say(mailtexts::tlsFailed) : printableText(QByteArray(reason));
}

} // namespace

void TlsClient::Freer::operator()(SSL *ssl) const
{
    // A connection that is cut says nothing against its session, which the library would otherwise drop.
    SSL_set_shutdown(ssl, SSL_SENT_SHUTDOWN | SSL_RECEIVED_SHUTDOWN);
    SSL_free(ssl);
}

TlsClient::TlsClient(const QString &host, quint16 port) : m_peer(host.toLower(), port)
{
    ERR_clear_error();
    m_ssl.reset(SmtpTls::newConnection());
    if (!m_ssl) {
        m_fault = libraryFault();
        m_state = State::Failed;
        return;
    }
    m_in = BIO_new(BIO_s_mem());
    m_out = BIO_new(BIO_s_mem());
    SSL_set_bio(m_ssl.get(), m_in, m_out);
    SSL_set_connect_state(m_ssl.get());
    SSL_set_ex_data(m_ssl.get(), SmtpTls::clientIndex, this);
    // Whom the certificate must name (RFC 9525); only a name is told in the clear (RFC 6066, 3).
    QByteArray name = m_peer.first.toLatin1();
    bool named = false;
    if (QHostAddress(m_peer.first).isNull()) {
        SSL_set_hostflags(m_ssl.get(), X509_CHECK_FLAG_NO_PARTIAL_WILDCARDS);
        named = SSL_set1_host(m_ssl.get(), name.constData()) == 1 &&
                SSL_ctrl(m_ssl.get(), SSL_CTRL_SET_TLSEXT_HOSTNAME, TLSEXT_NAMETYPE_host_name, name.data()) == 1;
    } else {
        named = X509_VERIFY_PARAM_set1_ip_asc(SSL_get0_param(m_ssl.get()), name.constData()) == 1;
    }
    if (!named) {
        m_fault = say(mailtexts::hostNotVerified, host);
        m_state = State::Failed;
        return;
    }
    SmtpTls::resumeSession(m_ssl.get(), m_peer);
}

TlsClient::~TlsClient() = default;

void TlsClient::shakeHands()
{
    if (m_state != State::Handshake) {
        return;
    }
    ERR_clear_error();
    const int result = SSL_do_handshake(m_ssl.get());
    if (result == 1) {
        m_state = State::Ready;
        return;
    }
    settle(result);
    if (m_state == State::Ended) {
        m_state = State::Failed;
        m_fault = say(mailtexts::handshakeEnded);
    }
    if (m_state == State::Failed) {
        SmtpTls::forgetSession(m_peer);
    }
}

void TlsClient::feed(const QByteArray &octets)
{
    if (m_in != nullptr) {
        BIO_write(m_in, octets.constData(), static_cast<int>(octets.size()));
    }
}

QByteArray TlsClient::read()
{
    QByteArray text;
    std::array<char, recordSize> record; // NOLINT(cppcoreguidelines-pro-type-member-init): filled by the library
    while (m_state == State::Ready) {
        ERR_clear_error();
        const int result = SSL_read(m_ssl.get(), record.data(), static_cast<int>(record.size()));
        if (result <= 0) {
            settle(result);
            break;
        }
        text.append(record.data(), result);
    }
    return text;
}

void TlsClient::write(const QByteArray &octets)
{
    if (m_state != State::Ready || octets.isEmpty()) {
        return;
    }
    ERR_clear_error();
    const int result = SSL_write(m_ssl.get(), octets.constData(), static_cast<int>(octets.size()));
    if (result <= 0) {
        settle(result);
    }
}

void TlsClient::close()
{
    if (m_state == State::Ready || m_state == State::Ended) {
        ERR_clear_error();
        SSL_shutdown(m_ssl.get()); // the peer's own end of it is not waited for
        ERR_clear_error();
        m_state = State::Ended;
    }
}

QByteArray TlsClient::takeOutput()
{
    if (m_out == nullptr) {
        return {};
    }
    QByteArray octets(static_cast<qsizetype>(BIO_ctrl_pending(m_out)), Qt::Uninitialized);
    if (!octets.isEmpty()) {
        BIO_read(m_out, octets.data(), static_cast<int>(octets.size()));
    }
    return octets;
}

// What a call of the library that did not succeed leads to: often only to waiting for more.
void TlsClient::settle(int result)
{
    switch (SSL_get_error(m_ssl.get(), result)) {
    case SSL_ERROR_WANT_READ:
    case SSL_ERROR_WANT_WRITE:
        return;
    case SSL_ERROR_ZERO_RETURN:
        m_state = State::Ended;
        return;
    default:
        break;
    }
    m_state = State::Failed;
    const long verified = SSL_get_verify_result(m_ssl.get());
    if (verified == X509_V_OK) {
        m_fault = libraryFault();
    } else if (verified == X509_V_ERR_HOSTNAME_MISMATCH || verified == X509_V_ERR_IP_ADDRESS_MISMATCH) {
        ERR_clear_error();
        m_fault = say(mailtexts::certificateOfOther);
    } else {
        ERR_clear_error();
        m_fault = say(mailtexts::certificateRejected, QString::fromUtf8(X509_verify_cert_error_string(verified)));
    }
}

} // namespace quillon
