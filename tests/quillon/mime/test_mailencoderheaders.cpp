#include "mailencoderbench.h"

#include <QMap>
#include <QSet>
#include <QTimeZone>

using namespace Qt::StringLiterals;
using namespace quillon;

/// The fields at the head of a mail: what each of them says, and what never gets into one.
class TestMailEncoderHeaders : public QObject, private MailEncoderBench {
    Q_OBJECT

private Q_SLOTS:
    void bccIsNeverNamed();
    void mailWithoutNamedRecipientsIsAddressedToNobody();
    void replyToOnlyWithAnAddress();
    void dateAsGivenGetsTheZone();
    void dateAsGivenGetsTheZone_data();
    void missingDateIsTheMoment();
    void aDateThatIsNoneIsAClearError();
    void messageIdIsUniqueAndOfTheSendersDomain();
    void priorityHeadersAsMailersReadThem();
    void receiptIsAskedForOnlyWithAnAddress();
    void domainInItsAsciiForm();
    void localPartBeyondAsciiNeedsSmtpUtf8();
    void anAddressOfBlanksIsNone();
    void blanksAroundAnAddressDoNotCount();
    void oneAddressBeyondAsciiIsEnough();
    void invalidAddressIsAClearError();
    void invalidAddressIsAClearError_data();
    void displayNamesAreQuotedOrEncoded();
    void displayNamesAreQuotedOrEncoded_data();
    void fileNamesFollowRfc2231();
};

void TestMailEncoderHeaders::bccIsNeverNamed()
{
    MailMessage mail = message();
    mail.CC.Add({u"cc@example.com"_s, QString()});
    mail.BCC.Add({u"hidden@example.com"_s, u"Hidden Person"_s});
    const QByteArray octets = encode(mail);
    QVERIFY(!octets.toLower().contains("bcc") && !octets.toLower().contains("hidden"));
    QCOMPARE(headerOf(octets, "To"), QByteArray("to@example.com"));
    QCOMPARE(headerOf(octets, "Cc"), QByteArray("cc@example.com"));
}

void TestMailEncoderHeaders::mailWithoutNamedRecipientsIsAddressedToNobody()
{
    MailMessage mail = message();
    mail.To.Clear();
    mail.BCC.Add({u"hidden@example.com"_s, QString()});
    const QByteArray octets = encode(mail);
    QCOMPARE(headerOf(octets, "To"), QByteArray("undisclosed-recipients:;"));
    QVERIFY(headerOf(octets, "Cc").isNull());
}

void TestMailEncoderHeaders::replyToOnlyWithAnAddress()
{
    MailMessage mail = message();
    mail.ReplyTo.Name = u"Nobody"_s;
    QVERIFY(headerOf(encode(mail), "Reply-To").isNull());
    mail.ReplyTo.Address = u"reply@example.org"_s;
    QCOMPARE(headerOf(encode(mail), "Reply-To"), QByteArray("Nobody <reply@example.org>"));
}

void TestMailEncoderHeaders::dateAsGivenGetsTheZone_data()
{
    QTest::addColumn<QString>("date");
    QTest::addColumn<QByteArray>("expected");
    QTest::newRow("full names") << u"Saturday, 21 November 2026 14:05:09"_s
                                << QByteArray("Sat, 21 Nov 2026 14:05:09 +0100");
    QTest::newRow("short names") << u"Sat, 1 Nov 2026 04:05:09"_s << QByteArray("Sun, 1 Nov 2026 04:05:09 +0100");
    QTest::newRow("summer") << u"Wed, 1 July 2026 12:00:00"_s << QByteArray("Wed, 1 Jul 2026 12:00:00 +0200");
    QTest::newRow("no weekday") << u"1 May 2020 1:02"_s << QByteArray("Fri, 1 May 2020 01:02:00 +0200");
    QTest::newRow("no date") << u"Someday\r\nX-Evil: 1"_s << QByteArray();
    QTest::newRow("no such day") << u"Mon, 30 February 2026 12:00:00"_s << QByteArray();
    for (const QString &wrong :
         {u"1 May 999 1:02"_s, u"1 May 02026 1:02"_s, u"1 Ma 2026 1:02"_s, u"1 Mayo 2026 1:02"_s, u"1 2026 1:02"_s,
          u"1 May 2026"_s, u"1 May 2026 1:02 x"_s, u"1 May 2026 1"_s, u"1 May 2026 1:02:03:04"_s,
          u"1 May 2026 001:02"_s, u"1 May 2026 1:002"_s, u"1 May 2026 1:x"_s, u"1 May 2026 24:00"_s,
          u"1 May 2026 23:60"_s, u"1 May 2026 23:59:60"_s, u"1 May 2026 :"_s, u"29 February 2026 1:02"_s,
          u"0 May 2026 1:02"_s, u"May 1 2026 1:02"_s}) {
        QTest::newRow(qPrintable(u"no date: "_s + wrong)) << wrong << QByteArray();
    }
    QTest::newRow("end of the day") << u"31 DECEMBER 2026 23:59:59"_s << QByteArray("Thu, 31 Dec 2026 23:59:59 +0100");
    QTest::newRow("beginning of the day")
        << u"\t1  jan\r\n2026  00:00:00 "_s << QByteArray("Thu, 1 Jan 2026 00:00:00 +0100");
    QTest::newRow("half a name") << u"Someday, 29 Februa 2028 9:8:7"_s << QByteArray("Tue, 29 Feb 2028 09:08:07 +0100");
    QTest::newRow("no such time") << u"Mon, 3 February 2026 25:00:00"_s << QByteArray();
    QTest::newRow("none") << QString() << QByteArray("Sat, 21 Nov 2026 14:05:09 +0100");
    QTest::newRow("blanks") << u" \t\r\n "_s << QByteArray("Sat, 21 Nov 2026 14:05:09 +0100");
}

void TestMailEncoderHeaders::dateAsGivenGetsTheZone()
{
    QFETCH(QString, date);
    QFETCH(QByteArray, expected);
    const QDateTime now(QDate(2026, 11, 21), QTime(14, 5, 9), QTimeZone("Europe/Berlin"));
    QCOMPARE(mailDate(date, now), expected);
}

void TestMailEncoderHeaders::missingDateIsTheMoment()
{
    QCOMPARE(headerOf(encode(message()), "Date"), QByteArray("Sat, 21 Nov 2026 14:05:09 +0100"));
    const QDateTime west = QDateTime::fromString(u"2026-11-05T04:05:09-03:30"_s, Qt::ISODate);
    QCOMPARE(mailDate(u"2 May 0999 1:02"_s, QDateTime(QDate(2026, 1, 1), QTime(0, 0), Qt::UTC)),
             QByteArray("Thu, 2 May 0999 01:02:00 +0000"));
    const QDateTime little = QDateTime(QDate(2026, 1, 1), QTime(1, 2, 3), Qt::OffsetFromUTC, -30 * 60);
    QCOMPARE(mailDate(QString(), little), QByteArray("Thu, 1 Jan 2026 01:02:03 -0030"));
    QCOMPARE(mailDate(QString(), west), QByteArray("Thu, 5 Nov 2026 04:05:09 -0330"));
    QCOMPARE(mailDate(u"Sat, 2 May 2026 00:00:00"_s, west), QByteArray("Sat, 2 May 2026 00:00:00 -0330"));
}

void TestMailEncoderHeaders::aDateThatIsNoneIsAClearError()
{
    // Another date in its place would go out with nobody knowing.
    MailMessage mail = message();
    mail.Date = u"Someday\r\nX-Evil: 1"_s;
    const EncodedMail encoded = m_encoder.encode(mail, m_now);
    QCOMPARE(encoded.ErrorText, u"The mail cannot be made: \"Someday X-Evil: 1\" is not a valid date."_s);
    QVERIFY(encoded.Stretches.isEmpty());
}

void TestMailEncoderHeaders::messageIdIsUniqueAndOfTheSendersDomain()
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

void TestMailEncoderHeaders::priorityHeadersAsMailersReadThem()
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

void TestMailEncoderHeaders::receiptIsAskedForOnlyWithAnAddress()
{
    MailMessage mail = message();
    mail.ReceiptTo = {u"receipt@example.org"_s, u"Receipts"_s};
    QVERIFY(headerOf(encode(mail), "Disposition-Notification-To").isNull());
    mail.RequestReceipt = true;
    QCOMPARE(headerOf(encode(mail), "Disposition-Notification-To"), QByteArray("Receipts <receipt@example.org>"));
    mail.ReceiptTo.Address.clear();
    QVERIFY(headerOf(encode(mail), "Disposition-Notification-To").isNull());
}

void TestMailEncoderHeaders::domainInItsAsciiForm()
{
    MailMessage mail = message();
    mail.To.Clear();
    mail.To.Add({u"info@bücher.example"_s, QString()});
    mail.To.Add({u"root@[192.0.2.1]"_s, QString()});
    const EncodedMail encoded = m_encoder.encode(mail, m_now);
    QVERIFY(!encoded.NeedsSmtpUtf8);
    QCOMPARE(headerOf(mailOctets(encoded), "To"), QByteArray("info@xn--bcher-kva.example, root@[192.0.2.1]"));
}

void TestMailEncoderHeaders::localPartBeyondAsciiNeedsSmtpUtf8()
{
    MailMessage mail = message();
    QVERIFY(!m_encoder.encode(mail, m_now).NeedsSmtpUtf8);
    mail.CC.Add({u"jürgen@bücher.example"_s, QString()});
    const EncodedMail encoded = m_encoder.encode(mail, m_now);
    QVERIFY(encoded.NeedsSmtpUtf8);
    QCOMPARE(headerOf(mailOctets(encoded), "Cc"), QByteArray("jürgen@xn--bcher-kva.example"));
}

void TestMailEncoderHeaders::anAddressOfBlanksIsNone()
{
    MailMessage mail = message();
    mail.ReplyTo = {u" \t"_s, u"Name"_s};
    mail.ReceiptTo = {u" "_s, u"Name"_s};
    mail.RequestReceipt = true;
    mail.To.Add({u"  "_s, u"Nobody"_s});
    mail.To.Add({u"b@c"_s, QString()});
    mail.CC.Add({u"\r\n"_s, u"Nobody"_s});
    const QByteArray octets = encode(mail);
    QCOMPARE(headerOf(octets, "To"), QByteArray("to@example.com, b@c"));
    for (const char *name : {"Reply-To", "Cc", "Disposition-Notification-To"}) {
        QVERIFY2(headerOf(octets, name).isNull(), name);
    }
    mail.From.Address = u" "_s;
    QVERIFY(!m_encoder.encode(mail, m_now).ErrorText.isEmpty());
}

void TestMailEncoderHeaders::blanksAroundAnAddressDoNotCount()
{
    const QString padded = u" \ta@b\r\n"_s;
    MailMessage mail = message();
    mail.From = mail.ReplyTo = mail.ReceiptTo = mail.To.Item(1) = {padded, QString()};
    mail.CC.Add({padded, QString()});
    mail.RequestReceipt = true;
    const QByteArray octets = encode(mail);
    for (const char *name : {"From", "Reply-To", "To", "Cc", "Disposition-Notification-To"}) {
        QCOMPARE(headerOf(octets, name), QByteArray("a@b"));
    }
    QVERIFY(headerOf(octets, "Message-ID").endsWith("@b>"));
}

void TestMailEncoderHeaders::oneAddressBeyondAsciiIsEnough()
{
    const auto needs = [this](const QList<QString> &addresses) { // sender, answer, receipt, To, CC
        MailMessage mail = message();
        mail.From.Address = addresses[0];
        mail.ReplyTo.Address = addresses[1];
        mail.ReceiptTo.Address = addresses[2];
        mail.RequestReceipt = true;
        mail.To.Item(1).Address = addresses[3];
        mail.CC.Add({addresses[4], QString()});
        return m_encoder.encode(mail, m_now).NeedsSmtpUtf8;
    };
    QVERIFY(!needs({u"a@ü"_s, u"a@ü"_s, u"a@ü"_s, u"a@ü"_s, u"a@ü"_s}));
    for (qsizetype place = 0; place < 5; ++place) {
        QList<QString> addresses(5, u"a@b"_s);
        addresses[place] = u"ü@b"_s;
        QVERIFY2(needs(addresses), QByteArray::number(place).constData());
    }
}

void TestMailEncoderHeaders::invalidAddressIsAClearError_data()
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

void TestMailEncoderHeaders::invalidAddressIsAClearError()
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

void TestMailEncoderHeaders::displayNamesAreQuotedOrEncoded_data()
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

void TestMailEncoderHeaders::displayNamesAreQuotedOrEncoded()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, expected);
    MailMessage mail = message();
    mail.To.Item(1).Name = name;
    QCOMPARE(headerOf(encode(mail), "To"), expected);
}

void TestMailEncoderHeaders::fileNamesFollowRfc2231()
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

QTEST_GUILESS_MAIN(TestMailEncoderHeaders)
#include "test_mailencoderheaders.moc"
