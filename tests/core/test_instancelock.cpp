#include "core/instancelock.h"
#include "support/smalldisk.h"
#include "support/treefixture.h"

#include <QDateTime>
#include <QProcess>
#include <QTest>

#include <array>
#include <cerrno>
#include <csignal>
#include <sys/file.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace corvane;

namespace {

QByteArray folderWithoutLocks;
int reasonThere = 0;

} // namespace

/// In the system's place: a file system that has no locks.
extern "C" int flock(int file, int operation) noexcept
{
    const QString path = QFile::symLinkTarget(u"/proc/self/fd/"_s + QString::number(file));
    if (!folderWithoutLocks.isEmpty() && QFile::encodeName(path).startsWith(folderWithoutLocks)) {
        errno = reasonThere;
        return -1;
    }
    return static_cast<int>(::syscall(SYS_flock, file, operation));
}

class TestInstanceLock : public QObject, protected TreeFixture {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        makeBareTree();
        QVERIFY(QDir().mkpath(path(u"runtime"_s)));
        QVERIFY(QDir().mkpath(path(u"other runtime"_s)));
        useRuntimeFolder(u"runtime"_s);
        folderWithoutLocks.clear();
    }
    void cleanup()
    {
        folderWithoutLocks.clear();
        dropTree();
    }

    void secondInstanceOfTheSameDataIsSeen();
    void lockIsFreedWhenItsHolderIsGone();
    void lockIsFreedWhenItsHolderIsKilled();
    void lockIsOfOneFolderHoweverItIsWritten();
    void startedProgramsDoNotHoldTheLock();
    void anotherRuntimeFolderIsNoOtherLock();
    void noRuntimeFolderIsNeededOrTouched();
    void aTreeThatIsReachedThroughALinkIsOne_data();
    void aTreeThatIsReachedThroughALinkIsOne();
    void theFolderOfANewTreeIsMadeForItsOwner();
    void aSecondInstanceChangesNothing();
    void withoutLocksTheRuntimeFolderHasIt_data();
    void withoutLocksTheRuntimeFolderHasIt();
    void aTreeThatCannotBeWrittenToHasItsLockInTheRuntimeFolder();
    void aLockInTheRuntimeFolderCountsWhenTheTreeCanBeLockedAgain();
    void aLinkInTheLocksPlaceIsNotFollowed();
    void aLockThatCanBeNowhereLetsTheProgramStart();

private:
    [[nodiscard]] QString path(const QString &name) const { return m_tree->path(name); }
    [[nodiscard]] QString root() const { return m_tree->globals.paths.root; }
    [[nodiscard]] QString lockPath() const { return m_tree->userFolder() + u"/Lanthorn/.Corvane.lock"_s; }
    void useRuntimeFolder(const QString &name) const
    {
        QVERIFY(QFile::setPermissions(path(name), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        qputenv("XDG_RUNTIME_DIR", QFile::encodeName(path(name)));
    }
    [[nodiscard]] QStringList runtimeFiles(const QString &name) const
    {
        return QDir(path(name)).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }
};

void TestInstanceLock::secondInstanceOfTheSameDataIsSeen()
{
    const InstanceLock first(root());
    QVERIFY(!first.otherInstanceRuns());
    QVERIFY(InstanceLock(root()).otherInstanceRuns());
    QVERIFY(!InstanceLock(path(u"two/Lanthorn/Corvane"_s)).otherInstanceRuns());
    QVERIFY(!InstanceLock(m_tree->userFolder() + u"/Lanthorn/Another"_s).otherInstanceRuns());
}

void TestInstanceLock::lockIsFreedWhenItsHolderIsGone()
{
    {
        const InstanceLock first(root());
    }
    QVERIFY(!InstanceLock(root()).otherInstanceRuns());
}

void TestInstanceLock::lockIsFreedWhenItsHolderIsKilled()
{
    std::array<int, 2> ready{};
    QCOMPARE(::pipe(ready.data()), 0);
    const pid_t holder = ::fork();
    if (holder == 0) {
        const InstanceLock lock(root());
        const char held = lock.otherInstanceRuns() ? 'n' : 'y';
        if (::write(ready[1], &held, 1) == 1) {
            ::pause();
        }
        ::_exit(1);
    }
    char held = 0;
    QCOMPARE(::read(ready[0], &held, 1), 1);
    QCOMPARE(held, 'y');
    QVERIFY(InstanceLock(root()).otherInstanceRuns());
    QCOMPARE(::kill(holder, SIGKILL), 0);
    QCOMPARE(::waitpid(holder, nullptr, 0), holder);
    QVERIFY(!InstanceLock(root()).otherInstanceRuns());
    ::close(ready[0]);
    ::close(ready[1]);
}

void TestInstanceLock::lockIsOfOneFolderHoweverItIsWritten()
{
    const QString folder = m_tree->userFolder();
    const InstanceLock first(root());
    QVERIFY(InstanceLock(folder + u"/./Lanthorn/two/..//Corvane/"_s).otherInstanceRuns());
    QVERIFY(!InstanceLock(folder + u"/Lanthorn/corvane"_s).otherInstanceRuns());
}

void TestInstanceLock::startedProgramsDoNotHoldTheLock()
{
    QProcess companion; // goes on until its input is closed
    {
        const InstanceLock first(root());
        companion.start(u"/bin/cat"_s, {});
        QVERIFY(companion.waitForStarted());
    }
    QCOMPARE(companion.state(), QProcess::Running);
    QVERIFY(!InstanceLock(root()).otherInstanceRuns());
    companion.closeWriteChannel();
    QVERIFY(companion.waitForFinished());
}

void TestInstanceLock::anotherRuntimeFolderIsNoOtherLock()
{
    const InstanceLock first(root());
    useRuntimeFolder(u"other runtime"_s);
    QVERIFY(InstanceLock(root()).otherInstanceRuns());
    qunsetenv("XDG_RUNTIME_DIR");
    QVERIFY(InstanceLock(root()).otherInstanceRuns());
}

void TestInstanceLock::noRuntimeFolderIsNeededOrTouched()
{
    const InstanceLock first(root());
    QVERIFY(InstanceLock(root()).otherInstanceRuns());
    QCOMPARE(runtimeFiles(u"runtime"_s), QStringList());
}

void TestInstanceLock::aTreeThatIsReachedThroughALinkIsOne_data()
{
    QTest::addColumn<QString>("linked"); // what the link leads to
    QTest::addColumn<QString>("link");
    QTest::addColumn<QString>("rootThere");
    QTest::newRow("the user's folder") << u"user"_s << u"link"_s << u"link/Lanthorn/Corvane"_s;
    QTest::newRow("the vendor's folder") << u"user/Lanthorn"_s << u"home/Lanthorn"_s << u"home/Lanthorn/Corvane"_s;
    QTest::newRow("the data root") << u"user/Lanthorn/Corvane"_s << u"home/Lanthorn/Corvane"_s
                                   << u"home/Lanthorn/Corvane"_s;
    QTest::newRow("the data root by another name") << u"user/Lanthorn/Corvane"_s << u"x"_s << u"x"_s;
}

void TestInstanceLock::aTreeThatIsReachedThroughALinkIsOne()
{
    QFETCH(QString, linked);
    QFETCH(QString, link);
    QFETCH(QString, rootThere);
    QVERIFY(QDir().mkpath(root()));
    QVERIFY(QDir().mkpath(path(u"home/Lanthorn"_s)));
    QVERIFY(!QFileInfo::exists(path(link)) || QDir().rmdir(path(link)));
    QVERIFY(QFile::link(path(linked), path(link)));
    {
        const InstanceLock first(root());
        useRuntimeFolder(u"other runtime"_s);
        QVERIFY(InstanceLock(path(rootThere)).otherInstanceRuns());
    }
    const InstanceLock first(path(rootThere));
    QVERIFY(!first.otherInstanceRuns());
    QVERIFY(InstanceLock(root()).otherInstanceRuns());
}

void TestInstanceLock::theFolderOfANewTreeIsMadeForItsOwner()
{
    QVERIFY(QDir(m_tree->userFolder()).removeRecursively());
    const InstanceLock first(root());
    // From now on the tree is there.
    QVERIFY(QDir().mkpath(root()));
    QVERIFY(InstanceLock(root()).otherInstanceRuns());
    struct stat status {};
    QCOMPARE(::stat(QFile::encodeName(m_tree->userFolder() + u"/Lanthorn"_s).constData(), &status), 0);
    QCOMPARE(static_cast<int>(status.st_mode & 07777), 0700);
    QCOMPARE(::stat(QFile::encodeName(lockPath()).constData(), &status), 0);
    QCOMPARE(static_cast<int>(status.st_mode & 07777), 0600);
    QCOMPARE(runtimeFiles(u"runtime"_s), QStringList());
}

void TestInstanceLock::aSecondInstanceChangesNothing()
{
    const InstanceLock first(root());
    const std::array<timespec, 2> longAgo{};
    for (const QString &file : {lockPath(), QFileInfo(lockPath()).path()}) {
        QCOMPARE(::utimensat(AT_FDCWD, QFile::encodeName(file).constData(), longAgo.data(), 0), 0);
    }
    QVERIFY(InstanceLock(root()).otherInstanceRuns());
    for (const QString &file : {lockPath(), QFileInfo(lockPath()).path()}) {
        QCOMPARE(QFileInfo(file).lastModified().toSecsSinceEpoch(), 0);
    }
}

void TestInstanceLock::withoutLocksTheRuntimeFolderHasIt_data()
{
    QTest::addColumn<int>("reason");
    QTest::newRow("ENOLCK") << ENOLCK;
    QTest::newRow("EOPNOTSUPP") << EOPNOTSUPP;
    QTest::newRow("ENOSYS") << ENOSYS;
}

void TestInstanceLock::withoutLocksTheRuntimeFolderHasIt()
{
    QFETCH(int, reason);
    folderWithoutLocks = QFile::encodeName(QFileInfo(m_tree->userFolder()).canonicalFilePath());
    reasonThere = reason;
    const InstanceLock first(root());
    QVERIFY(!first.otherInstanceRuns());
    QVERIFY(InstanceLock(root()).otherInstanceRuns());
    QVERIFY(QDir().mkpath(root()));
    QVERIFY(QFile::link(root(), path(u"link"_s)));
    QVERIFY(InstanceLock(path(u"link"_s)).otherInstanceRuns());
    QVERIFY(!InstanceLock(path(u"two/Lanthorn/Corvane"_s)).otherInstanceRuns());
}

void TestInstanceLock::aTreeThatCannotBeWrittenToHasItsLockInTheRuntimeFolder()
{
    const SmallDisk disk(m_tree->userFolder(), "64k");
    if (!disk.isThere()) {
        QSKIP("this process may not mount a disk of its own");
    }
    QVERIFY(QDir().mkpath(root()));
    QCOMPARE(::mount("small", QFile::encodeName(m_tree->userFolder()).constData(), "tmpfs", MS_REMOUNT | MS_RDONLY, ""),
             0);
    const InstanceLock first(root());
    QVERIFY(!first.otherInstanceRuns());
    QVERIFY(InstanceLock(root()).otherInstanceRuns());
    QCOMPARE(runtimeFiles(u"runtime"_s).size(), 1);
}

void TestInstanceLock::aLockInTheRuntimeFolderCountsWhenTheTreeCanBeLockedAgain()
{
    QVERIFY(QDir().mkpath(lockPath())); // no file can be made there
    {
        const InstanceLock first(root());
        QVERIFY(!first.otherInstanceRuns());
        QVERIFY(QDir().rmdir(lockPath()));
        QVERIFY(InstanceLock(root()).otherInstanceRuns());
    }
    QVERIFY(!InstanceLock(root()).otherInstanceRuns());
}

void TestInstanceLock::aLinkInTheLocksPlaceIsNotFollowed()
{
    QVERIFY(QDir().mkpath(root()));
    QVERIFY(QFile::link(path(u"elsewhere"_s), lockPath()));
    const InstanceLock first(root());
    QVERIFY(InstanceLock(root()).otherInstanceRuns());
    QVERIFY(!QFile::exists(path(u"elsewhere"_s)));
}

void TestInstanceLock::aLockThatCanBeNowhereLetsTheProgramStart()
{
    QVERIFY(QDir().mkpath(lockPath()));
    folderWithoutLocks = QFile::encodeName(QFileInfo(path(u"runtime"_s)).canonicalFilePath());
    reasonThere = ENOLCK;
    const InstanceLock first(root());
    QVERIFY(!first.otherInstanceRuns());
    QVERIFY(!InstanceLock(root()).otherInstanceRuns());
}

QTEST_GUILESS_MAIN(TestInstanceLock)
#include "test_instancelock.moc"
