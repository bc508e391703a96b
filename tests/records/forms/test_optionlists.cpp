#include "listbench.h"

using namespace Qt::StringLiterals;
using namespace corvane;
using quillon::BoxAnswer;

class TestOptionLists : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void addKeepsWhatIsEntered_data() { addTabs(); }
    void addKeepsWhatIsEntered();
    void saveAndAddGoesOnWithTheNextRecord_data() { addTabs(); }
    void saveAndAddGoesOnWithTheNextRecord();
    void editShowsTheRecordUnderItsCaption_data() { addTabs(); }
    void editShowsTheRecordUnderItsCaption();
    void editThatIsSavedUnchangedKeepsEveryOctet_data() { addTabs(); }
    void editThatIsSavedUnchangedKeepsEveryOctet();
    void editedDefaultStaysTheDefault_data() { addTabs(); }
    void editedDefaultStaysTheDefault();
    void editToAnotherRecordIsADuplicate_data() { addTabs(); }
    void editToAnotherRecordIsADuplicate();
    void editOfAPasswordAlonePasses_data() { addKindsOfWholeLines(); }
    void editOfAPasswordAlonePasses();
    void saveAndAddWhileEditingReplacesTheRecordAgain_data() { addTabs(); }
    void saveAndAddWhileEditingReplacesTheRecordAgain();
    void copyNeedsAChange_data() { addTabs(); }
    void copyNeedsAChange();
    void aCopyHasAllFieldsOfItsRecord_data();
    void aCopyHasAllFieldsOfItsRecord();
    void closedDialogChangesNothing_data() { addTabs(); }
    void closedDialogChangesNothing();

    void commandsOfAnEmptyListTellSo_data() { addTabs(); }
    void commandsOfAnEmptyListTellSo();
    void eachButtonIsItsCommand_data() { addTabs(); }
    void eachButtonIsItsCommand();
    void defaultButtonMovesTheBoldness_data() { addTabs(); }
    void defaultButtonMovesTheBoldness();
    void deleteTakesTheRowsThatAreSelected_data() { addTabs(); }
    void deleteTakesTheRowsThatAreSelected();
    void everyRowCanBeSelectedAndDeleted_data() { addTabs(); }
    void everyRowCanBeSelectedAndDeleted();
    void clearEmptiesTheList_data() { addTabs(); }
    void clearEmptiesTheList();
};

void TestOptionLists::addKeepsWhatIsEntered()
{
    ListBench bench(kindOfRow());
    bench.start({});
    bench.inDialog([&bench] {
        QCOMPARE(bench.dialog()->windowTitle(), u"Add "_s + bench.facts.what);
        bench.enter(bench.facts.entry);
        bench.saveAndClose();
    });
    bench.pressAdd();
    QCOMPARE(bench.file(), octetsOf({bench.facts.entered}));
    QCOMPARE(bench.lines(), QStringList{bench.facts.entered});
    QCOMPARE(bench.bold(), QStringList{bench.firstCell(bench.facts.entered)});
    QVERIFY(bench.facts.kind.kind().isDefault(bench.globals(), bench.facts.entered));
}

void TestOptionLists::saveAndAddGoesOnWithTheNextRecord()
{
    ListBench bench(kindOfRow());
    bench.start({});
    QString second = bench.facts.entered;
    second.replace(u"new.example"_s, u"other.example"_s);
    bench.inDialog([&bench] {
        bench.enter(bench.facts.entry);
        bench.inDialogPress(bench.facts.saveAndAdd);
        QCOMPARE(bench.lines(), QStringList{bench.facts.entered});
        for (const auto &[name, value] : std::as_const(bench.facts.entry)) {
            bench.enter({{name, QString(value).replace(u"new.example"_s, u"other.example"_s)}});
        }
        bench.saveAndClose();
    });
    bench.pressAdd();
    QCOMPARE(bench.file(), octetsOf({bench.facts.entered, second}));
    QCOMPARE(bench.lines(), (QStringList{bench.facts.entered, second}));
    QCOMPARE(bench.bold(), QStringList{bench.firstCell(bench.facts.entered)});
    QVERIFY(bench.facts.kind.kind().isDefault(bench.globals(), bench.facts.entered));
}

void TestOptionLists::editShowsTheRecordUnderItsCaption()
{
    ListBench bench(kindOfRow());
    bench.startAll();
    for (int row = 0; row < 3; ++row) {
        bench.clickRow(row);
        bench.inDialog([&bench, row] {
            QCOMPARE(bench.dialog()->windowTitle(),
                     u"Edit %1 - %2"_s.arg(bench.facts.what, bench.facts.editNames[row]));
            const QStringList fields = bench.facts.kind.records[row].split(u'\t');
            for (const auto &entry : std::as_const(bench.facts.entry)) {
                QVERIFY2(fields.contains(bench.box(entry.first)->text()), qPrintable(entry.first));
            }
            bench.closeDialog();
        });
        bench.press(bench.facts.edit);
    }
}

void TestOptionLists::editThatIsSavedUnchangedKeepsEveryOctet()
{
    ListBench bench(kindOfRow());
    bench.startAll();
    const QByteArray options = bench.options();
    for (int row = 0; row < 3; ++row) {
        bench.clickRow(row);
        bench.enterWith(bench.facts.edit, {});
    }
    QCOMPARE(bench.file(), octetsOf(bench.facts.kind.records));
    QCOMPARE(bench.lines(), bench.facts.kind.records);
    QCOMPARE(bench.options(), options);
}

void TestOptionLists::editedDefaultStaysTheDefault()
{
    ListBench bench(kindOfRow());
    bench.startAll();
    bench.clickRow(0);
    bench.enterWith(bench.facts.edit, bench.facts.entry);
    const QString edited = bench.lines().value(0);
    QCOMPARE(bench.file(), octetsOf({edited, bench.facts.kind.records[1], bench.facts.kind.records[2]}));
    QVERIFY(edited != bench.facts.kind.records[0]);
    QCOMPARE(bench.bold(), QStringList{bench.firstCell(edited)});
    LoadSettings(bench.globals());
    QVERIFY(bench.facts.kind.kind().isDefault(bench.globals(), edited));
}

void TestOptionLists::editToAnotherRecordIsADuplicate()
{
    ListBench bench(kindOfRow());
    bench.start({bench.facts.kind.records[0], bench.facts.entered});
    bench.clickRow(0);
    bench.inDialog([&bench] {
        bench.enter(bench.facts.entry);
        bench.prompts.expectBox(bench.facts.duplicate, 64);
        bench.saveAndClose();
        QVERIFY(bench.forms.isLoaded(bench.facts.dialog));
        bench.closeDialog();
    });
    bench.press(bench.facts.edit);
    QCOMPARE(bench.file(), octetsOf({bench.facts.kind.records[0], bench.facts.entered}));
}

void TestOptionLists::editOfAPasswordAlonePasses()
{
    ListBench bench(kindOfRow());
    bench.startAll();
    bench.clickRow(2);
    bench.enterWith(bench.facts.edit, {{u"txt(3)"_s, u"another word"_s}});
    QStringList after = bench.facts.kind.records;
    after[2].replace(u"pass-of-cy"_s, u"another word"_s);
    QCOMPARE(bench.file(), octetsOf(after));
    QCOMPARE(bench.lines(), after);
}

void TestOptionLists::saveAndAddWhileEditingReplacesTheRecordAgain()
{
    ListBench bench(kindOfRow());
    bench.startAll();
    bench.clickRow(1);
    bench.inDialog([&bench] {
        bench.inDialogPress(bench.facts.saveAndAdd);
        bench.enter(bench.facts.entry);
        bench.saveAndClose();
    });
    bench.press(bench.facts.edit);
    QCOMPARE(bench.file(), octetsOf({bench.facts.kind.records[0], bench.facts.entered, bench.facts.kind.records[2]}));
    QCOMPARE(bench.lines().value(1), bench.facts.entered);
}

void TestOptionLists::copyNeedsAChange()
{
    ListBench bench(kindOfRow());
    bench.startAll();
    bench.clickRow(1);
    bench.inDialog([&bench] {
        QCOMPARE(bench.dialog()->windowTitle(), u"Add "_s + bench.facts.what);
        bench.prompts.expectBox(bench.facts.duplicate, 64);
        bench.saveAndClose();
        QCOMPARE(bench.file(), octetsOf(bench.facts.kind.records));
        bench.enter(bench.facts.entry);
        bench.saveAndClose();
    });
    bench.press(bench.facts.copy);
    QCOMPARE(bench.lines().size(), 4);
    QCOMPARE(bench.file(), octetsOf(bench.facts.kind.records + QStringList{bench.lines().last()}));
    QVERIFY(bench.lines().last().contains(u"new.example"_s));
    QCOMPARE(bench.bold(), QStringList{bench.firstCell(bench.facts.kind.records[0])});
}

void TestOptionLists::aCopyHasAllFieldsOfItsRecord_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("box");
    QTest::addColumn<int>("field");
    QTest::newRow("proxies") << u"proxies"_s << u"txt(0)"_s << 1;
    QTest::newRow("accounts") << u"accounts"_s << u"txt(5)"_s << 7;
    QTest::newRow("senders") << u"senders"_s << u"txtEmail"_s << 1;
}

void TestOptionLists::aCopyHasAllFieldsOfItsRecord()
{
    QFETCH(QString, box);
    QFETCH(int, field);
    ListBench bench(kindOfRow());
    bench.startAll();
    bench.inDialog([&] {
        bench.enter({{box, u"dora@new.example"_s}});
        if (QLineEdit *receipt = bench.box(u"txt(7)"_s)) {
            receipt->clear(); // it follows the sender's address, and the record has none
        }
        bench.saveAndClose();
    });
    bench.press(bench.facts.copy);
    QStringList fields = bench.facts.kind.records[0].split(u'\t');
    fields[field] = u"dora@new.example"_s;
    QCOMPARE(bench.file(), octetsOf(bench.facts.kind.records + QStringList{fields.join(u'\t')}));
}

void TestOptionLists::closedDialogChangesNothing()
{
    ListBench bench(kindOfRow());
    bench.startAll();
    const QByteArray options = bench.options();
    const auto enterAndClose = [&bench] {
        bench.inDialog([&bench] {
            bench.enter(bench.facts.entry);
            bench.closeDialog();
        });
    };
    enterAndClose();
    bench.pressAdd();
    enterAndClose();
    bench.press(bench.facts.edit);
    enterAndClose();
    bench.press(bench.facts.copy);
    QCOMPARE(bench.file(), octetsOf(bench.facts.kind.records));
    QCOMPARE(bench.lines(), bench.facts.kind.records);
    QCOMPARE(bench.options(), options);
}

void TestOptionLists::commandsOfAnEmptyListTellSo()
{
    ListBench bench(kindOfRow());
    bench.start({});
    bench.prompts.expectBox(bench.facts.kind.keys[0], 64);
    bench.press(bench.facts.edit);
    bench.prompts.expectBox(bench.facts.kind.keys[1], 64);
    bench.press(bench.facts.copy);
    bench.prompts.expectBox(bench.facts.kind.keys[3], 64);
    bench.press(bench.facts.clear);
    QCOMPARE(bench.prompts.leftOver(), QStringList());
    bench.press(bench.facts.remove);
    bench.press(bench.facts.makeDefault);
    QCOMPARE(bench.prompts.log().size(), 3);
}

void TestOptionLists::eachButtonIsItsCommand()
{
    ListBench bench(kindOfRow());
    bench.startAll();
    bench.clickRow(1);
    bench.expectEditDialog(1);
    bench.press(bench.facts.edit);
    bench.expectAddDialog();
    bench.press(bench.facts.copy);
    bench.pressWhileAsked(bench.facts.remove, bench.facts.kind.keys[2], BoxAnswer::No);
    bench.pressWhileAsked(bench.facts.clear, bench.facts.kind.keys[4], BoxAnswer::No);
    QCOMPARE(bench.bold(), QStringList{bench.firstCell(bench.facts.kind.records[0])});
    bench.press(bench.facts.makeDefault);
    QCOMPARE(bench.bold(), QStringList{bench.firstCell(bench.facts.kind.records[1])});
    QCOMPARE(bench.prompts.leftOver(), QStringList());
}

void TestOptionLists::defaultButtonMovesTheBoldness()
{
    ListBench bench(kindOfRow());
    bench.startAll();
    bench.clickRow(2);
    bench.press(bench.facts.makeDefault);
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            const QModelIndex cell = bench.view()->model()->index(row, column);
            QCOMPARE(cell.data(Qt::FontRole).value<QFont>().bold(), row == 2);
            QCOMPARE(cell.data(RecordModel::DefaultRole).toBool(), row == 2);
        }
    }
    LoadSettings(bench.globals());
    QVERIFY(bench.facts.kind.kind().isDefault(bench.globals(), bench.facts.kind.records[2]));
}

void TestOptionLists::deleteTakesTheRowsThatAreSelected()
{
    ListBench bench(kindOfRow());
    bench.startAll();
    bench.clickRow(0);
    bench.clickRow(2, Qt::ControlModifier);
    bench.pressWhileAsked(bench.facts.remove, bench.facts.kind.keys[2], BoxAnswer::Yes);
    QCOMPARE(bench.file(), octetsOf({bench.facts.kind.records[1]}));
    QCOMPARE(bench.lines(), QStringList{bench.facts.kind.records[1]});
    QCOMPARE(bench.selectedRows(bench.facts.list), QStringList{bench.firstCell(bench.facts.kind.records[1])});
    QCOMPARE(bench.bold(), QStringList{bench.firstCell(bench.facts.kind.records[1])});
    QVERIFY(bench.facts.kind.kind().isDefault(bench.globals(), bench.facts.kind.records[1]));
}

void TestOptionLists::everyRowCanBeSelectedAndDeleted()
{
    ListBench bench(kindOfRow());
    bench.startAll();
    bench.focus(bench.view());
    QTest::keyClick(bench.view(), Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(bench.selectedRows(bench.facts.list).size(), 3);
    bench.pressWhileAsked(bench.facts.remove, bench.facts.kind.keys[2], BoxAnswer::Yes);
    QCOMPARE(bench.lines(), QStringList());
    QCOMPARE(bench.file(), QByteArray(""));
    QVERIFY(!bench.facts.kind.kind().isDefault(bench.globals(), bench.facts.kind.records[0]));
}

void TestOptionLists::clearEmptiesTheList()
{
    ListBench bench(kindOfRow());
    bench.startAll();
    bench.pressWhileAsked(bench.facts.clear, bench.facts.kind.keys[4], BoxAnswer::Yes);
    QCOMPARE(bench.lines(), QStringList());
    QVERIFY(QFileInfo(bench.path()).isFile());
    QCOMPARE(bench.file(), QByteArray(""));
    LoadSettings(bench.globals());
    QVERIFY(!bench.facts.kind.kind().isDefault(bench.globals(), bench.facts.kind.records[0]));
}

QTEST_MAIN(TestOptionLists)
#include "test_optionlists.moc"
