#include "quillon/mail/subjectcodec.h"
#include "support/treefixture.h"

#include <QDirIterator>
#include <QTest>

#include <array>
#include <fcntl.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

QStringList treeBelow(const QString &folder)
{
    QStringList found;
    QDirIterator walk(folder, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (walk.hasNext()) {
        const QString path = walk.next();
        found.append(QDir(folder).relativeFilePath(path) + (QFileInfo(path).isDir() ? u"/"_s : QString()));
    }
    found.sort();
    return found;
}

int modeOf(const QString &path)
{
    struct stat status {};
    return ::stat(QFile::encodeName(path).constData(), &status) == 0 ? static_cast<int>(status.st_mode & 07777) : -1;
}

} // namespace

class TestDataTree : public QObject, protected TreeFixture {
    Q_OBJECT

private Q_SLOTS:
    void init() { makeBareTree(); }
    void cleanup() { dropTree(); }

    void newUserGetsNineEmptyFilesAndTheMarker();
    void foldersAndFilesAreForTheirOwner();
    void missingApplicationDataFolderIsMade();
    void presentFileIsNeverTouched();
    void settingsThatCannotBeReadStopTheMoveOverAndTheConversions();
    void everyFolderAndFileOfTheTreeIsMadeWritable();
    void subjectThatIsEncodedAlreadyIsNotEncodedAgain();
    void readOnlyFileInSignsIsWritableAgain();
    void filesWithPasswordsAreReadByTheirOwnerOnly();
    void subFoldersAreNotWalkedForAttributes();
    void templateNamesAreTestedOnFiveLowerCasedCharacters();
    void oldSenderGetsItsAccountsAddress();
    void senderInEntryFormIsLeftAlone();
    void emptySenderBecomesTheAccount();
    void secondStartChangesNothing();
    void oldSubjectIsEncodedOnce();
    void conversionIsTriedOnceEvenWhenATemplateCannotBeRead();
    void readOnlyDiskIsSilent();
    void leftoversOfAKilledWriteAreCleared();
    void hiddenFilesAreMadeWritable();
    void namesOfOldTemplatesAreHeadsOnly_data();
    void namesOfOldTemplatesAreHeadsOnly();

private:
    [[nodiscard]] QString head(const QString &name) const { return m_tree->globals.paths.templates + u'/' + name; }
    [[nodiscard]] QString setting(const QString &file, const QString &section, const QString &key) const
    {
        return m_tree->globals.system.ReadSetting(file, section, key);
    }
};

void TestDataTree::newUserGetsNineEmptyFilesAndTheMarker()
{
    corvane::PrepareDataFolder(m_tree->globals);
    const QStringList expected = {u"Corvane data folder, please do not delete it"_s,
                                  u"data/"_s,
                                  u"data/macros.dll"_s,
                                  u"data/options.dll"_s,
                                  u"data/prompts.dll"_s,
                                  u"data/proxy.dll"_s,
                                  u"data/queues.dll"_s,
                                  u"data/senders.dll"_s,
                                  u"data/signs/"_s,
                                  u"data/signs/signs.dll"_s,
                                  u"data/smtp.dll"_s,
                                  u"data/templates/"_s,
                                  u"data/templates/templates.dll"_s,
                                  u"data/zips/"_s,
                                  u"logs/"_s};
    const QString root = m_tree->userFolder() + u"/Lanthorn/Corvane"_s;
    QCOMPARE(treeBelow(root), expected);
    for (const QString &name : expected) {
        QVERIFY(name.endsWith(u'/') || contentOf(root + u'/' + name) == QByteArray(""));
    }
    QCOMPARE(setting(m_tree->globals.paths.optionsFile, u"Other"_s, u"AppDataPath"_s), QString());
}

void TestDataTree::foldersAndFilesAreForTheirOwner()
{
    corvane::PrepareDataFolder(m_tree->globals);
    QCOMPARE(modeOf(m_tree->globals.paths.root), 0700);
    QCOMPARE(modeOf(m_tree->globals.paths.data), 0700);
    QCOMPARE(modeOf(m_tree->globals.paths.smtpFile), 0600);
}

void TestDataTree::missingApplicationDataFolderIsMade()
{
    QVERIFY(QDir(m_tree->userFolder()).removeRecursively());
    corvane::PrepareDataFolder(m_tree->globals);
    QVERIFY(QFileInfo(m_tree->globals.paths.smtpFile).isFile());
}

void TestDataTree::presentFileIsNeverTouched()
{
    corvane::PrepareDataFolder(m_tree->globals);
    writeFile(m_tree->globals.paths.smtpFile, "an account\r\n");
    corvane::PrepareDataFolder(m_tree->globals);
    QCOMPARE(contentOf(m_tree->globals.paths.smtpFile), QByteArray("an account\r\n"));
}

void TestDataTree::settingsThatCannotBeReadStopTheMoveOverAndTheConversions()
{
    const QString old = m_tree->sharedFolder() + u"/Lanthorn/Corvane"_s;
    QVERIFY(QDir().mkpath(old + u"/data"_s));
    writeFile(old + u"/data/smtp.dll"_s, "shared account\r\n");
    corvane::PrepareDataFolder(m_tree->globals);
    writeFile(m_tree->globals.paths.smtpFile, "my account\r\n");
    const QByteArray head = "[Head]\r\nSMTP Account=a@b.c\r\nSender=Ada\r\nSubject=Grüße\r\n";
    writeFile(this->head(u"head_a.dll"_s), head);
    // A pipe in the place of the settings: even an administrator cannot read it as a file.
    QVERIFY(QFile::remove(m_tree->globals.paths.optionsFile));
    QCOMPARE(::mkfifo(QFile::encodeName(m_tree->globals.paths.optionsFile).constData(), 0600), 0);
    corvane::PrepareDataFolder(m_tree->globals);
    corvane::UpgradeOldData(m_tree->globals);
    QCOMPARE(contentOf(m_tree->globals.paths.smtpFile), QByteArray("my account\r\n"));
    QCOMPARE(contentOf(this->head(u"head_a.dll"_s)), head);
}

void TestDataTree::everyFolderAndFileOfTheTreeIsMadeWritable()
{
    corvane::PrepareDataFolder(m_tree->globals);
    const corvane::DataPaths &paths = m_tree->globals.paths;
    const QStringList folders = {
        QFileInfo(paths.root).path(), paths.root, paths.data, paths.signs, paths.templates, paths.logs, paths.zips};
    QStringList files = {paths.markerFile};
    for (const QString &folder : folders.sliced(2)) {
        files.append(folder + u"/file"_s);
        writeFile(files.constLast(), "x");
    }
    for (const QString &file : std::as_const(files)) {
        QCOMPARE(::chmod(QFile::encodeName(file).constData(), 0040), 0);
    }
    for (const QString &folder : folders) {
        QCOMPARE(::chmod(QFile::encodeName(folder).constData(), 0550), 0);
    }
    corvane::PrepareDataFolder(m_tree->globals);
    for (const QString &folder : folders) {
        QVERIFY2(modeOf(folder) == 0750, qPrintable(folder));
    }
    for (const QString &file : std::as_const(files)) {
        QVERIFY2(modeOf(file) == 0640, qPrintable(file));
    }
}

void TestDataTree::subjectThatIsEncodedAlreadyIsNotEncodedAgain()
{
    corvane::PrepareDataFolder(m_tree->globals);
    const QString encoded = quillon::SubjectCodec().Encode(u"Grüße"_s, u"utf-8"_s);
    writeFile(head(u"head_a.dll"_s), "[Head]\r\nSender=a@b.c\r\nSubject=" + encoded.toUtf8() + "\r\n");
    corvane::UpgradeOldData(m_tree->globals);
    QCOMPARE(setting(head(u"head_a.dll"_s), u"Head"_s, u"Subject"_s), encoded);
}

void TestDataTree::readOnlyFileInSignsIsWritableAgain()
{
    corvane::PrepareDataFolder(m_tree->globals);
    const QString file = m_tree->globals.paths.signs + u"/sign_Work.dll"_s;
    writeFile(file, "text");
    QCOMPARE(::chmod(QFile::encodeName(file).constData(), 0400), 0);
    corvane::PrepareDataFolder(m_tree->globals);
    QCOMPARE(modeOf(file), 0600);
}

void TestDataTree::filesWithPasswordsAreReadByTheirOwnerOnly()
{
    corvane::PrepareDataFolder(m_tree->globals);
    const corvane::DataPaths &paths = m_tree->globals.paths;
    for (const QString &file : {paths.smtpFile, paths.proxyFile, paths.optionsFile, paths.macrosFile}) {
        QCOMPARE(::chmod(QFile::encodeName(file).constData(), 0644), 0);
    }
    corvane::PrepareDataFolder(m_tree->globals);
    QCOMPARE(modeOf(paths.smtpFile), 0600);
    QCOMPARE(modeOf(paths.proxyFile), 0600);
    QCOMPARE(modeOf(paths.optionsFile), 0600);
    QCOMPARE(modeOf(paths.macrosFile), 0644);
}

void TestDataTree::subFoldersAreNotWalkedForAttributes()
{
    corvane::PrepareDataFolder(m_tree->globals);
    const QString folder = m_tree->globals.paths.signs + u"/mine"_s;
    QVERIFY(QDir().mkpath(folder));
    writeFile(folder + u"/a"_s, "text");
    QCOMPARE(::chmod(QFile::encodeName(folder + u"/a"_s).constData(), 0400), 0);
    corvane::PrepareDataFolder(m_tree->globals);
    QCOMPARE(modeOf(folder + u"/a"_s), 0400);
}

void TestDataTree::templateNamesAreTestedOnFiveLowerCasedCharacters()
{
    corvane::PrepareDataFolder(m_tree->globals);
    const QByteArray old = "[Head]\r\nSMTP Account=a@b.c\r\nSender=Ada\r\n";
    writeFile(head(u"HEAD_one.dll"_s), old);
    writeFile(head(u"content_two.dll"_s), old);
    writeFile(head(u"head"_s), old);
    corvane::UpgradeOldData(m_tree->globals);
    QCOMPARE(setting(head(u"HEAD_one.dll"_s), u"Head"_s, u"Sender"_s), u"Ada <a@b.c>"_s);
    QCOMPARE(contentOf(head(u"content_two.dll"_s)), old);
    QCOMPARE(contentOf(head(u"head"_s)), old);
}

void TestDataTree::oldSenderGetsItsAccountsAddress()
{
    corvane::PrepareDataFolder(m_tree->globals);
    writeFile(head(u"head_a.dll"_s), "[Head]\r\nSMTP Account=a@b.c\r\nSender=  Ada L \r\n");
    corvane::UpgradeOldData(m_tree->globals);
    QCOMPARE(setting(head(u"head_a.dll"_s), u"Head"_s, u"Sender"_s), u"Ada L <a@b.c>"_s);
}

void TestDataTree::senderInEntryFormIsLeftAlone()
{
    corvane::PrepareDataFolder(m_tree->globals);
    writeFile(head(u"head_a.dll"_s), "[Head]\r\nSMTP Account=a@b.c\r\nSender= Ada <x@y.z>\r\n");
    corvane::UpgradeOldData(m_tree->globals);
    QCOMPARE(setting(head(u"head_a.dll"_s), u"Head"_s, u"Sender"_s), u" Ada <x@y.z>"_s);
}

void TestDataTree::emptySenderBecomesTheAccount()
{
    corvane::PrepareDataFolder(m_tree->globals);
    writeFile(head(u"head_a.dll"_s), "[Head]\r\nSMTP Account=a@b.c\r\n");
    corvane::UpgradeOldData(m_tree->globals);
    QCOMPARE(setting(head(u"head_a.dll"_s), u"Head"_s, u"Sender"_s), u"a@b.c"_s);
}

void TestDataTree::secondStartChangesNothing()
{
    corvane::PrepareDataFolder(m_tree->globals);
    writeFile(head(u"head_a.dll"_s), "[Head]\r\nSMTP Account=a@b.c\r\nSender=Ada\r\nSubject=Grüße\r\n");
    corvane::UpgradeOldData(m_tree->globals);
    QCOMPARE(setting(m_tree->globals.paths.optionsFile, u"Other"_s, u"Upgraded"_s), u"Yes"_s);
    QCOMPARE(setting(m_tree->globals.paths.optionsFile, u"Other"_s, u"UpgradedV50"_s), u"Yes"_s);
    const QByteArray converted = contentOf(head(u"head_a.dll"_s));
    corvane::PrepareDataFolder(m_tree->globals);
    corvane::UpgradeOldData(m_tree->globals);
    QCOMPARE(contentOf(head(u"head_a.dll"_s)), converted);
}

void TestDataTree::oldSubjectIsEncodedOnce()
{
    corvane::PrepareDataFolder(m_tree->globals);
    writeFile(head(u"head_a.dll"_s), "[Head]\r\nSender=a@b.c\r\nSubject= Grüße aus Köln \r\n");
    corvane::UpgradeOldData(m_tree->globals);
    const QString stored = setting(head(u"head_a.dll"_s), u"Head"_s, u"Subject"_s);
    QVERIFY(stored.startsWith(u"=?utf-8?"_s, Qt::CaseInsensitive));
    QCOMPARE(quillon::SubjectCodec().Decode(stored, u"utf-8"_s), u"Grüße aus Köln"_s);
}

void TestDataTree::conversionIsTriedOnceEvenWhenATemplateCannotBeRead()
{
    corvane::PrepareDataFolder(m_tree->globals);
    QCOMPARE(::mkfifo(QFile::encodeName(head(u"head_pipe.dll"_s)).constData(), 0600), 0);
    writeFile(head(u"head_z.dll"_s), "[Head]\r\nSMTP Account=a@b.c\r\nSender=Ada\r\n");
    corvane::UpgradeOldData(m_tree->globals);
    QCOMPARE(setting(head(u"head_z.dll"_s), u"Head"_s, u"Sender"_s), u"Ada <a@b.c>"_s);
    QCOMPARE(setting(m_tree->globals.paths.optionsFile, u"Other"_s, u"Upgraded"_s), u"Yes"_s);
}

void TestDataTree::readOnlyDiskIsSilent()
{
    // A file stands where the vendor's folder should be, so nothing at all can be made; the steps still run.
    writeFile(m_tree->userFolder() + u"/Lanthorn"_s, "in the way");
    m_tree->prepare();
    QCOMPARE(contentOf(m_tree->userFolder() + u"/Lanthorn"_s), QByteArray("in the way"));
    QCOMPARE(m_tree->globals.settings.text(corvane::Setting::ProxyUse), QString());
}

void TestDataTree::leftoversOfAKilledWriteAreCleared()
{
    corvane::PrepareDataFolder(m_tree->globals);
    const QString leftover = m_tree->userFolder() + u"/Lanthorn/.corvane-writing/.corvane-write-abcdef"_s;
    const QString other = m_tree->userFolder() + u"/Lanthorn/.corvane-writing/mine"_s;
    writeFile(leftover, "half");
    writeFile(other, "mine");
    corvane::PrepareDataFolder(m_tree->globals);
    QVERIFY(!QFile::exists(leftover));
    QVERIFY(QFile::exists(other));
    // From then on whole files are written there and moved from there.
    const QString target = m_tree->globals.paths.data + u"/new"_s;
    QVERIFY(QFile::remove(other));
    QVERIFY(QDir().rmdir(m_tree->userFolder() + u"/Lanthorn/.corvane-writing"_s));
    QVERIFY(QDir().mkpath(m_tree->path(u"elsewhere"_s)));
    QVERIFY(QFile::link(m_tree->path(u"elsewhere"_s), m_tree->userFolder() + u"/Lanthorn/.corvane-writing"_s));
    const QByteArray elsewhere = QFile::encodeName(m_tree->path(u"elsewhere"_s));
    const std::array<timespec, 2> longAgo{};
    QCOMPARE(::utimensat(AT_FDCWD, elsewhere.constData(), longAgo.data(), 0), 0);
    m_tree->globals.system.WriteSetting(target, u"A"_s, u"k"_s, u"v"_s);
    struct stat status {};
    QCOMPARE(::stat(elsewhere.constData(), &status), 0);
    QVERIFY(status.st_mtim.tv_sec != 0);
    QVERIFY(QDir(m_tree->path(u"elsewhere"_s)).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
}

void TestDataTree::hiddenFilesAreMadeWritable()
{
    corvane::PrepareDataFolder(m_tree->globals);
    const corvane::DataPaths &paths = m_tree->globals.paths;
    for (const QString &folder : {paths.data, paths.signs, paths.templates, paths.logs, paths.zips}) {
        writeFile(folder + u"/.hidden"_s, "x");
        QCOMPARE(::chmod(QFile::encodeName(folder + u"/.hidden"_s).constData(), 0040), 0);
    }
    corvane::PrepareDataFolder(m_tree->globals);
    for (const QString &folder : {paths.data, paths.signs, paths.templates, paths.logs, paths.zips}) {
        QVERIFY2(modeOf(folder + u"/.hidden"_s) == 0640, qPrintable(folder));
    }
}

void TestDataTree::namesOfOldTemplatesAreHeadsOnly_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("converted");
    for (const QString &name : {u"head_a.dll"_s, u"Head_"_s, u"hEaD_.hidden"_s}) {
        QTest::newRow(qPrintable(name)) << name << true;
    }
    for (const QString &name : {u"heads_a.dll"_s, u"ahead_a.dll"_s, u".head_a.dll"_s, u"head"_s}) {
        QTest::newRow(qPrintable(name)) << name << false;
    }
}

void TestDataTree::namesOfOldTemplatesAreHeadsOnly()
{
    QFETCH(QString, name);
    QFETCH(bool, converted);
    corvane::PrepareDataFolder(m_tree->globals);
    writeFile(head(name), "[Head]\r\nSMTP Account=a@b.c\r\nSender=Ada\r\nSubject= \xC3\xBC \r\n");
    corvane::UpgradeOldData(m_tree->globals);
    QCOMPARE(setting(head(name), u"Head"_s, u"Sender"_s), converted ? u"Ada <a@b.c>"_s : u"Ada"_s);
    QCOMPARE(setting(head(name), u"Head"_s, u"Subject"_s), converted ? u"=?utf-8?B?w7w=?="_s : u" ü "_s);
}

QTEST_GUILESS_MAIN(TestDataTree)
#include "test_datatree.moc"
