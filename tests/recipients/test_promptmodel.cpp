#include "recipients/promptmodel.h"
#include "support/treefixture.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace corvane;

class TestPromptModel : public QObject, protected TreeFixture {
    Q_OBJECT

private Q_SLOTS:
    void init() { makeTree(); }
    void cleanup()
    {
        m_model.reset();
        dropTree();
    }

    void anEmptyListShowsThePlaceholder();
    void blankEntriesAreNotShown();
    void theFirstEntryTakesThePlaceholdersPlace();
    void anEntryIsFoundButForCaseAndBlanks();
    void addingAppendsToTheListAndTheFile();
    void aReplacedEntryGoesToTheEndOfTheListAndKeepsItsLine();
    void replacingTheLastRowChangesItsText();
    void removingTakesRowsAndTheirLinesInOneRewrite();
    void removingARowTakesEveryEqualLine();
    void removingTheLastEntryBringsThePlaceholderBack();
    void removingNothingWritesNothing();
    void findingMatchesAnywhereWithoutCase();
    void neighboursAreOneRange();
    void anEmptyTextFindsNothing();
    void aFileThatCannotBeReadIsNotRewritten();

private:
    PromptModel &model(const QStringList &entries)
    {
        QByteArray lines;
        for (const QString &entry : entries) {
            lines += entry.toUtf8() + "\r\n";
        }
        writeFile(file(), lines);
        m_model = std::make_unique<PromptModel>(m_tree->globals, entries, u"(none)"_s);
        return *m_model;
    }
    [[nodiscard]] QStringList rows() const
    {
        QStringList texts;
        for (int row = 0; row < m_model->rowCount(); ++row) {
            texts.append(m_model->index(row).data().toString());
        }
        return texts;
    }
    [[nodiscard]] const QString &file() const { return m_tree->globals.paths.promptsFile; }

    std::unique_ptr<PromptModel> m_model;
};

void TestPromptModel::anEmptyListShowsThePlaceholder()
{
    QVERIFY(model({}).isPlaceholder());
    QCOMPARE(rows(), QStringList{u"(none)"_s});
    QCOMPARE(m_model->entry(0), QString());
    QVERIFY(!m_model->contains(u"(none)"_s));
}

void TestPromptModel::blankEntriesAreNotShown()
{
    QVERIFY(!model({u" "_s, u" b@x.org "_s, QString(), u"\t"_s}).isPlaceholder());
    QCOMPARE(rows(), QStringList{u" b@x.org "_s});
}

void TestPromptModel::theFirstEntryTakesThePlaceholdersPlace()
{
    model({}).add(u"a@x.org"_s);
    QCOMPARE(rows(), QStringList{u"a@x.org"_s});
    QVERIFY(!m_model->isPlaceholder());
}

void TestPromptModel::anEntryIsFoundButForCaseAndBlanks()
{
    model({u"  Ann Lee <ANN@x.org> "_s});
    QVERIFY(m_model->contains(u"ann lee <ann@X.ORG>"_s));
    QVERIFY(!m_model->contains(u"ann@x.org"_s));
}

void TestPromptModel::addingAppendsToTheListAndTheFile()
{
    model({u"a@x.org"_s}).add(u"b@x.org"_s);
    QCOMPARE(rows(), (QStringList{u"a@x.org"_s, u"b@x.org"_s}));
    QCOMPARE(contentOf(file()), QByteArray("a@x.org\r\nb@x.org\r\n"));
}

void TestPromptModel::aReplacedEntryGoesToTheEndOfTheListAndKeepsItsLine()
{
    model({u"a@x.org"_s, u"b@x.org"_s, u"c@x.org"_s}).replace(0, u"z@x.org"_s);
    QCOMPARE(rows(), (QStringList{u"b@x.org"_s, u"c@x.org"_s, u"z@x.org"_s}));
    QCOMPARE(contentOf(file()), QByteArray("z@x.org\r\nb@x.org\r\nc@x.org\r\n"));
    m_model->replace(7, u"never@x.org"_s);
    m_model->replace(-1, u"never@x.org"_s);
    QCOMPARE(rows().constLast(), u"z@x.org"_s);
}

void TestPromptModel::replacingTheLastRowChangesItsText()
{
    model({u"a@x.org"_s, u"b@x.org"_s}).replace(1, u"c@x.org"_s);
    QCOMPARE(rows(), (QStringList{u"a@x.org"_s, u"c@x.org"_s}));
}

void TestPromptModel::removingTakesRowsAndTheirLinesInOneRewrite()
{
    model({u"a@x.org"_s, u"b@x.org"_s, u"c@x.org"_s, u"d@x.org"_s});
    QSignalSpy resets(m_model.get(), &QAbstractItemModel::modelReset);
    m_model->remove({3, 0, 2});
    QCOMPARE(rows(), QStringList{u"b@x.org"_s});
    QCOMPARE(contentOf(file()), QByteArray("b@x.org\r\n"));
    QCOMPARE(resets.count(), 1);
}

void TestPromptModel::removingARowTakesEveryEqualLine()
{
    model({u"a@x.org"_s, u"A@x.org"_s, u"a@x.org"_s, u"a@x.org "_s}).remove({0});
    QCOMPARE(rows(), (QStringList{u"A@x.org"_s, u"a@x.org"_s, u"a@x.org "_s}));
    QCOMPARE(contentOf(file()), QByteArray("A@x.org\r\na@x.org \r\n"));
}

void TestPromptModel::removingTheLastEntryBringsThePlaceholderBack()
{
    model({u"a@x.org"_s}).remove({0});
    QCOMPARE(rows(), QStringList{u"(none)"_s});
    QCOMPARE(contentOf(file()), QByteArray(""));
}

void TestPromptModel::removingNothingWritesNothing()
{
    model({u"a@x.org"_s});
    writeFile(file(), "a@x.org\nb@x.org"); // another program's lines, as it wrote them
    m_model->remove({});
    m_model->remove({5});
    QCOMPARE(contentOf(file()), QByteArray("a@x.org\nb@x.org"));
}

void TestPromptModel::findingMatchesAnywhereWithoutCase()
{
    model({u"Ann Lee <x@y.org>"_s, u"bob@LEEDS.org"_s, u"Zoe <z@y.org>"_s, u"\u00c4nne <a@y.org>"_s});
    QCOMPARE(m_model->find(u"lee"_s), (QList<PromptModel::Range>{{0, 1}}));
    QCOMPARE(m_model->find(u"\u00e4NN"_s), (QList<PromptModel::Range>{{3, 3}}));
    QCOMPARE(m_model->find(u"Y.ORG"_s), (QList<PromptModel::Range>{{0, 0}, {2, 3}}));
    QCOMPARE(m_model->find(u"nobody"_s), QList<PromptModel::Range>());
}

void TestPromptModel::neighboursAreOneRange()
{
    model({u"a1"_s, u"a2"_s, u"b"_s, u"a3"_s});
    QCOMPARE(m_model->find(u"a"_s), (QList<PromptModel::Range>{{0, 1}, {3, 3}}));
}

void TestPromptModel::anEmptyTextFindsNothing()
{
    QVERIFY(model({u"a1"_s}).find(QString()).isEmpty());
    QVERIFY(model({}).find(u"none"_s).isEmpty());
}

void TestPromptModel::aFileThatCannotBeReadIsNotRewritten()
{
    model({u"a@x.org"_s});
    QVERIFY(QFile::remove(file()));
    QVERIFY(QDir().mkdir(file()));
    m_model->remove({0});
    QVERIFY(QFileInfo(file()).isDir());
}

QTEST_GUILESS_MAIN(TestPromptModel)
#include "test_promptmodel.moc"
