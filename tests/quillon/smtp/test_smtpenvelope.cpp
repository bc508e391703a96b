#include "quillon/mail/smtpenvelope.h"
#include "quillon/smtp/client.h"

#include <QTest>

using namespace quillon;
using namespace Qt::StringLiterals;

/// Which addresses and hosts may go over the wire, in which form, and what is said of those that may not.
class TestSmtpEnvelope : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void anAddressGoesInOneForm_data();
    void anAddressGoesInOneForm();
    void aPathHasAtMost480Octets_data();
    void aPathHasAtMost480Octets();
    void whoeverNeedsSmtpUtf8IsNamed_data();
    void whoeverNeedsSmtpUtf8IsNamed();
    void theParametersOfMailStandInOrder_data();
    void theParametersOfMailStandInOrder();
    void theFirstFaultIsTold_data();
    void theFirstFaultIsTold();
    void whoeverSendsMayBeARecipientToo();
    void aHostGoesInOneForm_data();
    void aHostGoesInOneForm();
};

namespace {

SmtpMail addressed(const QString &sender, const QStringList &to)
{
    return {Client::mailOf("x"), sender, to};
}

SmtpExtensions withUtf8()
{
    SmtpExtensions extensions;
    extensions.SmtpUtf8 = true;
    return extensions;
}

} // namespace

void TestSmtpEnvelope::anAddressGoesInOneForm_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QByteArray>("path"); // empty: it must not go
    QTest::newRow("plain") << u"a@b.c"_s << QByteArray("a@b.c");
    QTest::newRow("local name only") << u"root"_s << QByteArray("root");
    QTest::newRow("case is kept") << u"A.b@C.d"_s << QByteArray("A.b@C.d");
    QTest::newRow("the last @ counts") << u"\"a@b\"@c.d"_s << QByteArray("\"a@b\"@c.d");
    QTest::newRow("the last @ counts for the domain")
        << u"\"a@b\"@ü.example"_s << QByteArray("\"a@b\"@xn--tda.example");
    QTest::newRow("blank in quotes") << u"\"a b\"@c.d"_s << QByteArray("\"a b\"@c.d");
    QTest::newRow("brackets in quotes") << u"\"<>\"@c.d"_s << QByteArray("\"<>\"@c.d");
    QTest::newRow("quote escaped in quotes") << uR"("a\"b"@c.d)"_s << QByteArray(R"("a\"b"@c.d)");
    QTest::newRow("escape escaped in quotes") << uR"("a\\"@c.d)"_s << QByteArray(R"("a\\"@c.d)");
    QTest::newRow("no escape without quotes") << uR"(a\"b"c@d.e)"_s << QByteArray(R"(a\"b"c@d.e)");
    QTest::newRow("composed") << u"e\u0301@b.c"_s << QByteArray("\xc3\xa9@b.c");
    QTest::newRow("domain in ASCII") << u"ü@ü.example"_s << QByteArray("\xc3\xbc@xn--tda.example");
    QTest::newRow("empty") << QString() << QByteArray();
    QTest::newRow("@ alone") << u"@"_s << QByteArray();
    QTest::newRow("no local part") << u"@b.c"_s << QByteArray();
    QTest::newRow("no domain") << u"a@"_s << QByteArray();
    QTest::newRow("no ASCII form of the domain") << u"a@ü..example"_s << QByteArray();
    QTest::newRow("opening bracket") << u"a<b@c.d"_s << QByteArray();
    QTest::newRow("closing bracket") << u"a>b@c.d"_s << QByteArray();
    QTest::newRow("blank") << u"a b@c.d"_s << QByteArray();
    QTest::newRow("blank at the front") << u" a@c.d"_s << QByteArray();
    QTest::newRow("blank at the end") << u"a@c.d "_s << QByteArray();
    QTest::newRow("no-break space") << u"a\u00a0b@c.d"_s << QByteArray();
    QTest::newRow("bracket behind quotes") << u"\"a\">@c.d"_s << QByteArray();
    QTest::newRow("open quote") << u"\"a@c.d"_s << QByteArray();
    QTest::newRow("quote escaped, so open") << uR"("a\"@c.d)"_s << QByteArray();
    QTest::newRow("escape at the end") << uR"(a@"c\)"_s << QByteArray();
    QTest::newRow("control in quotes") << u"\"a\x01b\"@c.d"_s << QByteArray();
    QTest::newRow("control escaped") << u"\"a\\\x01b\"@c.d"_s << QByteArray();
    QTest::newRow("delete") << u"a\x7f@c.d"_s << QByteArray();
    QTest::newRow("paragraph separator in quotes") << u"\"a\u2029b\"@c.d"_s << QByteArray();
    QTest::newRow("line separator in quotes") << u"\"a\u2028b\"@c.d"_s << QByteArray();
}

void TestSmtpEnvelope::anAddressGoesInOneForm()
{
    QFETCH(QString, address);
    QFETCH(QByteArray, path);
    const SmtpEnvelope asSender = SmtpEnvelope::plan(addressed(address, {u"to@b.c"_s}), withUtf8());
    const SmtpEnvelope asRecipient = SmtpEnvelope::plan(addressed(u"from@b.c"_s, {address}), withUtf8());
    QCOMPARE(asSender.Failure.has_value(), path.isEmpty());
    QCOMPARE(asRecipient.Failure.has_value(), path.isEmpty());
    if (!path.isEmpty()) {
        QVERIFY(asSender.Commands.first().startsWith("MAIL FROM:<" + path + '>'));
        QCOMPARE(asRecipient.Commands.last(), "RCPT TO:<" + path + '>');
        QCOMPARE(asRecipient.Recipients, QStringList{address});
    }
}

void TestSmtpEnvelope::aPathHasAtMost480Octets_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<bool>("goes");
    QTest::newRow("480") << QString(476, u'a') + u"@b.c"_s << true;
    QTest::newRow("481") << QString(477, u'a') + u"@b.c"_s << false;
    QTest::newRow("480 in UTF-8") << QString(238, u'ü') + u"@b.c"_s << true;
    QTest::newRow("482 in UTF-8") << QString(239, u'ü') + u"@b.c"_s << false;
}

void TestSmtpEnvelope::aPathHasAtMost480Octets()
{
    QFETCH(QString, address);
    QFETCH(bool, goes);
    QCOMPARE(!SmtpEnvelope::plan(addressed(u"from@b.c"_s, {address}), withUtf8()).Failure, goes);
    QCOMPARE(!SmtpEnvelope::plan(addressed(address, {u"to@b.c"_s}), withUtf8()).Failure, goes);
}

void TestSmtpEnvelope::whoeverNeedsSmtpUtf8IsNamed_data()
{
    QTest::addColumn<QString>("sender");
    QTest::addColumn<bool>("header");
    QTest::addColumn<QStringList>("recipients");
    QTest::addColumn<QString>("blamed"); // what the server's lack is said to hinder; empty: nothing does
    const QString plain = u"from@b.c"_s;
    const QString foreign = u"jürgen@b.c"_s;
    const QStringList plainTo{u"to@b.c"_s};
    const QStringList foreignTo{u"to@b.c"_s, u"zoë@b.c"_s, u"chloë@b.c"_s};
    const QString bySender = u"the address of the sender, “jürgen@b.c”, needs."_s;
    const QString byHeader = u"an address in its header needs."_s;
    const QString byRecipient = u"the address “zoë@b.c” needs."_s;
    QTest::newRow("nobody") << plain << false << plainTo << QString();
    QTest::newRow("a foreign domain") << u"from@bücher.example"_s << false << QStringList{u"to@bücher.example"_s}
                                      << QString();
    QTest::newRow("sender") << foreign << false << plainTo << bySender;
    QTest::newRow("header") << plain << true << plainTo << byHeader;
    QTest::newRow("recipient") << plain << false << foreignTo << byRecipient;
    QTest::newRow("sender and header") << foreign << true << plainTo << bySender;
    QTest::newRow("sender and recipient") << foreign << false << foreignTo << byRecipient;
    QTest::newRow("header and recipient") << plain << true << foreignTo << byRecipient;
}

void TestSmtpEnvelope::whoeverNeedsSmtpUtf8IsNamed()
{
    QFETCH(QString, sender);
    QFETCH(bool, header);
    QFETCH(QStringList, recipients);
    QFETCH(QString, blamed);
    SmtpMail mail = addressed(sender, recipients);
    mail.Content.NeedsSmtpUtf8 = header;
    const SmtpEnvelope without = SmtpEnvelope::plan(mail, {});
    QCOMPARE(without.Failure.has_value(), !blamed.isEmpty());
    if (without.Failure) {
        QCOMPARE(without.Failure->Text,
                 u"The message was not sent: the server does not offer SMTPUTF8, which "_s + blamed);
        QCOMPARE(without.Failure->Code, 0);
    }
    const SmtpEnvelope with = SmtpEnvelope::plan(mail, withUtf8());
    QVERIFY(!with.Failure);
    QCOMPARE(with.Commands.first().endsWith(" SMTPUTF8"), !blamed.isEmpty());
}

void TestSmtpEnvelope::theParametersOfMailStandInOrder_data()
{
    QTest::addColumn<bool>("size");
    QTest::addColumn<qint64>("most");
    QTest::addColumn<QByteArray>("command");
    QTest::newRow("no size") << false << qint64(0) << QByteArray("MAIL FROM:<from@b.c> SMTPUTF8");
    QTest::newRow("size without a limit") << true << qint64(0) << QByteArray("MAIL FROM:<from@b.c> SIZE=10 SMTPUTF8");
    QTest::newRow("just the limit") << true << qint64(10) << QByteArray("MAIL FROM:<from@b.c> SIZE=10 SMTPUTF8");
    QTest::newRow("beyond the limit") << true << qint64(9) << QByteArray();
}

void TestSmtpEnvelope::theParametersOfMailStandInOrder()
{
    QFETCH(bool, size);
    QFETCH(qint64, most);
    QFETCH(QByteArray, command);
    SmtpMail mail = addressed(u"from@b.c"_s, {u"zoë@b.c"_s});
    mail.Content = Client::mailOf("0123456789");
    SmtpExtensions extensions = withUtf8();
    extensions.Size = size;
    extensions.MaxSize = most;
    const SmtpEnvelope envelope = SmtpEnvelope::plan(mail, extensions);
    QCOMPARE(envelope.Commands.value(0), command);
    QCOMPARE(envelope.Failure ? envelope.Failure->Text : QString(),
             command.isEmpty()
                 ? u"The message was not sent: it has 10 octets, and the server takes messages of at most "
                   "9 octets."_s
                 : QString());
}

void TestSmtpEnvelope::theFirstFaultIsTold_data()
{
    QTest::addColumn<QString>("error");
    QTest::addColumn<QString>("sender");
    QTest::addColumn<QStringList>("recipients");
    QTest::addColumn<QString>("sentence");
    const QString start = u"The message was not sent: "_s;
    QTest::newRow("not made") << u"It cannot be made."_s << QString() << QStringList() << u"It cannot be made."_s;
    QTest::newRow("no sender") << QString() << QString() << QStringList()
                               << start + u"the address of the sender is empty."_s;
    QTest::newRow("bad sender") << QString() << u"a b"_s << QStringList()
                                << start + u"“a b”, the address of the sender, is not an e-mail address."_s;
    QTest::newRow("nobody") << QString() << u"a"_s << QStringList() << start + u"it has no recipient."_s;
    QTest::newRow("no recipient") << QString() << u"a"_s << QStringList{u"b"_s, QString(), u"c d"_s}
                                  << start + u"the address of the recipient is empty."_s;
    QTest::newRow("bad recipient") << QString() << u"a"_s << QStringList{u"b"_s, u"c\td"_s, QString()}
                                   << start + u"“c d”, the address of the recipient, is not an e-mail address."_s;
}

void TestSmtpEnvelope::theFirstFaultIsTold()
{
    QFETCH(QString, error);
    QFETCH(QString, sender);
    QFETCH(QStringList, recipients);
    QFETCH(QString, sentence);
    SmtpMail mail = addressed(sender, recipients);
    mail.Content.ErrorText = error;
    const SmtpEnvelope envelope = SmtpEnvelope::plan(mail, {});
    QVERIFY(envelope.Failure);
    QCOMPARE(envelope.Failure->Text, sentence);
    QVERIFY(envelope.Commands.isEmpty() && envelope.Recipients.isEmpty());
}

void TestSmtpEnvelope::whoeverSendsMayBeARecipientToo()
{
    const QString self = u"self@b.c"_s;
    const SmtpEnvelope envelope = SmtpEnvelope::plan(addressed(self, {u"a@b.c"_s, self, u"a@b.c"_s, self}), {});
    QVERIFY(!envelope.Failure);
    QCOMPARE(envelope.Recipients, (QStringList{u"a@b.c"_s, self}));
    QCOMPARE(envelope.Commands, (QList<QByteArray>{"MAIL FROM:<self@b.c>", "RCPT TO:<a@b.c>", "RCPT TO:<self@b.c>"}));
}

void TestSmtpEnvelope::aHostGoesInOneForm_data()
{
    QTest::addColumn<QString>("host");
    QTest::addColumn<QString>("form"); // empty: it is none
    QTest::newRow("name") << u"Mail.example.org"_s << u"Mail.example.org"_s;
    QTest::newRow("blanks around") << u" \tmail.example.org\n "_s << u"mail.example.org"_s;
    QTest::newRow("foreign") << u"bücher.example"_s << u"xn--bcher-kva.example"_s;
    QTest::newRow("IPv4") << u"192.0.2.1"_s << u"192.0.2.1"_s;
    QTest::newRow("IPv6") << u"2001:db8::1"_s << u"2001:db8::1"_s;
    QTest::newRow("IPv6 in brackets") << u" [2001:db8::1] "_s << u"2001:db8::1"_s;
    QTest::newRow("opening bracket only") << u"[::1"_s << u"[::1"_s;
    QTest::newRow("closing bracket only") << u"::1]"_s << u"::1]"_s;
    QTest::newRow("empty") << QString() << QString();
    QTest::newRow("brackets only") << u"[]"_s << QString();
    QTest::newRow("address") << u"user@example.org"_s << QString();
    QTest::newRow("URL") << u"example.org/path"_s << QString();
    QTest::newRow("blank within") << u"a b"_s << QString();
    QTest::newRow("tab within") << u"a\tb"_s << QString();
    QTest::newRow("NUL within") << u"a\0b"_s << QString();
    QTest::newRow("format character within") << u"a\u202eb"_s << QString();
}

void TestSmtpEnvelope::aHostGoesInOneForm()
{
    QFETCH(QString, host);
    QFETCH(QString, form);
    QCOMPARE(asciiHost(host), form);
}

QTEST_GUILESS_MAIN(TestSmtpEnvelope)
#include "test_smtpenvelope.moc"
