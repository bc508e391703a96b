#include "mailcases.h"
#include "mailoctets.h"
#include "mailreader.h"
#include "quillon/mail/encodedword.h"
#include "quillon/mail/headerfield.h"
#include "quillon/mail/htmltext.h"
#include "quillon/text/lineends.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QTest>
#include <QTimeZone>

using namespace Qt::StringLiterals;
using namespace quillon;

class TestMimeReaders : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void pythonReadsEveryOfferedCharset();
    void pythonReadsAwkwardBodies();
    void pythonReadsAwkwardNames();
    void pythonSeesNoInjectedHeader();
    void pythonReadsRelatedPictures();
    void pythonReadsTwentyMegabytes();
    void gmimeReadsEveryOfferedCharset();
    void gmimeReadsAwkwardBodies();
    void gmimeReadsAwkwardNames();
    void gmimeSeesNoInjectedHeader();
    void gmimeReadsRelatedPictures();
    void gmimeReadsTwentyMegabytes();
    void mailparserReadsEveryOfferedCharset();
    void mailparserReadsAwkwardBodies();
    void mailparserReadsAwkwardNames();
    void mailparserSeesNoInjectedHeader();
    void mailparserReadsRelatedPictures();
    void mailparserReadsTwentyMegabytes();

private:
    void compare(MailReader reader, const QList<MailCase> &cases);
    void compareOne(const MailReader &reader, const MailCase &mail, const ReadMail &read);
    void relatedPictures(MailReader reader);
    void twentyMegabytes(MailReader reader);

    QTemporaryDir m_folder;
    MailEncoder m_encoder;
};

namespace {

QString shown(const QList<MailAddress> &list)
{
    QStringList result;
    for (const MailAddress &entry : list) {
        result.append(entry.Name + u" <"_s + entry.Address + u'>');
    }
    return result.join(u" | "_s);
}

/// The list as it has to be read: names without what no header can hold and without blanks at their ends.
QString expectedList(QList<MailAddress> list)
{
    for (MailAddress &entry : list) {
        entry.Name = headerText(entry.Name).trimmed();
    }
    return shown(list);
}

QList<MailAddress> entriesOf(const MailAddressList &list)
{
    return {list.begin(), list.end()};
}

QString lines(QString text, const MailReader &reader)
{
    if (reader.NormalisesLines) {
        text.replace(u"\r\n"_s, u"\n"_s);
        text.replace(u'\r', u'\n');
        while (text.endsWith(u'\n')) {
            text.chop(1);
        }
    }
    return text;
}

QByteArray digestOf(const QString &path)
{
    QFile file(path);
    QCryptographicHash hash(QCryptographicHash::Sha256);
    return file.open(QIODevice::ReadOnly) && hash.addData(&file) ? hash.result().toHex() : QByteArray();
}

} // namespace

void TestMimeReaders::compareOne(const MailReader &reader, const MailCase &mail, const ReadMail &read)
{
    const MailMessage &message = mail.Message;
    QCOMPARE(read.Defects, QStringList());
    QCOMPARE(read.Subject, headerText(message.Subject));
    QCOMPARE(shown(read.From), expectedList({message.From}));
    QCOMPARE(shown(read.To), expectedList(entriesOf(message.To)));
    QCOMPARE(shown(read.Cc), expectedList(entriesOf(message.CC)));
    QCOMPARE(shown(read.ReplyTo), message.ReplyTo.Address.isEmpty() ? QString() : expectedList({message.ReplyTo}));
    QVERIFY(!read.Headers.contains(u"x-evil"_s) && !read.Headers.contains(u"bcc"_s));
    QCOMPARE(read.Headers.count(u"subject"_s), 1);
    const QString content = withCrLf(message.Content);
    if (message.Format == MailMessage::Html) {
        QCOMPARE(lines(read.Html, reader), lines(mail.Html.isEmpty() ? content : mail.Html, reader));
        QCOMPARE(lines(read.Text, reader), lines(textOfHtml(content), reader));
    } else {
        QCOMPARE(lines(read.Text, reader), lines(content, reader));
    }
    if (!mail.TextCharset.isEmpty() && !read.TextCharset.isEmpty()) {
        QCOMPARE(read.TextCharset, mail.TextCharset);
    }
    QCOMPARE(read.Files.size(), message.Attachments.Count());
    for (qsizetype i = 0; i < read.Files.size(); ++i) {
        const QString name = headerText(message.Attachments.Item(i + 1).Name).trimmed();
        QCOMPARE(read.Files[i].Name, reader.DecodesWordsInFileNames ? decodeEncodedWords(name) : name);
        QCOMPARE(read.Files[i].Sha256, digestOf(message.Attachments.Item(i + 1).Path));
    }
}

void TestMimeReaders::compare(MailReader reader, const QList<MailCase> &cases)
{
    if (!reader.missing().isEmpty()) {
        QSKIP(qPrintable(reader.missing()));
    }
    const QDateTime now = QDateTime::currentDateTime();
    QStringList paths;
    for (const MailCase &mail : cases) {
        const EncodedMail encoded = m_encoder.encode(mail.Message, now);
        const QByteArray octets = mailOctets(encoded);
        QVERIFY2(encoded.ErrorText.isEmpty(), qPrintable(encoded.ErrorText));
        QCOMPARE(octets.size(), encoded.Size);
        QFile file(m_folder.filePath(u"%1.eml"_s.arg(paths.size())));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(octets) == octets.size());
        paths.append(file.fileName());
    }
    const QList<ReadMail> mails = reader.read(paths);
    QVERIFY2(mails.size() == cases.size(), qPrintable(reader.fault()));
    for (qsizetype i = 0; i < cases.size(); ++i) {
        compareOne(reader, cases[i], mails[i]);
        if (QTest::currentTestFailed()) {
            qWarning("in \"%s\"", qPrintable(cases[i].Name));
            return;
        }
    }
}

void TestMimeReaders::relatedPictures(MailReader reader)
{
    if (!reader.missing().isEmpty()) {
        QSKIP(qPrintable(reader.missing()));
    }
    QFile picture(m_folder.filePath(u"Bild ü.png"_s));
    QVERIFY(picture.open(QIODevice::WriteOnly));
    picture.write(QByteArray::fromHex("89504e470d0a1a0a0000000d49484452"));
    picture.close();
    MailMessage message;
    message.From.Address = u"sender@example.org"_s;
    message.Format = MailMessage::Html;
    message.Content = u"<body background=\"%1\"><img src=\"%1\"><p>Hello</p></body>"_s.arg(picture.fileName());
    message.Attachments.Add({u"other.png"_s, picture.fileName()});
    QFile mail(m_folder.filePath(u"related.eml"_s));
    QVERIFY(mail.open(QIODevice::WriteOnly));
    mail.write(mailOctets(m_encoder.encode(message, QDateTime::currentDateTime())));
    mail.close();
    const QList<ReadMail> mails = reader.read({mail.fileName()});
    QVERIFY2(mails.size() == 1, qPrintable(reader.fault()));
    const ReadMail &read = mails.first();
    QCOMPARE(read.Files.size(), 2);
    const ReadMail::File &related = read.Files.first();
    QCOMPARE(related.Type, QByteArray("image/png"));
    QCOMPARE(related.Name, u"Bild ü.png"_s);
    QCOMPARE(related.Sha256, digestOf(picture.fileName()));
    const QString reference = u"cid:"_s + QString::fromLatin1(related.Id);
    QVERIFY(!related.Id.isEmpty());
    QCOMPARE(read.Html, u"<body background=\"%1\"><img src=\"%1\"><p>Hello</p></body>"_s.arg(reference));
    QVERIFY(read.Files.last().Id.isEmpty());
    QCOMPARE(lines(read.Text, reader), lines(u"Hello\r\n"_s, reader));
}

void TestMimeReaders::twentyMegabytes(MailReader reader)
{
    constexpr qsizetype megabytes = 20;
    QFile file(m_folder.filePath(u"big.bin"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QByteArray block(1024 * 1024, '\0');
    for (qsizetype i = 0; i < megabytes; ++i) {
        for (qsizetype at = 0; at < block.size(); ++at) {
            block[at] = static_cast<char>((at * 31 + i * 7 + (at >> 8)) & 0xFF);
        }
        file.write(block);
    }
    file.write("odd");
    file.close();
    MailCase mail{u"big"_s, MailMessage(), QString(), QString()};
    mail.Message.From.Address = u"sender@example.org"_s;
    mail.Message.To.Add({u"to@example.com"_s, QString()});
    mail.Message.Content = u"see the file\r\n"_s;
    mail.Message.Attachments.Add({u"big.bin"_s, file.fileName()});
    compare(reader, {mail});
}

void TestMimeReaders::pythonReadsEveryOfferedCharset()
{
    compare(MailReader::python(), charsetCases(m_folder));
}
void TestMimeReaders::pythonReadsAwkwardBodies()
{
    compare(MailReader::python(), awkwardBodies());
}
void TestMimeReaders::pythonReadsAwkwardNames()
{
    compare(MailReader::python(), awkwardNames(m_folder));
}
void TestMimeReaders::pythonSeesNoInjectedHeader()
{
    compare(MailReader::python(), headerInjections(m_folder));
}
void TestMimeReaders::pythonReadsRelatedPictures()
{
    relatedPictures(MailReader::python());
}
void TestMimeReaders::pythonReadsTwentyMegabytes()
{
    twentyMegabytes(MailReader::python());
}
void TestMimeReaders::gmimeReadsEveryOfferedCharset()
{
    compare(MailReader::gmime(), charsetCases(m_folder));
}
void TestMimeReaders::gmimeReadsAwkwardBodies()
{
    compare(MailReader::gmime(), awkwardBodies());
}
void TestMimeReaders::gmimeReadsAwkwardNames()
{
    compare(MailReader::gmime(), awkwardNames(m_folder));
}
void TestMimeReaders::gmimeSeesNoInjectedHeader()
{
    compare(MailReader::gmime(), headerInjections(m_folder));
}
void TestMimeReaders::gmimeReadsRelatedPictures()
{
    relatedPictures(MailReader::gmime());
}
void TestMimeReaders::gmimeReadsTwentyMegabytes()
{
    twentyMegabytes(MailReader::gmime());
}
void TestMimeReaders::mailparserReadsEveryOfferedCharset()
{
    compare(MailReader::mailparser(), charsetCases(m_folder));
}
void TestMimeReaders::mailparserReadsAwkwardBodies()
{
    compare(MailReader::mailparser(), awkwardBodies());
}
void TestMimeReaders::mailparserReadsAwkwardNames()
{
    compare(MailReader::mailparser(), awkwardNames(m_folder));
}
void TestMimeReaders::mailparserSeesNoInjectedHeader()
{
    compare(MailReader::mailparser(), headerInjections(m_folder));
}
void TestMimeReaders::mailparserReadsRelatedPictures()
{
    relatedPictures(MailReader::mailparser());
}
void TestMimeReaders::mailparserReadsTwentyMegabytes()
{
    twentyMegabytes(MailReader::mailparser());
}

QTEST_GUILESS_MAIN(TestMimeReaders)
#include "test_mimereaders.moc"
