#include "support/smalldisk.h"
#include "support/treefixture.h"

#include <QDateTime>
#include <QTest>

#include <array>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

/// What becomes of a move-over, and of a conversion, that could not be finished.
class TestHalfMoveOver : public QObject, protected TreeFixture {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        makeBareTree();
        QVERIFY(QDir().mkpath(old() + u"/data/templates"_s));
    }
    void cleanup() { dropTree(); }

    void whatDoesNotFitOnTheDiskComesWithTheNextStart();
    void aFullDiskBeginsNothing();
    void aFileThatCannotBePutThereComesLater();
    void aFolderThatCannotBePutThereComesLaterWithAllBelowIt();
    void aCompletedMoveOverLeavesWhatIsThereAndNewer();
    void whatTheUserDeletedMeanwhileDoesNotComeBack();
    void aMoveOverThatWasKilledIsCompleted();
    void oldSettingsThatCameLateGiveWayToWhatTheUserSet();
    void oldSettingsThatSayItIsDoneAreNotBelieved();
    void foldersDifferInCaseAndAreTheSame();
    void theUsersOwnFoldersMayBeInAnotherCase();
    void aTemplateThatCouldNotBeConvertedIsConvertedLater_data();
    void aTemplateThatCouldNotBeConvertedIsConvertedLater();
    void templatesThatComeLateAreConvertedToo();
    void aSenderIsNotConvertedTwice();

private:
    [[nodiscard]] QString old() const { return m_tree->sharedFolder() + u"/Lanthorn/Corvane"_s; }
    void writeOld(const QString &name, const QByteArray &bytes) const
    {
        writeFile(old() + name, bytes);
        // From long before anything that this test makes.
        const std::array<timespec, 2> longAgo{{{1000, 0}, {1000, 0}}};
        QCOMPARE(::utimensat(AT_FDCWD, QFile::encodeName(old() + name).constData(), longAgo.data(), 0), 0);
    }
    [[nodiscard]] QString mine(const QString &name) const { return m_tree->globals.paths.root + name; }
    [[nodiscard]] QString setting(const char *key) const
    {
        return m_tree->globals.system.ReadSetting(m_tree->globals.paths.optionsFile, u"Other"_s,
                                                  QString::fromLatin1(key));
    }
    [[nodiscard]] QString note() const { return QFileInfo(m_tree->globals.paths.root).path() + u"/.corvane-moving"_s; }
};

void TestHalfMoveOver::whatDoesNotFitOnTheDiskComesWithTheNextStart()
{
    SmallDisk disk(m_tree->userFolder(), "128k");
    if (!disk.isThere()) {
        QSKIP("this process may not mount a disk of its own");
    }
    const QByteArray large(256 * 1024, 'x');
    writeOld(u"/data/macros.dll"_s, large);
    writeOld(u"/data/smtp.dll"_s, "shared account\r\n");
    writeOld(u"/data/options.dll"_s, "[Other]\r\nTimes=7\r\n");
    corvane::PrepareDataFolder(m_tree->globals);
    QCOMPARE(contentOf(mine(u"/data/smtp.dll"_s)), QByteArray("shared account\r\n"));
    QCOMPARE(contentOf(mine(u"/data/macros.dll"_s)), QByteArray(""));
    QCOMPARE(setting("Times"), u"7"_s);
    QCOMPARE(setting("AppDataPath"), QString());
    QCOMPARE(contentOf(note()), QByteArray("/data/macros.dll\n"));
    QCOMPARE(QDir(QFileInfo(note()).path() + u"/.corvane-writing"_s).entryList(QDir::Files | QDir::Hidden),
             QStringList());

    writeFile(mine(u"/data/smtp.dll"_s), "my account\r\n");
    QVERIFY(disk.resize("1m"));
    corvane::PrepareDataFolder(m_tree->globals);
    QCOMPARE(contentOf(mine(u"/data/macros.dll"_s)), large);
    QCOMPARE(contentOf(mine(u"/data/smtp.dll"_s)), QByteArray("my account\r\n"));
    QCOMPARE(setting("AppDataPath"), u"True"_s);
    QVERIFY(!QFile::exists(note()));
}

void TestHalfMoveOver::aFullDiskBeginsNothing()
{
    SmallDisk disk(m_tree->userFolder(), "64k");
    if (!disk.isThere()) {
        QSKIP("this process may not mount a disk of its own");
    }
    writeOld(u"/data/smtp.dll"_s, "shared account\r\n");
    QFile filler(m_tree->userFolder() + u"/filler"_s);
    QVERIFY(filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    while (filler.write(QByteArray(4096, 'x')) == 4096) {
    }
    corvane::PrepareDataFolder(m_tree->globals);
    corvane::PrepareDataFolder(m_tree->globals);
    QCOMPARE(contentOf(mine(u"/data/smtp.dll"_s)), QByteArray(""));
    QVERIFY(filler.remove());
    corvane::PrepareDataFolder(m_tree->globals);
    QCOMPARE(contentOf(mine(u"/data/smtp.dll"_s)), QByteArray("shared account\r\n"));
    QCOMPARE(setting("AppDataPath"), u"True"_s);
}

void TestHalfMoveOver::aFileThatCannotBePutThereComesLater()
{
    writeOld(u"/data/smtp.dll"_s, "shared account\r\n");
    writeOld(u"/data/zz"_s, "behind it");
    QVERIFY(QDir().mkpath(mine(u"/data/smtp.dll"_s))); // a folder in its place
    corvane::PrepareDataFolder(m_tree->globals);
    QCOMPARE(contentOf(mine(u"/data/zz"_s)), QByteArray("behind it"));
    QCOMPARE(setting("AppDataPath"), QString());
    corvane::PrepareDataFolder(m_tree->globals);
    QCOMPARE(setting("AppDataPath"), QString());
    QVERIFY(QDir().rmdir(mine(u"/data/smtp.dll"_s)));
    corvane::PrepareDataFolder(m_tree->globals);
    QCOMPARE(contentOf(mine(u"/data/smtp.dll"_s)), QByteArray("shared account\r\n"));
    QCOMPARE(setting("AppDataPath"), u"True"_s);
}

void TestHalfMoveOver::aFolderThatCannotBePutThereComesLaterWithAllBelowIt()
{
    QVERIFY(QDir().mkpath(old() + u"/more/deep"_s));
    QVERIFY(QDir().mkpath(old() + u"/more of it"_s));
    writeOld(u"/more/deep/file"_s, "deep");
    writeOld(u"/more of it/file"_s, "beside");
    QVERIFY(QDir().mkpath(m_tree->globals.paths.root));
    writeFile(mine(u"/more"_s), "in the way");
    corvane::PrepareDataFolder(m_tree->globals);
    QCOMPARE(contentOf(mine(u"/more of it/file"_s)), QByteArray("beside"));
    QCOMPARE(contentOf(note()), QByteArray("/more\n"));
    QVERIFY(QDir(mine(u"/more of it"_s)).removeRecursively());
    QVERIFY(QFile::remove(mine(u"/more"_s)));
    corvane::PrepareDataFolder(m_tree->globals);
    QCOMPARE(contentOf(mine(u"/more/deep/file"_s)), QByteArray("deep"));
    QVERIFY(!QFile::exists(mine(u"/more of it"_s)));
    QCOMPARE(setting("AppDataPath"), u"True"_s);
}

void TestHalfMoveOver::aCompletedMoveOverLeavesWhatIsThereAndNewer()
{
    writeOld(u"/data/smtp.dll"_s, "shared account\r\n");
    writeOld(u"/data/proxy.dll"_s, "shared proxy\r\n");
    writeOld(u"/data/senders.dll"_s, "shared sender\r\n");
    for (const QString &name : {u"/data/smtp.dll"_s, u"/data/proxy.dll"_s, u"/data/senders.dll"_s}) {
        QVERIFY(QDir().mkpath(mine(name)));
    }
    corvane::PrepareDataFolder(m_tree->globals);
    for (const QString &name : {u"/data/smtp.dll"_s, u"/data/proxy.dll"_s, u"/data/senders.dll"_s}) {
        QVERIFY(QDir().rmdir(mine(name)));
    }
    writeFile(mine(u"/data/smtp.dll"_s), "my account\r\n"); // newer
    writeFile(mine(u"/data/proxy.dll"_s), "");              // as a start makes it
    writeFile(mine(u"/data/senders.dll"_s), "older\r\n");
    const std::array<timespec, 2> older{{{900, 0}, {900, 0}}};
    QCOMPARE(::utimensat(AT_FDCWD, QFile::encodeName(mine(u"/data/senders.dll"_s)).constData(), older.data(), 0), 0);
    corvane::PrepareDataFolder(m_tree->globals);
    QCOMPARE(contentOf(mine(u"/data/smtp.dll"_s)), QByteArray("my account\r\n"));
    QCOMPARE(contentOf(mine(u"/data/proxy.dll"_s)), QByteArray("shared proxy\r\n"));
    QCOMPARE(contentOf(mine(u"/data/senders.dll"_s)), QByteArray("shared sender\r\n"));
    QCOMPARE(setting("AppDataPath"), u"True"_s);
}

void TestHalfMoveOver::whatTheUserDeletedMeanwhileDoesNotComeBack()
{
    writeOld(u"/data/smtp.dll"_s, "shared account\r\n");
    writeOld(u"/data/templates/head_a.dll"_s, "[Head]\r\nTo=a@b.c\r\n");
    writeOld(u"/data/senders.dll"_s, "shared sender\r\n");
    QVERIFY(QDir().mkpath(mine(u"/data/smtp.dll"_s)));
    corvane::PrepareDataFolder(m_tree->globals);
    QVERIFY(QFile::remove(mine(u"/data/templates/head_a.dll"_s)));
    writeFile(mine(u"/data/senders.dll"_s), "");
    QVERIFY(QDir().rmdir(mine(u"/data/smtp.dll"_s)));
    corvane::PrepareDataFolder(m_tree->globals);
    QCOMPARE(setting("AppDataPath"), u"True"_s);
    QVERIFY(!QFile::exists(mine(u"/data/templates/head_a.dll"_s)));
    QCOMPARE(contentOf(mine(u"/data/senders.dll"_s)), QByteArray(""));
}

void TestHalfMoveOver::aMoveOverThatWasKilledIsCompleted()
{
    corvane::PrepareDataFolder(m_tree->globals); // of an empty folder
    QCOMPARE(setting("AppDataPath"), u"True"_s);
    // As a start leaves it that was killed behind its first file.
    writeOld(u"/data/smtp.dll"_s, "shared account\r\n");
    writeOld(u"/data/templates/head_a.dll"_s, "[Head]\r\nTo=a@b.c\r\n");
    writeFile(m_tree->globals.paths.optionsFile, "");
    writeFile(mine(u"/data/smtp.dll"_s), "my account\r\n");
    writeFile(note(), "/\n");
    corvane::PrepareDataFolder(m_tree->globals);
    QCOMPARE(contentOf(mine(u"/data/smtp.dll"_s)), QByteArray("my account\r\n"));
    QCOMPARE(contentOf(mine(u"/data/templates/head_a.dll"_s)), QByteArray("[Head]\r\nTo=a@b.c\r\n"));
    QCOMPARE(setting("AppDataPath"), u"True"_s);
    QVERIFY(!QFile::exists(note()));
}

void TestHalfMoveOver::oldSettingsThatCameLateGiveWayToWhatTheUserSet()
{
    writeOld(u"/data/options.dll"_s, "[Other]\r\nTimes=7\r\nInterval=9\r\nFormat=Rich\r\nOwn=kept\r\n"
                                     "[Sender]\r\nDefault.DispName=Ada\r\n");
    m_tree->prepare();
    // As it is when the old settings did not fit: a first start's own, some of which the user has changed since.
    writeFile(m_tree->globals.paths.optionsFile,
              "[Other]\r\nTimes=8\r\nInterval=26\r\nFormat=Plain\r\nUpgraded=Yes\r\n[Position]\r\nLeft=100\r\n");
    writeFile(note(), "/data/options.dll\n");
    corvane::PrepareDataFolder(m_tree->globals);
    QCOMPARE(contentOf(m_tree->globals.paths.optionsFile),
             QByteArray("[Other]\r\nTimes=8\r\nInterval=9\r\nFormat=Rich\r\nOwn=kept\r\nAppDataPath=True\r\n"
                        "[Sender]\r\nDefault.DispName=Ada\r\n[Position]\r\nLeft=100\r\n"));
}

void TestHalfMoveOver::oldSettingsThatSayItIsDoneAreNotBelieved()
{
    writeOld(u"/data/options.dll"_s, "[Other]\r\nAppDataPath=True\r\nTimes=7\r\n");
    writeOld(u"/data/smtp.dll"_s, "shared account\r\n");
    QVERIFY(QDir().mkpath(mine(u"/data/smtp.dll"_s)));
    corvane::PrepareDataFolder(m_tree->globals);
    QCOMPARE(setting("Times"), u"7"_s);
    QCOMPARE(setting("AppDataPath"), QString());
    QVERIFY(QDir().rmdir(mine(u"/data/smtp.dll"_s)));
    corvane::PrepareDataFolder(m_tree->globals);
    QCOMPARE(contentOf(mine(u"/data/smtp.dll"_s)), QByteArray("shared account\r\n"));
    QCOMPARE(setting("AppDataPath"), u"True"_s);
}

void TestHalfMoveOver::foldersDifferInCaseAndAreTheSame()
{
    QVERIFY(QDir(old()).removeRecursively());
    const QString odd = m_tree->sharedFolder() + u"/lanthorn/CORVANE"_s;
    QVERIFY(QDir(m_tree->sharedFolder()).rmdir(u"Lanthorn"_s));
    QVERIFY(QDir().mkpath(odd + u"/Data/Templates"_s));
    QVERIFY(QDir().mkpath(odd + u"/LOGS"_s));
    writeFile(odd + u"/Data/SMTP.dll"_s, "shared account\r\n");
    writeFile(odd + u"/Data/Templates/head_a.dll"_s, "[Head]\r\nTo=a@b.c\r\n");
    writeFile(odd + u"/Data/Options.dll"_s, "[Other]\r\nTimes=7\r\n");
    writeFile(odd + u"/LOGS/202001.log"_s, "Begin");
    corvane::PrepareDataFolder(m_tree->globals);
    const corvane::DataPaths &paths = m_tree->globals.paths;
    QCOMPARE(contentOf(paths.templates + u"/head_a.dll"_s), QByteArray("[Head]\r\nTo=a@b.c\r\n"));
    QCOMPARE(contentOf(paths.logs + u"/202001.log"_s), QByteArray("Begin"));
    QCOMPARE(contentOf(quillon::existingPath(paths.smtpFile)), QByteArray("shared account\r\n"));
    QCOMPARE(setting("Times"), u"7"_s);
    QCOMPARE(setting("AppDataPath"), u"True"_s);
    QCOMPARE(QDir(paths.root).entryList(QDir::Dirs | QDir::NoDotAndDotDot), (QStringList{u"data"_s, u"logs"_s}));
    QCOMPARE(QDir(paths.data).entryList(QDir::Dirs | QDir::NoDotAndDotDot),
             (QStringList{u"signs"_s, u"templates"_s, u"zips"_s}));
}

void TestHalfMoveOver::theUsersOwnFoldersMayBeInAnotherCase()
{
    QVERIFY(QDir(m_tree->sharedFolder() + u"/Lanthorn"_s).removeRecursively());
    QVERIFY(QDir().mkpath(mine(u"/Data/Templates"_s)));
    writeFile(mine(u"/Data/Templates/head_a.dll"_s), "[Head]\r\nTo=a@b.c\r\n");
    writeFile(mine(u"/Data/Zips"_s), "a file, and no folder");
    corvane::PrepareDataFolder(m_tree->globals);
    const corvane::DataPaths &paths = m_tree->globals.paths;
    QCOMPARE(paths.templates, mine(u"/Data/Templates"_s));
    QCOMPARE(paths.zips, mine(u"/Data/zips"_s));
    QVERIFY(QFileInfo(paths.zips).isDir());
    QVERIFY(QFileInfo(mine(u"/Data/smtp.dll"_s)).isFile());
    QVERIFY(!QFileInfo::exists(mine(u"/data"_s)));
}

void TestHalfMoveOver::aTemplateThatCouldNotBeConvertedIsConvertedLater_data()
{
    QTest::addColumn<QByteArray>("head");
    QTest::addColumn<QByteArray>("converted");
    QTest::addColumn<QString>("mark");
    QTest::addColumn<QString>("otherMark");
    QTest::newRow("sender") << QByteArray("[Head]\r\nSMTP Account=a@b.c\r\nSender=Ada\r\nSubject=x\r\n")
                            << QByteArray("[Head]\r\nSMTP Account=a@b.c\r\nSender=Ada <a@b.c>\r\nSubject=x\r\n")
                            << u"Upgraded"_s << u"UpgradedV50"_s;
    QTest::newRow("subject") << QByteArray("[Head]\r\nSender=a@b.c\r\nSubject=\xC3\xBC\r\n")
                             << QByteArray("[Head]\r\nSender=a@b.c\r\nSubject==?utf-8?B?w7w=?=\r\n") << u"UpgradedV50"_s
                             << u"Upgraded"_s;
}

void TestHalfMoveOver::aTemplateThatCouldNotBeConvertedIsConvertedLater()
{
    QFETCH(QByteArray, head);
    QFETCH(QByteArray, converted);
    QFETCH(QString, mark);
    QFETCH(QString, otherMark);
    SmallDisk disk(m_tree->userFolder(), "64k");
    if (!disk.isThere()) {
        QSKIP("this process may not mount a disk of its own");
    }
    QVERIFY(QDir(m_tree->sharedFolder() + u"/Lanthorn"_s).removeRecursively());
    corvane::PrepareDataFolder(m_tree->globals);
    const QString file = mine(u"/data/templates/head_a.dll"_s);
    writeFile(file, head);
    // Room for one small file only, and that is taken while the templates are converted.
    const QString options = m_tree->globals.paths.optionsFile;
    m_tree->globals.system.WriteSetting(options, u"Other"_s, otherMark, u"Yes"_s);
    QFile filler(m_tree->userFolder() + u"/filler"_s);
    QVERIFY(filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    while (filler.write(QByteArray(4096, 'x')) == 4096) {
    }
    corvane::UpgradeOldData(m_tree->globals);
    QCOMPARE(contentOf(file), head);
    QVERIFY(filler.remove());
    QCOMPARE(m_tree->globals.system.ReadSetting(options, u"Other"_s, mark), QString());
    corvane::UpgradeOldData(m_tree->globals);
    QCOMPARE(contentOf(file), converted);
    QCOMPARE(m_tree->globals.system.ReadSetting(options, u"Other"_s, mark), u"Yes"_s);
}

void TestHalfMoveOver::templatesThatComeLateAreConvertedToo()
{
    writeOld(u"/data/templates/head_a.dll"_s, "[Head]\r\nSMTP Account=a@b.c\r\nSender=Ada\r\nSubject=\xC3\xBC\r\n");
    QVERIFY(QDir().mkpath(mine(u"/data/templates/head_a.dll"_s)));
    m_tree->prepare();
    QCOMPARE(setting("Upgraded"), QString());
    QCOMPARE(setting("UpgradedV50"), QString());
    QVERIFY(QDir().rmdir(mine(u"/data/templates/head_a.dll"_s)));
    m_tree->prepare();
    QCOMPARE(contentOf(mine(u"/data/templates/head_a.dll"_s)),
             QByteArray("[Head]\r\nSMTP Account=a@b.c\r\nSender=Ada <a@b.c>\r\nSubject==?utf-8?B?w7w=?=\r\n"));
    QCOMPARE(setting("Upgraded"), u"Yes"_s);
    QCOMPARE(setting("UpgradedV50"), u"Yes"_s);
}

void TestHalfMoveOver::aSenderIsNotConvertedTwice()
{
    corvane::PrepareDataFolder(m_tree->globals);
    const QString file = mine(u"/data/templates/head_a.dll"_s);
    writeFile(file, "[Head]\r\nSMTP Account=no address\r\nSender=Ada\r\n");
    corvane::UpgradeOldData(m_tree->globals);
    // The mark is gone, as where it could not be written.
    writeFile(m_tree->globals.paths.optionsFile, "");
    corvane::UpgradeOldData(m_tree->globals);
    QCOMPARE(contentOf(file), QByteArray("[Head]\r\nSMTP Account=no address\r\nSender=Ada <no address>\r\n"));
}

QTEST_GUILESS_MAIN(TestHalfMoveOver)
#include "test_halfmoveover.moc"
