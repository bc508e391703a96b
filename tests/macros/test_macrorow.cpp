#include "core/recordline.h"
#include "macros/macrocatalogue.h"
#include "macros/macrorow.h"
#include "support/testclock.h"
#include "support/treefixture.h"

#include <QLocale>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace corvane;

namespace {

MacroRow usersRow(const QString &macro, const QString &text)
{
    return {macro, text, u"Other Information"_s};
}

} // namespace

class TestMacroRow : public QObject, protected TreeFixture {
    Q_OBJECT

private Q_SLOTS:
    void init() { makeTree(); }
    void cleanup() { dropTree(); }

    void aLineSplitsIntoItsFourFields();
    void aShortLineIsShownAsFarAsItGoes();
    void aLineOfTenFieldsShowsItsFirstThree();
    void onlyKindDIsPredefined();
    void aMissingFileHasNoRows();
    void samplesAreThoseOfJackSmith();
    void dateSamplesFollowTheClock();
    void samplesAreFoundByExactText();
    void noTextIsNoMacro();
    void emptyBracesAreNoMacro();
    void withoutBracesTheDelimitersAreMissing();
    void anEmptyMacroLacksItsDelimiters();
    void aLoneBraceIsNoPairOfDelimiters();
    void innerBlanksAndBracesPass();
    void addingAPresentNameFailsAndAnotherCasePasses();
    void anEditedMacroKeepsItsOwnNameButTakesNoOther();
    void eachFaultHasItsMessage();
    void controlsAndLineEndsBecomeBlanks();
    void addingAppendsALineOfKindU();
    void aReplacedLineIsRebuiltFromItsColumns();
    void aLineWithOtherFieldsIsNotReplaced();
    void deletingTakesEveryLineOfTheKeyAndNoOther();
    void deletingNothingLeavesTheFileUntouched();
    void aFileThatCannotBeReadIsNotRewritten();
    void tenMegabytesOfLinesAreReadAndThinnedWhole();

private:
    [[nodiscard]] const QString &file() const { return m_tree->globals.paths.macrosFile; }
    [[nodiscard]] const ApplicationGlobals &globals() const { return m_tree->globals; }
};

void TestMacroRow::aLineSplitsIntoItsFourFields()
{
    const MacroRow row = macroRowOf(u"{a {b}}\t t \tMy Information\tU"_s);
    QCOMPARE(row, (MacroRow{u"{a {b}}"_s, u" t "_s, u"My Information"_s, false}));
    QCOMPARE(macroLineOf(row), u"{a {b}}\t t \tMy Information\tU"_s);
}

void TestMacroRow::aShortLineIsShownAsFarAsItGoes()
{
    QCOMPARE(macroRowOf(u"{a}"_s), (MacroRow{u"{a}"_s, QString(), QString(), false}));
    QCOMPARE(macroRowOf(u"{a}\tb"_s), (MacroRow{u"{a}"_s, u"b"_s, QString(), false}));
    QCOMPARE(macroRowOf(QString()), MacroRow());
}

void TestMacroRow::aLineOfTenFieldsShowsItsFirstThree()
{
    QCOMPARE(macroRowOf(u"{a}\t1\t2\tD\t4\t5\t6\t7\t8\t9"_s), (MacroRow{u"{a}"_s, u"1"_s, u"2"_s, true}));
}

void TestMacroRow::onlyKindDIsPredefined()
{
    QVERIFY(macroRowOf(u"{a}\t1\t2\tD"_s).predefined);
    for (const QString &kind : {u"U"_s, u"d"_s, u"D "_s, QString()}) {
        QVERIFY(!macroRowOf(u"{a}\t1\t2\t"_s + kind).predefined);
    }
}

void TestMacroRow::aMissingFileHasNoRows()
{
    QVERIFY(QFile::remove(file()));
    QVERIFY(macroRows(globals()).isEmpty());
}

void TestMacroRow::samplesAreThoseOfJackSmith()
{
    QCOMPARE(sampleText(u"{First Name of The Recipient}"_s), u"Jack"_s);
    QCOMPARE(sampleText(u"{Last Name of The Recipient}"_s), u"Smith"_s);
    QCOMPARE(sampleText(u"{Full Name of The Recipient}"_s), u"Jack Smith"_s);
    QVERIFY(sampleText(u"{Email Address of The Recipient}"_s)->startsWith(u"jack.smith@"_s));
}

void TestMacroRow::dateSamplesFollowTheClock()
{
    TestClock clock(QDateTime(QDate(2026, 3, 4), QTime(5, 6, 7)));
    const QLocale locale = QLocale::system();
    QCOMPARE(sampleText(u"{Long Date}"_s), locale.toString(clock.present.date(), QLocale::LongFormat));
    QCOMPARE(sampleText(u"{Short Time}"_s), locale.toString(clock.present.time(), QLocale::ShortFormat));
    QCOMPARE(sampleText(u"{Long Date and Time}"_s), locale.toString(clock.present.date(), QLocale::LongFormat) + u' ' +
                                                        locale.toString(clock.present.time(), QLocale::LongFormat));
    const auto before = sampleText(u"{Short Date and Time}"_s);
    clock.present = clock.present.addDays(1);
    QVERIFY(sampleText(u"{Short Date and Time}"_s) != before);
}

void TestMacroRow::samplesAreFoundByExactText()
{
    for (const QString &macro : {u"{long date}"_s, u"{Long Date} "_s, u"{My First Name}"_s, QString()}) {
        QVERIFY(!sampleText(macro));
    }
    int samples = 0;
    const QStringList lines = predefinedMacroLines();
    for (const QString &line : lines) {
        const MacroRow row = macroRowOf(line);
        QCOMPARE(sampleText(row.macro).has_value(), row.predefined);
        samples += row.predefined ? 1 : 0;
    }
    QCOMPARE(samples, 10);
}

void TestMacroRow::noTextIsNoMacro()
{
    QCOMPARE(checkMacro(usersRow(u"abc"_s, QString()), {}, -1), MacroFault::NoMacro);
    QCOMPARE(checkMacro(usersRow(QString(), QString()), {}, -1), MacroFault::NoMacro);
}

void TestMacroRow::emptyBracesAreNoMacro()
{
    QCOMPARE(checkMacro(usersRow(u"{}"_s, u"text"_s), {u"{}"_s}, -1), MacroFault::NoMacro);
}

void TestMacroRow::withoutBracesTheDelimitersAreMissing()
{
    for (const QString &macro : {u"abc"_s, u"{abc"_s, u"abc}"_s, u"}abc{"_s}) {
        QCOMPARE(checkMacro(usersRow(macro, u"text"_s), {macro}, -1), MacroFault::NoDelimiters);
    }
}

void TestMacroRow::anEmptyMacroLacksItsDelimiters()
{
    QCOMPARE(checkMacro(usersRow(QString(), u"text"_s), {}, -1), MacroFault::NoDelimiters);
}

void TestMacroRow::aLoneBraceIsNoPairOfDelimiters()
{
    QCOMPARE(checkMacro(usersRow(u"{"_s, u"text"_s), {}, -1), MacroFault::NoDelimiters);
    QCOMPARE(checkMacro(usersRow(u"}"_s, u"text"_s), {}, -1), MacroFault::NoDelimiters);
}

void TestMacroRow::innerBlanksAndBracesPass()
{
    for (const QString &macro : {u"{a b}"_s, u"{{a}}"_s, u"{a}{b}"_s, u"{ }"_s, u"{}{}"_s}) {
        QCOMPARE(checkMacro(usersRow(macro, u"text"_s), {u"{a}"_s}, -1), MacroFault::None);
    }
}

void TestMacroRow::addingAPresentNameFailsAndAnotherCasePasses()
{
    const QStringList present = {u"{Long Date}"_s, u"{My First Name}"_s};
    QCOMPARE(checkMacro(usersRow(u"{My First Name}"_s, u"x"_s), present, -1), MacroFault::Exists);
    QCOMPARE(checkMacro(usersRow(u"{Long Date}"_s, u"x"_s), present, -1), MacroFault::Exists);
    QCOMPARE(checkMacro(usersRow(u"{my first name}"_s, u"x"_s), present, -1), MacroFault::None);
}

void TestMacroRow::anEditedMacroKeepsItsOwnNameButTakesNoOther()
{
    const QStringList present = {u"{a}"_s, u"{b}"_s, u"{c}"_s};
    QCOMPARE(checkMacro(usersRow(u"{b}"_s, u"x"_s), present, 1), MacroFault::None);
    QCOMPARE(checkMacro(usersRow(u"{a}"_s, u"x"_s), present, 1), MacroFault::Exists);
    QCOMPARE(checkMacro(usersRow(u"{c}"_s, u"x"_s), present, 1), MacroFault::Exists);
    QCOMPARE(checkMacro(usersRow(u"{d}"_s, u"x"_s), present, 1), MacroFault::None);
}

void TestMacroRow::eachFaultHasItsMessage()
{
    QCOMPARE(messageKeyOf(MacroFault::None), QString());
    QCOMPARE(messageKeyOf(MacroFault::NoMacro), u"NO_MACRO"_s);
    QCOMPARE(messageKeyOf(MacroFault::NoDelimiters), u"ERR_MACRO_DELIMITER"_s);
    QCOMPARE(messageKeyOf(MacroFault::Exists), u"MACRO_EXISTS"_s);
}

void TestMacroRow::controlsAndLineEndsBecomeBlanks()
{
    addMacro(globals(), usersRow(fieldText(u"\t{a\tb\u0007c}\r\n"_s), fieldText(u"x\ty\r\nz\u2028!"_s)));
    QCOMPARE(contentOf(file()), QByteArray("{a b c}\tx y z !\tOther Information\tU\r\n"));
}

void TestMacroRow::addingAppendsALineOfKindU()
{
    writeFile(file(), "{a}\t1\tMy Information\tU\r\n");
    addMacro(globals(), usersRow(u"{b}"_s, u"2"_s));
    QCOMPARE(contentOf(file()), QByteArray("{a}\t1\tMy Information\tU\r\n{b}\t2\tOther Information\tU\r\n"));
}

void TestMacroRow::aReplacedLineIsRebuiltFromItsColumns()
{
    writeFile(file(), "{a}\t \tMy Information\tU\r\n{b}\t2\tOther Information\tU\r\n{a}\t \tMy Information\tU\r\n");
    replaceMacro(globals(), {u"{a}"_s, u" "_s, u"My Information"_s}, usersRow(u"{c}"_s, u"3"_s));
    QCOMPARE(contentOf(file()), QByteArray("{c}\t3\tOther Information\tU\r\n{b}\t2\tOther Information\tU\r\n"
                                           "{a}\t \tMy Information\tU\r\n"));
}

void TestMacroRow::aLineWithOtherFieldsIsNotReplaced()
{
    const QByteArray lines = "{a}\t1\tMy Information\tU\textra\r\n{a}\t1\r\n";
    writeFile(file(), lines);
    replaceMacro(globals(), {u"{a}"_s, u"1"_s, u"My Information"_s}, usersRow(u"{c}"_s, u"3"_s));
    QCOMPARE(contentOf(file()), lines);
}

void TestMacroRow::deletingTakesEveryLineOfTheKeyAndNoOther()
{
    writeFile(file(), "{a}\t1\r\n{A}\t2\r\n{a}\r\n{a} \tx\r\n{b}\t{a}\r\n{c}\t3\r\n");
    deleteMacros(globals(), {u"{a}"_s, u"{c}"_s, u"{none}"_s});
    QCOMPARE(contentOf(file()), QByteArray("{A}\t2\r\n{a} \tx\r\n{b}\t{a}\r\n"));
}

void TestMacroRow::deletingNothingLeavesTheFileUntouched()
{
    const QByteArray lines = "{a}\t1\n{b}\t\xE9"; // without CR, in an old code page, without a last line end
    writeFile(file(), lines);
    deleteMacros(globals(), {u"{c}"_s});
    deleteMacros(globals(), {});
    QCOMPARE(contentOf(file()), lines);
}

void TestMacroRow::aFileThatCannotBeReadIsNotRewritten()
{
    QVERIFY(QFile::remove(file()));
    QVERIFY(QDir().mkdir(file()));
    deleteMacros(globals(), {u"{a}"_s});
    addMacro(globals(), usersRow(u"{a}"_s, u"1"_s));
    replaceMacro(globals(), usersRow(u"{a}"_s, u"1"_s), usersRow(u"{b}"_s, u"1"_s));
    QVERIFY(macroRows(globals()).isEmpty());
    QVERIFY(QFileInfo(file()).isDir());
}

void TestMacroRow::tenMegabytesOfLinesAreReadAndThinnedWhole()
{
    QByteArray bytes;
    QStringList doomed;
    int lines = 0;
    for (; bytes.size() < 10'000'000; ++lines) {
        const QByteArray key = "{number " + QByteArray::number(lines) + '}';
        bytes += key + "\ta text of some length, as users write it\tOther Information\tU\r\n";
        if (lines % 2 == 0) {
            doomed.append(QString::fromLatin1(key));
        }
    }
    writeFile(file(), bytes);
    QCOMPARE(macroRows(globals()).size(), lines);
    deleteMacros(globals(), doomed);
    const QList<MacroRow> left = macroRows(globals());
    QCOMPARE(left.size(), lines / 2);
    QCOMPARE(left.constFirst().macro, u"{number 1}"_s);
    QVERIFY(left.constLast().text.endsWith(u"write it"_s));
}

QTEST_GUILESS_MAIN(TestMacroRow)
#include "test_macrorow.moc"
