#include "quillon/mail/smtpbody.h"
#include "quillon/mail/smtpenvelope.h"
#include "quillon/mail/smtplogin.h"
#include "quillon/smtp/dialogue.h"

#include <QTemporaryDir>

using namespace dialogue;

/// What the sentences quote of others is told whole up to a limit; and what else a mail's body is bounded by.
class TestSmtpLimits : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void whatIsQuotedIsCutAtItsLimit_data();
    void whatIsQuotedIsCutAtItsLimit();
    void aRecipientIsNamedUpToItsLimit_data();
    void aRecipientIsNamedUpToItsLimit();
    void onlyARegularFileIsRead_data();
    void onlyARegularFileIsRead();
    void moreThanWasToldIsNotMoreThanAll();
    void afterAFaultNothingIsTaken();
};

namespace {

using Sentence = std::function<QString(const QString &name)>;

QString ofEnvelope(const QString &sender, const QString &recipient)
{
    const SmtpEnvelope envelope = SmtpEnvelope::plan({Client::mailOf("x"), sender, {recipient}}, {});
    return envelope.Failure ? envelope.Failure->Text : QString();
}

QString ofConnect(const QString &server, const QString &proxy)
{
    Client client;
    client.Transport.ProxyServer = proxy;
    client.Transport.ProxyPort = 1080;
    waitFor(client.Transport.Connect(server, 25, 0, 0));
    return client.Errors.join(u'\n');
}

QString ofFile(const QString &path, qint64 size)
{
    EncodedMail mail;
    mail.Stretches += {{}, path, size};
    SmtpBody body(mail);
    while (!body.next().isEmpty()) {
    }
    return body.fault();
}

QString ofMechanisms(const QString &mechanisms)
{
    SmtpExtensions extensions;
    extensions.Auth = mechanisms.toLatin1().split(' ');
    return SmtpLogin(extensions, true, u"user"_s, u"password"_s, u"host"_s).fault();
}

QString ofParser(const QByteArray &input)
{
    SmtpReplyParser parser;
    parser.feed(input);
    return parser.next() ? QString() : parser.fault();
}

} // namespace

void TestSmtpLimits::whatIsQuotedIsCutAtItsLimit_data()
{
    QTest::addColumn<Sentence>("sentence");
    QTest::addColumn<QString>("start"); // of the name that is wrong; the rest is "x"
    const QString good = u"good@example.org"_s;
    const auto row = [](const char *name, const QString &start, const Sentence &sentence) {
        QTest::newRow(name) << sentence << start;
    };
    row("sender", u"a b"_s, [good](const QString &name) { return ofEnvelope(name, good); });
    row("recipient", u"a b"_s, [good](const QString &name) { return ofEnvelope(good, name); });
    row("foreign recipient", u"ü"_s, [good](const QString &name) { return ofEnvelope(good, name); });
    row("server", u"a@"_s, [](const QString &name) { return ofConnect(name, QString()); });
    row("proxy", u"a@"_s, [](const QString &name) { return ofConnect(u"127.0.0.1"_s, name); });
    row("file", u"a"_s, [](const QString &name) { return ofFile(u"/nowhere/"_s + name, 1); });
    row("mechanisms", u"A B"_s, ofMechanisms);
    row("line", u"250x"_s, [](const QString &name) { return ofParser(name.toLatin1() + "\r\n"); });
}

void TestSmtpLimits::whatIsQuotedIsCutAtItsLimit()
{
    QFETCH(Sentence, sentence);
    QFETCH(QString, start);
    const QString name = start + QString(121 - start.size(), u'x');
    const auto quoted = [&sentence](const QString &text) {
        const QString told = sentence(text);
        const qsizetype begin = std::max(told.indexOf(u'“'), told.indexOf(u'('));
        return told.mid(begin + 1, std::max(told.indexOf(u'”'), told.indexOf(u')')) - begin - 1);
    };
    QCOMPARE(quoted(name.first(119)), name.first(119));
    QCOMPARE(quoted(name.first(120)), name.first(120));
    QCOMPARE(quoted(name), name.first(120) + u'…');
}

void TestSmtpLimits::aRecipientIsNamedUpToItsLimit_data()
{
    QTest::addColumn<int>("length");
    QTest::addColumn<QString>("told");
    QTest::newRow("254") << 254 << QString(250, u'x') + u"@b.c"_s;
    QTest::newRow("255") << 255 << QString(251, u'x') + u"@b.…"_s;
}

void TestSmtpLimits::aRecipientIsNamedUpToItsLimit()
{
    // An address of the greatest length that RFC 5321 allows is one that a user may have.
    QFETCH(int, length);
    QFETCH(QString, told);
    ScriptedServer server;
    server.answer("RCPT", "550 no\r\n");
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(!client.send(text, {QString(length - 4, u'x') + u"@b.c"_s}));
    QCOMPARE(client.Errors, QStringList{u"The server refused the recipient %1 (RCPT TO): “550 no”."_s.arg(told)});
}

void TestSmtpLimits::onlyARegularFileIsRead_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<qint64>("size");
    QTest::addColumn<QString>("fault");
    const QString unreadable = u"the file “%1” can no longer be read"_s;
    QTest::newRow("folder") << u"/dev"_s << qint64(10) << unreadable.arg(u"dev");
    QTest::newRow("device that has nothing") << u"/dev/null"_s << qint64(0) << unreadable.arg(u"null");
    QTest::newRow("device without an end") << u"/dev/zero"_s << qint64(10) << unreadable.arg(u"zero");
    QTest::newRow("nothing") << u"/nowhere/a.txt"_s << qint64(10) << unreadable.arg(u"a.txt");
}

void TestSmtpLimits::onlyARegularFileIsRead()
{
    QFETCH(QString, path);
    QFETCH(qint64, size);
    QTEST(ofFile(path, size), "fault");
}

void TestSmtpLimits::moreThanWasToldIsNotMoreThanAll()
{
    EncodedMail mail = Client::mailOf("0123456789");
    for (const qint64 told : {-1, 0, 1, 9, 10}) {
        mail.Size = told;
        SmtpBody body(mail);
        QVERIFY(!body.next().isEmpty());
        QCOMPARE(body.percent(), 100);
    }
    mail.Size = 11;
    SmtpBody body(mail);
    QCOMPARE(body.percent(), 0);
    QVERIFY(!body.next().isEmpty());
    QCOMPARE(body.percent(), 90);
}

void TestSmtpLimits::afterAFaultNothingIsTaken()
{
    SmtpReplyParser parser;
    parser.feed("web\r\n250 ok\r\n");
    QVERIFY(!parser.next());
    const QString fault = parser.fault();
    QVERIFY(!fault.isEmpty() && !parser.hasPending());
    parser.feed("250 ok\r\n");
    QVERIFY(!parser.hasPending());
    QVERIFY(!parser.next());
    QCOMPARE(parser.fault(), fault);
    parser.clear();
    parser.feed("250 ok\r\n");
    QCOMPARE(parser.next().value_or(SmtpReply()).Code, 250);
    QCOMPARE(parser.fault(), QString());
}

QTEST_GUILESS_MAIN(TestSmtpLimits)
#include "test_smtplimits.moc"
