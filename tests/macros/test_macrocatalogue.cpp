#include "macros/macrocatalogue.h"
#include "support/treefixture.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace corvane;

class TestMacroCatalogue : public QObject, protected TreeFixture {
    Q_OBJECT

private Q_SLOTS:
    void init() { makeTree(); }
    void cleanup() { dropTree(); }

    void emptyFileGetsTwentyLines();
    void fileOfNineLinesGetsTwentyBehindThem();
    void fileOfTenLinesOfAnyContentGetsNone();
    void predefinedTextsAreASingleBlank();
    void userMacroWithoutTextIsNotInTheMenu();
    void shortLinesAreNotInTheMenu();
    void unreadableFileIsNotSeededAndGivesAnEmptyMenu();
    void predefinedLinesStandInTheirOrder();
    void menuLeavesOutUsersMacrosOfBlanksOnly();

private:
    [[nodiscard]] const QString &file() const { return m_tree->globals.paths.macrosFile; }
};

void TestMacroCatalogue::emptyFileGetsTwentyLines()
{
    seedMacros(m_tree->globals);
    QCOMPARE(m_tree->globals.lines.ReadLines(file()), predefinedMacroLines());
    QCOMPARE(predefinedMacroLines().size(), 20);
    seedMacros(m_tree->globals);
    QCOMPARE(m_tree->globals.lines.CountLines(file()), 20);
}

void TestMacroCatalogue::fileOfNineLinesGetsTwentyBehindThem()
{
    const QByteArray nine = QByteArray("{x}\ty\tOther Information\tU\r\n").repeated(9);
    writeFile(file(), nine);
    seedMacros(m_tree->globals);
    QCOMPARE(m_tree->globals.lines.CountLines(file()), 29);
    QVERIFY(contentOf(file()).startsWith(nine));
}

void TestMacroCatalogue::fileOfTenLinesOfAnyContentGetsNone()
{
    const QByteArray ten = QByteArray("\r\n").repeated(10);
    writeFile(file(), ten);
    seedMacros(m_tree->globals);
    QCOMPARE(contentOf(file()), ten);
}

void TestMacroCatalogue::predefinedTextsAreASingleBlank()
{
    int computed = 0;
    const QStringList lines = predefinedMacroLines();
    for (const QString &line : lines) {
        const QStringList fields = line.split(u'\t');
        QCOMPARE(fields.size(), 4);
        QVERIFY(fields.at(MacroKey).startsWith(u'{') && fields.at(MacroKey).endsWith(u'}'));
        QCOMPARE(fields.at(MacroText), u" "_s);
        computed += fields.at(MacroKind) == u"D" ? 1 : 0;
        QCOMPARE(fields.at(MacroKind) == u"U", fields.at(MacroCategory) == u"My Information");
    }
    QCOMPARE(computed, 10);
}

void TestMacroCatalogue::userMacroWithoutTextIsNotInTheMenu()
{
    seedMacros(m_tree->globals);
    m_tree->globals.lines.AppendLine(file(), u"{Club}\tChess\tOther Information\tU"_s);
    const QStringList captions = macroMenuCaptions(m_tree->globals);
    QVERIFY(!captions.contains(u"{My Website}"_s));
    QVERIFY(captions.contains(u"{Long Date}"_s));
    QCOMPARE(captions.size(), 11);
    QCOMPARE(captions.constLast(), u"{Club}"_s);
}

void TestMacroCatalogue::shortLinesAreNotInTheMenu()
{
    writeFile(file(), "{one}\r\n{two}\tx\r\n{three}\tx\ty\r\n{four}\tx\ty\tU\r\n");
    QCOMPARE(macroMenuCaptions(m_tree->globals), QStringList{u"{four}"_s});
}

void TestMacroCatalogue::unreadableFileIsNotSeededAndGivesAnEmptyMenu()
{
    QVERIFY(QFile::remove(file()));
    QVERIFY(QDir().mkpath(file())); // even an administrator cannot read a folder as a file
    const int faults = quillon::faultCount();
    seedMacros(m_tree->globals);
    QCOMPARE(quillon::faultCount(), faults + 1); // the reading; nothing was tried to be written
    QCOMPARE(macroMenuCaptions(m_tree->globals), QStringList());
}

void TestMacroCatalogue::predefinedLinesStandInTheirOrder()
{
    QStringList expected;
    for (const auto &[category, kind, macros] :
         {std::tuple(u"Recipient Information"_s, u"D"_s,
                     u"First Name of The Recipient|Last Name of The Recipient|Full Name of The Recipient|"
                     "Email Address of The Recipient"_s),
          std::tuple(u"Sending Date and Time"_s, u"D"_s,
                     u"Long Date|Short Date|Long Time|Short Time|Long Date and Time|Short Date and Time"_s),
          std::tuple(u"My Information"_s, u"U"_s,
                     u"My First Name|My Last Name|My Full Name|My Email Address|My Website|My Company Name|My Tel No.|"
                     "My Mobile Phone|My Fax No.|My Bank Account"_s)}) {
        const QStringList names = macros.split(u'|');
        for (const QString &name : names) {
            expected.append(u'{' + name + u"}\t \t"_s + category + u'\t' + kind);
        }
    }
    QCOMPARE(predefinedMacroLines(), expected);
}

void TestMacroCatalogue::menuLeavesOutUsersMacrosOfBlanksOnly()
{
    writeFile(file(), "{1}\t\tx\tU\r\n{2}\t \xC2\xA0\tx\tU\r\n{3}\ty\tx\tU\r\n{4}\t \tx\tD\r\n{5}\t\tx\tu\r\n"
                      "{6}\t\tx\t\r\n{7}\ty\tx\tD\t9\r\n{8}\t\tx\tU\t9\r\n{9}\ty\tx\r\n");
    const int faults = quillon::faultCount();
    QCOMPARE(macroMenuCaptions(m_tree->globals), (QStringList{u"{3}"_s, u"{4}"_s, u"{5}"_s, u"{6}"_s, u"{7}"_s}));
    QCOMPARE(quillon::faultCount(), faults + 1); // the line of three fields
}

QTEST_GUILESS_MAIN(TestMacroCatalogue)
#include "test_macrocatalogue.moc"
