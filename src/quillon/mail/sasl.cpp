#include "quillon/mail/sasl.h"

#include <cstdlib>
#include <gsasl.h>
#include <utility>

namespace quillon {

namespace {

// One library context for the process; it holds no secrets.
class GsaslContext {
public:
    GsaslContext()
    {
        if (gsasl_init(&m_context) != GSASL_OK) {
            m_context = nullptr;
        }
    }
    ~GsaslContext()
    {
        if (m_context != nullptr) {
            gsasl_done(m_context);
        }
    }
    GsaslContext(const GsaslContext &) = delete;
    GsaslContext &operator=(const GsaslContext &) = delete;

    static Gsasl *get()
    {
        static const GsaslContext context;
        return context.m_context;
    }

private:
    Gsasl *m_context = nullptr;
};

} // namespace

QByteArray SaslClient::choose(const QList<QByteArray> &offered, bool encrypted, const QString &user)
{
    // SCRAM proves the server too. Below it: inside TLS nobody overhears PLAIN, and it lets the server keep no plain
    // passwords, which the MD5 mechanisms need; in the clear these are better than showing the password.
    static const QList<QByteArray> inTls = {"SCRAM-SHA-256", "SCRAM-SHA-1", "PLAIN", "LOGIN", "DIGEST-MD5", "CRAM-MD5"};
    static const QList<QByteArray> inClear = {"SCRAM-SHA-256", "SCRAM-SHA-1", "DIGEST-MD5",
                                              "CRAM-MD5",      "PLAIN",       "LOGIN"};
    static const QByteArray digest = "DIGEST-MD5";
    QList<QByteArray> order = encrypted ? inTls : inClear;
    if (user.toUtf8().size() != user.size()) {
        order.removeOne(digest);
        order.append(digest);
    }
    for (const QByteArray &mechanism : std::as_const(order)) {
        if (offered.contains(mechanism) && gsasl_client_support_p(GsaslContext::get(), mechanism.constData()) != 0) {
            return mechanism;
        }
    }
    return {};
}

std::unique_ptr<SaslClient> SaslClient::start(const QByteArray &mechanism, const QString &user, const QString &password,
                                              const QString &host)
{
    Gsasl_session *session = nullptr;
    if (GsaslContext::get() == nullptr ||
        gsasl_client_start(GsaslContext::get(), mechanism.constData(), &session) != GSASL_OK) {
        return nullptr;
    }
    std::unique_ptr<SaslClient> client(new SaslClient);
    client->m_session.reset(session);
    client->m_speaksFirst = mechanism == "PLAIN" || mechanism.startsWith("SCRAM-");
    gsasl_property_set(session, GSASL_AUTHID, user.toUtf8().constData());
    gsasl_property_set(session, GSASL_PASSWORD, password.toUtf8().constData());
    gsasl_property_set(session, GSASL_SERVICE, "smtp");
    gsasl_property_set(session, GSASL_HOSTNAME, host.toUtf8().constData());
    return client;
}

std::optional<QByteArray> SaslClient::step(const QByteArray &challenge)
{
    if (m_complete) {
        return std::nullopt;
    }
    char *output = nullptr;
    size_t length = 0;
    const int result =
        gsasl_step(m_session.get(), challenge.constData(), static_cast<size_t>(challenge.size()), &output, &length);
    QByteArray answer;
    if (output != nullptr) {
        answer = QByteArray(output, static_cast<qsizetype>(length));
        std::free(output);
    }
    if (result != GSASL_OK && result != GSASL_NEEDS_MORE) {
        return std::nullopt;
    }
    m_complete = result == GSASL_OK;
    return answer;
}

void SaslClient::Finish::operator()(Gsasl_session *session) const
{
    gsasl_finish(session);
}

} // namespace quillon
