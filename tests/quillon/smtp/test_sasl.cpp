#include "quillon/mail/sasl.h"
#include "quillon/mail/smtplogin.h"

#include <QTest>

#include <gsasl.h>

using namespace quillon;
using namespace Qt::StringLiterals;

class TestSasl : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyMechanismProvesItselfToTheLibrarysServer_data();
    void everyMechanismProvesItselfToTheLibrarysServer();
    void aWrongPasswordIsRefused_data();
    void aWrongPasswordIsRefused();
    void plainAndLoginCarryUtf8();
    void theBestMechanismIsChosen();
    void aServerThatDoesNotProveItselfIsNotBelieved();
    void secretsAreTakenOutOfTexts();
    void aLongFirstWordWaitsForTheServer();
    void aChallengeThatIsNotBase64IsAFault();
};

namespace {

// The server's side, for which the library asks back: the password of the one user there is, or a yes or no.
int askedByServer(Gsasl *, Gsasl_session *session, Gsasl_property property)
{
    switch (property) {
    case GSASL_PASSWORD:
        gsasl_property_set(session, GSASL_PASSWORD, "pässwort");
        return GSASL_OK;
    case GSASL_SERVICE:
        gsasl_property_set(session, GSASL_SERVICE, "smtp");
        return GSASL_OK;
    case GSASL_HOSTNAME:
        gsasl_property_set(session, GSASL_HOSTNAME, "mail.example.org");
        return GSASL_OK;
    case GSASL_REALM:
        gsasl_property_set(session, GSASL_REALM, "example.org");
        return GSASL_OK;
    case GSASL_VALIDATE_SIMPLE: {
        const char *user = gsasl_property_fast(session, GSASL_AUTHID);
        const char *password = gsasl_property_fast(session, GSASL_PASSWORD);
        const bool right = QByteArray(user) == "jürgen" && QByteArray(password) == "pässwort";
        return right ? GSASL_OK : GSASL_AUTHENTICATION_ERROR;
    }
    default:
        return GSASL_NO_CALLBACK;
    }
}

struct Outcome {
    bool Server = false;
    bool Client = false;
};

// Lets client and server talk until one has nothing more to say.
Outcome converse(const QByteArray &mechanism, const QString &password)
{
    Gsasl *context = nullptr;
    Gsasl_session *server = nullptr;
    gsasl_init(&context);
    gsasl_callback_set(context, askedByServer);
    gsasl_server_start(context, mechanism.constData(), &server);
    const auto client = SaslClient::start(mechanism, u"jürgen"_s, password, u"mail.example.org"_s);
    Outcome outcome;
    QByteArray word;
    if (client->speaksFirst()) {
        word = client->step({}).value_or(QByteArray());
    }
    for (int turn = 0; turn < 10; ++turn) {
        char *output = nullptr;
        size_t length = 0;
        const int result = gsasl_step(server, word.constData(), static_cast<size_t>(word.size()), &output, &length);
        const QByteArray challenge(output, output == nullptr ? 0 : static_cast<qsizetype>(length));
        gsasl_free(output);
        outcome.Server = result == GSASL_OK;
        if (result != GSASL_OK && result != GSASL_NEEDS_MORE) {
            break;
        }
        if (result == GSASL_OK && challenge.isEmpty()) {
            break;
        }
        const std::optional<QByteArray> answer = client->step(challenge);
        if (!answer) {
            break;
        }
        word = *answer;
        if (result == GSASL_OK) {
            break;
        }
    }
    outcome.Client = client->isComplete();
    gsasl_finish(server);
    gsasl_done(context);
    return outcome;
}

void addMechanisms()
{
    QTest::addColumn<QByteArray>("mechanism");
    for (const char *name : {"PLAIN", "LOGIN", "CRAM-MD5", "DIGEST-MD5", "SCRAM-SHA-1", "SCRAM-SHA-256"}) {
        QTest::newRow(name) << QByteArray(name);
    }
}

SmtpExtensions offering(const QList<QByteArray> &mechanisms)
{
    SmtpExtensions extensions;
    extensions.Auth = mechanisms;
    return extensions;
}

} // namespace

void TestSasl::everyMechanismProvesItselfToTheLibrarysServer_data()
{
    addMechanisms();
}

void TestSasl::everyMechanismProvesItselfToTheLibrarysServer()
{
    QFETCH(QByteArray, mechanism);
    const Outcome outcome = converse(mechanism, u"pässwort"_s);
    QVERIFY(outcome.Server);
    QVERIFY(outcome.Client);
}

void TestSasl::aWrongPasswordIsRefused_data()
{
    addMechanisms();
}

void TestSasl::aWrongPasswordIsRefused()
{
    QFETCH(QByteArray, mechanism);
    QVERIFY(!converse(mechanism, u"wrong"_s).Server);
}

void TestSasl::plainAndLoginCarryUtf8()
{
    const auto plain = SaslClient::start("PLAIN", u"jürgen"_s, u"пароль"_s, u"h"_s);
    QCOMPARE(plain->step({}), QByteArray("\0j\xc3\xbcrgen\0", 9) + u"пароль"_s.toUtf8());
    const auto login = SaslClient::start("LOGIN", u"jürgen"_s, u"пароль"_s, u"h"_s);
    QCOMPARE(login->step("Username:"), u"jürgen"_s.toUtf8());
    QCOMPARE(login->step("Password:"), u"пароль"_s.toUtf8());
    QVERIFY(login->isComplete());
}

void TestSasl::theBestMechanismIsChosen()
{
    QCOMPARE(SaslClient::choose({"LOGIN", "PLAIN", "CRAM-MD5"}, true), "PLAIN");
    QCOMPARE(SaslClient::choose({"LOGIN", "PLAIN", "CRAM-MD5"}, false), "CRAM-MD5");
    QCOMPARE(SaslClient::choose({"LOGIN", "PLAIN"}, false), "PLAIN");
    QCOMPARE(SaslClient::choose({"LOGIN"}, false), "LOGIN");
    QCOMPARE(SaslClient::choose({"PLAIN", "SCRAM-SHA-1", "SCRAM-SHA-256"}, true), "SCRAM-SHA-256");
    QCOMPARE(SaslClient::choose({"GSSAPI", "NTLM", "XOAUTH2"}, true), QByteArray());
    QCOMPARE(SaslClient::choose({}, true), QByteArray());
}

void TestSasl::aServerThatDoesNotProveItselfIsNotBelieved()
{
    SmtpLogin login(offering({"SCRAM-SHA-256"}), true, u"user"_s, u"secret"_s, u"h"_s);
    QVERIFY(login.command().startsWith("AUTH SCRAM-SHA-256 "));
    QVERIFY(!login.mayEnd());
}

void TestSasl::secretsAreTakenOutOfTexts()
{
    SmtpLogin login(offering({"PLAIN"}), true, u"user"_s, u"hunter2"_s, u"h"_s);
    const QByteArray command = login.command();
    const QByteArray word = command.mid(11);
    QCOMPARE(QByteArray::fromBase64(word), QByteArray("\0user\0hunter2", 13));
    const QString text = login.withoutSecrets(u"535 no hunter2, no %1"_s.arg(QString::fromLatin1(word)));
    QCOMPARE(text, u"535 no ***, no ***"_s);
}

void TestSasl::aLongFirstWordWaitsForTheServer()
{
    SmtpLogin login(offering({"PLAIN"}), true, u"user"_s, QString(600, u'x'), u"h"_s);
    QCOMPARE(login.command(), "AUTH PLAIN");
    const auto word = login.answer({334, {""}});
    QVERIFY(word);
    QCOMPARE(QByteArray::fromBase64(*word), QByteArray("\0user\0", 6) + QByteArray(600, 'x'));
    QVERIFY(!login.answer({334, {""}}));
    QVERIFY(!login.fault().isEmpty());
}

void TestSasl::aChallengeThatIsNotBase64IsAFault()
{
    SmtpLogin cram(offering({"CRAM-MD5"}), true, u"user"_s, u"secret"_s, u"h"_s);
    QCOMPARE(cram.command(), "AUTH CRAM-MD5");
    QVERIFY(!cram.answer({334, {"<not base64>"}}));
    QVERIFY(!cram.fault().isEmpty());
    // Only LOGIN's prompts have no meaning.
    SmtpLogin login(offering({"LOGIN"}), true, u"user"_s, u"secret"_s, u"h"_s);
    QCOMPARE(login.command(), "AUTH LOGIN");
    QCOMPARE(login.answer({334, {"Username:"}}), QByteArray("user").toBase64());
}

QTEST_GUILESS_MAIN(TestSasl)
#include "test_sasl.moc"
