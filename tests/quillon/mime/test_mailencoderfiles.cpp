#include "mailencoderbench.h"
#include "quillon/mail/mailfiles.h"

#include <QMap>
#include <QUrl>

#include <array>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace quillon;

namespace {
const QByteArray gif = "GIF89a\x01\x01";
} // namespace

/// Files in a mail: attachments, and what an HTML document shows.
class TestMailEncoderFiles : public QObject, private MailEncoderBench {
    Q_OBJECT

private Q_SLOTS:
    void localPicturesBecomeRelatedPartsOnce();
    void foreignReferencesAreLeftAlone();
    void onlyShownFilesBecomeRelated();

    void attachmentsAreTypedByContent();
    void attachmentsAreNotReadWhole();
    void attachmentThatCannotBeReadIsAClearError();
    void attachmentWithoutPermissionIsAClearError();
    void changedFileIsLookedIntoAgain();
    void aFileIsLookedIntoAgainWhenAnythingTellsOfAChange();
    void referencesNameLocalPaths_data();
    void referencesNameLocalPaths();
    void onlyPicturesSoundsAndFilmsAreShownInPlace();
    void aReferenceFindsTheFileInEitherForm_data();
    void aReferenceFindsTheFileInEitherForm();
    void anAttachmentWithoutAPrintableNameHasThatOfItsFile_data();
    void anAttachmentWithoutAPrintableNameHasThatOfItsFile();
};

void TestMailEncoderFiles::localPicturesBecomeRelatedPartsOnce()
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

void TestMailEncoderFiles::foreignReferencesAreLeftAlone()
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

void TestMailEncoderFiles::onlyShownFilesBecomeRelated()
{
    MailMessage mail = message();
    mail.Format = MailMessage::Html;
    mail.Content = u"<img src=\"%1\"><img src=/etc/passwd><img src=/dev/zero>"_s.arg(write(u"key"_s, "secret text"));
    QVERIFY(!encode(mail).contains("Content-ID"));
}

void TestMailEncoderFiles::attachmentsAreTypedByContent()
{
    const QMap<QString, QPair<QByteArray, QByteArray>> expected{
        {u"wrong.txt"_s, {png, "image/png"}},
        {u"noname"_s, {"%PDF-1.4\n", "application/pdf"}},
        {u"table.csv"_s, {"a,b\n1,2\n", "text/csv"}},
        {u"unknown"_s, {QByteArray::fromHex("0001fe02ff8081"), "application/octet-stream"}},
        {u"mail.eml"_s, {"From: a@example.org\nSubject: x\n\nbody\n", "application/octet-stream"}},
        {u"empty"_s, {QByteArray(), "application/octet-stream"}},
        {u"empty.pdf"_s, {QByteArray(), "application/pdf"}},
        {u"words.unknownending"_s, {"plain words\n", "text/plain"}},
        {u"letter.odt"_s, {QByteArray::fromHex("504b03040a0000000000"), "application/vnd.oasis.opendocument.text"}},
    };
    for (auto i = expected.begin(); i != expected.end(); ++i) {
        MailMessage mail = message();
        mail.Attachments.Add({QString(), write(i.key(), i->first)});
        const QByteArray octets = encode(mail);
        QVERIFY2(octets.contains("Content-Type: " + i->second + "; name=\"" + i.key().toUtf8() + '"'),
                 octets.constData());
    }
}

void TestMailEncoderFiles::attachmentsAreNotReadWhole()
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

void TestMailEncoderFiles::attachmentThatCannotBeReadIsAClearError()
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

void TestMailEncoderFiles::attachmentWithoutPermissionIsAClearError()
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

void TestMailEncoderFiles::changedFileIsLookedIntoAgain()
{
    MailMessage mail = message();
    mail.Attachments.Add({u"a"_s, write(u"changing"_s, png)});
    QVERIFY(encode(mail).contains("image/png"));
    write(u"changing"_s, "%PDF-1.4\n%");
    QVERIFY(encode(mail).contains("application/pdf"));
}

void TestMailEncoderFiles::aFileIsLookedIntoAgainWhenAnythingTellsOfAChange()
{
    const QByteArray pdf = QByteArray("%PDF-1.4\n").leftJustified(png.size(), ' ');
    const QString path = write(u"file"_s, png);
    const QByteArray name = QFile::encodeName(path);
    const auto touch = [](const QByteArray &file, long nanoseconds) {
        const std::array<timespec, 2> times{timespec{1'000'000'000, nanoseconds}, {1'000'000'000, nanoseconds}};
        return ::utimensat(AT_FDCWD, file.constData(), times.data(), 0) == 0;
    };
    MailEncoderCache cache;
    const auto typeNow = [&cache, &path] {
        QString error;
        const std::optional<MailFile> file = cache.inspect(path, error);
        return file ? file->Type + ' ' + QByteArray::number(file->Size) : error.toUtf8();
    };
    const QByteArray size = QByteArray::number(png.size());
    QVERIFY(touch(name, 1));
    QCOMPARE(typeNow(), "image/png " + size);
    write(u"file"_s, pdf); // in place, of the same size and with the old time: nothing tells of it
    QVERIFY(touch(name, 1));
    QCOMPARE(typeNow(), "image/png " + size);
    QVERIFY(touch(name, 2));
    QCOMPARE(typeNow(), "application/pdf " + size);
    const QByteArray other = QFile::encodeName(write(u"other"_s, png));
    QVERIFY(touch(other, 2));
    QCOMPARE(::rename(other.constData(), name.constData()), 0);
    QCOMPARE(typeNow(), "image/png " + size);
    write(u"file"_s, pdf + ' ');
    QVERIFY(touch(name, 2));
    QCOMPARE(typeNow(), "application/pdf " + QByteArray::number(png.size() + 1));
}

void TestMailEncoderFiles::referencesNameLocalPaths_data()
{
    QTest::addColumn<QString>("reference");
    QTest::addColumn<QStringList>("paths");
    const auto row = [](const QString &reference, const QStringList &paths) {
        QTest::newRow(reference.toUtf8().toPercentEncoding().constData()) << reference << paths;
    };
    row(u"/a b"_s, {u"/a b"_s});
    row(u"/a%20b"_s, {u"/a%20b"_s, u"/a b"_s});
    row(u"file:///a"_s, {u"/a"_s});
    row(u"FILE:///a%20b"_s, {u"/a b"_s, u"/a%20b"_s});
    row(u"file://localhost/a"_s, {u"/a"_s});
    row(u"file://LocalHost/a"_s, {u"/a"_s});
    row(u"file:/a"_s, {u"/a"_s});
    for (const QString &reference :
         {QString(), u"a"_s, u"//a/b"_s, u"file://a/b"_s, u"file:a"_s, u"file:"_s, u"file:////a/b"_s, u"http:/a"_s}) {
        row(reference, {});
    }
}

void TestMailEncoderFiles::referencesNameLocalPaths()
{
    QFETCH(QString, reference);
    QTEST(localPaths(reference), "paths");
}

void TestMailEncoderFiles::onlyPicturesSoundsAndFilmsAreShownInPlace()
{
    for (const char *type : {"image/png", "audio/midi", "video/mp4"}) {
        QVERIFY2(isShownInPlace(type), type);
    }
    for (const char *type : {"", "text/html", "application/pdf", "imagery/x", "x-image/png"}) {
        QVERIFY2(!isShownInPlace(type), type);
    }
}

void TestMailEncoderFiles::aReferenceFindsTheFileInEitherForm_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("reference");
    QTest::newRow("as it is") << u"a%20b.png"_s << u"%1/a%20b.png"_s;
    QTest::newRow("decoded") << u"a b.png"_s << u"%1/a%20b.png"_s;
    QTest::newRow("URL decoded") << u"a b.png"_s << u"file://%1/a%20b.png"_s;
    QTest::newRow("URL as it is") << u"a%20b.png"_s << u"file://%1/a%20b.png"_s;
}

void TestMailEncoderFiles::aReferenceFindsTheFileInEitherForm()
{
    QFETCH(QString, file);
    QFETCH(QString, reference);
    const QTemporaryDir folder;
    QVERIFY(QFile::copy(write(u"source.png"_s, png), folder.filePath(file)));
    MailMessage mail = message();
    mail.Format = MailMessage::Html;
    mail.Content = u"<img src='"_s + QString(reference).replace(u"%1"_s, folder.path()) + u"'>"_s;
    const QByteArray octets = encode(mail);
    QCOMPARE(octets.count("Content-ID: <"), 1);
    QCOMPARE(octets.count("cid:part1."), 1);
}

void TestMailEncoderFiles::anAttachmentWithoutAPrintableNameHasThatOfItsFile_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("told");
    QTest::newRow("none") << QString() << "a.png"_ba;
    QTest::newRow("blanks") << u" \t\r\n"_s << "a.png"_ba;
    QTest::newRow("controls") << u"\u0001\u007F\u0080"_s << "a.png"_ba;
    QTest::newRow("blanks and controls") << u" \u0001 "_s << "a.png"_ba;
    QTest::newRow("name") << u" \u0001b "_s << "b"_ba;
}

void TestMailEncoderFiles::anAttachmentWithoutAPrintableNameHasThatOfItsFile()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, told);
    MailMessage mail = message();
    mail.Attachments.Add({name, write(u"a.png"_s, png)});
    const QByteArray octets = encode(mail);
    QCOMPARE(octets.count("Content-Type: image/png; name=\"" + told + "\"\r\n"), 1);
    QCOMPARE(octets.count("Content-Disposition: attachment; filename=\"" + told + "\"\r\n"), 1);
}

QTEST_GUILESS_MAIN(TestMailEncoderFiles)
#include "test_mailencoderfiles.moc"
