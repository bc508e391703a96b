#include "support/treefixture.h"

#include <QTest>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

/// The data of the folder that all users of a machine once shared, and how each gets a copy.
class TestMoveOver : public QObject, protected TreeFixture {
    Q_OBJECT

private Q_SLOTS:
    void init() { makeBareTree(); }
    void cleanup() { dropTree(); }

    void oldSharedFolderIsMovedOverOnce();
    void userWhoWasMovedOverKeepsTheirData();
    void sharedFolderThatIsTheUsersOwnIsNotCopied();
    void hiddenFilesAndEmptyFoldersAreMovedOver();
    void settingsOfTheOldFolderAreTakenOver();
    void linksToFoldersAreNotFollowedWhenDataIsMovedOver();

private:
    [[nodiscard]] QString old() const { return m_tree->sharedFolder() + u"/Lanthorn/Corvane"_s; }
    [[nodiscard]] QString head(const QString &name) const { return m_tree->globals.paths.templates + u'/' + name; }
    [[nodiscard]] QString setting(const QString &file, const QString &section, const QString &key) const
    {
        return m_tree->globals.system.ReadSetting(file, section, key);
    }
};

void TestMoveOver::oldSharedFolderIsMovedOverOnce()
{
    QVERIFY(QDir().mkpath(old() + u"/data/templates"_s));
    writeFile(old() + u"/data/smtp.dll"_s, "shared account\r\n");
    writeFile(old() + u"/data/templates/head_a.dll"_s, "[Head]\r\nTo=a@b.c\r\n");
    corvane::PrepareDataFolder(m_tree->globals);
    QCOMPARE(contentOf(m_tree->globals.paths.smtpFile), QByteArray("shared account\r\n"));
    QCOMPARE(contentOf(head(u"head_a.dll"_s)), QByteArray("[Head]\r\nTo=a@b.c\r\n"));
    QCOMPARE(setting(m_tree->globals.paths.optionsFile, u"Other"_s, u"AppDataPath"_s), u"True"_s);

    writeFile(m_tree->globals.paths.smtpFile, "my account\r\n");
    corvane::PrepareDataFolder(m_tree->globals);
    QCOMPARE(contentOf(m_tree->globals.paths.smtpFile), QByteArray("my account\r\n"));
}

void TestMoveOver::userWhoWasMovedOverKeepsTheirData()
{
    QVERIFY(QDir().mkpath(old() + u"/data"_s));
    writeFile(old() + u"/data/smtp.dll"_s, "shared account\r\n");
    QVERIFY(QDir().mkpath(m_tree->globals.paths.data));
    writeFile(m_tree->globals.paths.optionsFile, "[Other]\r\nAppDataPath=True\r\n");
    corvane::PrepareDataFolder(m_tree->globals);
    QCOMPARE(contentOf(m_tree->globals.paths.smtpFile), QByteArray(""));
}

void TestMoveOver::sharedFolderThatIsTheUsersOwnIsNotCopied()
{
    qputenv("XDG_DATA_DIRS", QFile::encodeName(m_tree->userFolder()));
    corvane::PrepareDataFolder(m_tree->globals);
    corvane::PrepareDataFolder(m_tree->globals);
    QCOMPARE(setting(m_tree->globals.paths.optionsFile, u"Other"_s, u"AppDataPath"_s), QString());
}

void TestMoveOver::hiddenFilesAndEmptyFoldersAreMovedOver()
{
    QVERIFY(QDir().mkpath(old() + u"/data/.kept/deep"_s));
    QVERIFY(QDir().mkpath(old() + u"/data/hidden only"_s));
    QVERIFY(QDir().mkpath(old() + u"/data/empty"_s));
    writeFile(old() + u"/.first"_s, "1");
    writeFile(old() + u"/data/.kept/deep/file"_s, "2");
    writeFile(old() + u"/data/hidden only/.file"_s, "3");
    corvane::PrepareDataFolder(m_tree->globals);
    const corvane::DataPaths &paths = m_tree->globals.paths;
    QCOMPARE(contentOf(paths.root + u"/.first"_s), QByteArray("1"));
    QCOMPARE(contentOf(paths.data + u"/.kept/deep/file"_s), QByteArray("2"));
    QCOMPARE(contentOf(paths.data + u"/hidden only/.file"_s), QByteArray("3"));
    QVERIFY(QFileInfo(paths.data + u"/empty"_s).isDir());
    QCOMPARE(contentOf(old() + u"/.first"_s), QByteArray("1")); // the others of this machine still need theirs
}

void TestMoveOver::settingsOfTheOldFolderAreTakenOver()
{
    QVERIFY(QDir().mkpath(old() + u"/data"_s));
    writeFile(old() + u"/data/options.dll"_s, "[Proxy Server]\r\nUse=True\r\n[Other]\r\nTimes=7\r\nUpgraded=Yes\r\n");
    corvane::PrepareDataFolder(m_tree->globals);
    const QString options = m_tree->globals.paths.optionsFile;
    QCOMPARE(contentOf(options), QByteArray("[Proxy Server]\r\nUse=True\r\n[Other]\r\nTimes=7\r\nUpgraded=Yes\r\n"
                                            "AppDataPath=True\r\n"));
    struct stat status {};
    QCOMPARE(::stat(QFile::encodeName(options).constData(), &status), 0);
    QCOMPARE(static_cast<int>(status.st_mode & 07777), 0600);
    m_tree->globals.system.WriteSetting(options, u"Other"_s, u"Times"_s, u"8"_s);
    corvane::PrepareDataFolder(m_tree->globals);
    QCOMPARE(setting(options, u"Other"_s, u"Times"_s), u"8"_s);
}

void TestMoveOver::linksToFoldersAreNotFollowedWhenDataIsMovedOver()
{
    QVERIFY(QDir().mkpath(old() + u"/data"_s));
    QVERIFY(QDir().mkpath(m_tree->path(u"outside"_s)));
    writeFile(m_tree->path(u"outside/file"_s), "outside");
    QVERIFY(QFile::link(m_tree->path(u"outside"_s), old() + u"/data/link"_s));
    QVERIFY(QFile::link(m_tree->path(u"outside/file"_s), old() + u"/data/linked file"_s));
    corvane::PrepareDataFolder(m_tree->globals);
    const corvane::DataPaths &paths = m_tree->globals.paths;
    QVERIFY(!QFileInfo::exists(paths.data + u"/link"_s));
    QCOMPARE(contentOf(paths.data + u"/linked file"_s), QByteArray("outside"));
    QVERIFY(!QFileInfo(paths.data + u"/linked file"_s).isSymLink());

    // Only now one that leads to everything there is, which a copy would never come to the end of.
    QVERIFY(QFile::remove(paths.optionsFile));
    QVERIFY(QFile::link(u"/"_s, old() + u"/data/all"_s));
    writeFile(old() + u"/data/zz"_s, "behind it");
    corvane::PrepareDataFolder(m_tree->globals);
    QVERIFY(!QFileInfo::exists(paths.data + u"/all"_s));
    QCOMPARE(contentOf(paths.data + u"/zz"_s), QByteArray("behind it"));
}

QTEST_GUILESS_MAIN(TestMoveOver)
#include "test_moveover.moc"
