#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <memory>
#include <optional>

struct Gsasl_session;

namespace quillon {

/// The client's side of one SASL exchange (RFC 4422) by libgsasl. Works on plain octets, not on Base64.
class SaslClient {
public:
    /// The best mechanism of @p offered (upper case) that we speak, empty if there is none. On a link that is not
    /// @p encrypted those come first that do not show the password. For a @p user beyond ASCII DIGEST-MD5 is the last:
    /// servers differ in the octets that they take of such a name (RFC 2831, 2.1.2.1, asks for Latin-1 where it fits).
    [[nodiscard]] static QByteArray choose(const QList<QByteArray> &offered, bool encrypted, const QString &user = {});

    /// Nothing if the library does not know @p mechanism. @p host is the server's name as the user gave it.
    static std::unique_ptr<SaslClient> start(const QByteArray &mechanism, const QString &user, const QString &password,
                                             const QString &host);

    /// Whether the first word is the client's, so that it can go along with the AUTH command (RFC 4954, 4).
    [[nodiscard]] bool speaksFirst() const { return m_speaksFirst; }

    /// The answer to @p challenge (empty for the client's first word). Nothing when the exchange cannot go on:
    /// the challenge makes no sense, the server has not proved itself, or the user's words cannot be prepared.
    std::optional<QByteArray> step(const QByteArray &challenge);

    /// Whether the mechanism has nothing more to say and, where it is mutual, the server has proved itself.
    [[nodiscard]] bool isComplete() const { return m_complete; }

private:
    struct Finish {
        void operator()(Gsasl_session *session) const;
    };

    SaslClient() = default;

    std::unique_ptr<Gsasl_session, Finish> m_session;
    bool m_speaksFirst = false;
    bool m_complete = false;
};

} // namespace quillon
