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
    void severalAreStoredInMemoryAndFile();
    void aSectionKeepsItsSpellingWhenItIsNamedInAnotherCase();
    void aKeyThatMemoryDoesNotHoldIsStoredInTheFile();
    void aFileThatCannotBeReadKeepsTheNewValuesInMemoryOnly();

private:
    [[nodiscard]] const QString &options() const { return m_tree->globals.paths.optionsFile; }
    [[nodiscard]] QString stored(const QString &section, const QString &key) const
    {
        return m_tree->globals.system.ReadSetting(options(), section, key);
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
    QCOMPARE(m_tree->globals.settings.other[FontName], u"Courier New"_s);
    QCOMPARE(m_tree->globals.settings.proxy[ProxyUse], u"False"_s);
}

void TestSettings::presentSettingsStandOnALaterStart()
{
    const QByteArray present = "[Proxy Server]\r\nUse=True\r\n[Other]\r\nStartup=Max\r\n";
    writeFile(options(), present);
    prepareSettings(m_tree->globals);
    QCOMPARE(contentOf(options()), present);
    QCOMPARE(m_tree->globals.settings.other[Startup], u"Max"_s);
    QCOMPARE(m_tree->globals.settings.other[FontName], QString());
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
    QCOMPARE(memory.proxy[ProxyDefault], u"a\tb"_s);
    QCOMPARE(memory.smtp[0], u"c\td"_s);
    QCOMPARE(m_tree->globals.sender.DispName, u"e"_s);
    QCOMPARE(m_tree->globals.sender.EmailAddr, u"f"_s);
    QCOMPARE(memory.signature[SignatureDefault], u"g"_s);
    QCOMPARE(memory.signature[SignatureAutoAdd], u"True"_s);
    QCOMPARE(memory.position, (std::array<QString, 4>{u"1"_s, u"2"_s, u"3"_s, u"4"_s}));
}

void TestSettings::everySettingHasItsPlaceInMemory()
{
    QSet<const QString *> slots;
    int unheld = 0;
    for (const SettingRow &row : settingRows()) {
        if (!row.slot) {
            ++unheld;
            continue;
        }
        m_tree->globals.system.WriteSetting(options(), QString::fromUtf16(row.section), QString::fromUtf16(row.key),
                                            QString::fromUtf16(row.section) + u'/' + QString::fromUtf16(row.key));
        slots.insert(&row.slot(m_tree->globals));
    }
    QCOMPARE(unheld, 3);
    QCOMPARE(slots.size(), 20);
    LoadSettings(m_tree->globals);
    QCOMPARE(m_tree->globals.settings.other[Startup], u"Other/Startup"_s);
    QCOMPARE(m_tree->globals.settings.other[FontSize], u"Other/Font Size"_s);
    QCOMPARE(m_tree->globals.settings.other[Encoding], u"Other/Encoding"_s);
    QCOMPARE(m_tree->globals.settings.other[Format], u"Other/Format"_s);
    QCOMPARE(m_tree->globals.settings.other[Interval], u"Other/Interval"_s);
    QCOMPARE(m_tree->globals.settings.other[Times], u"Other/Times"_s);
    QCOMPARE(m_tree->globals.settings.other[OboInterval], u"Other/OBO Interval"_s);
    QCOMPARE(m_tree->globals.settings.other[DelFolder], u"Other/Del Folder"_s);
    QCOMPARE(m_tree->globals.settings.position[3], u"Position/Height"_s);
    QCOMPARE(m_tree->globals.sender.EmailAddr, u"Sender/Default.EmailAddr"_s);
}

void TestSettings::defaultAccountIsFoundUnderEitherFormOfItsSection()
{
    for (const QString &section : {u"SMTP Account"_s, u"SMTP account"_s}) {
        writeFile(options(), "[Proxy Server]\r\nUse=False\r\n");
        m_tree->globals.system.WriteSetting(options(), section, u"Default"_s, u"line of "_s + section);
        LoadSettings(m_tree->globals);
        QCOMPARE(m_tree->globals.settings.smtp[0], u"line of "_s + section);
    }
}

void TestSettings::storingWritesMemoryAndFile()
{
    storeSetting(m_tree->globals, u"Position"_s, u"Left"_s, u"150"_s);
    QCOMPARE(m_tree->globals.settings.position[0], u"150"_s);
    QCOMPARE(stored(u"Position"_s, u"Left"_s), u"150"_s);
}

void TestSettings::severalAreStoredInMemoryAndFile()
{
    storeSettings(m_tree->globals, {{u"Sender"_s, u"Default.DispName"_s, u"Ann"_s},
                                    {u"Sender"_s, u"Default.EmailAddr"_s, u"ann@x.example"_s},
                                    {u"Other"_s, u"Font Size"_s, u" 12 "_s}});
    QCOMPARE(m_tree->globals.sender.DispName, u"Ann"_s);
    QCOMPARE(m_tree->globals.sender.EmailAddr, u"ann@x.example"_s);
    QCOMPARE(m_tree->globals.settings.other[FontSize], u" 12 "_s);
    const SettingsMemory before = m_tree->globals.settings;
    LoadSettings(m_tree->globals);
    QCOMPARE(m_tree->globals.sender.EmailAddr, u"ann@x.example"_s);
    QCOMPARE(m_tree->globals.settings.other, before.other);
}

void TestSettings::aSectionKeepsItsSpellingWhenItIsNamedInAnotherCase()
{
    writeFile(options(), "[SMTP Account]\r\nDefault=old\r\n");
    storeSetting(m_tree->globals, u"SMTP account"_s, u"Default"_s, u"new"_s);
    QCOMPARE(m_tree->globals.settings.smtp[0], u"new"_s);
    QCOMPARE(contentOf(options()), QByteArray("[SMTP Account]\r\nDefault=new\r\n"));
}

void TestSettings::aKeyThatMemoryDoesNotHoldIsStoredInTheFile()
{
    const SettingsMemory before = m_tree->globals.settings;
    storeSetting(m_tree->globals, u"Other"_s, u"Upgraded"_s, u"True"_s);
    storeSetting(m_tree->globals, u"Nobody"_s, u"knows"_s, u"this"_s);
    QCOMPARE(stored(u"Other"_s, u"Upgraded"_s), u"True"_s);
    QCOMPARE(stored(u"Nobody"_s, u"knows"_s), u"this"_s);
    QCOMPARE(m_tree->globals.settings.other, before.other);
}

void TestSettings::aFileThatCannotBeReadKeepsTheNewValuesInMemoryOnly()
{
    QVERIFY(QFile::remove(options()));
    QVERIFY(QDir().mkpath(options() + u"/kept"_s));
    storeSetting(m_tree->globals, u"Other"_s, u"Times"_s, u"7"_s);
    QCOMPARE(m_tree->globals.settings.other[Times], u"7"_s);
    QVERIFY(QFileInfo(options() + u"/kept"_s).isDir());
}

QTEST_GUILESS_MAIN(TestSettings)
#include "test_settings.moc"
