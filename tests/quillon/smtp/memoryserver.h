#pragma once

#include "quillon/mail/tlsclient.h"

#include <QByteArray>
#include <QString>

#include <array>
#include <memory>
#include <openssl/err.h>
#include <openssl/ssl.h>

/// A TLS server without a network. It makes many connections, so that it can take up a session again.
class MemoryServer {
public:
    MemoryServer(const QString &certificateFile, const QString &keyFile, int mostVersion = TLS1_3_VERSION)
        : m_context(SSL_CTX_new(TLS_server_method()), SSL_CTX_free)
    {
        SSL_CTX_use_certificate_file(m_context.get(), qPrintable(certificateFile), SSL_FILETYPE_PEM);
        SSL_CTX_use_PrivateKey_file(m_context.get(), qPrintable(keyFile), SSL_FILETYPE_PEM);
        SSL_CTX_set_security_level(m_context.get(), mostVersion < TLS1_2_VERSION ? 0 : 1);
        SSL_CTX_set_max_proto_version(m_context.get(), mostVersion);
    }

    /// Waits for the next client.
    void begin()
    {
        m_ssl.reset(SSL_new(m_context.get()));
        m_in = BIO_new(BIO_s_mem());
        m_out = BIO_new(BIO_s_mem());
        SSL_set_bio(m_ssl.get(), m_in, m_out);
        SSL_set_accept_state(m_ssl.get());
    }

    /// Lets both talk until neither has anything to say; text of the client's is kept in Heard.
    void converse(quillon::TlsClient &client)
    {
        for (bool talked = true; talked;) {
            client.shakeHands();
            const QByteArray toServer = client.takeOutput();
            BIO_write(m_in, toServer.constData(), static_cast<int>(toServer.size()));
            if (SSL_do_handshake(m_ssl.get()) == 1) {
                std::array<char, 4096> octets{};
                for (int got = 0; (got = SSL_read(m_ssl.get(), octets.data(), int(octets.size()))) > 0;) {
                    Heard.append(octets.data(), got);
                }
            }
            ERR_clear_error();
            QByteArray toClient(static_cast<qsizetype>(BIO_ctrl_pending(m_out)), Qt::Uninitialized);
            BIO_read(m_out, toClient.data(), static_cast<int>(toClient.size()));
            client.feed(toClient);
            Told += client.read();
            talked = !toServer.isEmpty() || !toClient.isEmpty();
        }
    }

    void say(const QByteArray &text) { SSL_write(m_ssl.get(), text.constData(), static_cast<int>(text.size())); }
    void end() { SSL_shutdown(m_ssl.get()); }
    /// Whether the client has told its end.
    [[nodiscard]] bool heardEnd() const { return (SSL_get_shutdown(m_ssl.get()) & SSL_RECEIVED_SHUTDOWN) != 0; }
    [[nodiscard]] bool isResumed() const { return SSL_session_reused(m_ssl.get()) == 1; }
    [[nodiscard]] QByteArray askedName() const { return SSL_get_servername(m_ssl.get(), TLSEXT_NAMETYPE_host_name); }

    QByteArray Heard; ///< by the server
    QByteArray Told;  ///< to the client, as it understood it

private:
    struct Freer {
        void operator()(SSL *ssl) const
        {
            SSL_set_shutdown(ssl, SSL_SENT_SHUTDOWN | SSL_RECEIVED_SHUTDOWN);
            SSL_free(ssl);
        }
    };

    std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> m_context;
    std::unique_ptr<SSL, Freer> m_ssl;
    BIO *m_in = nullptr;
    BIO *m_out = nullptr;
};
