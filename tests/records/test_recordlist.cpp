#include "recordfixture.h"
#include "support/expectedprompts.h"

using namespace Qt::StringLiterals;
using namespace corvane;

class TestRecordList : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void addPutsTheRecordAtTheEnd_data() { addKinds(); }
    void addPutsTheRecordAtTheEnd();
    void theFirstRecordBecomesTheDefault_data() { addKinds(); }
    void theFirstRecordBecomesTheDefault();
    void aSecondRecordBecomesNoDefaultWhereThereIsNone_data() { addKinds(); }
    void aSecondRecordBecomesNoDefaultWhereThereIsNone();

    void editAndCopyOfAnEmptyListAskForARecord_data() { addKinds(); }
    void editAndCopyOfAnEmptyListAskForARecord();
    void editAndCopySelectThePresentRowAlone_data() { addKinds(); }
    void editAndCopySelectThePresentRowAlone();
    void editKeepsTheRowAndItsLinesPlace_data() { addKinds(); }
    void editKeepsTheRowAndItsLinesPlace();
    void editKeepsTheRowOfASortedList_data() { addKinds(); }
    void editKeepsTheRowOfASortedList();
    void anotherEditReplacesWhatTheFirstOneMade_data() { addKinds(); }
    void anotherEditReplacesWhatTheFirstOneMade();
    void editOfTheDefaultStoresItsNewLineInTheSameStep_data() { addKinds(); }
    void editOfTheDefaultStoresItsNewLineInTheSameStep();
    void editedRecordIsDefaultByItsMarkNotByWhatTheSettingsHold();

    void defaultButtonMarksThePresentRowAlone_data() { addKinds(true); }
    void defaultButtonMarksThePresentRowAlone();
    void defaultButtonOnTheDefaultWritesNothing_data() { addKinds(true); }
    void defaultButtonOnTheDefaultWritesNothing();
    void defaultButtonWithoutASelectedRowDoesNothing_data() { addKinds(true); }
    void defaultButtonWithoutASelectedRowDoesNothing();
    void defaultButtonTakesTheFirstSelectedRowIfThePresentOneIsNot_data() { addKinds(true); }
    void defaultButtonTakesTheFirstSelectedRowIfThePresentOneIsNot();
    void defaultButtonOfAnEmptyListDoesNothing_data() { addKinds(true); }
    void defaultButtonOfAnEmptyListDoesNothing();

    void accountsAreTakenByTheirAddressInAnyCase();
    void proxiesAreTakenByAddressPortAndUser_data();
    void proxiesAreTakenByAddressPortAndUser();
    void sendersAreTakenByNameAndAddress_data();
    void sendersAreTakenByNameAndAddress();
    void theRecordUnderEditIsNotTaken_data() { addKinds(); }
    void theRecordUnderEditIsNotTaken();

    void theFirstAccountFillsTheMacros();
    void anAccountMadeDefaultFillsTheMacros();
    void anEditedDefaultAccountFillsNoMacro();
    void anAccountsLineWithoutASenderFillsNoMacro();
    void otherKindsFillNoMacro_data();
    void otherKindsFillNoMacro();
};

namespace {

/// Where the macros of the user's own data have no text yet.
const QByteArray emptyMacros = "{My First Name}\t\t/MIS\r\n{My Full Name}\t\t/MIS\r\n{My Email Address}\t\t/MIS\r\n";

QString macroText(RecordFixture &f, const QString &macro)
{
    return f.globals().lines.FindLineByKey(f.globals().paths.macrosFile, macro, -1).section(u'\t', 1, 1);
}

} // namespace

void TestRecordList::addPutsTheRecordAtTheEnd()
{
    RecordFixture f(kindOfRow());
    f.setDefault(f.facts.records[0]);
    f.load(f.facts.records.first(2));
    const QByteArray options = f.options();
    QCOMPARE(f.list->add(f.facts.records[2]), 2);
    QCOMPARE(f.selected(), QList<int>{0});
    QCOMPARE(f.file(), octetsOf(f.facts.records));
    QCOMPARE(f.model().lines(), f.facts.records);
    QCOMPARE(f.marked(), QList<int>{0});
    QCOMPARE(f.options(), options);
}

void TestRecordList::theFirstRecordBecomesTheDefault()
{
    RecordFixture f(kindOfRow());
    f.load({});
    QCOMPARE(f.list->add(f.facts.records[1]), 0);
    QCOMPARE(f.list->present(), 0);
    QCOMPARE(f.selected(), QList<int>{0});
    QCOMPARE(f.file(), octetsOf({f.facts.records[1]}));
    QCOMPARE(f.marked(), QList<int>{0});
    f.verifyDefault(f.facts.records[1]);
}

void TestRecordList::aSecondRecordBecomesNoDefaultWhereThereIsNone()
{
    RecordFixture f(kindOfRow());
    f.load({f.facts.records[0]});
    f.list->add(f.facts.records[1]);
    QCOMPARE(f.marked(), QList<int>());
    f.verifyDefault({});
}

void TestRecordList::editAndCopyOfAnEmptyListAskForARecord()
{
    RecordFixture f(kindOfRow());
    f.load({});
    ExpectedPrompts prompts;
    prompts.expectBox(f.facts.keys[0], 64);
    QVERIFY(!f.list->toEdit());
    prompts.expectBox(f.facts.keys[1], 64);
    QVERIFY(!f.list->toCopy());
}

void TestRecordList::editAndCopySelectThePresentRowAlone()
{
    RecordFixture f(kindOfRow());
    f.loadAll(0);
    f.select({0, 2, 1});
    QCOMPARE(f.list->toEdit(), f.facts.records[1]);
    QCOMPARE(f.selected(), QList<int>{1});
    f.select({0, 1, 2});
    QCOMPARE(f.list->toCopy(), f.facts.records[2]);
    QCOMPARE(f.selected(), QList<int>{2});
}

void TestRecordList::editKeepsTheRowAndItsLinesPlace()
{
    RecordFixture f(kindOfRow());
    f.loadAll(0);
    const QByteArray options = f.options();
    f.list->select(1);
    f.list->change(f.facts.edited);
    const QStringList after = {f.facts.records[0], f.facts.edited, f.facts.records[2]};
    QCOMPARE(f.file(), octetsOf(after));
    QCOMPARE(f.model().lines(), after);
    QCOMPARE(f.marked(), QList<int>{0});
    QCOMPARE(f.selected(), QList<int>{1});
    QCOMPARE(f.options(), options);
}

void TestRecordList::editKeepsTheRowOfASortedList()
{
    RecordFixture f(kindOfRow());
    f.loadAll(0);
    f.model().sort(0, Qt::AscendingOrder);
    QCOMPARE(f.model().line(0), f.facts.records[1]);
    f.list->select(0);
    const QString last = f.facts.kind == senderKind ? u"zz\tzz@one.example\t"_s : u"zz\tzz\tzz\tN\t\t\tzz"_s;
    f.list->change(last);
    QCOMPARE(f.model().line(0), last);
    QCOMPARE(f.selected(), QList<int>{0});
    QCOMPARE(f.file(), octetsOf({f.facts.records[0], last, f.facts.records[2]}));
}

void TestRecordList::anotherEditReplacesWhatTheFirstOneMade()
{
    RecordFixture f(kindOfRow());
    f.load(f.facts.records.first(2));
    f.list->select(1);
    f.list->change(f.facts.edited);
    f.list->change(f.facts.records[2]);
    QCOMPARE(f.file(), octetsOf({f.facts.records[0], f.facts.records[2]}));
    QCOMPARE(f.model().lines(), (QStringList{f.facts.records[0], f.facts.records[2]}));
}

void TestRecordList::editOfTheDefaultStoresItsNewLineInTheSameStep()
{
    RecordFixture f(kindOfRow());
    f.loadAll(1);
    f.list->select(1);
    f.list->change(f.facts.edited);
    QCOMPARE(f.marked(), QList<int>{1});
    f.verifyDefault(f.facts.edited);
    f.list->load();
    QCOMPARE(f.marked(), QList<int>{1});
}

void TestRecordList::editedRecordIsDefaultByItsMarkNotByWhatTheSettingsHold()
{
    // Another of the program's windows cannot have changed the default meanwhile, but its file may have been edited.
    RecordFixture f(accountFacts());
    f.loadAll(1);
    f.setDefault(f.facts.records[0]);
    f.list->select(0);
    f.list->change(u"a\t25"_s);
    f.verifyDefault(f.facts.records[0]);
    f.list->select(1);
    f.list->change(f.facts.edited);
    f.verifyDefault(f.facts.edited);
}

void TestRecordList::defaultButtonMarksThePresentRowAlone()
{
    RecordFixture f(kindOfRow());
    f.loadAll(0);
    const QByteArray file = f.file();
    f.list->select(2);
    f.list->makeDefault();
    QCOMPARE(f.marked(), QList<int>{2});
    f.verifyDefault(f.facts.records[2]);
    QCOMPARE(f.file(), file);
}

void TestRecordList::defaultButtonOnTheDefaultWritesNothing()
{
    RecordFixture f(kindOfRow());
    f.loadAll(2);
    f.list->select(2);
    const Rewrites rewrites(f.optionsPath());
    f.list->makeDefault();
    QCOMPARE(rewrites.count(), 0);
    f.list->select(1);
    f.list->makeDefault();
    QCOMPARE(rewrites.count(), 1);
}

void TestRecordList::defaultButtonWithoutASelectedRowDoesNothing()
{
    RecordFixture f(kindOfRow());
    f.loadAll(0);
    f.select({2});
    f.list->selection().clearSelection(); // row 2 stays the present one
    f.list->makeDefault();
    QCOMPARE(f.marked(), QList<int>{0});
    f.verifyDefault(f.facts.records[0]);
}

void TestRecordList::defaultButtonTakesTheFirstSelectedRowIfThePresentOneIsNot()
{
    RecordFixture f(kindOfRow());
    f.loadAll(0);
    f.select({2, 1, 0});
    f.list->selection().select(f.model().index(0, 0), QItemSelectionModel::Deselect | QItemSelectionModel::Rows);
    QCOMPARE(f.list->present(), 0);
    f.list->makeDefault();
    QCOMPARE(f.marked(), QList<int>{1});
    f.verifyDefault(f.facts.records[1]);
}

void TestRecordList::defaultButtonOfAnEmptyListDoesNothing()
{
    RecordFixture f(kindOfRow());
    f.load({});
    f.setDefault(f.facts.records[0]);
    f.list->makeDefault();
    f.verifyDefault(f.facts.records[0]);
}

void TestRecordList::accountsAreTakenByTheirAddressInAnyCase()
{
    RecordFixture f(accountFacts());
    f.load(f.facts.records);
    QVERIFY(f.list->taken(u"other\t1\tS\tN\t\t\t\tBOB@Two.example\t\t\t/SAEND"_s, false));
    QVERIFY(!f.list->taken(QString(f.facts.records[1]).replace(u"bob@two"_s, u"bob2@two"_s), false));
}

void TestRecordList::proxiesAreTakenByAddressPortAndUser_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<bool>("taken");
    QTest::newRow("same") << u"Socks5\tzeta.example\t1080\tN\tann\tother\t/PSEND"_s << true;
    QTest::newRow("address in another case") << u"Socks5\tZETA.example\t1080\tY\tann\t\t/PSEND"_s << true;
    QTest::newRow("user in another case") << u"Socks5\tzeta.example\t1080\tY\tANN\t\t/PSEND"_s << true;
    QTest::newRow("another user") << u"Socks5\tzeta.example\t1080\tY\tbob\t\t/PSEND"_s << false;
    QTest::newRow("another address") << u"Socks5\tzeta2.example\t1080\tY\tann\t\t/PSEND"_s << false;
    QTest::newRow("another port") << u"Socks5\tzeta.example\t1081\tY\tann\t\t/PSEND"_s << false;
    QTest::newRow("port written otherwise") << u"Socks5\tzeta.example\t01080\tY\tann\t\t/PSEND"_s << false;
    QTest::newRow("port in the same case") << u"Socks5\tmid.example\t90a\tY\tcy\t\t/PSEND"_s << true;
    QTest::newRow("port in another case") << u"Socks5\tmid.example\t90A\tY\tcy\t\t/PSEND"_s << false;
}

void TestRecordList::proxiesAreTakenByAddressPortAndUser()
{
    QFETCH(QString, line);
    RecordFixture f(proxyFacts());
    f.load({f.facts.records[0], u"Socks5\tmid.example\t90a\tY\tcy\t\t/PSEND"_s});
    QTEST(f.list->taken(line, false), "taken");
}

void TestRecordList::sendersAreTakenByNameAndAddress_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<bool>("taken");
    QTest::newRow("same") << u"Ann\tann@two.example\tanother remark"_s << true;
    QTest::newRow("address in another case") << u"Ann\tAnn@Two.example\t"_s << true;
    QTest::newRow("one address under two names") << u"Anna\tann@two.example\t"_s << false;
    QTest::newRow("name in another case") << u"ann\tann@two.example\t"_s << false;
    QTest::newRow("one name, another address") << u"Ann\tann@three.example\t"_s << false;
    QTest::newRow("second row of a name") << u"Ann\tann@four.example\t"_s << true;
}

void TestRecordList::sendersAreTakenByNameAndAddress()
{
    QFETCH(QString, line);
    RecordFixture f(senderFacts());
    f.load(f.facts.records + QStringList{u"Ann\tann@four.example\t"_s});
    QTEST(f.list->taken(line, false), "taken");
}

void TestRecordList::theRecordUnderEditIsNotTaken()
{
    RecordFixture f(kindOfRow());
    f.load(f.facts.records);
    f.list->select(1);
    QVERIFY(!f.list->taken(f.facts.records[1], true));
    QVERIFY(f.list->taken(f.facts.records[1], false));
    QVERIFY(f.list->taken(f.facts.records[2], true));
}

void TestRecordList::theFirstAccountFillsTheMacros()
{
    RecordFixture f(accountFacts());
    f.load({});
    writeFile(f.globals().paths.macrosFile, emptyMacros);
    f.list->add(f.facts.records[0]);
    QCOMPARE(macroText(f, u"{My First Name}"_s), u"Ann"_s);
    QCOMPARE(macroText(f, u"{My Full Name}"_s), u"Ann Lee"_s);
    QCOMPARE(macroText(f, u"{My Email Address}"_s), u"zann@one.example"_s);
    // What is filled stays when there is another account or another default.
    f.list->add(f.facts.records[1]);
    f.list->select(1);
    f.list->makeDefault();
    QCOMPARE(macroText(f, u"{My Full Name}"_s), u"Ann Lee"_s);
}

void TestRecordList::anAccountMadeDefaultFillsTheMacros()
{
    RecordFixture f(accountFacts());
    f.loadAll(0);
    writeFile(f.globals().paths.macrosFile, emptyMacros);
    f.list->select(1);
    f.list->makeDefault();
    QCOMPARE(macroText(f, u"{My Email Address}"_s), u"bob@two.example"_s);
}

void TestRecordList::anEditedDefaultAccountFillsNoMacro()
{
    RecordFixture f(accountFacts());
    f.loadAll(1);
    writeFile(f.globals().paths.macrosFile, emptyMacros);
    f.list->select(1);
    f.list->change(f.facts.edited);
    QCOMPARE(contentOf(f.globals().paths.macrosFile), emptyMacros);
}

void TestRecordList::anAccountsLineWithoutASenderFillsNoMacro()
{
    RecordFixture f(accountFacts());
    f.load({});
    writeFile(f.globals().paths.macrosFile, emptyMacros);
    f.list->add(u"smtp.x.example\t25\tN\tN\t\t\tAnn"_s);
    QCOMPARE(f.marked(), QList<int>{0});
    QCOMPARE(contentOf(f.globals().paths.macrosFile), emptyMacros);
    // The sender's address as the last field is enough.
    f.list->select(f.list->add(u"smtp.x.example\t25\tN\tN\t\t\tAnn\tann@x.example"_s));
    f.list->makeDefault();
    QCOMPARE(macroText(f, u"{My Email Address}"_s), u"ann@x.example"_s);
}

void TestRecordList::otherKindsFillNoMacro_data()
{
    QTest::addColumn<QString>("kind");
    QTest::newRow("proxies") << u"proxies"_s;
    QTest::newRow("senders") << u"senders"_s;
}

void TestRecordList::otherKindsFillNoMacro()
{
    RecordFixture f(kindOfRow());
    f.globals().settings.set(Setting::DefaultAccount, accountFacts().records[0]); // they would be filled from it
    f.load({});
    writeFile(f.globals().paths.macrosFile, emptyMacros);
    f.list->add(f.facts.records[0]);
    f.list->add(f.facts.records[1]);
    f.list->select(1);
    f.list->makeDefault();
    QCOMPARE(f.marked(), QList<int>{1});
    QCOMPARE(contentOf(f.globals().paths.macrosFile), emptyMacros);
}

QTEST_GUILESS_MAIN(TestRecordList)
#include "test_recordlist.moc"
