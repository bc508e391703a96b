#include "listbench.h"
#include "records/accountpresets.h"

using namespace Qt::StringLiterals;
using namespace corvane;
using quillon::BoxAnswer;
using Tab = OptionsTab;

class TestOptionKeys : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void altLettersPressTheButtonsOfTheTab_data() { addTabs(); }
    void altLettersPressTheButtonsOfTheTab();
    void altALetsAnAccountBeChosenFromTheMenu();
    void deleteKeyDeletes_data() { addTabs(); }
    void deleteKeyDeletes();
    void keysWorkWhereverTheFocusIs_data() { addTabs(); }
    void keysWorkWhereverTheFocusIs();
    void otherModifiersAreNoKeyOfTheTab_data() { addTabs(); }
    void otherModifiersAreNoKeyOfTheTab();
    void keysOfTheListsDoNothingOnTheSettingsTab();
    void keysThatTheSignaturesDoNotHaveDoNothingThere();
    void signaturesHaveLettersOfTheirOwn();
    void enterAndEscapeDoNothing_data() { addTabs(); }
    void enterAndEscapeDoNothing();

    void doubleClickIsEdit_data() { addTabs(); }
    void doubleClickIsEdit();
    void doubleClickBelowTheRowsIsNothing_data() { addTabs(); }
    void doubleClickBelowTheRowsIsNothing();
    void doubleClickOnASignatureOpensNoDialog();
    void aClickOnAColumnSortsAndAnotherOneReverses_data() { addTabs(); }
    void aClickOnAColumnSortsAndAnotherOneReverses();
    void everyColumnSorts_data() { addTabs(); }
    void everyColumnSorts();
    void aClickOnTheColumnOfSignaturesSortsThem();
    void commandsWorkOnWhatASortedListShows_data() { addTabs(); }
    void commandsWorkOnWhatASortedListShows();
    void aListIsNotSortedBeforeItsColumnIsClicked_data() { addTabs(); }
    void aListIsNotSortedBeforeItsColumnIsClicked();

    void addOfAnAccountOpensItsMenuAndNoDialog();
    void menuOfAccountsIsHiddenAtFirst();
    void presetsFillANewAccount_data();
    void presetsFillANewAccount();
    void presetCannotBeSavedAsItIs();
};

namespace {

void pressAlt(ListBench &bench, Qt::Key key)
{
    QTest::keyClick(bench.form()->focusWidget(), key, Qt::AltModifier);
}

} // namespace

void TestOptionKeys::altLettersPressTheButtonsOfTheTab()
{
    ListBench bench(kindOfRow());
    bench.startAll();
    bench.clickRow(1);
    if (bench.facts.tab != Tab::AccountTab) {
        bench.expectAddDialog();
        pressAlt(bench, Qt::Key_A);
        QCOMPARE(bench.prompts.leftOver(), QStringList());
    }
    bench.expectEditDialog(1);
    pressAlt(bench, Qt::Key_E);
    QCOMPARE(bench.prompts.leftOver(), QStringList());
    bench.expectAddDialog();
    pressAlt(bench, Qt::Key_C);
    QCOMPARE(bench.prompts.leftOver(), QStringList());
    bench.prompts.expectBox(bench.facts.kind.keys[4], 36, BoxAnswer::No);
    pressAlt(bench, Qt::Key_L);
    QCOMPARE(bench.prompts.leftOver(), QStringList());
    pressAlt(bench, Qt::Key_D);
    QCOMPARE(bench.bold(), QStringList{bench.firstCell(bench.facts.kind.records[1])});
}

void TestOptionKeys::altALetsAnAccountBeChosenFromTheMenu()
{
    ListBench bench(u"accounts"_s);
    bench.startAll();
    auto *menu = bench.get<QMenu>(u"mena"_s);
    pressAlt(bench, Qt::Key_A);
    QVERIFY(menu->isVisible());
    menu->close();
}

void TestOptionKeys::deleteKeyDeletes()
{
    ListBench bench(kindOfRow());
    bench.startAll();
    bench.clickRow(2);
    bench.prompts.expectBox(bench.facts.kind.keys[2], 36, BoxAnswer::Yes);
    QTest::keyClick(bench.form()->focusWidget(), Qt::Key_Delete);
    QCOMPARE(bench.file(), octetsOf(bench.facts.kind.records.first(2)));
}

void TestOptionKeys::keysWorkWhereverTheFocusIs()
{
    ListBench bench(kindOfRow());
    bench.startAll();
    for (QWidget *control : {static_cast<QWidget *>(bench.sbt(2)), static_cast<QWidget *>(bench.sst())}) {
        bench.focus(control);
        QVERIFY(control->hasFocus());
        bench.prompts.expectBox(bench.facts.kind.keys[2], 36, BoxAnswer::No);
        QTest::keyClick(control, Qt::Key_Delete);
        bench.prompts.expectBox(bench.facts.kind.keys[4], 36, BoxAnswer::No);
        QTest::keyClick(control, Qt::Key_L, Qt::AltModifier);
        QCOMPARE(bench.prompts.leftOver(), QStringList());
    }
}

void TestOptionKeys::otherModifiersAreNoKeyOfTheTab()
{
    ListBench bench(kindOfRow());
    bench.startAll();
    bench.clickRow(1);
    for (const Qt::Key key : {Qt::Key_A, Qt::Key_E, Qt::Key_C, Qt::Key_L, Qt::Key_D}) {
        QTest::keyClick(bench.view(), key);
        QTest::keyClick(bench.view(), key, Qt::AltModifier | Qt::ShiftModifier);
        QTest::keyClick(bench.view(), key, Qt::AltModifier | Qt::ControlModifier);
    }
    QTest::keyClick(bench.view(), Qt::Key_Delete, Qt::ControlModifier);
    QCOMPARE(bench.prompts.log(), QStringList());
    QCOMPARE(bench.bold(), QStringList{bench.firstCell(bench.facts.kind.records[0])});
    QVERIFY(!bench.get<QMenu>(u"mena"_s)->isVisible());
}

void TestOptionKeys::keysOfTheListsDoNothingOnTheSettingsTab()
{
    ListBench bench(u"proxies"_s);
    bench.startAll();
    bench.sst()->setCurrentIndex(Tab::OtherTab);
    for (const Qt::Key key : {Qt::Key_A, Qt::Key_E, Qt::Key_C, Qt::Key_L, Qt::Key_D, Qt::Key_R, Qt::Key_U, Qt::Key_M}) {
        QTest::keyClick(bench.sst(), key, Qt::AltModifier);
    }
    QTest::keyClick(bench.sst(), Qt::Key_Delete);
    QCOMPARE(bench.prompts.log(), QStringList());
    QCOMPARE(bench.lines(), bench.facts.kind.records);
    QCOMPARE(bench.file(), octetsOf(bench.facts.kind.records));
    QVERIFY(!bench.get<QMenu>(u"mena"_s)->isVisible());
}

void TestOptionKeys::keysThatTheSignaturesDoNotHaveDoNothingThere()
{
    ListBench bench(u"proxies"_s);
    bench.startAll();
    bench.sst()->setCurrentIndex(Tab::SignaturesTab);
    bench.focus(bench.lsv(1));
    QTest::keyClick(bench.lsv(1), Qt::Key_A, Qt::AltModifier);
    QTest::keyClick(bench.lsv(1), Qt::Key_C, Qt::AltModifier);
    QTest::keyClick(bench.lsv(1), Qt::Key_Delete);
    QCOMPARE(bench.prompts.log(), QStringList());
    QCOMPARE(bench.signs(), QByteArray());
}

void TestOptionKeys::signaturesHaveLettersOfTheirOwn()
{
    ListBench bench(u"senders"_s);
    bench.putSignatures("Work\t\r\nHome\t\r\n");
    storeDefaultSignature(bench.globals(), u"Work"_s);
    bench.open(Tab::SignaturesTab);
    bench.click(1, 1);
    bench.prompts.expectBox(u"DEL_SIGN_PROMPT"_s, 36, BoxAnswer::No);
    pressAlt(bench, Qt::Key_E);
    bench.prompts.expectBox(u"CLEAR_SIGN"_s, 36, BoxAnswer::No);
    pressAlt(bench, Qt::Key_L);
    QCOMPARE(bench.prompts.leftOver(), QStringList());
    QCOMPARE(bench.boldRows(1), QStringList{u"Work"_s});
    pressAlt(bench, Qt::Key_U);
    QCOMPARE(bench.boldRows(1), QStringList{u"Home"_s});
    QCOMPARE(bench.stored(u"Signature"_s, u"Default"_s), u"Home"_s);
}

void TestOptionKeys::enterAndEscapeDoNothing()
{
    ListBench bench(kindOfRow());
    bench.startAll();
    bench.clickRow(1);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Escape}) {
        QTest::keyClick(bench.view(), key);
    }
    QVERIFY(bench.isLoaded());
    QCOMPARE(bench.prompts.log(), QStringList());
}

void TestOptionKeys::doubleClickIsEdit()
{
    ListBench bench(kindOfRow());
    bench.startAll();
    bench.clickRow(0);
    bench.clickRow(2, Qt::ControlModifier);
    const QPoint place = bench.view()->visualRect(bench.view()->model()->index(1, 1)).center();
    bench.inDialog([&bench] {
        QCOMPARE(bench.dialog()->windowTitle(), u"Edit %1 - %2"_s.arg(bench.facts.what, bench.facts.editNames[1]));
        QCOMPARE(bench.selectedRows(bench.facts.list), QStringList{bench.firstCell(bench.facts.kind.records[1])});
        bench.enter(bench.facts.entry);
        bench.saveAndClose();
    });
    QTest::mouseClick(bench.view()->viewport(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(bench.view()->viewport(), Qt::LeftButton, {}, place);
    QCOMPARE(bench.prompts.leftOver(), QStringList());
    QCOMPARE(bench.file(), octetsOf({bench.facts.kind.records[0], bench.lines()[1], bench.facts.kind.records[2]}));
    QVERIFY(bench.lines()[1].contains(u"new.example"_s));
}

void TestOptionKeys::doubleClickBelowTheRowsIsNothing()
{
    ListBench bench(kindOfRow());
    bench.startAll();
    const QRect last = bench.view()->visualRect(bench.view()->model()->index(2, 0));
    const QPoint below(20, last.bottom() + last.height());
    QVERIFY(bench.view()->viewport()->rect().contains(below));
    QTest::mouseDClick(bench.view()->viewport(), Qt::LeftButton, {}, below);
    QCOMPARE(bench.prompts.log(), QStringList());
}

void TestOptionKeys::doubleClickOnASignatureOpensNoDialog()
{
    ListBench bench(u"senders"_s);
    bench.putSignatures("Work\t\r\n");
    bench.open(Tab::SignaturesTab);
    QTest::mouseDClick(bench.lsv(1)->viewport(), Qt::LeftButton, {},
                       bench.lsv(1)->visualRect(bench.lsv(1)->model()->index(0, 0)).center());
    QCOMPARE(bench.prompts.log(), QStringList());
}

void TestOptionKeys::aClickOnAColumnSortsAndAnotherOneReverses()
{
    ListBench bench(kindOfRow());
    bench.startAll();
    QStringList sorted = bench.rows(bench.facts.list);
    std::sort(sorted.begin(), sorted.end());
    const QStringList reversed(sorted.crbegin(), sorted.crend());
    const QString standard = bench.firstCell(bench.facts.kind.records[0]);
    for (const QStringList &order : {sorted, reversed, sorted}) {
        bench.clickHeader(0);
        QCOMPARE(bench.rows(bench.facts.list), order);
        QCOMPARE(bench.bold(), QStringList{standard});
        QVERIFY(bench.view()->header()->isSortIndicatorShown());
        QCOMPARE(bench.view()->header()->sortIndicatorOrder() == Qt::AscendingOrder, order == sorted);
    }
    QCOMPARE(bench.file(), octetsOf(bench.facts.kind.records));
}

void TestOptionKeys::everyColumnSorts()
{
    for (int column = 0; column < 3; ++column) {
        ListBench bench(kindOfRow());
        bench.startAll();
        bench.clickHeader(column);
        QStringList texts;
        for (int row = 0; row < 3; ++row) {
            texts.append(bench.view()->model()->index(row, column).data().toString());
        }
        QVERIFY2(std::is_sorted(texts.cbegin(), texts.cend()), qPrintable(texts.join(u' ')));
        QCOMPARE(bench.view()->header()->sortIndicatorSection(), column);
    }
}

void TestOptionKeys::aClickOnTheColumnOfSignaturesSortsThem()
{
    ListBench bench(u"senders"_s);
    bench.putSignatures("Work\t\r\nHome\t\r\nclub\t\r\n");
    bench.open(Tab::SignaturesTab);
    const auto click = [&bench] {
        QHeaderView *header = bench.lsv(1)->header();
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, {20, header->height() / 2});
    };
    click();
    QCOMPARE(bench.rows(1), (QStringList{u"club"_s, u"Home"_s, u"Work"_s}));
    click();
    QCOMPARE(bench.rows(1), (QStringList{u"Work"_s, u"Home"_s, u"club"_s}));
}

void TestOptionKeys::commandsWorkOnWhatASortedListShows()
{
    ListBench bench(kindOfRow());
    bench.startAll();
    bench.clickHeader(0);
    const QStringList shown = bench.lines();
    QVERIFY(shown != bench.facts.kind.records);
    bench.clickRow(0);
    bench.press(bench.facts.makeDefault);
    QCOMPARE(bench.bold(), QStringList{bench.firstCell(shown[0])});
    bench.enterWith(bench.facts.edit, {});
    QCOMPARE(bench.file(), octetsOf(bench.facts.kind.records));
    QCOMPARE(bench.lines(), shown);
    bench.clickRow(0);
    bench.pressWhileAsked(bench.facts.remove, bench.facts.kind.keys[2], BoxAnswer::Yes);
    QCOMPARE(bench.lines(), shown.mid(1));
    QCOMPARE(bench.bold(), QStringList{bench.firstCell(shown[1])});
    QStringList left = bench.facts.kind.records;
    left.removeOne(shown[0]);
    QCOMPARE(bench.file(), octetsOf(left));
}

void TestOptionKeys::aListIsNotSortedBeforeItsColumnIsClicked()
{
    ListBench bench(kindOfRow());
    bench.startAll();
    QCOMPARE(bench.lines(), bench.facts.kind.records);
    QVERIFY(!bench.view()->header()->isSortIndicatorShown());
}

void TestOptionKeys::addOfAnAccountOpensItsMenuAndNoDialog()
{
    ListBench bench(u"accounts"_s);
    bench.start({});
    auto *menu = bench.get<QMenu>(u"mena"_s);
    bench.press(bench.facts.add);
    QVERIFY(menu->isVisible());
    const QAbstractButton *button = bench.button(u"sbtSMTP(0)"_s);
    QCOMPARE(menu->pos(), button->mapToGlobal(QPoint(0, button->height())));
    QCOMPARE(bench.prompts.log(), QStringList());
    QStringList items;
    const QList<QAction *> actions = menu->actions();
    for (const QAction *item : actions) {
        items.append(item->objectName());
    }
    QCOMPARE(items, (QStringList{u"menan"_s, u"menag"_s, u"menah"_s}));
    menu->close();
    QCOMPARE(bench.prompts.log(), QStringList());
}

void TestOptionKeys::menuOfAccountsIsHiddenAtFirst()
{
    ListBench bench(u"accounts"_s);
    bench.start({});
    QVERIFY(!bench.get<QMenu>(u"mena"_s)->isVisible());
}

void TestOptionKeys::presetsFillANewAccount_data()
{
    QTest::addColumn<QString>("item");
    QTest::addColumn<QStringList>("texts");
    QTest::addColumn<int>("security");
    const auto texts = [](const AccountPreset &preset, const QString &port) {
        const QString address = u"Your Account@"_s + QString::fromUtf16(preset.domain);
        return QStringList{QString::fromUtf16(preset.server),
                           port,
                           address,
                           QString(),
                           u"Your Name"_s,
                           address,
                           u"Your Name"_s,
                           address};
    };
    QTest::newRow("empty") << u"menan"_s << QStringList{{}, u"25"_s, {}, {}, {}, {}, {}, {}} << 0;
    QTest::newRow("first service") << u"menag"_s << texts(menagPreset, u"465"_s) << 1;
    QTest::newRow("second service") << u"menah"_s << texts(menahPreset, u"25"_s) << 2;
}

void TestOptionKeys::presetsFillANewAccount()
{
    QFETCH(QString, item);
    QFETCH(QStringList, texts);
    QFETCH(int, security);
    ListBench bench(u"accounts"_s);
    bench.start({});
    bench.inDialog([&] {
        QCOMPARE(bench.dialog()->windowTitle(), u"Add SMTP Account"_s);
        for (int i = 0; i < texts.size(); ++i) {
            QCOMPARE(bench.box(u"txt(%1)"_s.arg(i))->text(), texts[i]);
        }
        for (int i = 0; i < 3; ++i) {
            QCOMPARE(bench.dialog()->findChild<QRadioButton *>(u"opt(%1)"_s.arg(i))->isChecked(), i == security);
        }
        QVERIFY(bench.dialog()->findChild<QCheckBox *>(u"cbx(1)"_s)->isChecked());
        // A preset leaves the password to be entered first.
        QCOMPARE(bench.dialog()->focusWidget()->objectName(), texts[0].isEmpty() ? u"txt(0)"_s : u"txt(3)"_s);
        bench.closeDialog();
    });
    bench.get<QAction>(item)->trigger();
    QCOMPARE(bench.prompts.leftOver(), QStringList());
    QCOMPARE(bench.file(), QByteArray());
}

void TestOptionKeys::presetCannotBeSavedAsItIs()
{
    ListBench bench(u"accounts"_s);
    bench.start({});
    bench.inDialog([&bench] {
        bench.prompts.expectBox(u"VALID_ADDRESS"_s, 64);
        bench.saveAndClose();
        bench.enter({{u"txt(2)"_s, u"dora@"_s + QString::fromUtf16(menagPreset.domain)}});
        bench.saveAndClose();
    });
    bench.get<QAction>(u"menag"_s)->trigger();
    QCOMPARE(bench.lines().size(), 1);
    QVERIFY(bench.lines()[0].startsWith(QString::fromUtf16(menagPreset.server) + u"\t465\tS\tY\tdora@"_s));
}

QTEST_MAIN(TestOptionKeys)
#include "test_optionkeys.moc"
