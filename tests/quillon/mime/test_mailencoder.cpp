#include "mailencoderbench.h"
#include "quillon/mail/transfercoding.h"

#include <QRandomGenerator>

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

QTEST_GUILESS_MAIN(TestMailEncoder)
#include "test_mailencoder.moc"
