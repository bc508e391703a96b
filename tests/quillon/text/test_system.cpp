#include "quillon/fault.h"
#include "quillon/system/platform.h"
#include "quillon/system/quillonregistry.h"
#include "quillon/system/quillonsystem.h"
#include "support/waitfor.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;

class TestSystem : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }

    void specialFoldersFollowTheDesktopsVariables();
    void unknownNumbersAndLettersAreFaults();
    void waitHandlesEventsAndLastsItsTime();
    void endProcessEndsThoseOfThatNameAndDataOnly();
    void endProcessKillsWhatDoesNotListen();
    void endProcessKnowsAReplacedProgramAndTheHomeFolder();
    void endProcessLetsTheEventLoopGoOn();
    void endProcessOfNoneIsOverAtOnce();
    void endProcessGoesOnThoughNobodyWaits();
    void endProcessKnowsDataThatIsReachedThroughALink();
    void onlyAProgramIsStartedAnythingElseIsOpened();
    void aServiceThatIsTakenBackGivesWayToTheStandardOne();
    void registryKeepsValuesInItsFile();
    void registryLosesOnlyTheKeyThatIsDeleted();
    void promptsThatNobodyAnswersAreDeclined();
    void registryWithoutAFileIsSilent();
    void promptsWithNobodyThereAreFaults();
    void aServiceThatIsTakenBackLeavesTheOneBefore();

private:
    /// A process whose executable bears that very name, working on the data below @p dataHome.
    std::unique_ptr<QProcess> startAs(const QString &name, const QString &dataHome, const QStringList &arguments,
                                      const QString &variable = u"XDG_DATA_HOME"_s)
    {
        const QString folder = m_folder->filePath(QString::number(m_started++));
        QDir().mkpath(folder);
        const QString program = folder + u'/' + name;
        QFile::copy(QStandardPaths::findExecutable(arguments.constFirst()), program);
        auto process = std::make_unique<QProcess>();
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.remove(u"XDG_DATA_HOME"_s);
        environment.insert(variable, dataHome);
        process->setProcessEnvironment(environment);
        process->start(program, arguments.sliced(1));
        process->waitForStarted();
        return process;
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    int m_started = 0;
    quillon::QuillonSystem m_system;
};

void TestSystem::specialFoldersFollowTheDesktopsVariables()
{
    qputenv("XDG_DATA_HOME", "/tmp/of-the-user");
    qputenv("XDG_DATA_DIRS", "/tmp/of-all:/usr/share");
    QCOMPARE(m_system.GetSpecialFolder(26), u"/tmp/of-the-user"_s);
    QCOMPARE(m_system.GetSpecialFolder(35), u"/tmp/of-all"_s);
}

void TestSystem::unknownNumbersAndLettersAreFaults()
{
    const int before = quillon::faultCount();
    QCOMPARE(m_system.GetSpecialFolder(7), QString());
    QCOMPARE(m_system.GetSystemPath(u"X"_s), QString());
    QCOMPARE(quillon::faultCount(), before + 2);
    QVERIFY(QDir(m_system.GetSystemPath(u"P"_s)).exists());
    QCOMPARE(m_system.GetOsMajorVersion(), 10);
}

void TestSystem::waitHandlesEventsAndLastsItsTime()
{
    int ticks = 0;
    QTimer timer;
    connect(&timer, &QTimer::timeout, this, [&] { ++ticks; });
    timer.start(1);
    QElapsedTimer clock;
    clock.start();
    waitFor(m_system.WaitMilliseconds(50));
    QVERIFY(clock.elapsed() >= 50);
    QVERIFY(ticks > 0);
    waitFor(m_system.WaitMilliseconds(0));
    waitFor(m_system.WaitMilliseconds(-5));
}

void TestSystem::endProcessEndsThoseOfThatNameAndDataOnly()
{
    const QString mine = m_folder->filePath(u"mine"_s);
    qputenv("XDG_DATA_HOME", QFile::encodeName(mine));
    const auto first = startAs(u"CorvaneS.exe"_s, mine, {u"sleep"_s, u"600"_s});
    const auto second = startAs(u"CorvaneS.exe"_s, mine, {u"sleep"_s, u"600"_s});
    const auto otherName = startAs(u"CorvaneT.exe"_s, mine, {u"sleep"_s, u"600"_s});
    const auto otherData = startAs(u"CorvaneS.exe"_s, m_folder->filePath(u"other"_s), {u"sleep"_s, u"600"_s});
    waitFor(m_system.EndProcess(u"CorvaneS.exe"_s));
    QTRY_COMPARE(first->state(), QProcess::NotRunning);
    QTRY_COMPARE(second->state(), QProcess::NotRunning);
    QCOMPARE(otherName->state(), QProcess::Running);
    QCOMPARE(otherData->state(), QProcess::Running);
    otherName->kill();
    otherData->kill();
    otherName->waitForFinished();
    otherData->waitForFinished();
}

void TestSystem::endProcessKillsWhatDoesNotListen()
{
    const QString mine = m_folder->filePath(u"mine"_s);
    qputenv("XDG_DATA_HOME", QFile::encodeName(mine));
    const auto deaf =
        startAs(u"CorvaneS.exe"_s, mine,
                {u"bash"_s, u"-c"_s, u"trap '' TERM; echo deaf; while :; do read -t 1 < /dev/zero; done"_s});
    QVERIFY(deaf->waitForReadyRead());
    waitFor(m_system.EndProcess(u"CorvaneS.exe"_s));
    QTRY_COMPARE(deaf->state(), QProcess::NotRunning);
    QCOMPARE(deaf->exitStatus(), QProcess::CrashExit);
}

void TestSystem::endProcessKnowsAReplacedProgramAndTheHomeFolder()
{
    const QString home = m_folder->filePath(u"home"_s);
    qputenv("XDG_DATA_HOME", QFile::encodeName(home + u"/.local/share"_s));
    const auto replaced = startAs(u"CorvaneS.exe"_s, home + u"//.local/share/"_s, {u"sleep"_s, u"600"_s});
    const auto atHome = startAs(u"CorvaneS.exe"_s, home, {u"sleep"_s, u"600"_s}, u"HOME"_s);
    QVERIFY(QFile::remove(replaced->program()));
    waitFor(m_system.EndProcess(u"CorvaneS.exe"_s));
    QTRY_COMPARE(replaced->state(), QProcess::NotRunning);
    QTRY_COMPARE(atHome->state(), QProcess::NotRunning);
}

void TestSystem::endProcessLetsTheEventLoopGoOn()
{
    const QString mine = m_folder->filePath(u"mine"_s);
    qputenv("XDG_DATA_HOME", QFile::encodeName(mine));
    // Ends when it is told to by its input, and not by the request.
    const auto deaf =
        startAs(u"CorvaneS.exe"_s, mine, {u"bash"_s, u"-c"_s, u"trap '' TERM; echo deaf; read -r line"_s});
    QVERIFY(deaf->waitForReadyRead());
    quillon::Pending<> ended = m_system.EndProcess(u"CorvaneS.exe"_s);
    QVERIFY(!ended.isSettled());
    int ticks = 0;
    QTimer timer;
    connect(&timer, &QTimer::timeout, this, [&] {
        if (++ticks == 5) {
            deaf->closeWriteChannel();
        }
    });
    timer.start(0);
    waitFor(std::move(ended));
    QVERIFY(ticks >= 5);
    QTRY_COMPARE(deaf->state(), QProcess::NotRunning);
    QCOMPARE(deaf->exitStatus(), QProcess::NormalExit);
}

void TestSystem::endProcessOfNoneIsOverAtOnce()
{
    QVERIFY(m_system.EndProcess(u"No such program.exe"_s).isSettled());
}

void TestSystem::endProcessGoesOnThoughNobodyWaits()
{
    const QString mine = m_folder->filePath(u"mine"_s);
    qputenv("XDG_DATA_HOME", QFile::encodeName(mine));
    const auto deaf =
        startAs(u"CorvaneS.exe"_s, mine, {u"bash"_s, u"-c"_s, u"trap '' TERM; echo deaf; read -r line"_s});
    QVERIFY(deaf->waitForReadyRead());
    static_cast<void>(m_system.EndProcess(u"CorvaneS.exe"_s));
    QTRY_COMPARE(deaf->state(), QProcess::NotRunning);
    QCOMPARE(deaf->exitStatus(), QProcess::CrashExit);
}

void TestSystem::endProcessKnowsDataThatIsReachedThroughALink()
{
    const QString mine = m_folder->filePath(u"mine"_s);
    QVERIFY(QDir().mkpath(mine + u"/Lanthorn/Corvane"_s));
    QVERIFY(QFile::link(mine, m_folder->filePath(u"link"_s)));
    qputenv("XDG_DATA_HOME", QFile::encodeName(mine));
    const auto linked = startAs(u"CorvaneS.exe"_s, m_folder->filePath(u"link"_s), {u"sleep"_s, u"600"_s});
    waitFor(m_system.EndProcess(u"CorvaneS.exe"_s));
    QTRY_COMPARE(linked->state(), QProcess::NotRunning);
    QCOMPARE(linked->exitStatus(), QProcess::CrashExit);
}

namespace {

/// Notes what is started and what is opened, and can refuse both.
class RecordedDesktop : public quillon::Processes, public quillon::DesktopOpener {
public:
    RecordedDesktop() : m_processes(quillon::setProcesses(this)), m_opener(quillon::setDesktopOpener(this)) {}
    ~RecordedDesktop() override
    {
        quillon::setProcesses(m_processes);
        quillon::setDesktopOpener(m_opener);
    }
    RecordedDesktop(const RecordedDesktop &) = delete;
    RecordedDesktop &operator=(const RecordedDesktop &) = delete;

    bool start(const QString &program, const QStringList &arguments) override
    {
        done.append(u"start "_s + QFileInfo(program).fileName() + u' ' + arguments.join(u','));
        return succeeds;
    }
    bool open(const QString &pathOrUrl) override
    {
        done.append(u"open "_s + QFileInfo(pathOrUrl).fileName());
        return succeeds;
    }

    QStringList done;
    bool succeeds = true;

private:
    quillon::Processes *m_processes;
    quillon::DesktopOpener *m_opener;
};

} // namespace

void TestSystem::onlyAProgramIsStartedAnythingElseIsOpened()
{
    const QString folder = m_folder->filePath(u"folder"_s);
    const QString program = m_folder->filePath(u"program"_s);
    const QString text = m_folder->filePath(u"text"_s);
    QVERIFY(QDir().mkpath(folder));
    QVERIFY(QFile::copy(QStandardPaths::findExecutable(u"true"_s), program));
    QFile file(text);
    QVERIFY(file.open(QIODevice::WriteOnly));
    RecordedDesktop desktop;
    const int before = quillon::faultCount();
    m_system.OpenTarget(program, 1, {u"a"_s, u"b"_s});
    for (const QString &target : {folder, text, m_folder->filePath(u"missing"_s), u"http://x.example/page"_s}) {
        m_system.OpenTarget(target, 1, {u"a"_s});
    }
    m_system.OpenDocument(program, 1);
    QCOMPARE(quillon::faultCount(), before);
    QCOMPARE(desktop.done, (QStringList{u"start program a,b"_s, u"open folder"_s, u"open text"_s, u"open missing"_s,
                                        u"open page"_s, u"open program"_s}));
    desktop.succeeds = false;
    m_system.OpenTarget(program, 1, {});
    m_system.OpenTarget(folder, 1, {});
    QCOMPARE(quillon::faultCount(), before + 2);
}

void TestSystem::aServiceThatIsTakenBackGivesWayToTheStandardOne()
{
    class Stopped : public quillon::Clock {
    public:
        [[nodiscard]] QDateTime now() const override { return QDateTime(QDate(1999, 1, 2), QTime(3, 4)); }
    };
    quillon::Clock &standard = quillon::systemClock();
    Stopped first;
    Stopped second;
    QVERIFY(!quillon::setSystemClock(&first));
    QCOMPARE(quillon::setSystemClock(&second), &first);
    QCOMPARE(quillon::systemClock().now().date().year(), 1999);
    QCOMPARE(quillon::setSystemClock(nullptr), &second);
    QCOMPARE(&quillon::systemClock(), &standard);
    QVERIFY(quillon::systemClock().now().date().year() > 1999);
    QVERIFY(!quillon::setSystemClock(nullptr));
}

void TestSystem::registryLosesOnlyTheKeyThatIsDeleted()
{
    using quillon::QuillonRegistry;
    const QuillonRegistry registry;
    const QString path = m_folder->filePath(u"registry"_s);
    QuillonRegistry::setFile(path);
    registry.DeleteKey(QuillonRegistry::CurrentUser, u"A"_s);
    QVERIFY(!QFile::exists(path));
    for (const auto hive : {QuillonRegistry::CurrentUser, QuillonRegistry::Machine}) {
        registry.WriteValue(hive, u"A"_s, u"n"_s, QuillonRegistry::Number, u"x7"_s);
        registry.WriteValue(hive, u"A\\B"_s, u"n"_s, QuillonRegistry::Text, u"x7"_s);
    }
    registry.DeleteKey(QuillonRegistry::CurrentUser, u"a"_s);
    QCOMPARE(registry.ReadValue(QuillonRegistry::CurrentUser, u"A"_s, u"n"_s), QString());
    QCOMPARE(registry.ReadValue(QuillonRegistry::CurrentUser, u"A\\B"_s, u"n"_s), u"x7"_s);
    QCOMPARE(registry.ReadValue(QuillonRegistry::Machine, u"A"_s, u"n"_s), u"0"_s);
    QuillonRegistry::setFile(QString());
}

void TestSystem::promptsThatNobodyAnswersAreDeclined()
{
    using quillon::BoxAnswer;
    const int before = quillon::faultCount();
    const QList<std::pair<int, BoxAnswer>> answers = {{quillon::YesNoBox, BoxAnswer::No},
                                                      {quillon::YesNoCancelBox, BoxAnswer::Cancel},
                                                      {quillon::OkCancelQuestionBox, BoxAnswer::Cancel},
                                                      {quillon::OkCancelInformationBox, BoxAnswer::Cancel},
                                                      {quillon::InformationBox, BoxAnswer::Ok},
                                                      {quillon::WarningBox, BoxAnswer::Ok}};
    for (const auto &[style, answer] : answers) {
        QCOMPARE(quillon::prompts().box({u"K"_s, u"T"_s, QString(), style}), answer);
    }
    QCOMPARE(m_system.OpenFileDialog(u"T"_s, {}, QString(), true), QStringList());
    QCOMPARE(m_system.SaveFileDialog(u"T"_s, {}, u"name"_s), QString());
    QCOMPARE(m_system.SelectFolderDialog(u"T"_s), QString());
    quillon::prompts().showModalForm(u"frmA"_s, 0);
    QCOMPARE(quillon::faultCount(), before + 10);
}

void TestSystem::registryKeepsValuesInItsFile()
{
    using quillon::QuillonRegistry;
    const QuillonRegistry registry;
    QuillonRegistry::setFile(m_folder->filePath(u"registry"_s));
    registry.WriteValue(QuillonRegistry::CurrentUser, u"Software\\A"_s, u"Name"_s, QuillonRegistry::Text, u"x"_s);
    registry.WriteValue(QuillonRegistry::CurrentUser, u"Software\\A"_s, u"Number"_s, QuillonRegistry::Number, u"3"_s);
    registry.WriteValue(QuillonRegistry::Machine, u"Software\\A"_s, QString(), QuillonRegistry::Text, u"all"_s);
    QCOMPARE(registry.ReadValue(QuillonRegistry::CurrentUser, u"software\\a"_s, u"name"_s), u"x"_s);
    QCOMPARE(registry.ReadValue(QuillonRegistry::CurrentUser, u"Software\\A"_s, u"Number"_s), u"3"_s);
    registry.DeleteKey(QuillonRegistry::CurrentUser, u"Software\\A"_s);
    QCOMPARE(registry.ReadValue(QuillonRegistry::CurrentUser, u"Software\\A"_s, u"Name"_s), QString());
    QCOMPARE(registry.ReadValue(QuillonRegistry::Machine, u"Software\\A"_s, QString()), u"all"_s);
    QuillonRegistry::setFile(QString());
}

void TestSystem::registryWithoutAFileIsSilent()
{
    using quillon::QuillonRegistry;
    const QuillonRegistry registry;
    const int before = quillon::faultCount();
    registry.WriteValue(QuillonRegistry::CurrentUser, u"A"_s, u"b"_s, QuillonRegistry::Text, u"c"_s);
    registry.DeleteKey(QuillonRegistry::CurrentUser, u"A"_s);
    QCOMPARE(registry.ReadValue(QuillonRegistry::CurrentUser, u"A"_s, u"b"_s), QString());
    QCOMPARE(quillon::faultCount(), before);
}

void TestSystem::promptsWithNobodyThereAreFaults()
{
    const int before = quillon::faultCount();
    QCOMPARE(quillon::prompts().box({u"K"_s, u"T"_s, QString(), quillon::YesNoBox}), quillon::BoxAnswer::No);
    QCOMPARE(quillon::prompts().input({u"K"_s, u"T"_s, u"default"_s}), QString());
    QCOMPARE(m_system.ChooseColor(), -1L);
    QCOMPARE(quillon::faultCount(), before + 3);
}

namespace {

/// What became of the services of a kind, put in force with @p set and asked for with @p present.
template <typename Service, typename Set, typename Present> void checkExchange(Set set, Present present)
{
    Service *const standard = &present();
    Service first;
    Service second;
    QCOMPARE(set(nullptr), nullptr);
    QCOMPARE(&present(), standard);
    QCOMPARE(set(&first), nullptr); // the default is told as nobody, so that it can be put back as what was told
    QCOMPARE(&present(), &first);
    QCOMPARE(set(&second), &first);
    QCOMPARE(&present(), &second);
    QCOMPARE(set(nullptr), &second);
    QCOMPARE(&present(), standard);
    QCOMPARE(set(nullptr), nullptr);
    QCOMPARE(&present(), standard);
}

} // namespace

void TestSystem::aServiceThatIsTakenBackLeavesTheOneBefore()
{
    checkExchange<quillon::Clock>(quillon::setSystemClock, quillon::systemClock);
    checkExchange<quillon::Processes>(quillon::setProcesses, quillon::processes);
    checkExchange<quillon::DesktopOpener>(quillon::setDesktopOpener, quillon::desktopOpener);
}

QTEST_GUILESS_MAIN(TestSystem)
#include "test_system.moc"
