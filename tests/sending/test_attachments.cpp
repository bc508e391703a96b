#include "sending/attachments.h"
#include "support/treefixture.h"
#include "support/waitfor.h"

#include <QProcess>
#include <QTest>

#include <algorithm>
#include <array>
#include <linux/capability.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace corvane;

namespace {

/// The names in an archive, and, behind a "=", what a file holds, read by Python's own library.
QStringList archiveContent(const QString &path)
{
    QProcess python;
    python.start(u"/usr/bin/python3"_s,
                 {u"-c"_s,
                  u"import sys, zipfile\n"
                  "z = zipfile.ZipFile(sys.argv[1])\n"
                  "assert z.testzip() is None\n"
                  "for i in sorted(z.infolist(), key=lambda i: i.filename):\n"
                  "    text = i.filename if i.is_dir() else i.filename + '=' + z.read(i).decode('utf-8', 'replace')\n"
                  "    sys.stdout.buffer.write((text + '\\0').encode('utf-8'))\n"_s,
                  path});
    python.waitForFinished();
    if (python.exitCode() != 0) {
        return {QString::fromUtf8(python.readAllStandardError())};
    }
    return QString::fromUtf8(python.readAllStandardOutput()).split(QChar(0), Qt::SkipEmptyParts);
}

/// While it lives, the administrator's rights over all files are put aside, so that a file's mode counts.
class OrdinaryRights {
public:
    OrdinaryRights()
    {
        ::syscall(SYS_capget, &m_header, m_before.data());
        std::array<__user_cap_data_struct, 2> without = m_before;
        without[0].effective &= ~((1U << CAP_DAC_OVERRIDE) | (1U << CAP_DAC_READ_SEARCH));
        ::syscall(SYS_capset, &m_header, without.data());
    }
    ~OrdinaryRights() { ::syscall(SYS_capset, &m_header, m_before.data()); }
    OrdinaryRights(const OrdinaryRights &) = delete;
    OrdinaryRights &operator=(const OrdinaryRights &) = delete;

private:
    __user_cap_header_struct m_header{_LINUX_CAPABILITY_VERSION_3, 0};
    std::array<__user_cap_data_struct, 2> m_before{};
};

} // namespace

class TestAttachments : public QObject, protected TreeFixture {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        makeTree();
        m_message = {};
        QVERIFY(QDir().mkpath(path(u"mine"_s)));
    }
    void cleanup() { dropTree(); }

    void fileIsAttachedAsItIs();
    void vanishedFileIsLeftOutQuietly();
    void orderIsThatOfTheRows();
    void folderIsPackedIntoAnArchive();
    void tenLevelsLoseTheTwoDeepest();
    void emptyFolderGetsItsMarkerOnce();
    void foldersOfLikeNameGetNumbersInFront();
    void temporaryFolderIsEmptiedFirst();
    void folderWithATrailingSlashIsNamedZip();
    void folderOfEmptyFoldersHasDirectoryEntries();
    void linksPipesAndOddNamesLeaveAValidArchive();
    void whatIsLeftOutOfAFolderIsNamedWithItsReason();
    void whatCannotBeReadIsNamed();
    void ofManyLeftOutTheFirstAreNamedAndTheOthersCounted_data();
    void ofManyLeftOutTheFirstAreNamedAndTheOthersCounted();
    void deeperLevelsAreLeftOutWithoutAWord();
    void failedArchiveLeavesAnEntryThatIsMissing();
    void hiddenLeftoversGoAndFoldersOfTheTemporaryFolderStay();
    void folderThatHoldsAnythingIsNotEmpty();
    void folderThatHoldsAnythingIsNotEmpty_data();
    void numbersGoFromNoughtTo9999AndThenNoFurther();
    void nothingToAttachLeavesTheMessageAlone();
    void fileThatIsALinkIsAttachedUnderItsOwnName();

private:
    [[nodiscard]] QString path(const QString &name) const { return m_tree->path(name); }
    QString resolve(const QStringList &paths) { return waitFor(ResolveAttachments(m_tree->globals, paths, m_message)); }
    [[nodiscard]] QString zip(const QString &name) const { return m_tree->globals.paths.zips + u'/' + name; }

    quillon::MailMessage m_message;
};

void TestAttachments::fileIsAttachedAsItIs()
{
    writeFile(path(u"mine/Grüße.txt"_s), "x");
    QCOMPARE(resolve({path(u"mine/Grüße.txt"_s)}), path(u"mine/Grüße.txt"_s));
    QCOMPARE(m_message.Attachments.Count(), 1);
    QCOMPARE(m_message.Attachments.Item(1).Name, u"Grüße.txt"_s);
    QCOMPARE(m_message.Attachments.Item(1).Path, path(u"mine/Grüße.txt"_s));
}

void TestAttachments::vanishedFileIsLeftOutQuietly()
{
    writeFile(path(u"mine/good.txt"_s), "x");
    QCOMPARE(resolve({path(u"mine/gone.txt"_s), path(u"mine/good.txt"_s)}), path(u"mine/good.txt"_s));
    QCOMPARE(m_message.Attachments.Count(), 1);
    QCOMPARE(resolve({path(u"mine/gone.txt"_s)}), QString());
}

void TestAttachments::orderIsThatOfTheRows()
{
    writeFile(path(u"mine/b"_s), "x");
    writeFile(path(u"a"_s), "x");
    QCOMPARE(resolve({path(u"mine/b"_s), path(u"mine"_s), path(u"a"_s)}),
             path(u"mine/b"_s) + u"; "_s + path(u"mine"_s) + u"; "_s + path(u"a"_s));
    QCOMPARE(m_message.Attachments.Item(1).Name, u"b"_s);
    QCOMPARE(m_message.Attachments.Item(2).Name, u"mine.zip"_s);
    QCOMPARE(m_message.Attachments.Item(3).Name, u"a"_s);
}

void TestAttachments::folderIsPackedIntoAnArchive()
{
    QVERIFY(QDir().mkpath(path(u"mine/süb"_s)));
    writeFile(path(u"mine/a.txt"_s), "A");
    writeFile(path(u"mine/.hidden"_s), "H");
    writeFile(path(u"mine/süb/漢.txt"_s), "B");
    resolve({path(u"mine"_s)});
    QCOMPARE(m_message.Attachments.Item(1).Path, zip(u"mine.zip"_s));
    QCOMPARE(archiveContent(zip(u"mine.zip"_s)),
             (QStringList{u".hidden=H"_s, u"a.txt=A"_s, u"süb/"_s, u"süb/漢.txt=B"_s}));
}

void TestAttachments::tenLevelsLoseTheTwoDeepest()
{
    QString folder = path(u"mine"_s);
    for (int level = 0; level <= 10; ++level) {
        QVERIFY(QDir().mkpath(folder));
        writeFile(folder + u"/f"_s + QString::number(level), "x");
        folder += u"/d"_s;
    }
    resolve({path(u"mine"_s)});
    const QStringList files = archiveContent(zip(u"mine.zip"_s)).filter(u"="_s);
    QCOMPARE(files.size(), 9);
    QVERIFY(files.contains(u"d/d/d/d/d/d/d/d/f8=x"_s));
}

void TestAttachments::emptyFolderGetsItsMarkerOnce()
{
    resolve({path(u"mine"_s)});
    QCOMPARE(contentOf(path(u"mine/you-got-an-empty-folder.txt"_s)), QByteArray("\r\n"));
    QCOMPARE(archiveContent(zip(u"mine.zip"_s)), QStringList{u"you-got-an-empty-folder.txt=\r\n"_s});
    resolve({path(u"mine"_s)});
    QCOMPARE(contentOf(path(u"mine/you-got-an-empty-folder.txt"_s)), QByteArray("\r\n"));
    QCOMPARE(archiveContent(zip(u"mine.zip"_s)).size(), 1);
}

void TestAttachments::foldersOfLikeNameGetNumbersInFront()
{
    QStringList folders;
    for (const QString &parent : {u"one"_s, u"two"_s, u"three"_s}) {
        QVERIFY(QDir().mkpath(path(parent + u"/photos"_s)));
        writeFile(path(parent + u"/photos/from"_s), parent.toUtf8());
        folders.append(path(parent + u"/photos"_s));
    }
    resolve(folders);
    QCOMPARE(m_message.Attachments.Item(1).Name, u"photos.zip"_s);
    QCOMPARE(m_message.Attachments.Item(2).Name, u"0photos.zip"_s);
    QCOMPARE(m_message.Attachments.Item(3).Name, u"1photos.zip"_s);
    QCOMPARE(archiveContent(zip(u"1photos.zip"_s)), QStringList{u"from=three"_s});
}

void TestAttachments::temporaryFolderIsEmptiedFirst()
{
    writeFile(zip(u"old.zip"_s), "x");
    QCOMPARE(::chmod(QFile::encodeName(zip(u"old.zip"_s)).constData(), 0400), 0);
    resolve({});
    QVERIFY(!QFile::exists(zip(u"old.zip"_s)));
}

void TestAttachments::folderWithATrailingSlashIsNamedZip()
{
    writeFile(path(u"mine/a"_s), "x");
    resolve({path(u"mine"_s) + u'/'});
    QCOMPARE(m_message.Attachments.Item(1).Name, u".zip"_s);
    QCOMPARE(archiveContent(zip(u".zip"_s)), QStringList{u"a=x"_s});
}

void TestAttachments::folderOfEmptyFoldersHasDirectoryEntries()
{
    QVERIFY(QDir().mkpath(path(u"mine/a/b"_s)));
    resolve({path(u"mine"_s)});
    QCOMPARE(archiveContent(zip(u"mine.zip"_s)), (QStringList{u"a/"_s, u"a/b/"_s}));
    QVERIFY(!QFile::exists(path(u"mine/you-got-an-empty-folder.txt"_s)));
}

void TestAttachments::linksPipesAndOddNamesLeaveAValidArchive()
{
    const QByteArray mine = QFile::encodeName(path(u"mine"_s));
    writeFile(path(u"outside"_s), "O");
    QVERIFY(QFile::link(path(u"outside"_s), path(u"mine/link to a file"_s)));
    QVERIFY(QFile::link(path(u"mine"_s), path(u"mine/circle"_s)));
    QVERIFY(QFile::link(u"/"_s, path(u"mine/everything"_s)));
    QVERIFY(QFile::link(path(u"nothing"_s), path(u"mine/dangling"_s)));
    QCOMPARE(::mkfifo((mine + "/pipe").constData(), 0600), 0);
    for (const char *name : {"/\xFF"
                             "a",
                             "/\xC3\xBF"
                             "a"}) { // two names that read as one text
        FILE *file = std::fopen((mine + name).constData(), "w");
        QVERIFY(file);
        std::fputs("N", file);
        std::fclose(file);
    }
    resolve({path(u"mine"_s)});
    QCOMPARE(archiveContent(zip(u"mine.zip"_s)), (QStringList{u"link to a file=O"_s, u"ÿa=N"_s, u"ÿa~1=N"_s}));
    QCOMPARE(::unlink((mine + "/\xFF"
                              "a")
                          .constData()),
             0); // a name that the folder's own clean-up cannot see
}

void TestAttachments::whatIsLeftOutOfAFolderIsNamedWithItsReason()
{
    QVERIFY(QDir().mkpath(path(u"mine/sub"_s)));
    writeFile(path(u"mine/good"_s), "x");
    QVERIFY(QFile::link(path(u"nowhere"_s), path(u"mine/a"_s)));
    QVERIFY(QFile::link(u"/dev/null"_s, path(u"mine/b"_s)));
    QCOMPARE(::mkfifo(QFile::encodeName(path(u"mine/c"_s)).constData(), 0600), 0);
    QVERIFY(QFile::link(path(u"mine"_s), path(u"mine/sub/two\nlines"_s)));
    sockaddr_un address{AF_UNIX, {}};
    const QByteArray place = QFile::encodeName(path(u"mine/sub/s"_s));
    QVERIFY(static_cast<size_t>(place.size()) < sizeof address.sun_path);
    std::copy(place.begin(), place.end(), std::begin(address.sun_path));
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    QCOMPARE(::bind(socket, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
    ::close(socket);
    QVERIFY(QDir().mkpath(path(u"whole"_s)));
    writeFile(path(u"whole/good"_s), "x");
    QCOMPARE(resolve({path(u"mine"_s), path(u"whole"_s), path(u"mine/good"_s)}),
             path(u"mine"_s) +
                 u" (left out: \"a\" link to nothing, \"b\" device, \"c\" pipe, \"sub/s\" socket, \"sub/two lines\" "
                 "link to a folder); "_s +
                 path(u"whole"_s) + u"; "_s + path(u"mine/good"_s));
    QCOMPARE(archiveContent(zip(u"mine.zip"_s)), (QStringList{u"good=x"_s, u"sub/"_s}));
}

void TestAttachments::whatCannotBeReadIsNamed()
{
    QVERIFY(QDir().mkpath(path(u"mine/closed"_s)));
    writeFile(path(u"mine/good"_s), "x");
    writeFile(path(u"mine/secret"_s), "x");
    const QByteArray closed = QFile::encodeName(path(u"mine/closed"_s));
    QCOMPARE(::chmod(closed.constData(), 0), 0);
    QCOMPARE(::chmod(QFile::encodeName(path(u"mine/secret"_s)).constData(), 0), 0);
    QString told;
    {
        const OrdinaryRights rights;
        told = resolve({path(u"mine"_s)});
    }
    QCOMPARE(::chmod(closed.constData(), 0700), 0);
    QCOMPARE(told, path(u"mine"_s) + u" (left out: \"closed/\" cannot be read, \"secret\" cannot be read)"_s);
    QCOMPARE(archiveContent(zip(u"mine.zip"_s)), (QStringList{u"closed/"_s, u"good=x"_s}));
}

void TestAttachments::ofManyLeftOutTheFirstAreNamedAndTheOthersCounted_data()
{
    QTest::addColumn<int>("links");
    QTest::addColumn<QString>("end");
    QTest::newRow("4") << 4 << u"\"4\" link to nothing)"_s;
    QTest::newRow("5") << 5 << u"\"5\" link to nothing)"_s;
    QTest::newRow("6") << 6 << u"\"5\" link to nothing, 1 more)"_s;
    QTest::newRow("9") << 9 << u"\"5\" link to nothing, 4 more)"_s;
}

void TestAttachments::ofManyLeftOutTheFirstAreNamedAndTheOthersCounted()
{
    QFETCH(int, links);
    QFETCH(QString, end);
    for (int i = 1; i <= links; ++i) {
        QVERIFY(QFile::link(path(u"nowhere"_s), path(u"mine/"_s + QString::number(i))));
    }
    const QString told = resolve({path(u"mine"_s)});
    QVERIFY2(told.startsWith(path(u"mine"_s) + u" (left out: \"1\" link to nothing, \"2\" link to nothing, "_s),
             qPrintable(told));
    QVERIFY2(told.endsWith(end), qPrintable(told));
}

void TestAttachments::deeperLevelsAreLeftOutWithoutAWord()
{
    const QString eight = path(u"mine/1/2/3/4/5/6/7/8"_s);
    QVERIFY(QDir().mkpath(eight + u"/9"_s));
    QVERIFY(QFile::link(u"/"_s, eight + u"/9/link"_s));
    writeFile(eight + u"/9/file"_s, "x");
    QCOMPARE(resolve({path(u"mine"_s)}), path(u"mine"_s));
}

void TestAttachments::failedArchiveLeavesAnEntryThatIsMissing()
{
    writeFile(path(u"mine/a"_s), "x");
    QVERIFY(QDir(m_tree->globals.paths.zips).removeRecursively());
    writeFile(m_tree->globals.paths.zips, "in the way");
    QCOMPARE(resolve({path(u"mine"_s)}), path(u"mine"_s));
    QCOMPARE(m_message.Attachments.Count(), 1);
    QVERIFY(!QFile::exists(m_message.Attachments.Item(1).Path));
}

void TestAttachments::hiddenLeftoversGoAndFoldersOfTheTemporaryFolderStay()
{
    writeFile(zip(u".hidden.zip"_s), "x");
    writeFile(zip(u"part.tmp"_s), "x");
    QVERIFY(QFile::link(path(u"nothing"_s), zip(u"dangling.zip"_s)));
    QCOMPARE(::mkfifo(QFile::encodeName(zip(u"pipe"_s)).constData(), 0600), 0);
    QVERIFY(QDir().mkpath(zip(u"folder"_s)));
    writeFile(zip(u"folder/kept"_s), "x");
    writeFile(path(u"mine/.hidden.zip"_s), "x");
    resolve({});
    QCOMPARE(QDir(m_tree->globals.paths.zips)
                 .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot),
             QStringList{u"folder"_s});
    QVERIFY(QFile::exists(zip(u"folder/kept"_s)));
    QVERIFY(QFile::exists(path(u"mine/.hidden.zip"_s)));
}

void TestAttachments::folderThatHoldsAnythingIsNotEmpty_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("link");
    QTest::newRow("hidden file") << u".profile"_s << QString() << QString();
    QTest::newRow("hidden folder") << QString() << u".git"_s << QString();
    QTest::newRow("link that leads nowhere") << QString() << QString() << u"dangling"_s;
}

void TestAttachments::folderThatHoldsAnythingIsNotEmpty()
{
    QFETCH(const QString, file);
    QFETCH(const QString, folder);
    QFETCH(const QString, link);
    const QString mine = path(u"mine/"_s);
    if (!file.isEmpty()) {
        writeFile(mine + file, "x");
    }
    QVERIFY(folder.isEmpty() || QDir().mkpath(mine + folder));
    QVERIFY(link.isEmpty() || QFile::link(path(u"nothing"_s), mine + link));
    resolve({path(u"mine"_s)});
    QVERIFY(!QFile::exists(mine + u"you-got-an-empty-folder.txt"_s));
}

void TestAttachments::numbersGoFromNoughtTo9999AndThenNoFurther()
{
    // Links to a folder, which no run removes, stand in the way of an archive too.
    writeFile(path(u"mine/a"_s), "A");
    QVERIFY(QDir().mkpath(path(u"inTheWay"_s)));
    const auto stand = [this](const QString &name) { return QFile::link(path(u"inTheWay"_s), zip(name)); };
    QVERIFY(stand(u"mine.zip"_s));
    for (int i = 0; i < 9999; ++i) {
        QVERIFY(stand(QString::number(i) + u"mine.zip"_s));
    }
    resolve({path(u"mine"_s)});
    QCOMPARE(m_message.Attachments.Item(1).Name, u"9999mine.zip"_s);
    QCOMPARE(archiveContent(zip(u"9999mine.zip"_s)), QStringList{u"a=A"_s});

    QVERIFY(QFile::remove(zip(u"9999mine.zip"_s)));
    QVERIFY(stand(u"9999mine.zip"_s));
    m_message = {};
    QCOMPARE(resolve({path(u"mine"_s)}), path(u"mine"_s));
    QCOMPARE(m_message.Attachments.Item(1).Path, zip(u"mine.zip"_s));
    QVERIFY(!QFile::exists(zip(u"10000mine.zip"_s)));
}

void TestAttachments::nothingToAttachLeavesTheMessageAlone()
{
    QCOMPARE(resolve({}), QString());
    QCOMPARE(resolve({QString(), path(u"gone"_s)}), QString());
    QCOMPARE(m_message.Attachments.Count(), 0);
}

void TestAttachments::fileThatIsALinkIsAttachedUnderItsOwnName()
{
    writeFile(path(u"mine/real.txt"_s), "x");
    QVERIFY(QFile::link(path(u"mine/real.txt"_s), path(u"link.txt"_s)));
    QVERIFY(QFile::link(path(u"nothing"_s), path(u"dangling.txt"_s)));
    QCOMPARE(resolve({path(u"dangling.txt"_s), path(u"link.txt"_s)}), path(u"link.txt"_s));
    QCOMPARE(m_message.Attachments.Item(1).Name, u"link.txt"_s);
    QCOMPARE(m_message.Attachments.Item(1).Path, path(u"link.txt"_s));
}

QTEST_GUILESS_MAIN(TestAttachments)
#include "test_attachments.moc"
