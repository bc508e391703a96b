#include "recordfixture.h"

using namespace Qt::StringLiterals;
using namespace corvane;

class TestRecordStore : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void editOfAnotherThanTheDefaultReplacesItsLineOnly_data() { addKinds(); }
    void editOfAnotherThanTheDefaultReplacesItsLineOnly();
    void editOfTheDefaultReplacesItsLineAndTheDefault_data() { addKinds(); }
    void editOfTheDefaultReplacesItsLineAndTheDefault();
    void anyModeButDeleteEdits_data() { addKinds(); }
    void editReplacesTheFirstOfEqualLines_data() { addKinds(); }
    void editReplacesTheFirstOfEqualLines();
    void editOfALineThatIsGoneWritesNothing_data() { addKinds(); }
    void editOfALineThatIsGoneWritesNothing();
    void editOfTheDefaultStoresItEvenIfItsLineIsGone_data() { addKinds(); }
    void editOfTheDefaultStoresItEvenIfItsLineIsGone();
    void deleteTakesAllKeysWithOneRewrite_data() { addKinds(); }
    void deleteTakesAllKeysWithOneRewrite();
    void deleteLeavesTheSettingsAlone_data() { addKinds(); }
    void deleteLeavesTheSettingsAlone();
    void accountAndProxyAreDeletedByTheirWholeLine_data() { addKindsOfWholeLines(); }
    void accountAndProxyAreDeletedByTheirWholeLine();
    void senderIsDeletedByItsAddress();
    void changedFilesAreForTheirOwnerOnly_data() { addKinds(); }
    void changedFilesAreForTheirOwnerOnly();

    void editedDefaultAccountMeetsTheSectionOfTheOtherSpelling();
    void editedDefaultAccountMakesTheSectionWhereThereIsNone();
    void chosenDefaultMeetsTheSectionThatAnEditMade();
    void bothFieldsOfTheDefaultSenderAreStoredAtOnce();
    void emptyLineStandsForNoDefault_data() { addKinds(true); }
    void emptyLineStandsForNoDefault();
    void otherSettingsStayWhenADefaultIsStored_data() { addKinds(true); }
    void otherSettingsStayWhenADefaultIsStored();
};

namespace {

/// A fixture whose file holds the three records, the first of which is the default.
class Store : public RecordFixture {
public:
    explicit Store(const QString &kind) : RecordFixture(kind)
    {
        setDefault(facts.records[0]);
        writeFile(path(), octetsOf(facts.records));
    }
    void edit(RecordChange change, const QString &oldLine, const QString &newLine)
    {
        facts.kind().save(globals(), change, {}, {oldLine, newLine});
    }
    void remove(const QStringList &keys) { facts.kind().save(globals(), RecordChange::Delete, keys, {}); }
};

} // namespace

void TestRecordStore::editOfAnotherThanTheDefaultReplacesItsLineOnly()
{
    Store f(kindOfRow());
    const Rewrites file(f.path());
    const Rewrites options(f.optionsPath());
    f.edit(RecordChange::Edit, f.facts.records[1], f.facts.edited);
    QCOMPARE(f.file(), octetsOf({f.facts.records[0], f.facts.edited, f.facts.records[2]}));
    QCOMPARE(file.count(), 1);
    QCOMPARE(options.count(), 0);
    f.verifyDefault(f.facts.records[0]);
}

void TestRecordStore::editOfTheDefaultReplacesItsLineAndTheDefault()
{
    Store f(kindOfRow());
    const Rewrites options(f.optionsPath());
    f.edit(RecordChange::EditDefault, f.facts.records[0], f.facts.edited);
    QCOMPARE(f.file(), octetsOf({f.facts.edited, f.facts.records[1], f.facts.records[2]}));
    QCOMPARE(options.count(), 1);
    f.verifyDefault(f.facts.edited);
}

void TestRecordStore::editReplacesTheFirstOfEqualLines()
{
    Store f(kindOfRow());
    const QString twice = f.facts.records[1];
    writeFile(f.path(), octetsOf({f.facts.records[0], twice, twice}));
    f.edit(RecordChange::Edit, twice, f.facts.edited);
    QCOMPARE(f.file(), octetsOf({f.facts.records[0], f.facts.edited, twice}));
}

void TestRecordStore::editOfALineThatIsGoneWritesNothing()
{
    Store f(kindOfRow());
    const Rewrites file(f.path());
    f.edit(RecordChange::Edit, f.facts.records[1].toUpper(), f.facts.edited);
    QCOMPARE(f.file(), octetsOf(f.facts.records));
    QCOMPARE(file.count(), 0);
}

void TestRecordStore::editOfTheDefaultStoresItEvenIfItsLineIsGone()
{
    Store f(kindOfRow());
    writeFile(f.path(), octetsOf({f.facts.records[2]}));
    f.edit(RecordChange::EditDefault, f.facts.records[0], f.facts.edited);
    QCOMPARE(f.file(), octetsOf({f.facts.records[2]}));
    f.verifyDefault(f.facts.edited);
}

void TestRecordStore::deleteTakesAllKeysWithOneRewrite()
{
    Store f(kindOfRow());
    const Rewrites file(f.path());
    f.remove({f.facts.kind().key(f.facts.records[2]), f.facts.kind().key(f.facts.records[0])});
    QCOMPARE(f.file(), octetsOf({f.facts.records[1]}));
    QCOMPARE(file.count(), 1);
    f.remove({u"nothing like it"_s});
    QCOMPARE(file.count(), 0);
}

void TestRecordStore::deleteLeavesTheSettingsAlone()
{
    Store f(kindOfRow());
    const Rewrites options(f.optionsPath());
    f.remove({f.facts.kind().key(f.facts.records[0])});
    QCOMPARE(f.file(), octetsOf({f.facts.records[1], f.facts.records[2]}));
    QCOMPARE(options.count(), 0);
    f.verifyDefault(f.facts.records[0]);
}

void TestRecordStore::accountAndProxyAreDeletedByTheirWholeLine()
{
    Store f(kindOfRow());
    const QString line = f.facts.records[0];
    f.remove({line.toUpper(), line + u'\t', line.section(u'\t', 0, 1), u"ann"_s});
    QCOMPARE(f.file(), octetsOf(f.facts.records));
    f.remove({line});
    QCOMPARE(f.file(), octetsOf(f.facts.records.mid(1)));
}

void TestRecordStore::senderIsDeletedByItsAddress()
{
    Store f(u"senders"_s);
    const QStringList lines = {u"Ann\ta@x.example\t"_s, u"a@x.example\tb@x.example\ta@x.example"_s, u"a@x.example"_s,
                               u"Anna\ta@x.example"_s};
    writeFile(f.path(), octetsOf(lines));
    f.remove({u"a@x.example"_s});
    QCOMPARE(f.file(), octetsOf({lines[1], lines[2]}));
}

void TestRecordStore::changedFilesAreForTheirOwnerOnly()
{
    Store f(kindOfRow());
    QVERIFY(QFile::remove(f.path()));
    f.facts.kind().append(f.globals(), f.facts.records[1]);
    const auto mode = [&] { return QFileInfo(f.path()).permissions() & QFile::Permissions(0x0fff); };
    const QFile::Permissions ownersOnly = QFile::ReadUser | QFile::WriteUser;
    QCOMPARE(mode() & ~(QFile::ReadOwner | QFile::WriteOwner), ownersOnly);
    f.edit(RecordChange::Edit, f.facts.records[1], f.facts.edited);
    QCOMPARE(mode() & ~(QFile::ReadOwner | QFile::WriteOwner), ownersOnly);
    f.facts.kind().clear(f.globals());
    QCOMPARE(mode() & ~(QFile::ReadOwner | QFile::WriteOwner), ownersOnly);
}

void TestRecordStore::editedDefaultAccountMeetsTheSectionOfTheOtherSpelling()
{
    Store f(u"accounts"_s);
    QVERIFY(f.options().contains("[SMTP Account]\r\nDefault=smtp.ann.example\t"));
    f.edit(RecordChange::EditDefault, f.facts.records[0], f.facts.edited);
    QVERIFY(f.options().contains("[SMTP Account]\r\nDefault=" + f.facts.edited.toUtf8() + "\r\n"));
    QCOMPARE(f.options().toLower().count("[smtp account]"), 1);
}

void TestRecordStore::editedDefaultAccountMakesTheSectionWhereThereIsNone()
{
    Store f(u"accounts"_s);
    writeFile(f.optionsPath(), "[Other]\r\nInterval=26\r\n");
    f.edit(RecordChange::EditDefault, f.facts.records[0], f.facts.edited);
    QVERIFY2(f.options().contains("[SMTP account]\r\nDefault=" + f.facts.edited.toUtf8()), f.options().constData());
    LoadSettings(f.globals());
    QCOMPARE(f.globals().settings.text(Setting::DefaultAccount), f.facts.edited);
}

void TestRecordStore::chosenDefaultMeetsTheSectionThatAnEditMade()
{
    Store f(u"accounts"_s);
    writeFile(f.optionsPath(), "[SMTP account]\r\nDefault=old\r\n");
    storeDefaultAccount(f.globals(), f.facts.records[2]);
    QCOMPARE(f.options(), "[SMTP account]\r\nDefault=" + f.facts.records[2].toUtf8() + "\r\n");
}

void TestRecordStore::bothFieldsOfTheDefaultSenderAreStoredAtOnce()
{
    Store f(u"senders"_s);
    const Rewrites options(f.optionsPath());
    storeDefaultSender(f.globals(), u"Bob\tbob@x.example\tremark"_s);
    QCOMPARE(options.count(), 1);
    f.verifyDefault(u"Bob\tbob@x.example"_s);
    QVERIFY(f.options().contains("[Sender]\r\nDefault.DispName=Bob\r\nDefault.EmailAddr=bob@x.example\r\n"));
    QVERIFY(!f.options().contains("remark"));
}

void TestRecordStore::emptyLineStandsForNoDefault()
{
    RecordFixture f(kindOfRow());
    f.setDefault(f.facts.records[0]);
    f.facts.kind().storeDefault(f.globals(), {});
    f.verifyDefault({});
    QVERIFY(!f.facts.kind().isDefault(f.globals(), {}));
    QVERIFY(!f.facts.kind().isDefault(f.globals(), f.facts.records[0]));
}

void TestRecordStore::otherSettingsStayWhenADefaultIsStored()
{
    RecordFixture f(kindOfRow());
    const QByteArray mine = "; a note\r\n[Mine]\r\nkey = value \r\n";
    writeFile(f.optionsPath(), mine + f.options());
    f.facts.kind().storeDefault(f.globals(), f.facts.records[1]);
    f.verifyDefault(f.facts.records[1]);
    QVERIFY(f.options().startsWith(mine));
}

QTEST_GUILESS_MAIN(TestRecordStore)
#include "test_recordstore.moc"
