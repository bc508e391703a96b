#include "quillon/mail/smtptls.h"

#include "quillon/mail/tlsclient.h"

#include <QHash>

#include <memory>
#include <openssl/ssl.h>
#include <openssl/x509.h>

namespace quillon {

namespace {

constexpr qsizetype maxSessions = 64;

struct SessionFreer {
    void operator()(SSL_SESSION *session) const { SSL_SESSION_free(session); }
};
struct ContextFreer {
    void operator()(SSL_CTX *context) const { SSL_CTX_free(context); }
};
using Session = std::shared_ptr<SSL_SESSION>;

struct Shared {
    QList<QSslCertificate> Authorities; ///< empty: the system's
    std::unique_ptr<SSL_CTX, ContextFreer>
        Context; ///< made when it is first needed: reading the system's takes a while
    QHash<std::pair<QString, quint16>, Session> Sessions;
};

Shared &shared();

// A server hands its session over when it likes: with TLS 1.2 in the handshake, with 1.3 behind it, and mostly more
// than one. The last is kept; the peer was verified before.
int keepSession(SSL *connection, SSL_SESSION *session)
{
    const auto *const client = static_cast<const TlsClient *>(SSL_get_ex_data(connection, SmtpTls::clientIndex));
    QHash<std::pair<QString, quint16>, Session> &sessions = shared().Sessions;
    if (client == nullptr || SSL_SESSION_is_resumable(session) != 1) {
        return 0;
    }
    if (sessions.size() >= maxSessions && !sessions.contains(client->peer())) {
        sessions.clear();
    }
    sessions.insert(client->peer(), Session(session, SessionFreer()));
    return 1; // it is ours now
}

std::unique_ptr<SSL_CTX, ContextFreer> makeContext(const QList<QSslCertificate> &authorities)
{
    std::unique_ptr<SSL_CTX, ContextFreer> context(SSL_CTX_new(TLS_client_method()));
    if (!context) {
        return nullptr;
    }
    SSL_CTX_set_min_proto_version(context.get(), TLS1_2_VERSION);
    SSL_CTX_set_options(context.get(), SSL_OP_NO_RENEGOTIATION | SSL_OP_NO_COMPRESSION);
    SSL_CTX_set_verify(context.get(), SSL_VERIFY_PEER, nullptr);
    SSL_CTX_set_session_cache_mode(context.get(), SSL_SESS_CACHE_CLIENT | SSL_SESS_CACHE_NO_INTERNAL);
    SSL_CTX_sess_set_new_cb(context.get(), keepSession);
    if (authorities.isEmpty()) {
        // Of a hashed folder only the one that is asked for is read; a file is read whole, once per process.
        SSL_CTX_set_default_verify_paths(context.get());
    }
    for (const QSslCertificate &authority : authorities) {
        const QByteArray octets = authority.toDer();
        const auto *at = reinterpret_cast<const unsigned char *>(octets.constData());
        X509 *const certificate = d2i_X509(nullptr, &at, static_cast<long>(octets.size()));
        if (certificate != nullptr) {
            X509_STORE_add_cert(SSL_CTX_get_cert_store(context.get()), certificate);
            X509_free(certificate);
        }
    }
    return context;
}

Shared &shared()
{
    // Never destroyed: the library cleans up after itself at the process's end, before a static of ours would go.
    static auto *const instance = new Shared;
    return *instance;
}

} // namespace

void SmtpTls::setAuthorities(const QList<QSslCertificate> &authorities)
{
    shared() = Shared{authorities, nullptr, {}};
}

SSL *SmtpTls::newConnection()
{
    Shared &all = shared();
    if (!all.Context) {
        all.Context = makeContext(all.Authorities);
    }
    return all.Context ? SSL_new(all.Context.get()) : nullptr;
}

void SmtpTls::resumeSession(SSL *connection, const std::pair<QString, quint16> &peer)
{
    if (const Session session = shared().Sessions.value(peer)) {
        SSL_set_session(connection, session.get());
    }
}

void SmtpTls::forgetSession(const std::pair<QString, quint16> &peer)
{
    shared().Sessions.remove(peer);
}

} // namespace quillon
