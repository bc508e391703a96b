#include "quillon/archive/zipbuilder.h"
#include "quillon/fault.h"
#include "support/waitfor.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

/// Runs a Python program on an archive, which is handed as its argument; gives what it printed, or its error.
QString python(const QString &program, const QString &archive)
{
    QProcess process;
    process.start(u"/usr/bin/python3"_s,
                  {u"-c"_s, u"import sys, zipfile\nz = zipfile.ZipFile(sys.argv[1])\n"_s + program, archive});
    process.waitForFinished(-1);
    return QString::fromUtf8(process.readAllStandardOutput() + process.readAllStandardError()).trimmed();
}

} // namespace

class TestZipBuilder : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        QVERIFY(QDir().mkpath(path(u"mine"_s)));
    }

    void eachPatternAddsOneLevel();
    void namesAreUtf8();
    void hiddenFilesArePackedAndLinksToFoldersAreNotFollowed();
    void theDeepestPatternOfAFolderCounts();
    void namesThatReadTheSameGetANumber();
    void aFailedArchiveLeavesTheEarlierOne();
    void fileThatChangesWhileItIsReadLeavesAValidArchive();
    void folderThatVanishesGivesAnArchiveWithoutIt();
    void fileAboveFourGigabytesMakesAZip64Archive();
    void failedWriteLeavesNoArchive();
    void anEarlierArchiveIsReplaced();
    void longWorkLetsOthersBreathe();
    void anArchiveWhosePackingIsEndedIsNotThere();
    void whatWasOpenedIsClosedAgain();

private:
    [[nodiscard]] QString path(const QString &name) const { return m_folder->filePath(name); }
    void write(const QString &name, const QByteArray &bytes) const
    {
        QFile file(path(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(bytes), bytes.size());
    }
    [[nodiscard]] bool build(int levels) const
    {
        quillon::ZipBuilder zip;
        zip.ArchivePath = path(u"a.zip"_s);
        for (int i = 1; i <= levels; ++i) {
            zip.AddPattern(path(u"mine"_s) + u"/*"_s.repeated(i));
        }
        return waitFor(zip.Build());
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void TestZipBuilder::eachPatternAddsOneLevel()
{
    QVERIFY(QDir().mkpath(path(u"mine/d/e"_s)));
    write(u"mine/one"_s, "1");
    write(u"mine/d/two"_s, "2");
    write(u"mine/d/e/three"_s, "3");
    QVERIFY(build(1));
    QCOMPARE(python(u"print(sorted(z.namelist()))"_s, path(u"a.zip"_s)), u"['d/', 'one']"_s);
    QVERIFY(build(2));
    QCOMPARE(python(u"print(sorted(z.namelist()))"_s, path(u"a.zip"_s)), u"['d/', 'd/e/', 'd/two', 'one']"_s);
}

void TestZipBuilder::namesAreUtf8()
{
    write(u"mine/Grüße 漢.txt"_s, "x");
    QVERIFY(build(1));
    QCOMPARE(python(u"i = z.infolist()[0]\nprint(ascii(i.filename), bool(i.flag_bits & 0x800))"_s, path(u"a.zip"_s)),
             u"'Gr\\xfc\\xdfe \\u6f22.txt' True"_s);
}

void TestZipBuilder::hiddenFilesArePackedAndLinksToFoldersAreNotFollowed()
{
    QVERIFY(QDir().mkpath(path(u"mine/.d"_s)));
    write(u"mine/.a"_s, "hidden");
    QVERIFY(QFile::setPermissions(path(u"mine/.a"_s),
                                  QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ReadGroup));
    write(u"mine/.d/.b"_s, "deeper");
    QVERIFY(QFile::link(u"/"_s, path(u"mine/.all"_s)));
    QVERIFY(QFile::link(path(u"mine/.a"_s), path(u"mine/.link"_s)));
    QVERIFY(QFile::link(path(u"nothing"_s), path(u"mine/.nothing"_s)));
    QCOMPARE(::mkfifo(QFile::encodeName(path(u"mine/.pipe"_s)).constData(), 0600), 0);
    const int before = quillon::faultCount();
    QVERIFY(build(2));
    QCOMPARE(quillon::faultCount(), before + 3);
    QCOMPARE(python(u"print(z.namelist(), z.read('.a'), z.read('.d/.b'), z.read('.link'))"_s, path(u"a.zip"_s)),
             u"['.a', '.d/', '.d/.b', '.link'] b'hidden' b'deeper' b'hidden'"_s);
    QCOMPARE(
        python(u"i = z.getinfo('.a')\nimport os, time\n"
               "t = time.localtime(os.stat(sys.argv[1][:-5] + 'mine/.a').st_mtime)\n"
               "print(abs(i.date_time[5] - t[5]) < 2, i.date_time[:5] == t[:5], oct(i.external_attr >> 16 & 0o777))"_s,
               path(u"a.zip"_s)),
        u"True True 0o640"_s);
}

void TestZipBuilder::theDeepestPatternOfAFolderCounts()
{
    QVERIFY(QDir().mkpath(path(u"mine/d"_s)));
    QVERIFY(QDir().mkpath(path(u"other"_s)));
    write(u"mine/d/two"_s, "2");
    write(u"other/one"_s, "1");
    quillon::ZipBuilder zip;
    zip.ArchivePath = path(u"a.zip"_s);
    for (const QString &pattern : {u"mine/*/*"_s, u"other/*"_s, u"mine/*"_s}) {
        zip.AddPattern(path(pattern));
    }
    QVERIFY(waitFor(zip.Build()));
    QCOMPARE(python(u"print(z.namelist())"_s, path(u"a.zip"_s)), u"['d/', 'd/two', 'one']"_s);
    zip.AddPattern(path(u"no pattern"_s));
    QVERIFY(!waitFor(zip.Build()));
}

void TestZipBuilder::namesThatReadTheSameGetANumber()
{
    write(u"mine/a~1"_s, "3");
    for (const char *name : {"\xFC", "\xC3\xBC"}) { // Windows-1252 and UTF-8
        QFile file;
        const int number = ::open((QFile::encodeName(path(u"mine/"_s)) + name).constData(), O_WRONLY | O_CREAT, 0600);
        QVERIFY(file.open(number, QIODevice::WriteOnly, QFileDevice::AutoCloseHandle));
        QVERIFY(file.write(QByteArray::number(QByteArray(name).size())) == 1);
    }
    QVERIFY(build(1));
    QCOMPARE(python(u"print(ascii(z.namelist()), z.read('\\xfc'), z.read('\\xfc~1'))"_s, path(u"a.zip"_s)),
             u"['a~1', '\\xfc', '\\xfc~1'] b'2' b'1'"_s);
}

void TestZipBuilder::aFailedArchiveLeavesTheEarlierOne()
{
    write(u"a.zip"_s, "the earlier one");
    quillon::ZipBuilder zip;
    zip.ArchivePath = path(u"a.zip"_s);
    zip.AddPattern(path(u"mine"_s)); // packs nothing, which is no archive
    QVERIFY(!waitFor(zip.Build()));
    QFile file(path(u"a.zip"_s));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("the earlier one"));
    QVERIFY(!QFile::exists(path(u"a.zip.part"_s)));
}

void TestZipBuilder::fileThatChangesWhileItIsReadLeavesAValidArchive()
{
    write(u"mine/restless"_s, QByteArray(3'000'000, 'x'));
    write(u"mine/steady"_s, "steady");
    QProcess restless; // grows, shrinks and vanishes for as long as its input is open
    restless.start(u"/usr/bin/python3"_s, {u"-c"_s,
                                           u"import os, select, sys\n"
                                           "path, i = sys.argv[1], 0\n"
                                           "print('ready', flush=True)\n"
                                           "while not select.select([sys.stdin], [], [], 0)[0]:\n"
                                           "    i += 1\n"
                                           "    with open(path, 'ab') as file:\n"
                                           "        file.truncate(i * 7919 % 5000000)\n"
                                           "        file.write(b'y' * (i % 100000))\n"
                                           "    if i % 10 == 0:\n"
                                           "        os.unlink(path)\n"_s,
                                           path(u"mine/restless"_s)});
    QVERIFY(restless.waitForReadyRead());
    for (int round = 0; round < 40; ++round) {
        QVERIFY(build(1));
        QCOMPARE(python(u"assert z.testzip() is None\nprint(z.read('steady').decode())"_s, path(u"a.zip"_s)),
                 u"steady"_s);
    }
    restless.closeWriteChannel();
    QVERIFY(restless.waitForFinished());
}

void TestZipBuilder::folderThatVanishesGivesAnArchiveWithoutIt()
{
    QVERIFY(QDir(path(u"mine"_s)).removeRecursively());
    QVERIFY(build(1));
    QCOMPARE(python(u"print(z.namelist())"_s, path(u"a.zip"_s)), u"[]"_s);
}

void TestZipBuilder::fileAboveFourGigabytesMakesAZip64Archive()
{
    constexpr qint64 size = 4'500'000'000;
    write(u"mine/huge"_s, "begin");
    QCOMPARE(::truncate(QFile::encodeName(path(u"mine/huge"_s)).constData(), size), 0);
    struct stat status {};
    QCOMPARE(::stat(QFile::encodeName(path(u"mine/huge"_s)).constData(), &status), 0);
    if (status.st_blocks * 512LL > size / 10) {
        QSKIP("this file system has no sparse files");
    }
    write(u"mine/last"_s, "after it");
    QVERIFY(build(1));
    QCOMPARE(
        python(u"i = z.getinfo('huge')\nprint(i.file_size, z.open(i).read(5), z.read('last'))"_s, path(u"a.zip"_s)),
        QString::number(size) + u" b'begin' b'after it'"_s);
}

void TestZipBuilder::failedWriteLeavesNoArchive()
{
    write(u"mine/a"_s, "x");
    quillon::ZipBuilder zip;
    zip.ArchivePath = path(u"not there/a.zip"_s);
    zip.AddPattern(path(u"mine/*"_s));
    const int faults = quillon::faultCount();
    QVERIFY(!waitFor(zip.Build()));
    QCOMPARE(quillon::faultCount(), faults + 1);
    QVERIFY(QDir().mkpath(path(u"folder.zip"_s)));
    zip.ArchivePath = path(u"folder.zip"_s);
    QVERIFY(!waitFor(zip.Build()));
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
             (QStringList{u"folder.zip"_s, u"mine"_s}));
}

void TestZipBuilder::anEarlierArchiveIsReplaced()
{
    write(u"a.zip"_s, "not an archive");
    write(u"mine/a"_s, "x");
    QVERIFY(build(1));
    QCOMPARE(python(u"print(z.namelist())"_s, path(u"a.zip"_s)), u"['a']"_s);
}

void TestZipBuilder::longWorkLetsOthersBreathe()
{
    write(u"mine/large"_s, "x");
    QCOMPARE(::truncate(QFile::encodeName(path(u"mine/large"_s)).constData(), 400'000'000), 0);
    quillon::ZipBuilder zip;
    zip.ArchivePath = path(u"a.zip"_s);
    zip.AddPattern(path(u"mine/*"_s));
    int turns = 0;
    QTimer timer;
    connect(&timer, &QTimer::timeout, &timer, [&turns] { ++turns; });
    timer.start(0);
    QVERIFY(waitFor(zip.Build()));
    QVERIFY(turns > 1);
    struct stat status {};
    QCOMPARE(::stat(QFile::encodeName(path(u"a.zip"_s)).constData(), &status), 0);
    QCOMPARE(static_cast<int>(status.st_mode & 0777), 0600);
}

namespace {
quillon::Task<> buildWith(quillon::ZipBuilder *zip)
{
    co_await zip->Build();
}
} // namespace

void TestZipBuilder::anArchiveWhosePackingIsEndedIsNotThere()
{
    write(u"mine/large"_s, "x");
    QCOMPARE(::truncate(QFile::encodeName(path(u"mine/large"_s)).constData(), 400'000'000), 0);
    quillon::ZipBuilder zip;
    zip.ArchivePath = path(u"b.zip"_s);
    zip.AddPattern(path(u"mine/*"_s));
    quillon::Sequence packing;
    packing.start(buildWith(&zip));
    QVERIFY(packing.isUnderWay());
    QVERIFY(QFile::exists(path(u"b.zip.part"_s)));
    packing.end();
    QVERIFY(!QFile::exists(path(u"b.zip"_s)));
    QVERIFY(!QFile::exists(path(u"b.zip.part"_s)));
}

void TestZipBuilder::whatWasOpenedIsClosedAgain()
{
    const auto openFiles = [] {
        return QDir(u"/proc/self/fd"_s).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size();
    };
    QVERIFY(QDir().mkpath(path(u"mine/d/e"_s)));
    write(u"mine/d/two"_s, "2");
    write(u"mine/large"_s, "x");
    QCOMPARE(::truncate(QFile::encodeName(path(u"mine/large"_s)).constData(), 400'000'000), 0);
    QCOMPARE(::mkfifo(QFile::encodeName(path(u"mine/pipe"_s)).constData(), 0600), 0);
    QVERIFY(build(1)); // whatever the event loop keeps open for itself is so from here on
    const qsizetype before = openFiles();
    QVERIFY(before > 0);
    QVERIFY(build(3));
    QCOMPARE(openFiles(), before);
    quillon::ZipBuilder zip;
    zip.ArchivePath = path(u"b.zip"_s);
    zip.AddPattern(path(u"mine/*"_s));
    quillon::Sequence packing;
    packing.start(buildWith(&zip));
    QVERIFY(packing.isUnderWay());
    QVERIFY(openFiles() > before);
    packing.end();
    QCOMPARE(openFiles(), before);
}

QTEST_GUILESS_MAIN(TestZipBuilder)
#include "test_zipbuilder.moc"
