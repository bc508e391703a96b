#include "quillon/mail/smtpbody.h"
#include "quillon/mail/smtpenvelope.h"
#include "quillon/smtp/client.h"

#include <QTemporaryDir>
#include <QTest>

#include <algorithm>

using namespace quillon;
using namespace Qt::StringLiterals;

class TestSmtpMail : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void dotsAtLineStartsAreDoubledAcrossEveryCut();
    void aMailWithoutALastLineEndGetsOne();
    void anEmptyMailIsTheFinalDot();
    void filesBecomeBase64LinesOfEverySize();
    void aFileThatHasGrownIsAFault();
    void aFileThatHasShrunkIsAFault();
    void aFileThatIsGoneIsAFault();
    void aFolderInPlaceOfAFileIsAFault();
    void percentGoesFromNoneToAll();
    void percentIsThatOfTheOctetsGiven();
    void filesAndTextsFollowEachOther();
    void everyPieceIsBounded();
    void nothingFollowsTheEnd();

    void equalRecipientsAreNamedOnce();
    void recipientsThatDifferInCaseAreTwo();
    void controlCharactersInAddressesNeverReachTheWire_data();
    void controlCharactersInAddressesNeverReachTheWire();
    void aQuotedLocalPartMayHoldBlanksAndBrackets();
    void aForeignDomainGoesInItsAsciiForm();
    void aForeignLocalPartNeedsSmtpUtf8();
    void aHeaderThatNeedsSmtpUtf8NeedsTheServer();
    void sizeIsToldAndRespected();
    void aMailThatCouldNotBeEncodedSaysWhy();
    void noSenderAndNoRecipientAreFaults();
    void hostNamesAreMadeAscii();
};

namespace {

QByteArray wireOf(const EncodedMail &mail)
{
    SmtpBody body(mail);
    QByteArray wire;
    while (!body.isAtEnd() && body.fault().isEmpty()) {
        wire += body.next();
    }
    return wire;
}

EncodedMail mailOfPieces(const QList<QByteArray> &pieces)
{
    EncodedMail mail;
    for (const QByteArray &piece : pieces) {
        mail.Stretches += {piece, {}, 0};
        mail.Size += piece.size();
    }
    return mail;
}

QString writeFile(const QTemporaryDir &folder, const QByteArray &content)
{
    const QString path = folder.filePath(u"file.bin"_s);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size()) {
        qFatal("cannot write the test's file");
    }
    return path;
}

SmtpMail addressed(const QString &sentBy, const QStringList &to)
{
    return {Client::mailOf("x"), sentBy, to};
}

const QString from = u"from@example.org"_s;

} // namespace

void TestSmtpMail::dotsAtLineStartsAreDoubledAcrossEveryCut()
{
    const QByteArray text = ".first\r\n.\r\n..\r\na.b\r\n.\r\n";
    const QByteArray expected = "..first\r\n..\r\n...\r\na.b\r\n..\r\n.\r\n";
    for (qsizetype at = 0; at <= text.size(); ++at) {
        for (qsizetype next = at; next <= text.size(); ++next) {
            QCOMPARE(wireOf(mailOfPieces({text.left(at), text.mid(at, next - at), text.mid(next)})), expected);
        }
    }
}

void TestSmtpMail::aMailWithoutALastLineEndGetsOne()
{
    QCOMPARE(wireOf(mailOfPieces({"a"})), "a\r\n.\r\n");
    QCOMPARE(wireOf(mailOfPieces({"a\r"})), "a\r\r\n.\r\n");
    QCOMPARE(wireOf(mailOfPieces({"a\n"})), "a\n\r\n.\r\n");
    QCOMPARE(wireOf(mailOfPieces({"a\r", "\n"})), "a\r\n.\r\n");
}

void TestSmtpMail::anEmptyMailIsTheFinalDot()
{
    QCOMPARE(wireOf(mailOfPieces({})), ".\r\n");
    QCOMPARE(wireOf(mailOfPieces({""})), ".\r\n");
}

void TestSmtpMail::filesBecomeBase64LinesOfEverySize()
{
    for (const int size : {0, 1, 56, 57, 58, 114, 56'999, 57'000, 57'001, 114'000, 200'000}) {
        QByteArray content(size, Qt::Uninitialized);
        for (int i = 0; i < size; ++i) {
            content[i] = static_cast<char>(i * 7 + i / 256);
        }
        const QTemporaryDir folder;
        EncodedMail mail = Client::mailWithFile(writeFile(folder, content));
        const QByteArray wire = wireOf(mail);
        QCOMPARE(wire.size(), mail.Size + 3);
        QVERIFY(wire.endsWith("\r\n.\r\n"));
        const QByteArray coded = wire.mid(17, wire.size() - 20);
        for (const QByteArray &line : coded.split('\n')) {
            QVERIFY(line.size() <= 77);
        }
        QCOMPARE(QByteArray::fromBase64(coded), content);
    }
}

void TestSmtpMail::aFileThatHasGrownIsAFault()
{
    const QTemporaryDir folder;
    const EncodedMail mail = Client::mailWithFile(writeFile(folder, "content"));
    writeFile(folder, "content and more");
    QVERIFY(!wireOf(mail).contains("\r\n.\r\n"));
    SmtpBody body(mail);
    while (!body.next().isEmpty()) {
    }
    QVERIFY2(body.fault().contains(u"“file.bin” has become longer"), qPrintable(body.fault()));
    QVERIFY(!body.isAtEnd());
}

void TestSmtpMail::aFileThatHasShrunkIsAFault()
{
    const QTemporaryDir folder;
    const EncodedMail mail = Client::mailWithFile(writeFile(folder, "content"));
    writeFile(folder, "cont");
    SmtpBody body(mail);
    while (!body.next().isEmpty()) {
    }
    QVERIFY2(body.fault().contains(u"has become shorter"), qPrintable(body.fault()));
    QVERIFY(!body.isAtEnd());
}

void TestSmtpMail::aFileThatIsGoneIsAFault()
{
    const QTemporaryDir folder;
    const QString path = writeFile(folder, "content");
    const EncodedMail mail = Client::mailWithFile(path);
    QVERIFY(QFile::remove(path));
    SmtpBody body(mail);
    while (!body.next().isEmpty()) {
    }
    QVERIFY2(body.fault().contains(u"can no longer be read"), qPrintable(body.fault()));
    QVERIFY(!body.isAtEnd());
}

void TestSmtpMail::aFolderInPlaceOfAFileIsAFault()
{
    const QTemporaryDir folder;
    EncodedMail mail;
    mail.Stretches += {{}, folder.path(), 10};
    SmtpBody body(mail);
    QVERIFY(body.next().isEmpty());
    QVERIFY(!body.fault().isEmpty());
}

void TestSmtpMail::percentGoesFromNoneToAll()
{
    const QTemporaryDir folder;
    SmtpBody body(Client::mailWithFile(writeFile(folder, QByteArray(1'000'000, 'x'))));
    QList<int> seen = {body.percent()};
    while (!body.next().isEmpty()) {
        seen += body.percent();
    }
    QVERIFY(std::is_sorted(seen.cbegin(), seen.cend()));
    QCOMPARE(seen.first(), 0);
    QCOMPARE(seen.last(), 100);
    QVERIFY(seen.contains(50) || seen.contains(51) || seen.contains(49));
}

void TestSmtpMail::percentIsThatOfTheOctetsGiven()
{
    SmtpBody body(mailOfPieces({"a", "\r\n", "0123456789"}));
    QList<int> seen;
    for (bool more = true; more; more = !body.next().isEmpty()) {
        seen += body.percent();
    }
    QCOMPARE(seen, (QList<int>{0, 7, 23, 100, 100}));
    QCOMPARE(SmtpBody(mailOfPieces({})).percent(), 100);
    // Dots that are doubled on the way are none of the mail's octets.
    SmtpBody dots(mailOfPieces({".\r\n.\r\n", "......"}));
    QVERIFY(!dots.next().isEmpty());
    QCOMPARE(dots.percent(), 50);
}

void TestSmtpMail::filesAndTextsFollowEachOther()
{
    const QTemporaryDir folder;
    const QString path = writeFile(folder, "ABC");
    EncodedMail mail = mailOfPieces({"header"});
    mail.Stretches += {{}, path, 3};
    mail.Stretches += {".between", {}, 0};
    mail.Stretches += {{}, path, 3};
    // A file ends with a line end of its own, whatever was before it.
    QCOMPARE(wireOf(mail), "headerQUJD\r\n..betweenQUJD\r\n.\r\n");
    mail.Stretches += {"\r\n.", {}, 0};
    QCOMPARE(wireOf(mail), "headerQUJD\r\n..betweenQUJD\r\n\r\n..\r\n.\r\n");
}

void TestSmtpMail::everyPieceIsBounded()
{
    const QTemporaryDir folder;
    const QByteArray text = QByteArray("0123456789abcdefghijklmnopqrstuvwxyz\r\n").repeated(8'000);
    EncodedMail mail = mailOfPieces({text});
    mail.Stretches += {{}, writeFile(folder, QByteArray(300'000, 'x')), 300'000};
    SmtpBody body(mail);
    QByteArray wire;
    for (QByteArray piece; !(piece = body.next()).isEmpty();) {
        QVERIFY2(piece.size() <= 80'000, qPrintable(QString::number(piece.size())));
        wire += piece;
    }
    QVERIFY(body.isAtEnd());
    QVERIFY(wire.startsWith(text));
    const QByteArray coded = wire.mid(text.size());
    QCOMPARE(coded.size(), 400'000 + (400'000 + 75) / 76 * 2 + 3);
}

void TestSmtpMail::nothingFollowsTheEnd()
{
    SmtpBody body(mailOfPieces({"a\r\n"}));
    QCOMPARE(body.next(), "a\r\n");
    QVERIFY(!body.isAtEnd());
    QCOMPARE(body.next(), ".\r\n");
    QVERIFY(body.isAtEnd());
    QCOMPARE(body.next(), QByteArray());
}

void TestSmtpMail::equalRecipientsAreNamedOnce()
{
    const auto envelope = SmtpEnvelope::plan(addressed(from, {u"a@b.c"_s, u"d@e.f"_s, u"a@b.c"_s}), {});
    QVERIFY(!envelope.Failure);
    QCOMPARE(envelope.Commands,
             (QList<QByteArray>{"MAIL FROM:<from@example.org>", "RCPT TO:<a@b.c>", "RCPT TO:<d@e.f>"}));
}

void TestSmtpMail::recipientsThatDifferInCaseAreTwo()
{
    QCOMPARE(SmtpEnvelope::plan(addressed(from, {u"a@b.c"_s, u"A@b.c"_s}), {}).Recipients.size(), 2);
}

void TestSmtpMail::controlCharactersInAddressesNeverReachTheWire_data()
{
    QTest::addColumn<QString>("address");
    QTest::newRow("CR LF") << u"a@b.c>\r\nRCPT TO:<evil@e.f"_s;
    QTest::newRow("LF") << u"a@b.c\nDATA"_s;
    QTest::newRow("CR") << u"a@b.c\r"_s;
    QTest::newRow("NUL") << u"a\0@b.c"_s;
    QTest::newRow("tab") << u"a\t@b.c"_s;
    QTest::newRow("CR LF in quotes") << u"\"a\r\nb\"@b.c"_s;
    QTest::newRow("CR LF escaped") << u"\"a\\\r\nb\"@b.c"_s;
    QTest::newRow("next line") << u"a\u0085@b.c"_s;
    QTest::newRow("line separator") << u"a\u2028@b.c"_s;
    QTest::newRow("closing bracket") << u"a@b.c> SIZE=1"_s;
    QTest::newRow("blank") << u"a b@b.c"_s;
    QTest::newRow("open quote") << u"\"a@b.c"_s;
    QTest::newRow("half a character") << u"a"_s + QChar(0xd800) + u"@b.c"_s;
    QTest::newRow("empty") << QString();
    QTest::newRow("no local part") << u"@b.c"_s;
    QTest::newRow("no domain") << u"a@"_s;
    QTest::newRow("endless") << QString(1000, u'a') + u"@b.c"_s;
}

void TestSmtpMail::controlCharactersInAddressesNeverReachTheWire()
{
    QFETCH(QString, address);
    SmtpExtensions all;
    all.SmtpUtf8 = true;
    for (const SmtpMail &mail : {addressed(from, {u"good@b.c"_s, address}), addressed(address, {u"good@b.c"_s})}) {
        const SmtpEnvelope envelope = SmtpEnvelope::plan(mail, all);
        QVERIFY(envelope.Failure);
        QVERIFY(envelope.Commands.isEmpty());
        QCOMPARE(envelope.Failure->Text, envelope.Failure->Text.simplified());
    }
}

void TestSmtpMail::aQuotedLocalPartMayHoldBlanksAndBrackets()
{
    const auto envelope = SmtpEnvelope::plan(addressed(from, {u"\"a <b>\\\" c\"@b.c"_s}), {});
    QVERIFY(!envelope.Failure);
    QCOMPARE(envelope.Commands.last(), "RCPT TO:<\"a <b>\\\" c\"@b.c>");
}

void TestSmtpMail::aForeignDomainGoesInItsAsciiForm()
{
    const auto envelope = SmtpEnvelope::plan(addressed(u"ich@bücher.example"_s, {u"du@例え.jp"_s}), {});
    QVERIFY(!envelope.Failure);
    QCOMPARE(envelope.Commands.first(), "MAIL FROM:<ich@xn--bcher-kva.example>");
    QCOMPARE(envelope.Commands.last(), "RCPT TO:<du@xn--r8jz45g.jp>");
}

void TestSmtpMail::aForeignLocalPartNeedsSmtpUtf8()
{
    const SmtpMail mail = addressed(from, {u"jürgen@example.org"_s});
    const auto without = SmtpEnvelope::plan(mail, {});
    QVERIFY(without.Failure);
    QVERIFY(without.Failure->Text.contains(u"SMTPUTF8") && without.Failure->Text.contains(u"jürgen@example.org"));
    SmtpExtensions extensions;
    extensions.SmtpUtf8 = true;
    const auto with = SmtpEnvelope::plan(mail, extensions);
    QVERIFY(!with.Failure);
    QCOMPARE(with.Commands.first(), "MAIL FROM:<from@example.org> SMTPUTF8");
    QCOMPARE(with.Commands.last(), "RCPT TO:<j\xc3\xbcrgen@example.org>");
    // It is not asked for where it is not needed: it would narrow the ways that the mail can take.
    QCOMPARE(SmtpEnvelope::plan(addressed(from, {u"a@b.c"_s}), extensions).Commands.first(),
             "MAIL FROM:<from@example.org>");
}

void TestSmtpMail::aHeaderThatNeedsSmtpUtf8NeedsTheServer()
{
    SmtpMail mail = addressed(from, {u"a@b.c"_s});
    mail.Content.NeedsSmtpUtf8 = true;
    QVERIFY(SmtpEnvelope::plan(mail, {}).Failure);
    SmtpExtensions extensions;
    extensions.SmtpUtf8 = true;
    QCOMPARE(SmtpEnvelope::plan(mail, extensions).Commands.first(), "MAIL FROM:<from@example.org> SMTPUTF8");
}

void TestSmtpMail::sizeIsToldAndRespected()
{
    SmtpExtensions extensions;
    extensions.Size = true;
    extensions.MaxSize = 1000;
    SmtpMail mail = addressed(from, {u"a@b.c"_s});
    mail.Content = Client::mailOf(QByteArray(1000, 'x'));
    QCOMPARE(SmtpEnvelope::plan(mail, extensions).Commands.first(), "MAIL FROM:<from@example.org> SIZE=1000");
    mail.Content = Client::mailOf(QByteArray(1001, 'x'));
    const auto tooBig = SmtpEnvelope::plan(mail, extensions);
    QVERIFY(tooBig.Failure);
    QVERIFY(tooBig.Failure->Text.contains(u"1001 octets") && tooBig.Failure->Text.contains(u"1000 octets"));
    extensions.MaxSize = 0;
    QVERIFY(!SmtpEnvelope::plan(mail, extensions).Failure);
}

void TestSmtpMail::aMailThatCouldNotBeEncodedSaysWhy()
{
    SmtpMail mail = addressed(from, {u"a@b.c"_s});
    mail.Content.ErrorText = u"The file is gone."_s;
    QCOMPARE(SmtpEnvelope::plan(mail, {}).Failure->Text, u"The file is gone."_s);
}

void TestSmtpMail::noSenderAndNoRecipientAreFaults()
{
    QVERIFY(SmtpEnvelope::plan(addressed(QString(), {u"a@b.c"_s}), {}).Failure->Text.contains(u"sender"));
    QVERIFY(SmtpEnvelope::plan(addressed(from, {}), {}).Failure->Text.contains(u"recipient"));
}

void TestSmtpMail::hostNamesAreMadeAscii()
{
    QCOMPARE(asciiHost(u" mail.example.org "_s), u"mail.example.org"_s);
    QCOMPARE(asciiHost(u"[::1]"_s), u"::1"_s);
    QCOMPARE(asciiHost(u"bücher.example"_s), u"xn--bcher-kva.example"_s);
    QCOMPARE(asciiHost(u"my_host"_s), u"my_host"_s);
    QCOMPARE(asciiHost(u"a b"_s), QString());
    QCOMPARE(asciiHost(u"http://example.org"_s), QString());
}

QTEST_GUILESS_MAIN(TestSmtpMail)
#include "test_smtpmail.moc"
