#include "quillon/files/writeoutcome.h"
#include "recordfixture.h"
#include "records/signaturerecords.h"
#include "support/expectedprompts.h"
#include "support/fulldisk.h"

using namespace Qt::StringLiterals;
using namespace corvane;

namespace {

/// The list of a kind whose file, or the settings, lie on a disk that can be filled and locked.
struct Failing : RecordFixture {
    using RecordFixture::RecordFixture;

    /// Puts the data folder on the disk; false where none can be mounted.
    bool onFullDisk()
    {
        disk = std::make_unique<FullDisk>(globals().paths.data);
        if (!disk->mounted()) {
            return false;
        }
        QDir().mkpath(globals().paths.signs);
        quillon::setTemporaryFolder(QString());
        return true;
    }
    /// What a list shows is what the files say, its default as well.
    void verifyListIsTheFile()
    {
        QStringList rows;
        const QStringList lines = globals().lines.ReadLines(path());
        for (const QString &line : lines) {
            rows.append(facts.kind().rowOf(line));
        }
        QCOMPARE(model().lines(), rows);
        const QString before = globals().settings.text(Setting::DefaultAccount);
        LoadSettings(globals());
        QCOMPARE(globals().settings.text(Setting::DefaultAccount), before);
        QList<int> defaults;
        for (int row = 0; row < rows.size(); ++row) {
            if (facts.kind().isDefault(globals(), rows.at(row))) {
                defaults.append(row);
            }
        }
        QCOMPARE(marked(), defaults);
    }

    std::unique_ptr<FullDisk> disk;
};

/// The settings can no longer be written, but be read.
class LockedSettings {
public:
    explicit LockedSettings(RecordFixture &f) : m_path(f.optionsPath()), m_aside(m_path + u".aside"_s)
    {
        QFile::rename(m_path, m_aside);
        QDir().mkpath(m_path);
    }
    ~LockedSettings()
    {
        QDir().rmdir(m_path);
        QFile::rename(m_aside, m_path);
    }
    LockedSettings(const LockedSettings &) = delete;
    LockedSettings &operator=(const LockedSettings &) = delete;

private:
    QString m_path;
    QString m_aside;
};

} // namespace

class TestRecordFailures : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aRecordThatHasNoRoomIsNoRow_data() { addKinds(true); }
    void aRecordThatHasNoRoomIsNoRow();
    void anEditThatHasNoRoomChangesNoRow_data() { addKinds(); }
    void anEditThatHasNoRoomChangesNoRow();
    void aDeletionThatCannotBeWrittenTakesNoRow_data() { addKinds(true); }
    void aDeletionThatCannotBeWrittenTakesNoRow();
    void aClearingThatCannotBeWrittenTakesNoRow_data() { addKinds(true); }
    void aClearingThatCannotBeWrittenTakesNoRow();
    void aDefaultThatCannotBeWrittenStaysWithItsRow_data() { addKinds(true); }
    void aDefaultThatCannotBeWrittenStaysWithItsRow();
    void theFirstRecordIsNoDefaultWhereThatCannotBeWritten_data() { addKinds(true); }
    void theFirstRecordIsNoDefaultWhereThatCannotBeWritten();
    void anEditOfTheDefaultIsTakenBackWhereTheSettingsCannotBeWritten_data() { addKindsOfWholeLines(); }
    void anEditOfTheDefaultIsTakenBackWhereTheSettingsCannotBeWritten();
    void theFirstRowIsNoDefaultAfterADeletionThatCannotStoreIt();
    void aFileThatCannotBeReadLeavesTheListAsItIs();
    void thePresentRowStaysInASortedList();
    void whatAnotherProgramDidMeanwhileIsShown();
    void anAccountThatIsNoDefaultFillsNoMacro();
    void aDeletedSignatureIsWaitedForNoMore();
};

void TestRecordFailures::aRecordThatHasNoRoomIsNoRow()
{
    Failing f(kindOfRow());
    if (!f.onFullDisk()) {
        QSKIP(FullDisk::reason);
    }
    f.loadAll(0);
    f.select({1});
    QVERIFY(f.disk->lock(f.globals().paths.data));
    const QString added = f.facts.records.first().section(u'\t', 0, 0) + u" two"_s + u"\t\t"_s;
    QCOMPARE(f.list->add(added), -1);
    f.verifyListIsTheFile();
    QCOMPARE(f.model().lines().size(), 3);
    QCOMPARE(f.selected(), QList<int>{1});
    QVERIFY(f.disk->unlock());
    QCOMPARE(f.list->add(added), 3);
}

void TestRecordFailures::anEditThatHasNoRoomChangesNoRow()
{
    Failing f(kindOfRow());
    if (!f.onFullDisk()) {
        QSKIP(FullDisk::reason);
    }
    f.loadAll(1);
    f.select({1});
    f.disk->fill();
    QVERIFY(!f.list->change(f.facts.edited));
    f.verifyListIsTheFile();
    QCOMPARE(f.model().lines(), f.facts.records);
    QCOMPARE(f.selected(), QList<int>{1});
    QCOMPARE(f.marked(), QList<int>{1});
    f.disk->makeRoom();
    QVERIFY(f.list->change(f.facts.edited));
    QCOMPARE(f.model().line(1), f.facts.edited);
    f.verifyDefault(f.facts.edited);
}

void TestRecordFailures::aDeletionThatCannotBeWrittenTakesNoRow()
{
    Failing f(kindOfRow());
    if (!f.onFullDisk()) {
        QSKIP(FullDisk::reason);
    }
    f.loadAll(0);
    f.select({0, 1});
    f.disk->fill();
    ExpectedPrompts prompts;
    prompts.expectBox(f.facts.keys[2], quillon::YesNoBox, quillon::BoxAnswer::Yes);
    f.list->deleteSelected();
    f.verifyListIsTheFile();
    QCOMPARE(f.model().rowCount(), 3);
    QCOMPARE(f.marked(), QList<int>{0});
}

void TestRecordFailures::aClearingThatCannotBeWrittenTakesNoRow()
{
    Failing f(kindOfRow());
    if (!f.onFullDisk()) {
        QSKIP(FullDisk::reason);
    }
    f.loadAll(2);
    QVERIFY(f.disk->lock(f.globals().paths.data));
    ExpectedPrompts prompts;
    prompts.expectBox(f.facts.keys[4], quillon::YesNoBox, quillon::BoxAnswer::Yes);
    f.list->clear();
    f.verifyListIsTheFile();
    QCOMPARE(f.model().rowCount(), 3);
    QCOMPARE(f.marked(), QList<int>{2});
}

void TestRecordFailures::aDefaultThatCannotBeWrittenStaysWithItsRow()
{
    Failing f(kindOfRow());
    f.loadAll(0);
    f.select({2});
    {
        const LockedSettings locked(f);
        f.list->makeDefault();
    }
    QCOMPARE(f.marked(), QList<int>{0});
    f.verifyDefault(f.facts.kind().rowOf(f.facts.records[0]));
    f.verifyListIsTheFile();
    f.list->makeDefault();
    QCOMPARE(f.marked(), QList<int>{2});
}

void TestRecordFailures::theFirstRecordIsNoDefaultWhereThatCannotBeWritten()
{
    Failing f(kindOfRow());
    f.load({});
    {
        const LockedSettings locked(f);
        QCOMPARE(f.list->add(f.facts.records[0].section(u'\t', 0, 0) + u"\t"_s), 0);
    }
    QVERIFY(f.marked().isEmpty());
    f.verifyListIsTheFile();
}

void TestRecordFailures::anEditOfTheDefaultIsTakenBackWhereTheSettingsCannotBeWritten()
{
    Failing f(kindOfRow());
    f.loadAll(1);
    f.select({1});
    {
        const LockedSettings locked(f);
        QVERIFY(!f.list->change(f.facts.edited));
    }
    QCOMPARE(f.file(), octetsOf(f.facts.records));
    QCOMPARE(f.marked(), QList<int>{1});
    f.verifyListIsTheFile();
}

void TestRecordFailures::theFirstRowIsNoDefaultAfterADeletionThatCannotStoreIt()
{
    Failing f(u"accounts"_s);
    f.loadAll(2);
    f.select({2});
    ExpectedPrompts prompts;
    prompts.expectBox(f.facts.keys[2], quillon::YesNoBox, quillon::BoxAnswer::Yes);
    {
        const LockedSettings locked(f);
        f.list->deleteSelected();
    }
    QCOMPARE(f.model().rowCount(), 2);
    QVERIFY(f.marked().isEmpty());
}

void TestRecordFailures::aFileThatCannotBeReadLeavesTheListAsItIs()
{
    Failing f(u"senders"_s);
    f.loadAll(0);
    QVERIFY(QFile::remove(f.path()));
    QVERIFY(QDir().mkpath(f.path()));
    QCOMPARE(f.list->add(u"New\tnew@one.example\t"_s), -1);
    QCOMPARE(f.model().lines(), f.facts.records);
    QCOMPARE(f.marked(), QList<int>{0});
}

void TestRecordFailures::thePresentRowStaysInASortedList()
{
    Failing f(u"senders"_s);
    if (!f.onFullDisk()) {
        QSKIP(FullDisk::reason);
    }
    f.loadAll(0);
    f.model().sort(0, Qt::AscendingOrder);
    f.select({2});
    const QString zoe = f.list->presentLine();
    f.disk->fill();
    QVERIFY(!f.list->change(u"Aaa\tzoe@one.example\t"_s + QString(5000, u'x')));
    QCOMPARE(f.column(0), (QStringList{u"Ann"_s, u"Mia"_s, u"Zoe"_s}));
    QCOMPARE(f.list->presentLine(), zoe);
    QCOMPARE(f.selected(), QList<int>{2});
}

void TestRecordFailures::whatAnotherProgramDidMeanwhileIsShown()
{
    Failing f(u"senders"_s);
    if (!f.onFullDisk()) {
        QSKIP(FullDisk::reason);
    }
    f.loadAll(0);
    f.select({0});
    writeFile(f.path(), octetsOf(f.facts.records.mid(1)));
    QVERIFY(f.disk->lock(f.globals().paths.data));
    QCOMPARE(f.list->add(u"New\tnew@one.example\t"_s), -1);
    QCOMPARE(f.model().lines(), f.facts.records.mid(1));
    QCOMPARE(f.list->present(), -1); // its record is gone
}

void TestRecordFailures::anAccountThatIsNoDefaultFillsNoMacro()
{
    Failing f(u"accounts"_s);
    f.loadAll(0);
    f.select({1});
    writeFile(f.globals().paths.macrosFile, "{My Full Name}\t \tMy Information\tU\r\n");
    {
        const LockedSettings locked(f);
        f.list->makeDefault();
    }
    QCOMPARE(contentOf(f.globals().paths.macrosFile), QByteArray("{My Full Name}\t \tMy Information\tU\r\n"));
}

void TestRecordFailures::aDeletedSignatureIsWaitedForNoMore()
{
    TemporaryTree tree;
    tree.prepare();
    QStringList told;
    quillon::WriteListener before = quillon::setWriteListener([&](const QString &path, const QString &reason) {
        told.append(QFileInfo(path).fileName() + (reason.isEmpty() ? u" ok"_s : u" failed"_s));
    });
    writeFile(tree.globals.paths.signsFile, "a\t\r\nb\t\r\nc\t\r\n");
    const auto save = [&](SignatureChange change, const QString &name, const QString &other) {
        told.clear();
        SaveSignatureRecord(tree.globals, change, name, other, {}, {});
        return told;
    };
    QVERIFY(save(SignatureChange::Delete, u"a"_s, {}).contains(u"sign_a.dll ok"_s));
    QVERIFY(save(SignatureChange::Rename, u"b"_s, u"d"_s).contains(u"sign_b.dll ok"_s));
    QVERIFY(save(SignatureChange::Clear, {}, {}).contains(u"signs ok"_s));
    quillon::setWriteListener(std::move(before));
}

QTEST_GUILESS_MAIN(TestRecordFailures)
#include "test_recordfailures.moc"
