#include "mailoctets.h"
#include "quillon/mail/encodedmail.h"
#include "quillon/mail/mailheaders.h"
#include "quillon/mail/transfercoding.h"

#include <QMap>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <QTimeZone>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace quillon;

class TestMailEncoder : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void bccIsNeverNamed();
    void mailWithoutNamedRecipientsIsAddressedToNobody();
    void replyToOnlyWithAnAddress();
    void dateAsGivenGetsTheZone();
    void dateAsGivenGetsTheZone_data();
    void missingDateIsTheMoment();
    void messageIdIsUniqueAndOfTheSendersDomain();
    void priorityHeadersAsMailersReadThem();
    void receiptIsAskedForOnlyWithAnAddress();
    void domainInItsAsciiForm();
    void localPartBeyondAsciiNeedsSmtpUtf8();
    void invalidAddressIsAClearError();
    void invalidAddressIsAClearError_data();
    void displayNamesAreQuotedOrEncoded();
    void displayNamesAreQuotedOrEncoded_data();
    void fileNamesFollowRfc2231();
    void sizeIsExact();
    void everyLineIsShortSevenBitAndEndsWithCrLf();
    void anyOctetsComeBackFromQuotedPrintable();
    void plainTextBeyondItsCharsetIsUtf8();
    void unusableCharsetIsUtf8();
    void plainShortTextTravelsAsItIs();
    void boundaryNeverOccursInAPart();
    void htmlIsAlternativeWithTextVersionFirst();
    void localPicturesBecomeRelatedPartsOnce();
    void foreignReferencesAreLeftAlone();
    void onlyShownFilesBecomeRelated();
    void attachmentsAreTypedByContent();
    void attachmentsAreNotReadWhole();
    void attachmentThatCannotBeReadIsAClearError();
    void attachmentWithoutPermissionIsAClearError();
    void changedFileIsLookedIntoAgain();

private:
    QString write(const QString &name, const QByteArray &content);
    MailMessage message() const;
    QByteArray encode(const MailMessage &message);

    QTemporaryDir m_folder;
    MailEncoder m_encoder;
    QDateTime m_now = QDateTime::fromString(u"2026-11-21T14:05:09+01:00"_s, Qt::ISODate);
};

namespace {
const QByteArray png = QByteArray::fromHex("89504e470d0a1a0a0000000d4948445200000001000000010802000000907753de");
const QByteArray gif = "GIF89a\x01\x01";
} // namespace

QString TestMailEncoder::write(const QString &name, const QByteArray &content)
{
    QFile file(m_folder.filePath(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size()) {
        qFatal("cannot write %s", qPrintable(file.fileName()));
    }
    return file.fileName();
}

MailMessage TestMailEncoder::message() const
{
    MailMessage result;
    result.From = {u"sender@example.org"_s, u"The Sender"_s};
    result.To.Add({u"to@example.com"_s, QString()});
    result.Subject = u"Subject"_s;
    result.Content = u"Content\r\n"_s;
    return result;
}

/// Fails the test where the mail cannot be encoded or its told size is wrong.
QByteArray TestMailEncoder::encode(const MailMessage &mail)
{
    const EncodedMail encoded = m_encoder.encode(mail, m_now);
    const QByteArray octets = mailOctets(encoded);
    if (!encoded.ErrorText.isEmpty() || encoded.Size != octets.size()) {
        QTest::qFail(qPrintable(u"size %1 is not %2: %3"_s.arg(encoded.Size).arg(octets.size()).arg(encoded.ErrorText)),
                     __FILE__, __LINE__);
    }
    return octets;
}

void TestMailEncoder::bccIsNeverNamed()
{
    MailMessage mail = message();
    mail.CC.Add({u"cc@example.com"_s, QString()});
    mail.BCC.Add({u"hidden@example.com"_s, u"Hidden Person"_s});
    const QByteArray octets = encode(mail);
    QVERIFY(!octets.toLower().contains("bcc") && !octets.toLower().contains("hidden"));
    QCOMPARE(headerOf(octets, "To"), QByteArray("to@example.com"));
    QCOMPARE(headerOf(octets, "Cc"), QByteArray("cc@example.com"));
}

void TestMailEncoder::mailWithoutNamedRecipientsIsAddressedToNobody()
{
    MailMessage mail = message();
    mail.To.Clear();
    mail.BCC.Add({u"hidden@example.com"_s, QString()});
    const QByteArray octets = encode(mail);
    QCOMPARE(headerOf(octets, "To"), QByteArray("undisclosed-recipients:;"));
    QVERIFY(headerOf(octets, "Cc").isNull());
}

void TestMailEncoder::replyToOnlyWithAnAddress()
{
    MailMessage mail = message();
    mail.ReplyTo.Name = u"Nobody"_s;
    QVERIFY(headerOf(encode(mail), "Reply-To").isNull());
    mail.ReplyTo.Address = u"reply@example.org"_s;
    QCOMPARE(headerOf(encode(mail), "Reply-To"), QByteArray("Nobody <reply@example.org>"));
}

void TestMailEncoder::dateAsGivenGetsTheZone_data()
{
    QTest::addColumn<QString>("date");
    QTest::addColumn<QByteArray>("expected");
    QTest::newRow("full names") << u"Saturday, 21 November 2026 14:05:09"_s
                                << QByteArray("Sat, 21 Nov 2026 14:05:09 +0100");
    QTest::newRow("short names") << u"Sat, 1 Nov 2026 04:05:09"_s << QByteArray("Sun, 1 Nov 2026 04:05:09 +0100");
    QTest::newRow("summer") << u"Wed, 1 July 2026 12:00:00"_s << QByteArray("Wed, 1 Jul 2026 12:00:00 +0200");
    QTest::newRow("no weekday") << u"1 May 2020 1:02"_s << QByteArray("Fri, 1 May 2020 01:02:00 +0200");
    QTest::newRow("no date") << u"Someday\r\nX-Evil: 1"_s << QByteArray("Sat, 21 Nov 2026 14:05:09 +0100");
    QTest::newRow("no such day") << u"Mon, 30 February 2026 12:00:00"_s
                                 << QByteArray("Sat, 21 Nov 2026 14:05:09 +0100");
    QTest::newRow("no such time") << u"Mon, 3 February 2026 25:00:00"_s
                                  << QByteArray("Sat, 21 Nov 2026 14:05:09 +0100");
}

void TestMailEncoder::dateAsGivenGetsTheZone()
{
    QFETCH(QString, date);
    QFETCH(QByteArray, expected);
    const QDateTime now(QDate(2026, 11, 21), QTime(14, 5, 9), QTimeZone("Europe/Berlin"));
    QCOMPARE(mailDate(date, now), expected);
}

void TestMailEncoder::missingDateIsTheMoment()
{
    QCOMPARE(headerOf(encode(message()), "Date"), QByteArray("Sat, 21 Nov 2026 14:05:09 +0100"));
    const QDateTime west = QDateTime::fromString(u"2026-11-05T04:05:09-03:30"_s, Qt::ISODate);
    QCOMPARE(mailDate(QString(), west), QByteArray("Thu, 5 Nov 2026 04:05:09 -0330"));
    QCOMPARE(mailDate(u"Sat, 2 May 2026 00:00:00"_s, west), QByteArray("Sat, 2 May 2026 00:00:00 -0330"));
}

void TestMailEncoder::messageIdIsUniqueAndOfTheSendersDomain()
{
    MailMessage mail = message();
    mail.From.Address = u"a@münchen.example"_s;
    QSet<QByteArray> ids;
    for (int i = 0; i < 1000; ++i) {
        const QByteArray id = headerOf(encode(mail), "Message-ID");
        QVERIFY2(id.startsWith('<') && id.endsWith("@xn--mnchen-3ya.example>"), id.constData());
        ids.insert(id);
    }
    QCOMPARE(ids.size(), 1000);
}

void TestMailEncoder::priorityHeadersAsMailersReadThem()
{
    MailMessage mail = message();
    mail.Priority = u"2"_s;
    QCOMPARE(headerOf(encode(mail), "X-Priority"), QByteArray("2 (High)"));
    QCOMPARE(headerOf(encode(mail), "Importance"), QByteArray("high"));
    QCOMPARE(headerOf(encode(mail), "X-MSMail-Priority"), QByteArray("High"));
    mail.Priority = u"4"_s;
    QCOMPARE(headerOf(encode(mail), "X-Priority"), QByteArray("4 (Low)"));
    QCOMPARE(headerOf(encode(mail), "Importance"), QByteArray("low"));
    mail.Priority = u"3"_s;
    QVERIFY(headerOf(encode(mail), "X-Priority").isNull());
    QVERIFY(headerOf(encode(mail), "Importance").isNull());
    mail.Priority = u"2\r\nX-Evil: 1"_s;
    QVERIFY(!encode(mail).contains("X-Evil"));
}

void TestMailEncoder::receiptIsAskedForOnlyWithAnAddress()
{
    MailMessage mail = message();
    mail.ReceiptTo = {u"receipt@example.org"_s, u"Receipts"_s};
    QVERIFY(headerOf(encode(mail), "Disposition-Notification-To").isNull());
    mail.RequestReceipt = true;
    QCOMPARE(headerOf(encode(mail), "Disposition-Notification-To"), QByteArray("Receipts <receipt@example.org>"));
    mail.ReceiptTo.Address.clear();
    QVERIFY(headerOf(encode(mail), "Disposition-Notification-To").isNull());
}

void TestMailEncoder::domainInItsAsciiForm()
{
    MailMessage mail = message();
    mail.To.Clear();
    mail.To.Add({u"info@bücher.example"_s, QString()});
    mail.To.Add({u"root@[192.0.2.1]"_s, QString()});
    const EncodedMail encoded = m_encoder.encode(mail, m_now);
    QVERIFY(!encoded.NeedsSmtpUtf8);
    QCOMPARE(headerOf(mailOctets(encoded), "To"), QByteArray("info@xn--bcher-kva.example, root@[192.0.2.1]"));
}

void TestMailEncoder::localPartBeyondAsciiNeedsSmtpUtf8()
{
    MailMessage mail = message();
    QVERIFY(!m_encoder.encode(mail, m_now).NeedsSmtpUtf8);
    mail.CC.Add({u"jürgen@bücher.example"_s, QString()});
    const EncodedMail encoded = m_encoder.encode(mail, m_now);
    QVERIFY(encoded.NeedsSmtpUtf8);
    QCOMPARE(headerOf(mailOctets(encoded), "Cc"), QByteArray("jürgen@xn--bcher-kva.example"));
}

void TestMailEncoder::invalidAddressIsAClearError_data()
{
    QTest::addColumn<QString>("address");
    for (const QString &address :
         {u"nobody"_s, u"@example.org"_s, u"a@"_s, u"a@b@c d"_s, u"a@b.example, c@d.example"_s, u"a@b.example>"_s,
          u"a b@example.org"_s, u"a@example.org\r\nBcc: x@example.com"_s, u"a\r\n\r\nbody@example.org"_s,
          u"a"_s + QChar(0) + u"@example.org"_s, u"\"a@example.org"_s, u"\"a\"b\"@example.org"_s, u"a@exa..mple"_s,
          u"a@[1.2.3.4"_s, u"a<b@example.org"_s, QString(u"a"_s + QChar(0xD800) + u"@example.org"_s)}) {
        QTest::newRow(address.toUtf8().toPercentEncoding().constData()) << address;
    }
}

void TestMailEncoder::invalidAddressIsAClearError()
{
    QFETCH(QString, address);
    for (int place = 0; place < 4; ++place) {
        MailMessage mail = message();
        mail.RequestReceipt = true;
        QString &target = place == 0   ? mail.From.Address
                          : place == 1 ? mail.ReplyTo.Address
                          : place == 2 ? mail.ReceiptTo.Address
                                       : mail.To.Item(1).Address;
        target = address;
        const EncodedMail encoded = m_encoder.encode(mail, m_now);
        QVERIFY2(encoded.ErrorText.contains(u"valid"_s) && encoded.ErrorText.endsWith(u'.'),
                 qPrintable(encoded.ErrorText));
        QVERIFY(!encoded.ErrorText.contains(u'\n') && encoded.Stretches.isEmpty());
    }
}

void TestMailEncoder::displayNamesAreQuotedOrEncoded_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("expected");
    QTest::newRow("none") << QString() << QByteArray("to@example.com");
    QTest::newRow("atoms") << u"John Doe"_s << QByteArray("John Doe <to@example.com>");
    QTest::newRow("comma") << u"Doe, John"_s << QByteArray("\"Doe, John\" <to@example.com>");
    QTest::newRow("quotes") << u"The \"Boss\" \\"_s << QByteArray("\"The \\\"Boss\\\" \\\\\" <to@example.com>");
    QTest::newRow("letters") << u"Jürgen"_s << QByteArray("=?UTF-8?Q?J=C3=BCrgen?= <to@example.com>");
    QTest::newRow("looks encoded") << u"=?utf-8?Q?a?="_s
                                   << QByteArray("=?UTF-8?B?PT91dGYtOD9RP2E/PQ==?= <to@example.com>");
    QTest::newRow("line end") << u"A\r\nBcc: x@example.com"_s
                              << QByteArray("\"A Bcc: x@example.com\" <to@example.com>");
}

void TestMailEncoder::displayNamesAreQuotedOrEncoded()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, expected);
    MailMessage mail = message();
    mail.To.Item(1).Name = name;
    QCOMPARE(headerOf(encode(mail), "To"), expected);
}

void TestMailEncoder::fileNamesFollowRfc2231()
{
    const QString path = write(u"file.txt"_s, "text");
    const QMap<QString, QByteArray> expected{
        {u"plain name.txt"_s, "filename=\"plain name.txt\"\r\n"},
        {u"Grüße.txt"_s, "filename*=UTF-8''Gr%C3%BC%C3%9Fe.txt\r\n"},
        {u"a\"b\\c.txt"_s, "filename*=UTF-8''a%22b%5Cc.txt\r\n"},
        {u"a\r\nX-Evil: 1.txt"_s, "filename=\"a X-Evil: 1.txt\"\r\n"},
    };
    for (auto i = expected.begin(); i != expected.end(); ++i) {
        MailMessage mail = message();
        mail.Attachments.Add({i.key(), path});
        const QByteArray octets = encode(mail);
        QVERIFY2(octets.contains("Content-Disposition: attachment; " + i.value()), octets.constData());
        QVERIFY(!octets.contains("\nX-Evil"));
    }
    MailMessage mail = message();
    mail.Attachments.Add({u"sehr langer Name für eine Datei 😀 "_s.repeated(5) + u".txt"_s, path});
    const QByteArray octets = encode(mail);
    QVERIFY(octets.contains("\r\n filename*0*=UTF-8''sehr") && octets.contains(";\r\n filename*1*="));
}

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

void TestMailEncoder::localPicturesBecomeRelatedPartsOnce()
{
    const QString picture = write(u"my picture ü.png"_s, png);
    const QString sound = write(u"sound.mid"_s, "MThd\0\0\0\6");
    const QString percent = write(u"100%25.gif"_s, gif);
    MailMessage mail = message();
    mail.Format = MailMessage::Html;
    mail.Content = u"<body background=\"%1\"><img src=\"%2\"><img src='%1'><bgsound src=\"%3\"><img src=\"%4\">"_s.arg(
        QString::fromLatin1(QUrl::fromLocalFile(picture).toEncoded()), picture, sound, percent);
    const QByteArray octets = encode(mail).replace("=\r\n", ""); // without the soft breaks in the document
    QCOMPARE(octets.count("Content-ID: <"), 3);
    QCOMPARE(octets.count("cid:"), 5);
    QCOMPARE(octets.count("cid:part1."), 3);
    QVERIFY(octets.contains("Content-Type: multipart/related; type=\"text/html\";"));
    QVERIFY(octets.contains("Content-Disposition: inline;"));
    QVERIFY(octets.contains("image/png") && octets.contains("image/gif") && octets.contains("audio/midi"));
}

void TestMailEncoder::foreignReferencesAreLeftAlone()
{
    MailMessage mail = message();
    mail.Format = MailMessage::Html;
    mail.Content =
        u"<img src=http://x.example/a.png><img src=https://x.example/a.png><img src=cid:abc><img src=\"data:,\">"
        "<img src=//x.example/a.png><img src=/no/such/file.png><img src=a.png><img src=\"/\">"
        "<img src=file:///no/such.png><img src=file://server/share/a.png>"_s;
    const QByteArray octets = encode(mail);
    QVERIFY(!octets.contains("multipart/related") && !octets.contains("Content-ID"));
    QCOMPARE(octets.count("cid:"), 1);
}

void TestMailEncoder::onlyShownFilesBecomeRelated()
{
    MailMessage mail = message();
    mail.Format = MailMessage::Html;
    mail.Content = u"<img src=\"%1\"><img src=/etc/passwd><img src=/dev/zero>"_s.arg(write(u"key"_s, "secret text"));
    QVERIFY(!encode(mail).contains("Content-ID"));
}

void TestMailEncoder::attachmentsAreTypedByContent()
{
    const QMap<QString, QPair<QByteArray, QByteArray>> expected{
        {u"wrong.txt"_s, {png, "image/png"}},
        {u"noname"_s, {"%PDF-1.4\n", "application/pdf"}},
        {u"table.csv"_s, {"a,b\n1,2\n", "text/csv"}},
        {u"unknown"_s, {QByteArray::fromHex("0001fe02ff8081"), "application/octet-stream"}},
        {u"mail.eml"_s, {"From: a@example.org\nSubject: x\n\nbody\n", "application/octet-stream"}},
        {u"empty"_s, {QByteArray(), "application/octet-stream"}},
    };
    for (auto i = expected.begin(); i != expected.end(); ++i) {
        MailMessage mail = message();
        mail.Attachments.Add({QString(), write(i.key(), i->first)});
        const QByteArray octets = encode(mail);
        QVERIFY2(octets.contains("Content-Type: " + i->second + "; name=\"" + i.key().toUtf8() + '"'),
                 octets.constData());
    }
}

void TestMailEncoder::attachmentsAreNotReadWhole()
{
    // A file of one terabyte without content: encoding its description is quick, reading it would never end.
    const QString path = write(u"huge.bin"_s, "start");
    constexpr qint64 terabyte = Q_INT64_C(1) << 40;
    if (::truncate(QFile::encodeName(path).constData(), terabyte) != 0) {
        QSKIP("the file system of the temporary folder takes no sparse file of one terabyte");
    }
    MailMessage mail = message();
    mail.Attachments.Add({u"huge.bin"_s, path});
    const EncodedMail encoded = m_encoder.encode(mail, m_now);
    QVERIFY(encoded.ErrorText.isEmpty());
    QCOMPARE(encoded.Stretches.size(), 3);
    QCOMPARE(encoded.Stretches[1].FileSize, terabyte);
    const qint64 text = encoded.Stretches[0].Bytes.size() + encoded.Stretches[2].Bytes.size();
    QCOMPARE(encoded.Size - text, (terabyte + 2) / 3 * 4 + (terabyte + 56) / 57 * 2);
    QFile::remove(path);
}

void TestMailEncoder::attachmentThatCannotBeReadIsAClearError()
{
    const QString pipe = m_folder.filePath(u"pipe"_s);
    QCOMPARE(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    for (const QString &path : {u"/no/such/file"_s, m_folder.path(), pipe, u"/dev/null"_s, QString()}) {
        MailMessage mail = message();
        mail.Attachments.Add({u"a"_s, path});
        const EncodedMail encoded = m_encoder.encode(mail, m_now);
        QVERIFY(encoded.ErrorText.contains(u'"' + path + u'"') && encoded.ErrorText.endsWith(u'.'));
        QVERIFY(encoded.Stretches.isEmpty());
    }
}

void TestMailEncoder::attachmentWithoutPermissionIsAClearError()
{
    if (::geteuid() == 0) {
        QSKIP("root may read every file");
    }
    const QString path = write(u"closed.txt"_s, "text");
    QVERIFY(QFile::setPermissions(path, QFileDevice::Permissions()));
    MailMessage mail = message();
    mail.Attachments.Add({u"a"_s, path});
    QVERIFY(m_encoder.encode(mail, m_now).ErrorText.contains(path));
}

void TestMailEncoder::changedFileIsLookedIntoAgain()
{
    MailMessage mail = message();
    mail.Attachments.Add({u"a"_s, write(u"changing"_s, png)});
    QVERIFY(encode(mail).contains("image/png"));
    write(u"changing"_s, "%PDF-1.4\n%");
    QVERIFY(encode(mail).contains("application/pdf"));
}

QTEST_GUILESS_MAIN(TestMailEncoder)
#include "test_mailencoder.moc"
