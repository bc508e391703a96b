#include "recipients/promptmodel.h"
#include "support/fulldisk.h"
#include "support/treefixture.h"

#include <QAbstractItemModelTester>
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
        m_tester.reset();
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
    void aChangeThatCannotBeWrittenIsNone();
    void lettersAreFoundInBothCasesAndTheirNeighboursAsTheyAre();
    void rowsBeyondTheEndsAreNoRows();
    void onlyTheTextOfARowIsData();

private:
    PromptModel &model(const QStringList &entries)
    {
        QByteArray lines;
        for (const QString &entry : entries) {
            lines += entry.toUtf8() + "\r\n";
        }
        writeFile(file(), lines);
        m_tester.reset();
        m_model = std::make_unique<PromptModel>(m_tree->globals, entries, u"(none)"_s);
        m_tester = std::make_unique<QAbstractItemModelTester>(m_model.get());
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
    std::unique_ptr<QAbstractItemModelTester> m_tester; ///< whether a view is told of every change as it is
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

void TestPromptModel::lettersAreFoundInBothCasesAndTheirNeighboursAsTheyAre()
{
    const QString letters = u"ABCDEFGHIJKLMNOPQRSTUVWXYZ"_s;
    model({letters, letters.toLower(), u"@[`{"_s, u"@[`{\u00c4"_s});
    for (const QString &text : {u"A"_s, u"a"_s, u"Z"_s, u"z"_s, letters, letters.toLower()}) {
        QCOMPARE(m_model->find(text), (QList<PromptModel::Range>{{0, 1}}));
    }
    for (const QString &text : {u"@"_s, u"["_s, u"`"_s, u"{"_s, u"@[`{"_s}) {
        QCOMPARE(m_model->find(text), (QList<PromptModel::Range>{{2, 3}}));
    }
    QCOMPARE(m_model->find(u"\u00e4"_s), (QList<PromptModel::Range>{{3, 3}}));
}

void TestPromptModel::rowsBeyondTheEndsAreNoRows()
{
    model({u"a@x.org"_s, u"b@x.org"_s});
    m_model->replace(2, u"never@x.org"_s);
    m_model->replace(-1, u"never@x.org"_s);
    m_model->remove({2, -1});
    QCOMPARE(rows(), (QStringList{u"a@x.org"_s, u"b@x.org"_s}));
    QCOMPARE(contentOf(file()), QByteArray("a@x.org\r\nb@x.org\r\n"));
    QCOMPARE(m_model->entry(2) + m_model->entry(-1), QString());
    m_model->replace(0, u"c@x.org"_s);
    QCOMPARE(rows(), (QStringList{u"b@x.org"_s, u"c@x.org"_s}));
}

void TestPromptModel::onlyTheTextOfARowIsData()
{
    model({u"a@x.org"_s});
    QCOMPARE(m_model->rowCount(m_model->index(0)), 0); // no rows below a row
    QVERIFY(!m_model->data(m_model->index(0), Qt::EditRole).isValid());
    QVERIFY(!m_model->data(QModelIndex(), Qt::DisplayRole).isValid());
    QCOMPARE(m_model->data(m_model->index(0), Qt::DisplayRole).toString(), u"a@x.org"_s);
}

void TestPromptModel::aChangeThatCannotBeWrittenIsNone()
{
    PromptModel &list = model({u"a@x.example"_s, u"b@x.example"_s, u"c@x.example"_s});
    const QByteArray before = contentOf(file());
    const QStringList shown = rows();
    {
        const SizeLimit limit(4);
        QVERIFY(!list.add(u"d@x.example"_s));
        QVERIFY(!list.replace(0, u"d@x.example"_s));
        QVERIFY(!list.remove({0, 1}));
    }
    QCOMPARE(rows(), shown);
    QCOMPARE(contentOf(file()), before);
    // What another program put there meanwhile is shown, blank lines are not.
    writeFile(file(), before + "\r\ne@x.example\r\n");
    {
        const SizeLimit limit(4);
        QVERIFY(!list.add(u"d@x.example"_s));
    }
    QCOMPARE(rows(), shown + QStringList{u"e@x.example"_s});
    QVERIFY(list.add(u"d@x.example"_s));
    QVERIFY(list.replace(0, u"f@x.example"_s));
    QVERIFY(list.remove({0}));
    // A file that cannot be read tells nothing.
    const QStringList last = rows();
    QVERIFY(QFile::remove(file()));
    QVERIFY(QDir().mkpath(file()));
    QVERIFY(!list.remove({0}));
    QCOMPARE(rows(), last);
}

QTEST_GUILESS_MAIN(TestPromptModel)
#include "test_promptmodel.moc"
