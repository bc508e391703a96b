#include "core/unsavedfiles.h"
#include "quillon/files/safefile.h"
#include "support/testclock.h"

#include <QDir>
#include <QLocale>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>

using namespace Qt::StringLiterals;
using namespace corvane;

class TestUnsavedFiles : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void nothingIsSaidWhileAllIsSaved();
    void aFileThatFailedIsNamedUntilALaterWriteSucceeds();
    void theLatestIsNamedAndTheOthersAreCounted();
    void aFileThatFailsAgainIsTheLatest();
    void theDetailsHavePathReasonAndMomentOfEach();
    void aDeletedFileIsWaitedForNoMore();
    void aDeletedFolderTakesItsFilesAndNoOthers();
    void aFailedFolderTakesNoFile();
    void aNameWithAPlaceHolderIsShownAsItIs();
    void itListensWhileItLives();
};

void TestUnsavedFiles::nothingIsSaidWhileAllIsSaved()
{
    const UnsavedFiles files;
    const QSignalSpy changed(&files, &UnsavedFiles::changed);
    quillon::tellWritten(u"/d/a.dll"_s);
    QCOMPARE(files.count(), 0);
    QVERIFY(files.text().isEmpty());
    QVERIFY(files.details().isEmpty());
    QCOMPARE(changed.count(), 0);
}

void TestUnsavedFiles::aFileThatFailedIsNamedUntilALaterWriteSucceeds()
{
    const UnsavedFiles files;
    const QSignalSpy changed(&files, &UnsavedFiles::changed);
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"senders.dll"_s);
    QVERIFY(QDir().mkpath(path));
    QVERIFY(!quillon::writeWholeFile(path, "x"));
    QCOMPARE(files.text(), u"Not saved: senders.dll (something else is in its place)"_s);
    QCOMPARE(changed.count(), 1);
    QVERIFY(quillon::writeWholeFile(folder.filePath(u"other.dll"_s), "x"));
    QCOMPARE(files.count(), 1);
    QVERIFY(QDir().rmdir(path));
    QVERIFY(quillon::writeWholeFile(path, "x"));
    QVERIFY(files.text().isEmpty());
    QCOMPARE(changed.count(), 2);
    quillon::tellNotWritten(path, ENOSPC);
    QCOMPARE(files.text(), u"Not saved: senders.dll (no space left on the device)"_s);
}

void TestUnsavedFiles::theLatestIsNamedAndTheOthersAreCounted()
{
    const UnsavedFiles files;
    quillon::tellNotWritten(u"/d/a.dll"_s, ENOSPC);
    quillon::tellNotWritten(u"/d/b.dll"_s, EACCES);
    QCOMPARE(files.text(), u"Not saved: b.dll (no permission), and 1 more"_s);
    quillon::tellNotWritten(u"/d/c.dll"_s, EROFS);
    QCOMPARE(files.text(), u"Not saved: c.dll (the device is read-only), and 2 more"_s);
    quillon::tellWritten(u"/d/c.dll"_s);
    QCOMPARE(files.text(), u"Not saved: b.dll (no permission), and 1 more"_s);
    quillon::tellWritten(u"/d/a.dll"_s);
    QCOMPARE(files.text(), u"Not saved: b.dll (no permission)"_s);
}

void TestUnsavedFiles::aFileThatFailsAgainIsTheLatest()
{
    const UnsavedFiles files;
    const QSignalSpy changed(&files, &UnsavedFiles::changed);
    quillon::tellNotWritten(u"/d/a.dll"_s, ENOSPC);
    quillon::tellNotWritten(u"/d/b.dll"_s, ENOSPC);
    quillon::tellNotWritten(u"/d/a.dll"_s, EACCES);
    QCOMPARE(files.count(), 2);
    QCOMPARE(files.text(), u"Not saved: a.dll (no permission), and 1 more"_s);
    QCOMPARE(changed.count(), 3);
}

void TestUnsavedFiles::theDetailsHavePathReasonAndMomentOfEach()
{
    const UnsavedFiles files;
    const auto shown = [](const QDateTime &moment) { return QLocale::system().toString(moment, QLocale::ShortFormat); };
    const QDateTime first(QDate(2026, 11, 21), QTime(14, 5));
    const QDateTime second(QDate(2026, 12, 2), QTime(9, 30));
    TestClock clock(first);
    quillon::tellNotWritten(u"/d/a.dll"_s, ENOSPC);
    clock.present = second;
    quillon::tellNotWritten(u"/e/b.dll"_s, EACCES);
    QCOMPARE(files.details(), u"/e/b.dll (no permission), "_s + shown(second) +
                                  u"\n/d/a.dll (no space left on the device), "_s + shown(first));
}

void TestUnsavedFiles::aDeletedFileIsWaitedForNoMore()
{
    const UnsavedFiles files;
    quillon::tellNotWritten(u"/d/a.dll"_s, ENOSPC);
    quillon::tellDeleted(u"/d/a"_s);
    QCOMPARE(files.count(), 1);
    quillon::tellDeleted(u"/d/a.dll"_s);
    QCOMPARE(files.count(), 0);
}

void TestUnsavedFiles::aDeletedFolderTakesItsFilesAndNoOthers()
{
    const UnsavedFiles files;
    quillon::tellNotWritten(u"/d/signs/a.dll"_s, ENOSPC);
    quillon::tellNotWritten(u"/d/signs2/b.dll"_s, ENOSPC);
    quillon::tellNotWritten(u"/d/signs/deep/c.dll"_s, ENOSPC);
    quillon::tellDeleted(u"/d/signs"_s);
    QCOMPARE(files.text(), u"Not saved: b.dll (no space left on the device)"_s);
}

void TestUnsavedFiles::aFailedFolderTakesNoFile()
{
    const UnsavedFiles files;
    quillon::tellNotWritten(u"/d/signs/a.dll"_s, ENOSPC);
    quillon::tellNotWritten(u"/d/signs"_s, EISDIR);
    QCOMPARE(files.count(), 2);
}

void TestUnsavedFiles::aNameWithAPlaceHolderIsShownAsItIs()
{
    const UnsavedFiles files;
    quillon::tellNotWritten(u"/d/sign_%2%3.dll"_s, ENOSPC);
    QCOMPARE(files.text(), u"Not saved: sign_%2%3.dll (no space left on the device)"_s);
}

void TestUnsavedFiles::itListensWhileItLives()
{
    const UnsavedFiles outer;
    {
        const UnsavedFiles inner;
        quillon::tellNotWritten(u"/d/a.dll"_s, ENOSPC);
        QCOMPARE(inner.count(), 1);
        QCOMPARE(outer.count(), 0);
    }
    quillon::tellNotWritten(u"/d/a.dll"_s, ENOSPC);
    QCOMPARE(outer.count(), 1);
}

QTEST_GUILESS_MAIN(TestUnsavedFiles)
#include "test_unsavedfiles.moc"
