#include "macros/macrocatalogue.h"
#include "macros/myinformation.h"
#include "support/treefixture.h"

#include <QTest>

#include <csignal>
#include <sys/resource.h>

using namespace Qt::StringLiterals;
using namespace corvane;

class TestMyInformation : public QObject, protected TreeFixture {
    Q_OBJECT

private Q_SLOTS:
    void init() { makeTree(); }
    void cleanup() { dropTree(); }

    void blankMacrosAreFilledAndMoveToTheEnd();
    void aSingleWordNameIsBothNames();
    void aThreeWordNameGivesItsFirstAndLastWord();
    void aMacroWithATextIsLeftAlone();
    void theFillHappensOnce();
    void aDeletedMacroStaysDeleted();
    void theFirstLineThatBeginsWithTheMacroCounts();
    void aLineOfOneFieldIsBlank();
    void aSecondLineWithATextStays();
    void aMissingFileIsNotMade();
    void otherLinesKeepTheirOctets();
    void aFullDiskLosesNoMacro();
    void aFilledMacroIsInTheNextMenu();
    void everyBlankLineOfTheMacroGoes();
    void eachOfTheFourIsFilledByItself();
    void blanksAroundTheNameAreInTheFullNameOnly();
    void aMacroInAnotherCaseIsNotTheOne();
    void nothingToFillWritesNothing();

private:
    void account(const QString &name, const QString &address)
    {
        m_name = name;
        m_address = address;
    }
    [[nodiscard]] const QString &file() const { return m_tree->globals.paths.macrosFile; }
    [[nodiscard]] QStringList lines() const { return m_tree->globals.lines.ReadLines(file()); }
    void sync() const { SyncMyInformation(m_tree->globals, m_name, m_address); }

    QString m_name;
    QString m_address;
};

void TestMyInformation::blankMacrosAreFilledAndMoveToTheEnd()
{
    seedMacros(m_tree->globals);
    account(u"Ada Lovelace"_s, u"ada@x.org"_s);
    sync();
    QStringList expected = predefinedMacroLines();
    expected.remove(10, 4);
    expected.append({u"{My First Name}\tAda\tMy Information\tU"_s, u"{My Last Name}\tLovelace\tMy Information\tU"_s,
                     u"{My Full Name}\tAda Lovelace\tMy Information\tU"_s,
                     u"{My Email Address}\tada@x.org\tMy Information\tU"_s});
    QCOMPARE(lines(), expected);
}

void TestMyInformation::aSingleWordNameIsBothNames()
{
    seedMacros(m_tree->globals);
    account(u"Ada"_s, u"ada@x.org"_s);
    sync();
    QVERIFY(lines().contains(u"{My First Name}\tAda\tMy Information\tU"_s));
    QVERIFY(lines().contains(u"{My Last Name}\tAda\tMy Information\tU"_s));
}

void TestMyInformation::aThreeWordNameGivesItsFirstAndLastWord()
{
    seedMacros(m_tree->globals);
    account(u"Ada  King Lovelace"_s, u"ada@x.org"_s);
    sync();
    QVERIFY(lines().contains(u"{My First Name}\tAda\tMy Information\tU"_s));
    QVERIFY(lines().contains(u"{My Last Name}\tLovelace\tMy Information\tU"_s));
    QVERIFY(lines().contains(u"{My Full Name}\tAda  King Lovelace\tMy Information\tU"_s));
}

void TestMyInformation::aMacroWithATextIsLeftAlone()
{
    writeFile(file(), "{My First Name}\tAugusta\tMy Information\tU\r\n{My Last Name}\t  \tMy Information\tU\r\n"
                      "{x}\ty\tOther Information\tU\r\n");
    account(u"Ada Lovelace"_s, u"ada@x.org"_s);
    sync();
    QCOMPARE(contentOf(file()),
             QByteArray("{My First Name}\tAugusta\tMy Information\tU\r\n{x}\ty\tOther Information\tU\r\n"
                        "{My Last Name}\tLovelace\tMy Information\tU\r\n"));
}

void TestMyInformation::theFillHappensOnce()
{
    seedMacros(m_tree->globals);
    account(u"Ada Lovelace"_s, u"ada@x.org"_s);
    sync();
    const QByteArray filled = contentOf(file());
    account(u"Bea Smith"_s, u"bea@x.org"_s);
    sync();
    QCOMPARE(contentOf(file()), filled);
}

void TestMyInformation::aDeletedMacroStaysDeleted()
{
    writeFile(file(), "{x}\ty\tOther Information\tU\r\n");
    account(u"Ada Lovelace"_s, u"ada@x.org"_s);
    sync();
    QCOMPARE(contentOf(file()), QByteArray("{x}\ty\tOther Information\tU\r\n"));
}

void TestMyInformation::theFirstLineThatBeginsWithTheMacroCounts()
{
    const QByteArray present = "{My Full Name} {x}\tsomething\tOther Information\tU\r\n{My Full Name}\t \tMy "
                               "Information\tU\r\n";
    writeFile(file(), present);
    account(u"Ada Lovelace"_s, u"ada@x.org"_s);
    sync();
    QCOMPARE(contentOf(file()), present);
}

void TestMyInformation::aLineOfOneFieldIsBlank()
{
    writeFile(file(), "{My Email Address}\r\n");
    account(u"Ada"_s, u"ada@x.org"_s);
    sync();
    QCOMPARE(contentOf(file()), QByteArray("{My Email Address}\tada@x.org\tMy Information\tU\r\n"));
}

void TestMyInformation::aSecondLineWithATextStays()
{
    writeFile(file(), "{My Full Name}\t \tMy Information\tU\r\n{My Full Name}\tAugusta\tMy Information\tU\r\n");
    account(u"Ada"_s, u"ada@x.org"_s);
    sync();
    QCOMPARE(contentOf(file()),
             QByteArray("{My Full Name}\tAugusta\tMy Information\tU\r\n{My Full Name}\tAda\tMy Information\tU\r\n"));
}

void TestMyInformation::aMissingFileIsNotMade()
{
    QVERIFY(QFile::remove(file()));
    account(u"Ada Lovelace"_s, u"ada@x.org"_s);
    sync();
    QVERIFY(!QFile::exists(file()));
}

void TestMyInformation::otherLinesKeepTheirOctets()
{
    writeFile(file(), "{caf\xE9}\t1\tOther Information\tU\r\n{My First Name}\t \tMy Information\tU\r\n");
    account(u"Ada"_s, u"ada@x.org"_s);
    sync();
    QCOMPARE(contentOf(file()), QByteArray("{caf\xE9}\t1\tOther Information\tU\r\n"
                                           "{My First Name}\tAda\tMy Information\tU\r\n"));
}

void TestMyInformation::aFullDiskLosesNoMacro()
{
    // On a disk with room for what is left after a deletion, but not for what is appended, nothing may go missing.
    seedMacros(m_tree->globals);
    const QByteArray seeded = contentOf(file());
    account(u"Ada"_s, u"ada@x.org"_s);
    rlimit before{};
    QCOMPARE(getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit full = before;
    full.rlim_cur = static_cast<rlim_t>(seeded.size());
    QCOMPARE(setrlimit(RLIMIT_FSIZE, &full), 0);
    sync();
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    QCOMPARE(contentOf(file()), seeded);
    sync();
    QVERIFY(contentOf(file()).size() > seeded.size());
}

void TestMyInformation::aFilledMacroIsInTheNextMenu()
{
    seedMacros(m_tree->globals);
    account(u"Ada"_s, u"ada@x.org"_s);
    QVERIFY(!macroMenuCaptions(m_tree->globals).contains(u"{My Full Name}"_s));
    sync();
    QCOMPARE(macroMenuCaptions(m_tree->globals).mid(10),
             (QStringList{u"{My First Name}"_s, u"{My Last Name}"_s, u"{My Full Name}"_s, u"{My Email Address}"_s}));
}

void TestMyInformation::everyBlankLineOfTheMacroGoes()
{
    writeFile(file(), "{My Full Name}\t \tMy Information\tU\r\n{x}\ty\tz\tU\r\n{My Full Name}\r\n"
                      "{My Full Name}\t\tMy Information\tU\r\n");
    account(u"Ada"_s, u"ada@x.org"_s);
    sync();
    QCOMPARE(contentOf(file()), QByteArray("{x}\ty\tz\tU\r\n{My Full Name}\tAda\tMy Information\tU\r\n"));
}

void TestMyInformation::eachOfTheFourIsFilledByItself()
{
    account(u"Ada King"_s, u"ada@x.org"_s);
    for (const auto &[macro, value] :
         {std::pair("{My First Name}", "Ada"), std::pair("{My Last Name}", "King"),
          std::pair("{My Full Name}", "Ada King"), std::pair("{My Email Address}", "ada@x.org")}) {
        writeFile(file(), QByteArray(macro) + "\t \tMy Information\tU\r\n");
        sync();
        QCOMPARE(contentOf(file()), QByteArray(macro) + '\t' + value + "\tMy Information\tU\r\n");
    }
}

void TestMyInformation::blanksAroundTheNameAreInTheFullNameOnly()
{
    seedMacros(m_tree->globals);
    account(u" Ada King "_s, u"ada@x.org"_s);
    sync();
    QCOMPARE(lines().sliced(16),
             (QStringList{u"{My First Name}\tAda\tMy Information\tU"_s, u"{My Last Name}\tKing\tMy Information\tU"_s,
                          u"{My Full Name}\t Ada King \tMy Information\tU"_s,
                          u"{My Email Address}\tada@x.org\tMy Information\tU"_s}));
}

void TestMyInformation::aMacroInAnotherCaseIsNotTheOne()
{
    const QByteArray present = "{my full name}\t \tMy Information\tU\r\n";
    writeFile(file(), present);
    account(u"Ada"_s, u"ada@x.org"_s);
    sync();
    QCOMPARE(contentOf(file()), present);
}

void TestMyInformation::nothingToFillWritesNothing()
{
    const QByteArray present = "{x}\ty\n{z}"; // without CR, without a last line end
    writeFile(file(), present);
    account(u"Ada"_s, u"ada@x.org"_s);
    sync();
    QCOMPARE(contentOf(file()), present);
}

QTEST_GUILESS_MAIN(TestMyInformation)
#include "test_myinformation.moc"
