#include "core/settingsmemory.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace corvane;

class TestSettingsMemory : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theTableHasEveryKeyWithItsTypeAndDefaultInItsOrder();
    void theTableNamesNoPlaceTwice();
    void aTextIsAsItWasSet();
    void aKeyOfTheFileOnlyIsNotHeld();
    void aSettingChangesNoOther();
    void anEmptyValueStandsForItsDefault_data();
    void anEmptyValueStandsForItsDefault();
    void aValueOfBlanksIsNotEmpty();
    void flagsCompareTheirWordsExactly_data();
    void flagsCompareTheirWordsExactly();
    void choicesCompareTheirWordsExactly_data();
    void choicesCompareTheirWordsExactly();
    void anEmptyChoiceIsNotItsDefault();
    void numbersAreFiniteOrNone_data();
    void numbersAreFiniteOrNone();
    void anEmptyNumberIsThatOfItsDefault();
    void aFlagIsStoredAsOneOfTwoWords();
};

void TestSettingsMemory::theTableHasEveryKeyWithItsTypeAndDefaultInItsOrder()
{
    using enum SettingType;
    using enum SettingUse;
    struct Expected {
        Setting setting;
        QString place;
        SettingType type;
        SettingUse use;
        QString standard;
    };
    const QList<Expected> expected = {
        {Setting::ProxyUse, u"Proxy Server/Use"_s, Flag, Defaulted, u"False"_s},
        {Setting::DefaultProxy, u"Proxy Server/Default"_s, Text, Stored, {}},
        {Setting::DefaultAccount, u"SMTP Account/Default"_s, Text, Stored, {}},
        {Setting::DefaultSenderName, u"Sender/Default.DispName"_s, Text, Stored, {}},
        {Setting::DefaultSenderAddress, u"Sender/Default.EmailAddr"_s, Text, Stored, {}},
        {Setting::DefaultSignature, u"Signature/Default"_s, Text, Stored, {}},
        {Setting::AutoAddSignature, u"Signature/AutoAdd"_s, Flag, Defaulted, u"True"_s},
        {Setting::Startup, u"Other/Startup"_s, Choice, Defaulted, u"Last"_s},
        {Setting::FontName, u"Other/Font Name"_s, Text, Defaulted, u"Courier New"_s},
        {Setting::FontSize, u"Other/Font Size"_s, Number, Defaulted, u"10"_s},
        {Setting::Encoding, u"Other/Encoding"_s, Text, Defaulted, u"utf-8"_s},
        {Setting::Format, u"Other/Format"_s, Choice, Defaulted, u"Plain"_s},
        {Setting::Interval, u"Other/Interval"_s, Number, Defaulted, u"26"_s},
        {Setting::Times, u"Other/Times"_s, Number, Defaulted, u"1"_s},
        {Setting::OboInterval, u"Other/OBO Interval"_s, Number, Defaulted, u"0"_s},
        {Setting::EmptyFolder, u"Other/Del Folder"_s, Flag, Defaulted, u"False"_s},
        {Setting::DataMovedOver, u"Other/AppDataPath"_s, Mark, FileOnly, u"True"_s},
        {Setting::SendersUpgraded, u"Other/Upgraded"_s, Mark, FileOnly, u"Yes"_s},
        {Setting::SubjectsUpgraded, u"Other/UpgradedV50"_s, Mark, FileOnly, u"Yes"_s},
        {Setting::Left, u"Position/Left"_s, Number, Stored, u"0"_s},
        {Setting::Top, u"Position/Top"_s, Number, Stored, u"0"_s},
        {Setting::Width, u"Position/Width"_s, Number, Stored, u"0"_s},
        {Setting::Height, u"Position/Height"_s, Number, Stored, u"0"_s},
    };
    QCOMPARE(settingRows.size(), static_cast<std::size_t>(expected.size()));
    for (qsizetype i = 0; i < expected.size(); ++i) {
        const Expected &wanted = expected.at(i);
        const SettingRow &row = settingRows[static_cast<std::size_t>(i)];
        QCOMPARE(row.section.toString() + u'/' + row.key.toString(), wanted.place);
        QCOMPARE(row.setting, wanted.setting);
        QCOMPARE(row.type, wanted.type);
        QCOMPARE(row.use, wanted.use);
        QCOMPARE(row.standard.toString(), wanted.standard);
        QCOMPARE(&settingRow(wanted.setting), &row);
    }
}

void TestSettingsMemory::theTableNamesNoPlaceTwice()
{
    QStringList places;
    for (const SettingRow &row : settingRows) {
        const QString place =
            (row.section.toString() + u'/' + row.key.toString()).toLower(); // names compare without regard to case
        QVERIFY2(!places.contains(place), qPrintable(place));
        places.append(place);
    }
    QCOMPARE(sectionOfEditedAccount.compare(settingRow(Setting::DefaultAccount).section, Qt::CaseInsensitive), 0);
}

void TestSettingsMemory::aTextIsAsItWasSet()
{
    SettingsMemory memory;
    for (const SettingRow &row : settingRows) {
        QCOMPARE(memory.text(row.setting), QString());
        memory.set(row.setting, u" \t"_s + row.key.toString());
    }
    for (const SettingRow &row : settingRows) {
        const QString expected = row.use == SettingUse::FileOnly ? QString() : u" \t"_s + row.key.toString();
        QCOMPARE(memory.text(row.setting), expected);
    }
    QCOMPARE(memory.sender().DispName, u" \tDefault.DispName"_s);
    QCOMPARE(memory.sender().EmailAddr, u" \tDefault.EmailAddr"_s);
}

void TestSettingsMemory::aKeyOfTheFileOnlyIsNotHeld()
{
    SettingsMemory memory;
    for (const Setting mark : {Setting::DataMovedOver, Setting::SendersUpgraded, Setting::SubjectsUpgraded}) {
        memory.set(mark, u"Yes"_s);
        QCOMPARE(memory.text(mark), QString());
    }
}

void TestSettingsMemory::aSettingChangesNoOther()
{
    for (const SettingRow &changed : settingRows) {
        SettingsMemory memory;
        memory.set(changed.setting, u"x"_s);
        for (const SettingRow &row : settingRows) {
            const bool holds = row.setting == changed.setting && row.use != SettingUse::FileOnly;
            QCOMPARE(memory.text(row.setting), holds ? u"x"_s : QString());
        }
    }
}

void TestSettingsMemory::anEmptyValueStandsForItsDefault_data()
{
    QTest::addColumn<Setting>("key");
    QTest::addColumn<QString>("standard");
    QTest::newRow("startup") << Setting::Startup << u"Last"_s;
    QTest::newRow("font") << Setting::FontName << u"Courier New"_s;
    QTest::newRow("size") << Setting::FontSize << u"10"_s;
    QTest::newRow("interval") << Setting::Interval << u"26"_s;
    QTest::newRow("times") << Setting::Times << u"1"_s;
    QTest::newRow("one-by-one") << Setting::OboInterval << u"0"_s;
    QTest::newRow("a place") << Setting::Left << u"0"_s;
    QTest::newRow("no default") << Setting::DefaultSignature << QString();
}

void TestSettingsMemory::anEmptyValueStandsForItsDefault()
{
    QFETCH(const Setting, key);
    QFETCH(const QString, standard);
    SettingsMemory memory;
    QCOMPARE(memory.textOrStandard(key), standard);
    QCOMPARE(memory.text(key), QString());
    memory.set(key, u"another"_s);
    QCOMPARE(memory.textOrStandard(key), u"another"_s);
}

void TestSettingsMemory::aValueOfBlanksIsNotEmpty()
{
    SettingsMemory memory;
    memory.set(Setting::FontName, u" "_s);
    QCOMPARE(memory.textOrStandard(Setting::FontName), u" "_s);
}

void TestSettingsMemory::flagsCompareTheirWordsExactly_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<bool>("isTrue");
    QTest::addColumn<bool>("isNotFalse");
    QTest::newRow("True") << u"True"_s << true << true;
    QTest::newRow("False") << u"False"_s << false << false;
    QTest::newRow("empty") << QString() << false << true;
    QTest::newRow("true") << u"true"_s << false << true;
    QTest::newRow("false") << u"false"_s << false << true;
    QTest::newRow("FALSE") << u"FALSE"_s << false << true;
    QTest::newRow("a blank behind True") << u"True "_s << false << true;
    QTest::newRow("a blank before False") << u" False"_s << false << true;
    QTest::newRow("1") << u"1"_s << false << true;
}

void TestSettingsMemory::flagsCompareTheirWordsExactly()
{
    QFETCH(const QString, value);
    QFETCH(const bool, isTrue);
    QFETCH(const bool, isNotFalse);
    constexpr std::array<FlagSetting, 3> flags = {Setting::ProxyUse, Setting::AutoAddSignature, Setting::EmptyFolder};
    for (const FlagSetting flag : flags) { // whatever their default is
        SettingsMemory memory;
        memory.set(flag.key, value);
        QCOMPARE(memory.isTrue(flag), isTrue);
        QCOMPARE(memory.isNotFalse(flag), isNotFalse);
    }
}

void TestSettingsMemory::choicesCompareTheirWordsExactly_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<int>("matching"); // of Last, Max, Sys; -1: none
    QTest::newRow("Last") << u"Last"_s << 0;
    QTest::newRow("Max") << u"Max"_s << 1;
    QTest::newRow("Sys") << u"Sys"_s << 2;
    QTest::newRow("another case") << u"max"_s << -1;
    QTest::newRow("a blank behind") << u"Sys "_s << -1;
    QTest::newRow("an unknown word") << u"Min"_s << -1;
}

void TestSettingsMemory::choicesCompareTheirWordsExactly()
{
    QFETCH(const QString, value);
    QFETCH(const int, matching);
    SettingsMemory memory;
    memory.set(Setting::Startup, value);
    QCOMPARE(memory.is(Setting::Startup, startupLast), matching == 0);
    QCOMPARE(memory.is(Setting::Startup, startupMaximised), matching == 1);
    QCOMPARE(memory.is(Setting::Startup, startupTray), matching == 2);
}

void TestSettingsMemory::anEmptyChoiceIsNotItsDefault()
{
    const SettingsMemory memory;
    QVERIFY(!memory.is(Setting::Startup, startupLast));
    QVERIFY(!memory.is(Setting::Format, formatPlain));
    QVERIFY(!memory.is(Setting::Format, formatRich));
}

void TestSettingsMemory::numbersAreFiniteOrNone_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<bool>("isNumber");
    QTest::addColumn<double>("number");
    QTest::newRow("whole") << u"12"_s << true << 12.0;
    QTest::newRow("with a point") << u"13.5"_s << true << 13.5;
    QTest::newRow("below 0") << u"-300"_s << true << -300.0;
    QTest::newRow("blanks around") << u" 7 "_s << true << 7.0;
    QTest::newRow("zero") << u"0"_s << true << 0.0;
    QTest::newRow("a comma") << u"13,5"_s << false << 0.0;
    QTest::newRow("a unit") << u"12pt"_s << false << 0.0;
    QTest::newRow("a word") << u"left"_s << false << 0.0;
    QTest::newRow("a blank") << u" "_s << false << 0.0;
    QTest::newRow("infinite") << u"inf"_s << false << 0.0;
    QTest::newRow("no number") << u"nan"_s << false << 0.0;
    QTest::newRow("too large") << u"1e400"_s << false << 0.0;
}

void TestSettingsMemory::numbersAreFiniteOrNone()
{
    QFETCH(const QString, value);
    QFETCH(const bool, isNumber);
    QFETCH(const double, number);
    SettingsMemory memory;
    memory.set(Setting::FontSize, value);
    const std::optional<double> read = memory.number(Setting::FontSize);
    QCOMPARE(read.has_value(), isNumber);
    QCOMPARE(read.value_or(0), number);
}

void TestSettingsMemory::anEmptyNumberIsThatOfItsDefault()
{
    const SettingsMemory memory;
    QCOMPARE(memory.number(Setting::FontSize), std::optional(10.0));
    QCOMPARE(memory.number(Setting::Interval), std::optional(26.0));
    QCOMPARE(memory.number(Setting::OboInterval), std::optional(0.0));
    QCOMPARE(memory.number(Setting::Left), std::optional(0.0));
    QCOMPARE(SettingsMemory::standardNumber(Setting::FontSize), 10.0);
    QCOMPARE(SettingsMemory::standardNumber(Setting::Times), 1.0);
}

void TestSettingsMemory::aFlagIsStoredAsOneOfTwoWords()
{
    QCOMPARE(flagText(true), u"True"_s);
    QCOMPARE(flagText(false), u"False"_s);
}

QTEST_GUILESS_MAIN(TestSettingsMemory)
#include "test_settingsmemory.moc"
