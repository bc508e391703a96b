#include "recipients/inputprompts.h"
#include "support/treefixture.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace corvane;

class TestInputPrompts : public QObject, protected TreeFixture {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        makeTree();
        m_prompts = std::make_unique<InputPrompts>(m_tree->globals);
    }
    void cleanup()
    {
        m_prompts.reset();
        dropTree();
    }

    void readingSkipsBlankLinesAndTrimsNone();
    void readingReplacesTheWholeList();
    void savingTheSameTwiceAddsEachOnce();
    void anotherCaseIsANewLine();
    void emptyFieldsAddNothing();
    void nameWithACommaGoesInAsTwoLines();
    void oneRecipientInTwoFieldsIsAddedOnce();
    void savingDoesNotChangeTheListInMemory();
    void noAddressTestIsMade();
    void nameOnTwoLinesIsOneLineAndAddedOnce();
    void blanksAndCommasAreNoPartOfAnEntry();
    void whatIsThereInAnotherFormIsAnotherEntry();
    void unreadableFileIsNotAddedTo();

private:
    [[nodiscard]] const QString &file() const { return m_tree->globals.paths.promptsFile; }

    std::unique_ptr<InputPrompts> m_prompts;
};

void TestInputPrompts::readingSkipsBlankLinesAndTrimsNone()
{
    writeFile(file(), "b@x.org\r\n\r\n \t\r\n  Ada <a@x.org> \r\n");
    m_prompts->upsReadPrompts();
    QCOMPARE(m_prompts->entries(), (QStringList{u"b@x.org"_s, u"  Ada <a@x.org> "_s}));
}

void TestInputPrompts::readingReplacesTheWholeList()
{
    writeFile(file(), "a@x.org\r\n");
    m_prompts->upsReadPrompts();
    writeFile(file(), "");
    m_prompts->upsReadPrompts();
    QCOMPARE(m_prompts->entries(), QStringList());
}

void TestInputPrompts::savingTheSameTwiceAddsEachOnce()
{
    for (int i = 0; i < 2; ++i) {
        m_prompts->upsSavePrompts(u"Ada <a@x.org>, b@x.org,"_s, u"c@x.org"_s, QString());
    }
    QCOMPARE(contentOf(file()), QByteArray("Ada <a@x.org>\r\nb@x.org\r\nc@x.org\r\n"));
}

void TestInputPrompts::anotherCaseIsANewLine()
{
    m_prompts->upsSavePrompts(u"a@x.org"_s, QString(), QString());
    m_prompts->upsSavePrompts(u"A@x.org"_s, QString(), QString());
    QCOMPARE(contentOf(file()), QByteArray("a@x.org\r\nA@x.org\r\n"));
}

void TestInputPrompts::emptyFieldsAddNothing()
{
    m_prompts->upsSavePrompts(QString(), u"  "_s, QString());
    QCOMPARE(contentOf(file()), QByteArray(""));
}

void TestInputPrompts::nameWithACommaGoesInAsTwoLines()
{
    m_prompts->upsSavePrompts(u"Lovelace, Ada <a@x.org>"_s, QString(), QString());
    QCOMPARE(contentOf(file()), QByteArray("Lovelace\r\nAda <a@x.org>\r\n"));
}

void TestInputPrompts::oneRecipientInTwoFieldsIsAddedOnce()
{
    m_prompts->upsSavePrompts(u"a@x.org"_s, QString(), u"a@x.org"_s);
    QCOMPARE(contentOf(file()), QByteArray("a@x.org\r\n"));
}

void TestInputPrompts::savingDoesNotChangeTheListInMemory()
{
    m_prompts->upsSavePrompts(u"a@x.org"_s, QString(), QString());
    QCOMPARE(m_prompts->entries(), QStringList());
    m_prompts->upsReadPrompts();
    QCOMPARE(m_prompts->entries(), QStringList{u"a@x.org"_s});
}

void TestInputPrompts::noAddressTestIsMade()
{
    m_prompts->upsSavePrompts(u"not an address"_s, QString(), QString());
    QCOMPARE(contentOf(file()), QByteArray("not an address\r\n"));
}

void TestInputPrompts::nameOnTwoLinesIsOneLineAndAddedOnce()
{
    for (int i = 0; i < 2; ++i) {
        m_prompts->upsSavePrompts(u"Bob\r\nLee <bob@y.org>"_s, QString(), QString());
    }
    QCOMPARE(contentOf(file()), QByteArray("Bob Lee <bob@y.org>\r\n"));
}

void TestInputPrompts::blanksAndCommasAreNoPartOfAnEntry()
{
    m_prompts->upsSavePrompts(u"\t a@x.org ,, \r\n b@x.org, "_s, u" c@x.org\r\n"_s, u"\t d@x.org,"_s);
    QCOMPARE(contentOf(file()), QByteArray("a@x.org\r\nb@x.org\r\nc@x.org\r\nd@x.org\r\n"));
    m_prompts->upsSavePrompts(QString(), QString(), u" e@x.org "_s);
    m_prompts->upsSavePrompts(u","_s, u" , "_s, u",,"_s);
    QCOMPARE(contentOf(file()), QByteArray("a@x.org\r\nb@x.org\r\nc@x.org\r\nd@x.org\r\ne@x.org\r\n"));
}

void TestInputPrompts::whatIsThereInAnotherFormIsAnotherEntry()
{
    writeFile(file(), " a@x.org\r\nAda <b@x.org>\r\nc@x.org");
    m_prompts->upsSavePrompts(u"a@x.org,b@x.org,c@x.org"_s, QString(), QString());
    QCOMPARE(contentOf(file()), QByteArray(" a@x.org\r\nAda <b@x.org>\r\nc@x.org\r\na@x.org\r\nb@x.org\r\n"));
}

void TestInputPrompts::unreadableFileIsNotAddedTo()
{
    QVERIFY(QFile::remove(file()));
    QVERIFY(QDir().mkdir(file())); // even an administrator cannot read a folder as a file
    const int faults = quillon::faultCount();
    m_prompts->upsSavePrompts(u"a@x.org"_s, QString(), QString());
    QCOMPARE(quillon::faultCount(), faults + 1); // the reading; nothing was tried to be written
}

QTEST_GUILESS_MAIN(TestInputPrompts)
#include "test_inputprompts.moc"
