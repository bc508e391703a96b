#include "quillon/fault.h"
#include "quillon/files/quillonlines.h"
#include "quillon/files/safefile.h"
#include "quillon/system/quillonsystem.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

#include <sys/mount.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

QByteArray read(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
}

/// True when @p text is a mark, a run of @p filling and the same mark again.
bool isWhole(const QString &text, QChar filling)
{
    const QString before = text.section(filling, 0, 0);
    return !before.isEmpty() && text.endsWith(filling + before) && text.startsWith(before + filling);
}

/// A small file system of its own that can be filled up; needs the right to mount.
class SmallDisk {
public:
    explicit SmallDisk(const QString &path) : m_path(QFile::encodeName(path))
    {
        QDir().mkpath(path);
        m_mounted = ::mount("corvane-test", m_path.constData(), "tmpfs", 0, "size=64k") == 0;
    }
    ~SmallDisk()
    {
        if (m_mounted) {
            ::umount2(m_path.constData(), MNT_DETACH);
        }
    }
    SmallDisk(const SmallDisk &) = delete;
    SmallDisk &operator=(const SmallDisk &) = delete;

    [[nodiscard]] bool mounted() const { return m_mounted; }

    /// Makes it read-only: by the mount, or where there is none, by the folder's mode.
    [[nodiscard]] bool lock(const QString &path) const
    {
        if (m_mounted) {
            return ::mount("corvane-test", m_path.constData(), "tmpfs", MS_REMOUNT | MS_RDONLY, "size=64k") == 0;
        }
        return ::geteuid() != 0 && QFile::setPermissions(path, QFileDevice::ReadOwner | QFileDevice::ExeOwner);
    }

private:
    QByteArray m_path;
    bool m_mounted = false;
};

} // namespace

class TestSafeFile : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }
    void cleanup() { quillon::setTemporaryFolder(QString()); }

    void killedWhileWritingLeavesEveryFileOldOrNew();
    void fullDiskLosesNothingThatWasThere();
    void readOnlyFolderLeavesTheOldFile();
    void temporariesStayOutsideTheFolder();
    void missingTemporaryFolderFallsBackToTheFilesOwn();
    void switchStopsTheProgramAtAFault();

private:
    [[nodiscard]] QString path(const QString &name) const { return m_folder->filePath(name); }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void TestSafeFile::killedWhileWritingLeavesEveryFileOldOrNew()
{
    QRandomGenerator random(7);
    QVERIFY(QDir().mkpath(path(u"data/writing"_s)));
    const QString data = path(u"data"_s);
    write(data + u"/options.dll"_s, "[Other]\r\nStartup=Last\r\nFont Name=0x0\r\n");
    write(data + u"/proxy.dll"_s, "key\tb\r\nother\tc\r\n");
    const quillon::QuillonSystem system;
    const quillon::QuillonLines lines;
    for (int round = 0; round < 200; ++round) {
        QProcess writer;
        writer.start(QStringLiteral(WRITE_FOREVER), {data});
        QVERIFY(writer.waitForStarted());
        ::usleep(static_cast<useconds_t>(random.bounded(1000, 12000))); // the random moment, not a wait for anything
        writer.kill();
        QVERIFY(writer.waitForFinished());

        QCOMPARE(system.ReadSetting(data + u"/options.dll"_s, u"Other"_s, u"Startup"_s), u"Last"_s);
        const QString font = system.ReadSetting(data + u"/options.dll"_s, u"Other"_s, u"Font Name"_s);
        QVERIFY2(isWhole(font, u'x'), qPrintable(font));
        QCOMPARE(read(data + u"/proxy.dll"_s), QByteArray("key\tb\r\nother\tc\r\n"));
        const QString sign = lines.ReadTextFile(data + u"/sign.dll"_s);
        QVERIFY(sign.isEmpty() || isWhole(sign, u'z'));
        QVERIFY(QDir(data).entryList({u".corvane*"_s, u"*.??????"_s}, QDir::Files | QDir::Hidden).isEmpty());
    }
    QVERIFY(QFileInfo::exists(data + u"/sign.dll"_s)); // the writer did get to work
    const QStringList accounts = lines.ReadLines(data + u"/smtp.dll"_s);
    for (const QString &line : accounts) {
        QVERIFY2(line.section(u'\t', 0, 0) == line.section(u'\t', 2, 2) && line.count(u'y') == 300, qPrintable(line));
    }
}

void TestSafeFile::fullDiskLosesNothingThatWasThere()
{
    const SmallDisk disk(path(u"disk"_s));
    if (!disk.mounted()) {
        QSKIP("a small disk cannot be mounted here: it takes the rights of an administrator");
    }
    const QString options = path(u"disk/options.dll"_s);
    const QString log = path(u"disk/202611.log"_s);
    const quillon::QuillonSystem system;
    const quillon::QuillonLines lines;
    system.WriteSetting(options, u"SMTP Account"_s, u"Default"_s, u"the account"_s);
    lines.AppendLine(log, u"the first line"_s);
    const QByteArray before = read(options);

    QFile filler(path(u"disk/filler"_s));
    QVERIFY(filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    while (filler.write(QByteArray(512, 'f')) == 512) {
    }
    const int faults = quillon::faultCount();
    system.WriteSetting(options, u"Other"_s, u"Font Name"_s, QString(20000, u'x'));
    QCOMPARE(read(options), before);
    lines.AppendLine(log, QString(20000, u'y'));
    QCOMPARE(lines.ReadLines(log), QStringList{u"the first line"_s});
    lines.WriteTextFile(options, QString(20000, u'x'), u"utf-8"_s);
    QCOMPARE(read(options), before);
    QCOMPARE(quillon::faultCount(), faults + 3);
    QCOMPARE(QDir(path(u"disk"_s)).entryList(QDir::Files | QDir::Hidden).size(), 3);
}

void TestSafeFile::readOnlyFolderLeavesTheOldFile()
{
    SmallDisk disk(path(u"locked"_s));
    write(path(u"locked/a.dll"_s), "old");
    if (!disk.lock(path(u"locked"_s))) {
        QSKIP("a folder that even an administrator may not write to takes a mount");
    }
    QVERIFY(!quillon::writeWholeFile(path(u"locked/a.dll"_s), "new"));
    QVERIFY(!quillon::appendToFile(path(u"locked/a.dll"_s), "new"));
    QCOMPARE(read(path(u"locked/a.dll"_s)), QByteArray("old"));
}

void TestSafeFile::temporariesStayOutsideTheFolder()
{
    QVERIFY(QDir().mkpath(path(u"templates"_s)));
    QVERIFY(QDir().mkpath(path(u"writing"_s)));
    quillon::setTemporaryFolder(path(u"writing"_s));
    // With the file's own folder closed to new names, the write can only succeed from outside... so make it fail
    // there instead: a folder in the target's place cannot be replaced, and what was written aside must be gone.
    QVERIFY(QDir().mkpath(path(u"templates/head_a.dll"_s)));
    QVERIFY(!quillon::writeWholeFile(path(u"templates/head_a.dll"_s), "x"));
    QVERIFY(quillon::writeWholeFile(path(u"templates/head_b.dll"_s), "x"));
    QCOMPARE(QDir(path(u"templates"_s)).entryList(QDir::Files | QDir::Hidden), QStringList{u"head_b.dll"_s});
    QVERIFY(QDir(path(u"writing"_s)).isEmpty(QDir::Files | QDir::Hidden));
}

void TestSafeFile::missingTemporaryFolderFallsBackToTheFilesOwn()
{
    quillon::setTemporaryFolder(path(u"not there"_s));
    QVERIFY(quillon::writeWholeFile(path(u"a.dll"_s), "x"));
    QCOMPARE(read(path(u"a.dll"_s)), QByteArray("x"));
}

void TestSafeFile::switchStopsTheProgramAtAFault()
{
    if (qEnvironmentVariableIsSet("CORVANE_TEST_FAULT")) {
        quillon::setStopOnFault(true);
        quillon::reportFault(u"told by the test"_s);
        QFAIL("the fault did not stop the program");
    }
    QProcess self;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"CORVANE_TEST_FAULT"_s, u"1"_s);
    self.setProcessEnvironment(environment);
    self.start(QCoreApplication::applicationFilePath(), {u"switchStopsTheProgramAtAFault"_s});
    QVERIFY(self.waitForFinished());
    QCOMPARE(self.exitCode(), 70);
    QVERIFY(self.readAllStandardError().contains("told by the test"));
    const int before = quillon::faultCount();
    quillon::reportFault(u"without the switch nothing happens"_s);
    QCOMPARE(quillon::faultCount(), before + 1);
}

QTEST_GUILESS_MAIN(TestSafeFile)
#include "test_safefile.moc"
