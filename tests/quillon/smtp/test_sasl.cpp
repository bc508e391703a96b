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
    void theServiceThatIsAskedForIsNamed();
    void aWrongPasswordIsRefused_data();
    void aWrongPasswordIsRefused();
    void plainAndLoginCarryUtf8();
    void theBestMechanismIsChosen();
    void theOrderOfMechanismsDependsOnEncryption();
    void digestMd5IsTheLastForAUserBeyondAscii();
    void aLoginAsksWhetherTheLinkIsEncrypted();
    void aLoginWithoutAMechanismSaysWhy();
    void aUserWhoCannotBePreparedIsAFault();
    void aServerThatDoesNotProveItselfIsNotBelieved();
    void secretsAreTakenOutOfTexts();
    void theLongestSecretIsTakenOutFirst();
    void whatIsNoSecretStays();
    void aLongFirstWordWaitsForTheServer();
    void aCommandHasAtMost510Octets();
    void theLastLineOfAChallengeCounts();
    void aLoginMayEndOnlyBehindItsLastWord();
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

void TestSasl::theServiceThatIsAskedForIsNamed()
{
    const auto client = SaslClient::start("DIGEST-MD5", u"user"_s, u"password"_s, u"mail.example.org"_s);
    QVERIFY(client && !client->speaksFirst());
    const auto answer = client->step("realm=\"r\",nonce=\"n\",qop=\"auth\",charset=utf-8,algorithm=md5-sess");
    QVERIFY(answer);
    QVERIFY2(answer->contains("digest-uri=\"smtp/mail.example.org\""), answer->constData());
    QVERIFY2(answer->contains("username=\"user\""), answer->constData());
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

void TestSasl::theOrderOfMechanismsDependsOnEncryption()
{
    const auto order = [](bool encrypted) {
        QList<QByteArray> left = {"LOGIN", "CRAM-MD5",   "XOAUTH2",      "SCRAM-SHA-1",
                                  "PLAIN", "DIGEST-MD5", "SCRAM-SHA-256"};
        QList<QByteArray> chosen;
        for (QByteArray next; !(next = SaslClient::choose(left, encrypted)).isEmpty(); left.removeAll(next)) {
            chosen += next;
        }
        return chosen;
    };
    QCOMPARE(order(true),
             (QList<QByteArray>{"SCRAM-SHA-256", "SCRAM-SHA-1", "PLAIN", "LOGIN", "DIGEST-MD5", "CRAM-MD5"}));
    QCOMPARE(order(false),
             (QList<QByteArray>{"SCRAM-SHA-256", "SCRAM-SHA-1", "DIGEST-MD5", "CRAM-MD5", "PLAIN", "LOGIN"}));
}

void TestSasl::digestMd5IsTheLastForAUserBeyondAscii()
{
    const QString umlaut = u"jürgen"_s;
    const QString chinese = u"密码"_s;
    for (const QString &user : {umlaut, chinese, u"ascii and ü"_s}) {
        QCOMPARE(SaslClient::choose({"DIGEST-MD5", "PLAIN"}, false, user), "PLAIN");
        QCOMPARE(SaslClient::choose({"DIGEST-MD5", "LOGIN", "CRAM-MD5"}, false, user), "CRAM-MD5");
        QCOMPARE(SaslClient::choose({"DIGEST-MD5", "CRAM-MD5"}, true, user), "CRAM-MD5");
        QCOMPARE(SaslClient::choose({"DIGEST-MD5"}, false, user), "DIGEST-MD5");
        QCOMPARE(SaslClient::choose({"DIGEST-MD5", "NTLM"}, true, user), "DIGEST-MD5");
        QCOMPARE(SaslClient::choose({"DIGEST-MD5", "SCRAM-SHA-1"}, false, user), "SCRAM-SHA-1");
    }
    QCOMPARE(SaslClient::choose({"DIGEST-MD5", "CRAM-MD5", "PLAIN"}, false, u"jurgen@x.org"_s), "DIGEST-MD5");
    QCOMPARE(SaslClient::choose({"DIGEST-MD5", "CRAM-MD5"}, true, u"jurgen"_s), "DIGEST-MD5");
    const SmtpExtensions offered = offering({"DIGEST-MD5", "CRAM-MD5"});
    QCOMPARE(SmtpLogin(offered, false, umlaut, u"p"_s, u"host"_s).mechanism(), "CRAM-MD5");
    QCOMPARE(SmtpLogin(offered, false, u"jurgen"_s, u"pü"_s, u"host"_s).mechanism(), "DIGEST-MD5");
}

void TestSasl::aLoginAsksWhetherTheLinkIsEncrypted()
{
    for (const bool encrypted : {true, false}) {
        SmtpLogin login(offering({"CRAM-MD5", "PLAIN"}), encrypted, u"user"_s, u"secret"_s, u"h"_s);
        QCOMPARE(login.mechanism(), encrypted ? "PLAIN" : "CRAM-MD5");
        QVERIFY(login.command().startsWith(encrypted ? "AUTH PLAIN " : "AUTH CRAM-MD5"));
        QCOMPARE(login.fault(), QString());
    }
}

void TestSasl::aLoginWithoutAMechanismSaysWhy()
{
    SmtpLogin none(offering({}), true, u"user"_s, u"secret"_s, u"h"_s);
    QCOMPARE(none.command(), QByteArray());
    QCOMPARE(none.fault(), u"the server does not offer AUTH, although the account has a user name"_s);
    QVERIFY(!none.mayEnd() && none.mechanism().isEmpty());
    SmtpLogin unknown(offering({"NTLM", "XOAUTH2"}), true, u"user"_s, u"secret"_s, u"h"_s);
    QCOMPARE(unknown.command(), QByteArray());
    QCOMPARE(unknown.fault(), u"none of the mechanisms that the server offers is known here (NTLM XOAUTH2)"_s);
    QVERIFY(!unknown.mayEnd() && unknown.mechanism().isEmpty());
}

void TestSasl::aUserWhoCannotBePreparedIsAFault()
{
    // RFC 4013 forbids control characters.
    SmtpLogin login(offering({"SCRAM-SHA-256"}), true, u"us\aer"_s, u"secret"_s, u"h"_s);
    QCOMPARE(login.command(), QByteArray());
    QCOMPARE(login.fault(), u"the user name or the password cannot be prepared for SCRAM-SHA-256"_s);
}

void TestSasl::theLongestSecretIsTakenOutFirst()
{
    // The word for the user is the beginning of that for the password.
    SmtpLogin login(offering({"LOGIN"}), true, u"abc"_s, u"abcdef"_s, u"h"_s);
    QCOMPARE(login.command(), "AUTH LOGIN");
    QCOMPARE(login.answer({334, {""}}), "YWJj");
    QCOMPARE(login.answer({334, {""}}), "YWJjZGVm");
    QCOMPARE(login.withoutSecrets(u"YWJj YWJjZGVm abc abcdef"_s), u"*** *** abc ***"_s);
    SmtpReply reply{535, {"no YWJjZGVm", "abcdefabcdef", "535"}};
    login.hideSecrets(reply);
    QCOMPARE(reply.Lines, (QList<QByteArray>{"no ***", "******", "535"}));
    QCOMPARE(reply.Code, 535);
}

void TestSasl::whatIsNoSecretStays()
{
    const QString told = u"What is Ø? 密 ? user"_s;
    // A password that Latin-1 lacks is not the question marks that would stand for it there.
    QCOMPARE(SmtpLogin(offering({"PLAIN"}), true, u"user"_s, u"码"_s, u"h"_s).withoutSecrets(told), told);
    QCOMPARE(SmtpLogin(offering({"PLAIN"}), true, u"user"_s, QString(), u"h"_s).withoutSecrets(told), told);
    QCOMPARE(SmtpLogin(offering({"PLAIN"}), true, u"user"_s, u"密"_s, u"h"_s).withoutSecrets(told),
             u"What is Ø? *** ? user"_s);
}

void TestSasl::aCommandHasAtMost510Octets()
{
    // Base64 grows by four octets for three.
    for (const int length : {366, 367}) {
        SmtpLogin login(offering({"PLAIN"}), true, u"user"_s, QString(length, u'x'), u"h"_s);
        const QByteArray command = login.command();
        QCOMPARE(command.size(), length == 366 ? 507 : 10);
        if (length == 367) {
            QCOMPARE(login.answer({334, {"ignored"}}).value_or(QByteArray()).size(), 500);
        }
        QVERIFY(login.mayEnd());
    }
}

void TestSasl::theLastLineOfAChallengeCounts()
{
    SmtpLogin login(offering({"CRAM-MD5"}), true, u"user"_s, u"secret"_s, u"h"_s);
    QCOMPARE(login.command(), "AUTH CRAM-MD5");
    const auto word = login.answer({334, {"not this", " " + QByteArray("<1@h>").toBase64() + "\t"}});
    QVERIFY2(word, qPrintable(login.fault()));
    QVERIFY(QByteArray::fromBase64(*word).startsWith("user "));
}

void TestSasl::aLoginMayEndOnlyBehindItsLastWord()
{
    SmtpLogin plain(offering({"PLAIN"}), true, u"user"_s, u"secret"_s, u"h"_s);
    QVERIFY(!plain.mayEnd());
    QVERIFY(plain.command().startsWith("AUTH PLAIN "));
    QVERIFY(plain.mayEnd());
    SmtpLogin login(offering({"LOGIN"}), true, u"user"_s, u"secret"_s, u"h"_s);
    QCOMPARE(login.command(), "AUTH LOGIN");
    QVERIFY(!login.mayEnd());
    QCOMPARE(login.answer({334, {""}}), QByteArray("user").toBase64());
    QVERIFY(!login.mayEnd());
    QCOMPARE(login.answer({334, {""}}), QByteArray("secret").toBase64());
    QVERIFY(login.mayEnd());
    QVERIFY(!login.answer({334, {""}}));
    QCOMPARE(login.fault(), u"the exchange of LOGIN with the server makes no sense or proves another server"_s);
}

QTEST_GUILESS_MAIN(TestSasl)
#include "test_sasl.moc"
