#include "mailencoderbench.h"
#include "quillon/mail/transfercoding.h"

#include <QRandomGenerator>
#include <QRegularExpression>

using namespace Qt::StringLiterals;
using namespace quillon;

/// The body of a mail: its size, its lines, its coding and its parts.
class TestMailEncoder : public QObject, private MailEncoderBench {
    Q_OBJECT

private Q_SLOTS:
    void sizeIsExact();
    void everyLineIsShortSevenBitAndEndsWithCrLf();
    void anyOctetsComeBackFromQuotedPrintable();
    void plainTextBeyondItsCharsetIsUtf8();
    void unusableCharsetIsUtf8();
    void plainShortTextTravelsAsItIs();
    void boundaryNeverOccursInAPart();
    void htmlIsAlternativeWithTextVersionFirst();
    void aSmallMailIsWrittenToTheOctet();
    void aMailWithAllPartsIsWrittenToTheOctet();
    void blanksAroundACharsetDoNotCount();
    void onlyWhatDoesNotFitItsCharsetIsUtf8();
    void aDocumentNamesTheCharsetThatItTravelsIn();
    void aTextInBase64EndsWithItsLastLine();
    void theTextVersionHasNoHalfCharacters();
};

void TestMailEncoder::sizeIsExact()
{
    for (const int size : {0, 1, 2, 3, 56, 57, 58, 113, 114, 115, 1000, 4095, 4096, 4097}) {
        MailMessage mail = message();
        mail.Attachments.Add({u"a.bin"_s, write(u"size%1.bin"_s.arg(size), QByteArray(size, '\x81'))});
        QVERIFY(encode(mail).size() > 0); // compares the size itself
    }
}

void TestMailEncoder::everyLineIsShortSevenBitAndEndsWithCrLf()
{
    const QString path = write(u"picture.png"_s, png);
    for (const QString &content :
         {QString(), u"x"_s.repeated(5000), u"ä"_s.repeated(5000), u"a\nb\rc\r\nd\n\r"_s, u".\r\n..\r\n.\r\n"_s,
          u"a"_s + QChar(0) + QChar(1) + u"b"_s, u"blank \r\ntab\t\r\n"_s, u"From me\r\n From\r\n"_s, u"=3D=\r\n="_s,
          u"日本語\r\n"_s.repeated(200), u"a "_s.repeated(1000)}) {
        for (const int format : {MailMessage::PlainText, MailMessage::Html}) {
            MailMessage mail = message();
            mail.Format = format;
            mail.Content = content + (format == MailMessage::Html ? u"<img src='"_s + path + u"'>"_s : QString());
            mail.Attachments.Add({u"ä.png"_s, path});
            const QByteArray octets = encode(mail);
            QVERIFY(octets.endsWith("\r\n"));
            for (const QByteArray &line : octets.chopped(2).split('\n')) {
                QVERIFY2(line.size() <= 79 && !line.chopped(line.endsWith('\r') ? 1 : 0).contains('\r'),
                         line.constData());
            }
            QCOMPARE(octets.count('\n'), octets.count("\r\n"));
            QVERIFY(std::all_of(octets.begin(), octets.end(), [](char c) {
                return (c >= ' ' && c < '\x7f') || c == '\r' || c == '\n' || c == '\t';
            }));
        }
    }
}

void TestMailEncoder::anyOctetsComeBackFromQuotedPrintable()
{
    QRandomGenerator random(20261121);
    const QByteArray alphabet = "\r\n\t =.Fa\xC3\x01";
    for (int i = 0; i < 20000; ++i) {
        QByteArray octets;
        const int kinds = 1 + random.bounded(static_cast<int>(alphabet.size()));
        for (int length = random.bounded(400); length > 0; --length) {
            octets += random.bounded(40) == 0 ? QByteArray("From ") : QByteArray(1, alphabet[random.bounded(kinds)]);
        }
        QByteArray coded;
        appendQuotedPrintable(coded, octets, true);
        QVERIFY(coded.isEmpty() || coded.endsWith("\r\n"));
        QByteArray decoded;
        for (qsizetype at = 0; at < coded.size(); ++at) {
            if (coded[at] != '=') {
                decoded += coded[at];
            } else if (coded.mid(at, 3) != "=\r\n") {
                decoded += QByteArray::fromHex(coded.mid(at + 1, 2));
                at += 2;
            } else {
                at += 2;
            }
        }
        QCOMPARE(decoded, octets);
        for (const QByteArray &line : coded.split('\n')) {
            QVERIFY2(line.size() <= 77 && !line.startsWith("From ") && !line.endsWith(" \r"), line.constData());
        }
    }
}

void TestMailEncoder::plainTextBeyondItsCharsetIsUtf8()
{
    MailMessage mail = message();
    mail.Charset = u"iso-8859-1"_s;
    mail.Content = u"Grüße\r\n"_s;
    QCOMPARE(headerOf(encode(mail), "Content-Type"), QByteArray("text/plain; charset=iso-8859-1"));
    mail.Content = u"5 €\r\n"_s;
    QCOMPARE(headerOf(encode(mail), "Content-Type"), QByteArray("text/plain; charset=utf-8"));
}

void TestMailEncoder::unusableCharsetIsUtf8()
{
    for (const QString &charset : {QString(), u"nonsense"_s, u"utf-16"_s, u"utf-8\r\nX-Evil: 1"_s, u"ibm037"_s}) {
        MailMessage mail = message();
        mail.Charset = charset;
        QCOMPARE(headerOf(encode(mail), "Content-Type"), QByteArray("text/plain; charset=utf-8"));
    }
}

void TestMailEncoder::plainShortTextTravelsAsItIs()
{
    MailMessage mail = message();
    mail.Content = u"Hello,\r\n\r\n.\r\nbye\r\n"_s;
    const QByteArray octets = encode(mail);
    QCOMPARE(headerOf(octets, "Content-Transfer-Encoding"), QByteArray("7bit"));
    QVERIFY(octets.endsWith("\r\n\r\nHello,\r\n\r\n.\r\nbye\r\n"));
}

void TestMailEncoder::boundaryNeverOccursInAPart()
{
    MailMessage mail = message();
    mail.Attachments.Add({u"a.txt"_s, write(u"a.txt"_s, "text")});
    mail.Content = u"--=_0123456789abcdef.1\r\n--=_\r\n"_s;
    const QByteArray octets = encode(mail);
    const QByteArray type = headerOf(octets, "Content-Type");
    const QByteArray boundary = type.mid(type.indexOf('"') + 1).chopped(1);
    QVERIFY(boundary.startsWith("=_") && boundary.size() > 20);
    QCOMPARE(octets.count("--=_"), octets.count("--" + boundary));
    QVERIFY(octets.contains("--=3D_0123456789abcdef.1\r\n"));
}

void TestMailEncoder::htmlIsAlternativeWithTextVersionFirst()
{
    MailMessage mail = message();
    mail.Format = MailMessage::Html;
    mail.Content = u"<html><body><p>Hello</p></body></html>"_s;
    const QByteArray octets = encode(mail);
    QVERIFY(headerOf(octets, "Content-Type").startsWith("multipart/alternative;"));
    const qsizetype plain = octets.indexOf("Content-Type: text/plain");
    const qsizetype html = octets.indexOf("Content-Type: text/html");
    QVERIFY(plain > 0 && html > plain);
    QVERIFY(octets.contains("\r\n\r\nHello\r\n"));
    QVERIFY(octets.contains("<p>Hello</p>"));
}

namespace {

/// @p mail with what was chosen at random in it as "#".
QByteArray withoutChance(const QByteArray &mail)
{
    QString text = QString::fromLatin1(mail);
    text.replace(QRegularExpression(u"=_[0-9a-f]{24}\\b"_s), u"=_#"_s);
    text.replace(QRegularExpression(u"<[0-9a-f]{32}@"_s), u"<#@"_s);
    text.replace(QRegularExpression(u"(part[0-9]+)\\.[0-9a-f]{16}@"_s), u"\\1.#@"_s);
    return text.toLatin1();
}

} // namespace

void TestMailEncoder::aSmallMailIsWrittenToTheOctet()
{
    MailMessage mail = message();
    mail.ReplyTo = {u"reply@example.org"_s, QString()};
    mail.CC.Add({u"cc@example.com"_s, u"Copy"_s});
    mail.Priority = u"4"_s;
    mail.RequestReceipt = true;
    mail.ReceiptTo = {u"receipt@example.org"_s, QString()};
    mail.Content = u"a\rb\nc"_s;
    QCOMPARE(withoutChance(encode(mail)), QByteArray("Date: Sat, 21 Nov 2026 14:05:09 +0100\r\n"
                                                     "From: The Sender <sender@example.org>\r\n"
                                                     "Reply-To: reply@example.org\r\n"
                                                     "To: to@example.com\r\n"
                                                     "Cc: Copy <cc@example.com>\r\n"
                                                     "Subject: Subject\r\n"
                                                     "Message-ID: <#@example.org>\r\n"
                                                     "X-Priority: 4 (Low)\r\n"
                                                     "X-MSMail-Priority: Low\r\n"
                                                     "Importance: low\r\n"
                                                     "Disposition-Notification-To: receipt@example.org\r\n"
                                                     "MIME-Version: 1.0\r\n"
                                                     "Content-Type: text/plain; charset=utf-8\r\n"
                                                     "Content-Transfer-Encoding: quoted-printable\r\n"
                                                     "\r\n"
                                                     "a\r\nb\r\nc=\r\n"));
}

void TestMailEncoder::aMailWithAllPartsIsWrittenToTheOctet()
{
    MailMessage mail = message();
    mail.From = {u"sender@[192.0.2.1]"_s, QString()};
    mail.Format = MailMessage::Html;
    mail.Charset = u"iso-8859-1"_s;
    mail.Content = u"<p>5 €<img src='%1'>\n"_s.arg(write(u"p.png"_s, png));
    mail.Attachments.Add({u" ä "_s, write(u"a.txt"_s, "text")});
    mail.Attachments.Add({u" \t "_s, write(u"b.pdf"_s, "%PDF-1.4\n")});
    QByteArray octets = withoutChance(encode(mail));
    octets = octets.sliced(octets.indexOf("MIME-Version"));
    QCOMPARE(octets, QByteArray("MIME-Version: 1.0\r\n"
                                "Content-Type: multipart/mixed; boundary=\"=_#.1\"\r\n"
                                "\r\n"
                                "--=_#.1\r\n"
                                "Content-Type: multipart/alternative; boundary=\"=_#.2\"\r\n"
                                "\r\n"
                                "--=_#.2\r\n"
                                "Content-Type: text/plain; charset=utf-8\r\n"
                                "Content-Transfer-Encoding: quoted-printable\r\n"
                                "\r\n"
                                "5 =E2=82=AC\r\n"
                                "\r\n"
                                "--=_#.2\r\n"
                                "Content-Type: multipart/related; type=\"text/html\";\r\n boundary=\"=_#.3\"\r\n"
                                "\r\n"
                                "--=_#.3\r\n"
                                "Content-Type: text/html; charset=iso-8859-1\r\n"
                                "Content-Transfer-Encoding: 7bit\r\n"
                                "\r\n"
                                "<p>5 &#8364;<img src='cid:part1.#@mail'>\r\n"
                                "\r\n"
                                "--=_#.3\r\n"
                                "Content-Type: image/png; name=\"p.png\"\r\n"
                                "Content-Transfer-Encoding: base64\r\n"
                                "Content-ID: <part1.#@mail>\r\n"
                                "Content-Disposition: inline; filename=\"p.png\"\r\n"
                                "\r\n" +
                                png.toBase64() +
                                "\r\n"
                                "--=_#.3--\r\n"
                                "--=_#.2--\r\n"
                                "--=_#.1\r\n"
                                "Content-Type: text/plain; name=\"=?UTF-8?B?w6Q=?=\"\r\n"
                                "Content-Transfer-Encoding: base64\r\n"
                                "Content-Disposition: attachment; filename*=UTF-8''%C3%A4\r\n"
                                "\r\n"
                                "dGV4dA==\r\n"
                                "--=_#.1\r\n"
                                "Content-Type: application/pdf; name=\"b.pdf\"\r\n"
                                "Content-Transfer-Encoding: base64\r\n"
                                "Content-Disposition: attachment; filename=\"b.pdf\"\r\n"
                                "\r\n"
                                "JVBERi0xLjQK\r\n"
                                "--=_#.1--\r\n"));
}

void TestMailEncoder::blanksAroundACharsetDoNotCount()
{
    for (const QString &charset : {u" koi8-r"_s, u"koi8-r "_s, u"\tkoi8-r\r\n"_s}) {
        MailMessage mail = message();
        mail.Charset = charset;
        QCOMPARE(headerOf(encode(mail), "Content-Type"), QByteArray("text/plain; charset=koi8-r"));
    }
    MailMessage mail = message();
    mail.Charset = u" UTF-8 "_s;
    QCOMPARE(headerOf(encode(mail), "Content-Type"), QByteArray("text/plain; charset=utf-8"));
}

void TestMailEncoder::onlyWhatDoesNotFitItsCharsetIsUtf8()
{
    const auto charsets = [this](const QString &html) {
        MailMessage mail = message();
        mail.Format = MailMessage::Html;
        mail.Charset = u"iso-8859-1"_s;
        mail.Content = html;
        QByteArrayList found;
        const QByteArray octets = encode(mail);
        for (qsizetype at = octets.indexOf("charset="); at >= 0; at = octets.indexOf("charset=", at + 1)) {
            found.append(octets.mid(at + 8, octets.indexOf('\r', at) - at - 8));
        }
        return found.join(' ');
    };
    QCOMPARE(charsets(u"ü"_s), "iso-8859-1 iso-8859-1"_ba);
    QCOMPARE(charsets(u"€"_s), "utf-8 iso-8859-1"_ba);
    QCOMPARE(charsets(u"<style>€</style>ü"_s), "iso-8859-1 utf-8"_ba);
    QCOMPARE(charsets(QString(QChar(0xD800))), "utf-8 iso-8859-1"_ba);
}

void TestMailEncoder::aDocumentNamesTheCharsetThatItTravelsIn()
{
    const auto document = [this](const QString &html) {
        MailMessage mail = message();
        mail.Format = MailMessage::Html;
        mail.Charset = u"iso-8859-1"_s;
        mail.Content = html;
        const QByteArray octets = encode(mail).replace("=\r\n", "");
        return octets.mid(octets.indexOf("<meta"), octets.indexOf("</i>") - octets.indexOf("<meta"));
    };
    QCOMPARE(document(u"<meta charset=x><i>ü</i>"_s), "<meta charset=3Diso-8859-1><i>=FC"_ba);
    QCOMPARE(document(u"<meta charset=x><i>€</i>"_s), "<meta charset=3Diso-8859-1><i>&#8364;"_ba.replace("=3D", "="));
    // What stands in a script or a style takes no references, so that the whole document moves.
    QCOMPARE(document(u"<meta charset=x><style>€</style><i>ü</i>"_s),
             "<meta charset=3Dutf-8><style>=E2=82=AC</style><i>=C3=BC"_ba);
}

void TestMailEncoder::aTextInBase64EndsWithItsLastLine()
{
    MailMessage mail = message();
    mail.Format = MailMessage::Html;
    mail.Content = u"日本語"_s;
    const QByteArray octets = encode(mail);
    QCOMPARE(octets.count("Content-Transfer-Encoding: base64"), 2);
    QCOMPARE(octets.count("\r\n\r\n" + u"日本語"_s.toUtf8().toBase64() + "\r\n--"), 1);
    QCOMPARE(octets.count("\r\n\r\n" + u"日本語\r\n"_s.toUtf8().toBase64() + "\r\n--"), 1);
}

void TestMailEncoder::theTextVersionHasNoHalfCharacters()
{
    for (const QString &charset : {u"utf-8"_s, u"iso-8859-1"_s}) {
        MailMessage mail = message();
        mail.Format = MailMessage::Html;
        mail.Charset = charset;
        mail.Content = u"half a pair: "_s + QChar(0xD800);
        QCOMPARE(encode(mail).count("half a pair: =EF=BF=BD"), charset == u"utf-8" ? 2 : 1);
    }
}

QTEST_GUILESS_MAIN(TestMailEncoder)
#include "test_mailencoder.moc"
