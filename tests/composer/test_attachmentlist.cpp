#include "mainfixture.h"
#include "quillon/fault.h"
#include "support/testopener.h"

#include <QStorageInfo>

using namespace Qt::StringLiterals;
using namespace corvane;

class TestAttachmentList : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void chosenFilesBecomeRowsAndAChange();
    void fileThatIsListedAddsNoRow();
    void secondFileOfOneNameStaysWithoutAKey();
    void sizesAreRoundedKilobytes();
    void cancelChangesNothingAndLeavesPopUps();
    void completedActionHidesPopUps();
    void folderIsAddedWithItsWholeSize();
    void rootOfADriveIsRefused();
    void folderWithAShortNameIsTaken();
    void removeAndClearAreChanges();
    void openOpensTheSelectedRow();
    void loadedPathsLeaveOutWhatIsGoneAndTheSecondOfOneName();
    void attachmentsReachTheRun();
    void namesAreKeysAndDifferInCase();
    void aKeyThatWasRemovedIsFreeAgain();
    void hiddenFilesCountInAFoldersSize();
    void aLinkToADriveIsRefusedToo();
    void aRowTellsItsPath();
    void pathsThatAreSetTakeThePlaceOfAllOthers();
    void filesThatAreListedAlreadyHidePopUpsToo();

private:
    /// A file of that many octets below the fixture's folder.
    static QString file(const MainFixture &main, const QString &name, int size = 1)
    {
        const QString path = main.tree.path(name);
        QDir().mkpath(QFileInfo(path).path());
        writeFile(path, QByteArray(size, 'x'));
        return path;
    }
    static QStringList rows(const MainFixture &main)
    {
        const auto *list = main.get<QListWidget>(u"lsv(0)"_s);
        QStringList texts;
        for (int i = 0; i < list->count(); ++i) {
            texts.append(list->item(i)->text());
        }
        return texts;
    }
    static QStringList keys(const MainFixture &main)
    {
        const auto *list = main.get<QListWidget>(u"lsv(0)"_s);
        QStringList texts;
        for (int i = 0; i < list->count(); ++i) {
            texts.append(list->item(i)->data(Qt::UserRole + 1).toString());
        }
        return texts;
    }
    static void addFiles(const MainFixture &main, const QStringList &files)
    {
        ExpectedPrompts asked;
        asked.expectFiles(files, u"Select Files"_s);
        main.get<QAbstractButton>(u"sbt(2)"_s)->click();
    }
};

void TestAttachmentList::chosenFilesBecomeRowsAndAChange()
{
    MainFixture main;
    const QString a = file(main, u"a.txt"_s);
    const QString b = file(main, u"b.txt"_s);
    ExpectedPrompts asked;
    asked.expectFiles({a, b}, u"Select Files"_s);
    main.item(u"meniaa"_s)->trigger();
    QCOMPARE(asked.fileRequests().constFirst().Filters.constFirst().Name, u"All Files (*.*)"_s);
    QVERIFY(asked.fileRequests().constFirst().Many);
    QCOMPARE(rows(main), (QStringList{u"a.txt (0 KB)"_s, u"b.txt (0 KB)"_s}));
    QCOMPARE(main.message().attachmentPaths(), (QStringList{a, b}));
    QVERIFY(main.message().pblnChanged);
    QVERIFY(!main.get<QListWidget>(u"lsv(0)"_s)->item(0)->icon().isNull());
}

void TestAttachmentList::fileThatIsListedAddsNoRow()
{
    MainFixture main;
    const QString a = file(main, u"a.txt"_s);
    addFiles(main, {a});
    main.message().pblnChanged = false;
    addFiles(main, {a});
    QCOMPARE(rows(main).size(), 1);
    QVERIFY(!main.message().pblnChanged);
}

void TestAttachmentList::secondFileOfOneNameStaysWithoutAKey()
{
    MainFixture main;
    const QString first = file(main, u"one/a.txt"_s);
    const QString second = file(main, u"two/a.txt"_s);
    const int faults = quillon::faultCount();
    addFiles(main, {first, second});
    QCOMPARE(main.message().attachmentPaths(), (QStringList{first, second}));
    const auto *list = main.get<QListWidget>(u"lsv(0)"_s);
    QCOMPARE(list->item(0)->data(Qt::UserRole + 1).toString(), u"a.txt"_s);
    QCOMPARE(list->item(1)->data(Qt::UserRole + 1).toString(), QString());
    QCOMPARE(quillon::faultCount(), faults + 1);
}

void TestAttachmentList::sizesAreRoundedKilobytes()
{
    MainFixture main;
    addFiles(main,
             {file(main, u"a"_s, 500), file(main, u"b"_s, 1536), file(main, u"c"_s, 512), file(main, u"d"_s, 2560)});
    QCOMPARE(rows(main), (QStringList{u"a (0 KB)"_s, u"b (2 KB)"_s, u"c (0 KB)"_s, u"d (2 KB)"_s}));
}

void TestAttachmentList::cancelChangesNothingAndLeavesPopUps()
{
    MainFixture main;
    auto *filter = main.get<QListView>(u"lstFilter"_s);
    ExpectedPrompts asked;
    asked.expectFiles({}).expectFolder(QString(), u"Select Folder"_s);
    filter->show();
    main.item(u"meniaa"_s)->trigger();
    main.item(u"meniaf"_s)->trigger();
    QVERIFY(filter->isVisible());
    QCOMPARE(rows(main), QStringList());
    QVERIFY(!main.message().pblnChanged);
}

void TestAttachmentList::completedActionHidesPopUps()
{
    MainFixture main;
    auto *filter = main.get<QListView>(u"lstFilter"_s);
    ExpectedPrompts asked;
    asked.expectFiles({file(main, u"a"_s)});
    filter->show();
    main.item(u"meniaa"_s)->trigger();
    QVERIFY(!filter->isVisible());
    filter->show();
    main.item(u"meniac"_s)->trigger();
    QVERIFY(!filter->isVisible());
}

void TestAttachmentList::folderIsAddedWithItsWholeSize()
{
    MainFixture main;
    file(main, u"photos/a"_s, 1024);
    file(main, u"photos/deep/b"_s, 3072);
    ExpectedPrompts asked;
    asked.expectFolder(main.tree.path(u"photos"_s), u"Select Folder"_s);
    main.get<QAbstractButton>(u"sbt(21)"_s)->click();
    QCOMPARE(rows(main), QStringList{u"photos (4 KB)"_s});
    QVERIFY(main.message().pblnChanged);
}

void TestAttachmentList::rootOfADriveIsRefused()
{
    MainFixture main;
    ExpectedPrompts asked;
    asked.expectFolder(u"/"_s).expectBox(u"DRIVE_ATT"_s, quillon::InformationBox);
    main.item(u"meniaf"_s)->trigger();
    QCOMPARE(rows(main), QStringList());
}

void TestAttachmentList::folderWithAShortNameIsTaken()
{
    MainFixture main;
    file(main, u"abc/x"_s);
    ExpectedPrompts asked;
    asked.expectFolder(main.tree.path(u"abc"_s));
    main.item(u"meniaf"_s)->trigger();
    QCOMPARE(rows(main), QStringList{u"abc (0 KB)"_s});
}

void TestAttachmentList::removeAndClearAreChanges()
{
    MainFixture main;
    const QString a = file(main, u"a"_s);
    const QString b = file(main, u"b"_s);
    addFiles(main, {a, b});
    auto *list = main.get<QListWidget>(u"lsv(0)"_s);
    main.message().pblnChanged = false;
    main.item(u"meniar"_s)->trigger(); // nothing is selected
    QVERIFY(!main.message().pblnChanged);
    list->setCurrentRow(0);
    main.get<QAbstractButton>(u"sbt(3)"_s)->click();
    QCOMPARE(main.message().attachmentPaths(), QStringList{b});
    QVERIFY(main.message().pblnChanged);
    main.message().pblnChanged = false;
    main.get<QAbstractButton>(u"sbt(4)"_s)->click();
    QCOMPARE(main.message().attachmentPaths(), QStringList());
    QVERIFY(main.message().pblnChanged);
}

void TestAttachmentList::openOpensTheSelectedRow()
{
    TestOpener opener;
    MainFixture main;
    const QString a = file(main, u"a"_s);
    addFiles(main, {a});
    main.item(u"meniao"_s)->trigger();
    QCOMPARE(opener.opened, QStringList());
    main.get<QListWidget>(u"lsv(0)"_s)->setCurrentRow(0);
    main.get<QAbstractButton>(u"sbt(5)"_s)->click();
    QCOMPARE(opener.opened, QStringList{a});
}

void TestAttachmentList::loadedPathsLeaveOutWhatIsGoneAndTheSecondOfOneName()
{
    MainFixture main;
    const QString first = file(main, u"one/a.txt"_s);
    const QString second = file(main, u"two/a.txt"_s);
    main.message().setAttachmentPaths({main.tree.path(u"gone"_s), first, second});
    QCOMPARE(main.message().attachmentPaths(), QStringList{first});
    QVERIFY(!main.message().pblnChanged);
}

void TestAttachmentList::attachmentsReachTheRun()
{
    MainFixture main;
    file(main, u"photos/x"_s);
    ExpectedPrompts asked;
    const QString a = file(main, u"a"_s);
    asked.expectFiles({a}).expectFolder(main.tree.path(u"photos"_s));
    main.item(u"meniaa"_s)->trigger();
    main.item(u"meniaf"_s)->trigger();
    QCOMPARE(main.message().attachmentPaths(), (QStringList{a, main.tree.path(u"photos"_s)}));
}

void TestAttachmentList::namesAreKeysAndDifferInCase()
{
    MainFixture main;
    const QString small = file(main, u"one/a.txt"_s);
    const QString large = file(main, u"two/A.TXT"_s);
    const QString second = file(main, u"three/a.txt"_s);
    const int faults = quillon::faultCount();
    main.message().setAttachmentPaths({small, large, second, small, large});
    QCOMPARE(main.message().attachmentPaths(), (QStringList{small, large}));
    QCOMPARE(quillon::faultCount(), faults);
    main.message().setAttachmentPaths({small});
    addFiles(main, {large, second, second});
    QCOMPARE(main.message().attachmentPaths(), (QStringList{small, large, second}));
    QCOMPARE(keys(main), (QStringList{u"a.txt"_s, u"A.TXT"_s, QString()}));
    QCOMPARE(quillon::faultCount(), faults + 1);
}

void TestAttachmentList::aKeyThatWasRemovedIsFreeAgain()
{
    MainFixture main;
    const QString first = file(main, u"one/a.txt"_s);
    const QString second = file(main, u"two/a.txt"_s);
    addFiles(main, {first});
    main.get<QListWidget>(u"lsv(0)"_s)->setCurrentRow(0);
    main.item(u"meniar"_s)->trigger();
    const int faults = quillon::faultCount();
    addFiles(main, {second});
    QCOMPARE(keys(main), QStringList{u"a.txt"_s});
    QCOMPARE(quillon::faultCount(), faults);
}

void TestAttachmentList::hiddenFilesCountInAFoldersSize()
{
    MainFixture main;
    file(main, u"photos/.hidden"_s, 1024);
    file(main, u"photos/.deep/b"_s, 2048);
    file(main, u"photos/c"_s, 4096);
    ExpectedPrompts asked;
    asked.expectFolder(main.tree.path(u"photos"_s));
    main.item(u"meniaf"_s)->trigger();
    QCOMPARE(rows(main), QStringList{u"photos (7 KB)"_s});
    QCOMPARE(keys(main), QStringList{u"photos"_s});
}

void TestAttachmentList::aLinkToADriveIsRefusedToo()
{
    MainFixture main;
    const QString link = main.tree.path(u"link"_s);
    QVERIFY(QFile::link(u"/"_s, link));
    auto *filter = main.get<QListView>(u"lstFilter"_s);
    filter->show();
    QStringList drives = {link};
    if (QStorageInfo(u"/proc"_s).rootPath() == u"/proc") {
        drives.append(u"/proc"_s);
    }
    for (const QString &drive : std::as_const(drives)) {
        ExpectedPrompts asked;
        asked.expectFolder(drive).expectBox(u"DRIVE_ATT"_s, quillon::InformationBox);
        main.item(u"meniaf"_s)->trigger();
        QCOMPARE(rows(main), QStringList());
        QVERIFY(!main.message().pblnChanged);
        QVERIFY(filter->isVisible());
    }
}

void TestAttachmentList::aRowTellsItsPath()
{
    MainFixture main;
    const QString path = file(main, u"a (1).txt"_s, 2048);
    addFiles(main, {path});
    const QListWidgetItem *row = main.get<QListWidget>(u"lsv(0)"_s)->item(0);
    QCOMPARE(row->text(), u"a (1).txt (2 KB)"_s);
    QCOMPARE(row->toolTip(), path);
    QCOMPARE(row->data(Qt::UserRole).toString(), path);
    QVERIFY(!row->icon().isNull());
}

void TestAttachmentList::pathsThatAreSetTakeThePlaceOfAllOthers()
{
    MainFixture main;
    const QString a = file(main, u"a"_s);
    const QString b = file(main, u"b"_s);
    main.message().setAttachmentPaths({a});
    main.message().setAttachmentPaths({b, main.tree.path()});
    QCOMPARE(main.message().attachmentPaths(), (QStringList{b, main.tree.path()}));
    main.message().setAttachmentPaths({});
    QCOMPARE(rows(main), QStringList());
    QVERIFY(!main.message().pblnChanged);
}

void TestAttachmentList::filesThatAreListedAlreadyHidePopUpsToo()
{
    MainFixture main;
    const QString a = file(main, u"a"_s);
    addFiles(main, {a});
    auto *filter = main.get<QListView>(u"lstFilter"_s);
    main.message().pblnChanged = false;
    for (const QString &command : {u"meniaa"_s, u"meniaf"_s}) {
        filter->show();
        ExpectedPrompts asked;
        if (command == u"meniaa") {
            asked.expectFiles({a});
        } else {
            asked.expectFolder(a);
        }
        main.item(command)->trigger();
        QVERIFY(!filter->isVisible());
    }
    QVERIFY(!main.message().pblnChanged);
    QCOMPARE(rows(main).size(), 1);
}

QTEST_MAIN(TestAttachmentList)
#include "test_attachmentlist.moc"

#include <QStorageInfo>
