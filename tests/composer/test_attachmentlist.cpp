#include "mainfixture.h"
#include "quillon/fault.h"
#include "support/testopener.h"

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
    auto *filter = main.get<QListWidget>(u"lstFilter"_s);
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
    auto *filter = main.get<QListWidget>(u"lstFilter"_s);
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

QTEST_MAIN(TestAttachmentList)
#include "test_attachmentlist.moc"
