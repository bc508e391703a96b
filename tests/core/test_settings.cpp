#include "quillon/files/settingsfile.h"
#include "support/treefixture.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace corvane;

class TestSettings : public QObject, protected TreeFixture {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        makeBareTree();
        PrepareDataFolder(m_tree->globals);
    }
    void cleanup() { dropTree(); }

    void firstRunWritesElevenDefaultsInTheirOrder();
    void presentSettingsStandOnALaterStart();
    void proxyUseOfAnotherWordBringsTheDefaultsBackAndKeepsOtherKeys();
    void defaultsNeverTouchAccountProxySenderSignatureOrPosition();
    void everySettingHasItsPlaceInMemory();
    void defaultAccountIsFoundUnderEitherFormOfItsSection();
    void storingWritesMemoryAndFile();
    void everyKeyIsStoredWhereTheTableSays();
    void severalAreStoredInMemoryAndFile();
    void aSectionKeepsItsSpellingWhenItIsNamedInAnotherCase();
    void theOtherSpellingOfTheAccountsSectionIsUsedWhereThereIsNone();
    void aKeyThatMemoryDoesNotHoldIsStoredInTheFile();
    void aFileThatCannotBeReadKeepsTheNewValuesInMemoryOnly();
    void whatMemoryHasIsWrittenOnlyWhereTheFileDiffers();
    void aSparseSettingIsAddedOnlyWhenItSaysMoreThanItsAbsence();
    void aMarkIsDoneByItsOwnWordOnly_data();
    void aMarkIsDoneByItsOwnWordOnly();
    void aMarkInAFileThatCannotBeReadIsNotToBeDone();

private:
    static QString nameOf(const SettingRow &row) { return row.section.toString() + u'/' + row.key.toString(); }
    [[nodiscard]] const QString &options() const { return m_tree->globals.paths.optionsFile; }
    [[nodiscard]] QString stored(const QString &section, const QString &key) const
    {
        return m_tree->globals.system.ReadSetting(options(), section, key);
    }

    /// All that memory holds.
    [[nodiscard]] QStringList texts() const
    {
        QStringList texts;
        for (const SettingRow &row : settingRows) {
            texts.append(m_tree->globals.settings.text(row.setting));
        }
        return texts;
    }
};

void TestSettings::firstRunWritesElevenDefaultsInTheirOrder()
{
    prepareSettings(m_tree->globals);
    QCOMPARE(contentOf(options()), QByteArray("[Proxy Server]\r\nUse=False\r\n"
                                              "[Signature]\r\nAutoAdd=True\r\n"
                                              "[Other]\r\nStartup=Last\r\nFont Name=Courier New\r\nFont Size=10\r\n"
                                              "Encoding=utf-8\r\nFormat=Plain\r\nInterval=26\r\nTimes=1\r\n"
                                              "OBO Interval=0\r\nDel Folder=False\r\n"));
    QCOMPARE(m_tree->globals.settings.text(Setting::FontName), u"Courier New"_s);
    QCOMPARE(m_tree->globals.settings.text(Setting::ProxyUse), u"False"_s);
}

void TestSettings::presentSettingsStandOnALaterStart()
{
    const QByteArray present = "[Proxy Server]\r\nUse=True\r\n[Other]\r\nStartup=Max\r\n";
    writeFile(options(), present);
    prepareSettings(m_tree->globals);
    QCOMPARE(contentOf(options()), present);
    QCOMPARE(m_tree->globals.settings.text(Setting::Startup), u"Max"_s);
    QCOMPARE(m_tree->globals.settings.text(Setting::FontName), QString());
}

void TestSettings::proxyUseOfAnotherWordBringsTheDefaultsBackAndKeepsOtherKeys()
{
    writeFile(options(), "[Proxy Server]\r\nUse=true\r\nDefault=p\r\n[Other]\r\nStartup=Max\r\nMine=kept\r\n");
    prepareSettings(m_tree->globals);
    QCOMPARE(stored(u"Proxy Server"_s, u"Use"_s), u"False"_s);
    QCOMPARE(stored(u"Other"_s, u"Startup"_s), u"Last"_s);
    QCOMPARE(stored(u"Proxy Server"_s, u"Default"_s), u"p"_s);
    QCOMPARE(stored(u"Other"_s, u"Mine"_s), u"kept"_s);
}

void TestSettings::defaultsNeverTouchAccountProxySenderSignatureOrPosition()
{
    const QByteArray present = "[Proxy Server]\r\nDefault=a\tb\r\n[SMTP Account]\r\nDefault=c\td\r\n"
                               "[Sender]\r\nDefault.DispName=e\r\nDefault.EmailAddr=f\r\n[Signature]\r\nDefault=g\r\n"
                               "[Position]\r\nLeft=1\r\nTop=2\r\nWidth=3\r\nHeight=4\r\n";
    writeFile(options(), present);
    WriteDefaultSettings(m_tree->globals);
    LoadSettings(m_tree->globals);
    const SettingsMemory &memory = m_tree->globals.settings;
    QCOMPARE(memory.text(Setting::DefaultProxy), u"a\tb"_s);
    QCOMPARE(memory.text(Setting::DefaultAccount), u"c\td"_s);
    QCOMPARE(memory.sender().DispName, u"e"_s);
    QCOMPARE(memory.sender().EmailAddr, u"f"_s);
    QCOMPARE(memory.text(Setting::DefaultSignature), u"g"_s);
    QCOMPARE(memory.text(Setting::AutoAddSignature), u"True"_s);
    QCOMPARE(memory.text(Setting::Left), u"1"_s);
    QCOMPARE(memory.text(Setting::Top), u"2"_s);
    QCOMPARE(memory.text(Setting::Width), u"3"_s);
    QCOMPARE(memory.text(Setting::Height), u"4"_s);
}

void TestSettings::everySettingHasItsPlaceInMemory()
{
    for (const SettingRow &row : settingRows) {
        m_tree->globals.system.WriteSetting(options(), row.section.toString(), row.key.toString(), nameOf(row));
    }
    LoadSettings(m_tree->globals);
    int unheld = 0;
    for (const SettingRow &row : settingRows) {
        const bool held = row.use != SettingUse::FileOnly;
        unheld += held ? 0 : 1;
        QCOMPARE(m_tree->globals.settings.text(row.setting), held ? nameOf(row) : QString());
    }
    QCOMPARE(unheld, 3);
    QCOMPARE(m_tree->globals.settings.sender().DispName, u"Sender/Default.DispName"_s);
    QCOMPARE(m_tree->globals.settings.sender().EmailAddr, u"Sender/Default.EmailAddr"_s);
}

void TestSettings::defaultAccountIsFoundUnderEitherFormOfItsSection()
{
    for (const QString &section : {u"SMTP Account"_s, u"SMTP account"_s}) {
        writeFile(options(), "[Proxy Server]\r\nUse=False\r\n");
        m_tree->globals.system.WriteSetting(options(), section, u"Default"_s, u"line of "_s + section);
        LoadSettings(m_tree->globals);
        QCOMPARE(m_tree->globals.settings.text(Setting::DefaultAccount), u"line of "_s + section);
    }
}

void TestSettings::storingWritesMemoryAndFile()
{
    storeSetting(m_tree->globals, Setting::Left, u"150"_s);
    QCOMPARE(m_tree->globals.settings.text(Setting::Left), u"150"_s);
    QCOMPARE(stored(u"Position"_s, u"Left"_s), u"150"_s);
}

void TestSettings::everyKeyIsStoredWhereTheTableSays()
{
    for (const SettingRow &row : settingRows) {
        storeSetting(m_tree->globals, row.setting, u"to "_s + nameOf(row));
    }
    const QStringList kept = texts();
    QByteArray expected;
    QStringView section;
    for (const SettingRow &row : settingRows) {
        if (row.section != section) {
            section = row.section;
            expected += '[' + section.toUtf8() + "]\r\n";
        }
        expected += row.key.toUtf8() + "=to " + nameOf(row).toUtf8() + "\r\n";
    }
    QCOMPARE(contentOf(options()), expected);
    LoadSettings(m_tree->globals);
    QCOMPARE(texts(), kept);
    QVERIFY(kept.contains(u"to Position/Height"_s));
}

void TestSettings::severalAreStoredInMemoryAndFile()
{
    storeSettings(m_tree->globals, {{Setting::DefaultSenderName, u"Ann"_s},
                                    {Setting::DefaultSenderAddress, u"ann@x.example"_s},
                                    {Setting::FontSize, u" 12 "_s}});
    QCOMPARE(m_tree->globals.settings.sender().DispName, u"Ann"_s);
    QCOMPARE(m_tree->globals.settings.sender().EmailAddr, u"ann@x.example"_s);
    QCOMPARE(m_tree->globals.settings.text(Setting::FontSize), u" 12 "_s);
    const QStringList before = texts();
    LoadSettings(m_tree->globals);
    QCOMPARE(m_tree->globals.settings.sender().EmailAddr, u"ann@x.example"_s);
    QCOMPARE(texts(), before);
}

void TestSettings::aSectionKeepsItsSpellingWhenItIsNamedInAnotherCase()
{
    writeFile(options(), "[SMTP Account]\r\nDefault=old\r\n");
    storeSettings(m_tree->globals, {{Setting::DefaultAccount, u"new"_s, sectionOfEditedAccount}});
    QCOMPARE(m_tree->globals.settings.text(Setting::DefaultAccount), u"new"_s);
    QCOMPARE(contentOf(options()), QByteArray("[SMTP Account]\r\nDefault=new\r\n"));
}

void TestSettings::theOtherSpellingOfTheAccountsSectionIsUsedWhereThereIsNone()
{
    storeSettings(m_tree->globals, {{Setting::DefaultAccount, u"new"_s, sectionOfEditedAccount}});
    QCOMPARE(contentOf(options()), QByteArray("[SMTP account]\r\nDefault=new\r\n"));
    storeSetting(m_tree->globals, Setting::DefaultAccount, u"newer"_s);
    QCOMPARE(contentOf(options()), QByteArray("[SMTP account]\r\nDefault=newer\r\n"));
    LoadSettings(m_tree->globals);
    QCOMPARE(m_tree->globals.settings.text(Setting::DefaultAccount), u"newer"_s);
}

void TestSettings::aKeyThatMemoryDoesNotHoldIsStoredInTheFile()
{
    const QStringList before = texts();
    storeSetting(m_tree->globals, Setting::SendersUpgraded, u"True"_s);
    QCOMPARE(stored(u"Other"_s, u"Upgraded"_s), u"True"_s);
    QCOMPARE(m_tree->globals.settings.text(Setting::SendersUpgraded), QString());
    QCOMPARE(texts(), before);
}

void TestSettings::aFileThatCannotBeReadKeepsTheNewValuesInMemoryOnly()
{
    QVERIFY(QFile::remove(options()));
    QVERIFY(QDir().mkpath(options() + u"/kept"_s));
    storeSetting(m_tree->globals, Setting::Times, u"7"_s);
    QCOMPARE(m_tree->globals.settings.text(Setting::Times), u"7"_s);
    QVERIFY(QFileInfo(options() + u"/kept"_s).isDir());
}

void TestSettings::whatMemoryHasIsWrittenOnlyWhereTheFileDiffers()
{
    const QByteArray handMade = "[Position]\r\nLeft =15\r\nTop=\r\n";
    writeFile(options(), handMade);
    LoadSettings(m_tree->globals);
    storeFromMemory(m_tree->globals, {Setting::Left, Setting::Top});
    QCOMPARE(contentOf(options()), handMade); // a rewrite of the key would lose the blank
    m_tree->globals.settings.set(Setting::Top, u"30"_s);
    storeFromMemory(m_tree->globals, {Setting::Left, Setting::Top, Setting::Width});
    QCOMPARE(contentOf(options()), QByteArray("[Position]\r\nLeft =15\r\nTop=30\r\nWidth=\r\n"));
}

void TestSettings::aSparseSettingIsAddedOnlyWhenItSaysMoreThanItsAbsence()
{
    const SettingRow row = {Setting::EmptyFolder, u"Other",           u"Some Flag",
                            SettingType::Flag,    SettingUse::Sparse, falseWord};
    const auto put = [&](const QString &value) {
        quillon::SettingsFile file(options());
        putSetting(file, row, value);
        QVERIFY(file.save());
    };
    put(u"False"_s);
    put(QString());
    QCOMPARE(contentOf(options()), QByteArray(""));
    put(u"True"_s);
    QCOMPARE(contentOf(options()), QByteArray("[Other]\r\nSome Flag=True\r\n"));
    put(u"False"_s); // present, so it is told
    QCOMPARE(contentOf(options()), QByteArray("[Other]\r\nSome Flag=False\r\n"));
}

void TestSettings::aMarkIsDoneByItsOwnWordOnly_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<bool>("movedOver");
    QTest::addColumn<bool>("upgraded");
    QTest::newRow("no file content") << QByteArray("") << false << false;
    QTest::newRow("own words") << QByteArray("[Other]\r\nAppDataPath=True\r\nUpgraded=Yes\r\n") << true << true;
    QTest::newRow("each other's words") << QByteArray("[Other]\r\nAppDataPath=Yes\r\nUpgraded=True\r\n") << false
                                        << false;
    QTest::newRow("another case") << QByteArray("[Other]\r\nAppDataPath=TRUE\r\nUpgraded=yes\r\n") << false << false;
    QTest::newRow("in another section") << QByteArray("[Position]\r\nAppDataPath=True\r\nUpgraded=Yes\r\n") << false
                                        << false;
}

void TestSettings::aMarkIsDoneByItsOwnWordOnly()
{
    QFETCH(const QByteArray, file);
    QFETCH(const bool, movedOver);
    QFETCH(const bool, upgraded);
    writeFile(options(), file);
    QCOMPARE(isStillToBeDone(m_tree->globals, Setting::DataMovedOver), !movedOver);
    QCOMPARE(isStillToBeDone(m_tree->globals, Setting::SendersUpgraded), !upgraded);
    QVERIFY(isStillToBeDone(m_tree->globals, Setting::SubjectsUpgraded));
    markDone(m_tree->globals, Setting::SubjectsUpgraded);
    QVERIFY(!isStillToBeDone(m_tree->globals, Setting::SubjectsUpgraded));
    QCOMPARE(stored(u"Other"_s, u"UpgradedV50"_s), u"Yes"_s);
}

void TestSettings::aMarkInAFileThatCannotBeReadIsNotToBeDone()
{
    QVERIFY(QFile::remove(options()));
    QVERIFY(isStillToBeDone(m_tree->globals, Setting::DataMovedOver)); // a missing file has no keys
    QVERIFY(QDir().mkpath(options()));
    QVERIFY(!isStillToBeDone(m_tree->globals, Setting::DataMovedOver));
}

QTEST_GUILESS_MAIN(TestSettings)
#include "test_settings.moc"
