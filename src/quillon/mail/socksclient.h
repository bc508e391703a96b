#pragma once

#include <QByteArray>
#include <QString>

namespace quillon {

/// The client's side of SOCKS5 (RFC 1928, with the login of RFC 1929) between octets that come and octets that go;
/// whoever holds it moves them over the network. A socket library's own offers the login alone as soon as there is a
/// user, which a proxy that wants none refuses, and tells several of the proxy's answers as a host that was not found.
class SocksClient {
public:
    enum class State { Talking, Open, Failed };

    /// To reach @p host, whose name the proxy resolves, on @p port. @p user empty: no login is offered. The words of
    /// the login go in UTF-8, since RFC 1929 names no charset; each has at most 255 octets, and so has the name.
    SocksClient(const QString &host, quint16 port, const QString &user, const QString &password);

    [[nodiscard]] State state() const { return m_state; }

    /// Takes octets as they came from the proxy. After Open the rest of them is the server's, see takeRest().
    void feed(const QByteArray &octets);
    /// What is to go to the proxy now.
    QByteArray takeOutput();
    /// What came behind the proxy's last answer.
    QByteArray takeRest();

    /// Why it Failed, as the end of a sentence.
    [[nodiscard]] QString fault() const { return m_fault; }

private:
    enum class Step { Method, Login, Request };

    /// Acts on one whole answer of the proxy; false while more of it is to come, or when it has Failed.
    bool handleAnswer();
    bool handleMethod();
    bool handleLogin();
    bool handleReply();
    void request();
    bool fail(const QString &fault);

    QByteArray m_host;
    quint16 m_port;
    QByteArray m_user;
    QByteArray m_password;
    State m_state = State::Talking;
    Step m_step = Step::Method;
    QByteArray m_in;
    QByteArray m_out;
    QString m_fault;
};

} // namespace quillon
