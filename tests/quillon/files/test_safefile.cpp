#include "quillon/fault.h"
#include "quillon/files/quillonlines.h"
#include "quillon/files/safefile.h"
#include "quillon/system/quillonsystem.h"
#include "support/fulldisk.h"

#include <QDir>
#include <QFile>
#include <QMap>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>
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
    void aLinkStaysAndItsTargetIsWritten();
    void aFileKeepsItsModeAndItsOwnerMayReadAndWriteIt_data();
    void aFileKeepsItsModeAndItsOwnerMayReadAndWriteIt();
    void aFileIsFoundInAnotherCaseUnlessThereIsOneOfThatName();
    void aFileIsReadUpToItsLimit();
    void aPartOfALineIsTakenBack();
    void onlyFilesAreWrittenTo();

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
        QVERIFY(writer.waitForReadyRead());                             // it has written everything once, and goes on
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
    FullDisk disk(path(u"disk"_s));
    if (!disk.mounted()) {
        QSKIP(FullDisk::reason);
    }
    const QString options = path(u"disk/options.dll"_s);
    const QString log = path(u"disk/202611.log"_s);
    const quillon::QuillonSystem system;
    const quillon::QuillonLines lines;
    system.WriteSetting(options, u"SMTP Account"_s, u"Default"_s, u"the account"_s);
    lines.AppendLine(log, u"the first line"_s);
    const QByteArray before = read(options);

    disk.fill();
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
    FullDisk disk(path(u"locked"_s));
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

void TestSafeFile::aLinkStaysAndItsTargetIsWritten()
{
    QVERIFY(QDir().mkpath(path(u"far"_s)));
    write(path(u"far/real"_s), "old");
    QVERIFY(QFile::link(path(u"far/real"_s), path(u"far/link"_s)));
    QVERIFY(QFile::link(path(u"far/link"_s), path(u"to a link"_s)));
    QVERIFY(QFile::link(path(u"far/missing"_s), path(u"to nothing"_s)));
    QCOMPARE(::symlink("far/missing too", QFile::encodeName(path(u"relative"_s)).constData()), 0);
    const QMap<QString, QString> targets = {
        {u"to a link"_s, u"far/real"_s}, {u"to nothing"_s, u"far/missing"_s}, {u"relative"_s, u"far/missing too"_s}};
    for (auto i = targets.begin(); i != targets.end(); ++i) {
        QVERIFY(quillon::writeWholeFile(path(i.key()), "new"));
        QVERIFY2(QFileInfo(path(i.key())).isSymLink(), qPrintable(i.key()));
        QVERIFY2(QFileInfo(path(i.value())).isFile() && !QFileInfo(path(i.value())).isSymLink(), qPrintable(i.key()));
        QCOMPARE(read(path(i.value())), QByteArray("new"));
    }
    QVERIFY(QFileInfo(path(u"far/link"_s)).isSymLink());
}

void TestSafeFile::aFileKeepsItsModeAndItsOwnerMayReadAndWriteIt_data()
{
    QTest::addColumn<int>("before");
    QTest::addColumn<int>("after");
    QTest::newRow("private") << 0600 << 0600;
    QTest::newRow("for the group") << 0664 << 0664;
    QTest::newRow("a program") << 0755 << 0755;
    QTest::newRow("read only") << 0444 << 0644;
    QTest::newRow("write only") << 0200 << 0600;
    QTest::newRow("for others only") << 0040 << 0640;
    QTest::newRow("nothing") << 0 << 0600;
    QTest::newRow("new") << -1 << 0600;
}

void TestSafeFile::aFileKeepsItsModeAndItsOwnerMayReadAndWriteIt()
{
    QFETCH(int, before);
    QFETCH(int, after);
    const QByteArray name = QFile::encodeName(path(u"file"_s));
    if (before >= 0) {
        write(path(u"file"_s), "old");
        QCOMPARE(::chmod(name.constData(), static_cast<mode_t>(before)), 0);
    }
    QVERIFY(quillon::writeWholeFile(path(u"file"_s), "new"));
    struct stat status {};
    QCOMPARE(::stat(name.constData(), &status), 0);
    QCOMPARE(static_cast<int>(status.st_mode & 07777), after);
    QCOMPARE(read(path(u"file"_s)), QByteArray("new"));
}

void TestSafeFile::aFileIsFoundInAnotherCaseUnlessThereIsOneOfThatName()
{
    QVERIFY(QDir().mkpath(path(u"FOLDER"_s)));
    write(path(u"Name"_s), "1");
    write(path(u".Hidden"_s), "2");
    QCOMPARE(quillon::existingPath(path(u"NAME"_s)), path(u"Name"_s));
    QCOMPARE(quillon::existingPath(path(u".hidden"_s)), path(u".Hidden"_s));
    QCOMPARE(quillon::existingPath(path(u"folder"_s)), path(u"folder"_s));
    QCOMPARE(quillon::existingPath(path(u"Names"_s)), path(u"Names"_s));
    QCOMPARE(quillon::existingPath(QString()), QString());
    QVERIFY(quillon::appendToFile(path(u"NAME"_s), "+"));
    QCOMPARE(read(path(u"Name"_s)), QByteArray("1+"));
    QVERIFY(!QFile::exists(path(u"NAME"_s)));
    write(path(u"NAME"_s), "3");
    QCOMPARE(quillon::readWholeFile(path(u"NAME"_s)), std::optional<QByteArray>("3"));
    QVERIFY(quillon::writeWholeFile(path(u"NAME"_s), "4"));
    QCOMPARE(read(path(u"Name"_s)), QByteArray("1+"));
    // A link to nothing is there all the same.
    QVERIFY(QFile::link(path(u"nowhere"_s), path(u"name"_s)));
    QCOMPARE(quillon::existingPath(path(u"name"_s)), path(u"name"_s));
}

void TestSafeFile::aFileIsReadUpToItsLimit()
{
    write(path(u"four"_s), "1234");
    const int before = quillon::faultCount();
    QCOMPARE(quillon::readWholeFile(path(u"four"_s), 5), std::optional<QByteArray>("1234"));
    QCOMPARE(quillon::readWholeFile(path(u"four"_s), 4), std::optional<QByteArray>("1234"));
    QCOMPARE(quillon::readWholeFile(path(u"missing"_s)), std::optional<QByteArray>(""));
    QCOMPARE(quillon::readWholeFile(path(u"four/below"_s)), std::optional<QByteArray>(""));
    QCOMPARE(quillon::faultCount(), before);
    QCOMPARE(quillon::readWholeFile(path(u"four"_s), 3), std::nullopt);
    QCOMPARE(quillon::readWholeFile(m_folder->path()), std::nullopt);
    QCOMPARE(quillon::readWholeFile(u"/dev/null"_s), std::nullopt);
    QCOMPARE(quillon::faultCount(), before + 3);
}

void TestSafeFile::aPartOfALineIsTakenBack()
{
    write(path(u"log"_s), "first\r\n");
    bool limited = false;
    bool appended = true;
    bool replaced = true;
    {
        const SizeLimit limit(10);
        limited = limit.isSet();
        appended = quillon::appendToFile(path(u"log"_s), "second\r\n");
        replaced = quillon::writeWholeFile(path(u"log"_s), "much longer than it may be");
    }
    QVERIFY(limited && !appended && !replaced);
    QCOMPARE(read(path(u"log"_s)), QByteArray("first\r\n"));
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files | QDir::Hidden), QStringList{u"log"_s});
    QVERIFY(quillon::appendToFile(path(u"log"_s), "second\r\n"));
    QCOMPARE(read(path(u"log"_s)), QByteArray("first\r\nsecond\r\n"));
}

void TestSafeFile::onlyFilesAreWrittenTo()
{
    const int before = quillon::faultCount();
    QVERIFY(!quillon::appendToFile(u"/dev/null"_s, "x"));
    QVERIFY(!quillon::writeWholeFile(u"/dev/null"_s, "x"));
    QVERIFY(!quillon::appendToFile(path(u"no folder/x"_s), "x"));
    QVERIFY(!quillon::writeWholeFile(path(u"no folder/x"_s), "x"));
    QCOMPARE(quillon::faultCount(), before + 4);
    QVERIFY(QDir(m_folder->path()).isEmpty());
}

QTEST_GUILESS_MAIN(TestSafeFile)
#include "test_safefile.moc"
