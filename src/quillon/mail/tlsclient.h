#pragma once

#include <QByteArray>
#include <QString>

#include <memory>
#include <utility>

using BIO = struct bio_st;
using SSL = struct ssl_st;

namespace quillon {

/// The client's side of TLS (1.2 and 1.3) between octets that come and octets that go; whoever holds it moves them over
/// the network. A socket library's own TLS makes a context and parses a session for each connection anew, which takes
/// longer than sending a mail does; here all connections share one context (see SmtpTls).
class TlsClient {
public:
    enum class State { Handshake, Ready, Ended, Failed };

    /// A connection that is verified to lead to @p host; sessions are kept and resumed for it and @p port.
    TlsClient(const QString &host, quint16 port);
    ~TlsClient();
    TlsClient(const TlsClient &) = delete;
    TlsClient &operator=(const TlsClient &) = delete;

    [[nodiscard]] State state() const { return m_state; }

    /// Begins the handshake, or goes on with it after feed(). A peer that is not verified ends it in Failed.
    void shakeHands();

    /// Takes octets as they came from the network.
    void feed(const QByteArray &octets);
    /// What the peer has said so far, decrypted. Empty while there is nothing; Ended when the peer has closed.
    QByteArray read();

    /// Encrypts @p octets; only when Ready.
    void write(const QByteArray &octets);
    /// Tells the peer that nothing more comes from here (close_notify); only when Ready, or when the peer has Ended.
    void close();
    /// What is to go over the network now.
    QByteArray takeOutput();

    /// Why it Failed, as the end of a sentence.
    [[nodiscard]] QString fault() const { return m_fault; }
    /// The host and port for which sessions are kept.
    [[nodiscard]] const std::pair<QString, quint16> &peer() const { return m_peer; }

private:
    void settle(int result);

    struct Freer {
        void operator()(SSL *ssl) const;
    };

    std::pair<QString, quint16> m_peer;
    std::unique_ptr<SSL, Freer> m_ssl;
    BIO *m_in = nullptr;  // belongs to m_ssl
    BIO *m_out = nullptr; // and so does this
    State m_state = State::Handshake;
    QString m_fault;
};

} // namespace quillon
