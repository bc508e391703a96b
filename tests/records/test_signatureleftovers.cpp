#include "signaturefixture.h"

#include <QTest>

#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace corvane;

/// Texts that belong to no signature, and names and files that an older program or another file system has left.
class TestSignatureLeftovers : public QObject, SignatureFixture {
    Q_OBJECT

private Q_SLOTS:
    void init() { makeTree(); }
    void cleanup() { dropTree(); }

    void aTextIsSetAsideUnderTheFirstFreeNumber();
    void anEmptyTextIsNotSetAside();
    void aTextStaysWhenItsNameTakesTheCaseOfItsFile();
    void aFileThatTwoNamesShareIsLeftToItsSignature();
    void aNewSignatureOfASharedFileLeavesItAlone();
    void aRenamedFileSignatureTakesNobodysText();
    void aRenamedTextSignatureKeepsWhatStandsThere();
    void aFileNameMayHave255Octets_data();
    void aFileNameMayHave255Octets();
    void aNulEndsNoFileName();
    void theEndingIsNoPartOfAName();
    void aSignatureWithoutANameDropsNoOthersText();
    void aNameIsFoundAsItsLineHasIt();
    void aPathOfBlanksChangesNothing();
    void aTextOfNoSignatureIsNotDeleted();
    void aNameThatIsAddedTwiceKeepsItsText();

private:
    [[nodiscard]] QByteArray aside(int number) const
    {
        return contentOf(globals().paths.signs + u"/left_%1.dll"_s.arg(number));
    }
    void putAside(int number, const QByteArray &text) const
    {
        writeFile(globals().paths.signs + u"/left_%1.dll"_s.arg(number), text);
    }
    /// Gives a file a second name, as a file system that knows no case finds it under both.
    void share(const QString &name, const QString &other) const
    {
        QCOMPARE(::link(QFile::encodeName(file(name)).constData(), QFile::encodeName(file(other)).constData()), 0);
    }
};

void TestSignatureLeftovers::aTextIsSetAsideUnderTheFirstFreeNumber()
{
    setList("a\t\r\n");
    store(u"a"_s, "A");
    store(u"b"_s, "of b");
    store(u"c"_s, "of c");
    putAside(1, "first");
    putAside(3, "third");
    QVERIFY(save(SignatureChange::Rename, u"a"_s, u"b"_s));
    QVERIFY(save(SignatureChange::Rename, u"b"_s, u"c"_s));
    QCOMPARE(aside(1), QByteArray("first"));
    QCOMPARE(aside(2), QByteArray("of b"));
    QCOMPARE(aside(3), QByteArray("third"));
    QCOMPARE(aside(4), QByteArray("of c"));
    QCOMPARE(stored(u"c"_s), QByteArray("A"));
    QCOMPARE(storedFiles().size(), 5);
}

void TestSignatureLeftovers::anEmptyTextIsNotSetAside()
{
    setList("a\t\r\n");
    store(u"a"_s, "A");
    store(u"b"_s, "");
    QVERIFY(save(SignatureChange::Rename, u"a"_s, u"b"_s));
    QCOMPARE(storedFiles(), QStringList{u"sign_b.dll"_s});
    QCOMPARE(stored(u"b"_s), QByteArray("A"));
    store(u"c"_s, "x"); // one octet is a text
    QVERIFY(save(SignatureChange::Rename, u"b"_s, u"c"_s));
    QCOMPARE(aside(1), QByteArray("x"));
}

void TestSignatureLeftovers::aTextStaysWhenItsNameTakesTheCaseOfItsFile()
{
    setList("Work\t\r\n");
    store(u"WORK"_s, "text");
    QVERIFY(save(SignatureChange::Rename, u"Work"_s, u"WORK"_s));
    QCOMPARE(list(), QByteArray("WORK\t\r\n"));
    QCOMPARE(storedFiles(), QStringList{u"sign_WORK.dll"_s});
    QCOMPARE(stored(u"WORK"_s), QByteArray("text"));
}

void TestSignatureLeftovers::aFileThatTwoNamesShareIsLeftToItsSignature()
{
    setList("a\t\r\nb\t\r\nc\t/c.txt\r\n");
    store(u"a"_s, "A");
    store(u"b"_s, "B");
    share(u"b"_s, u"B"_s);
    QVERIFY(save(SignatureChange::Rename, u"a"_s, u"B"_s));
    QCOMPARE(list(), QByteArray("B\t\r\nb\t\r\nc\t/c.txt\r\n"));
    QCOMPARE(stored(u"a"_s), QByteArray("A")); // there is no place for it
    QCOMPARE(stored(u"b"_s), QByteArray("B"));
    QCOMPARE(storedFiles().size(), 3); // nothing was set aside
    setList("b\t\r\nc\t/c.txt\r\n");
    QVERIFY(save(SignatureChange::Rename, u"c"_s, u"B"_s));
    QCOMPARE(stored(u"B"_s), QByteArray("B"));
    QCOMPARE(stored(u"b"_s), QByteArray("B"));
}

void TestSignatureLeftovers::aNewSignatureOfASharedFileLeavesItAlone()
{
    setList("b\t\r\n");
    store(u"b"_s, "B");
    share(u"b"_s, u"B"_s);
    QVERIFY(save(SignatureChange::Add, {}, u"B"_s, u"new"_s));
    QCOMPARE(list(), QByteArray("b\t\r\nB\t\r\n"));
    QCOMPARE(stored(u"b"_s), QByteArray("B"));
    QCOMPARE(storedFiles().size(), 2); // nothing was set aside
    QCOMPARE(node(file(u"b"_s)), node(file(u"B"_s)));
}

void TestSignatureLeftovers::aRenamedFileSignatureTakesNobodysText()
{
    const QString path = m_tree->path(u"a.txt"_s);
    writeFile(path, "of the file");
    setList("a\t" + path.toUtf8() + "\r\nb\t\r\n");
    store(u"b"_s, "of b");
    store(u"B"_s, "of nobody"); // beside a signature of the same letters, too
    QVERIFY(save(SignatureChange::Rename, u"a"_s, u"B"_s));
    QCOMPARE(signatureText(globals(), u"B"_s).text, u"of the file"_s);
    QCOMPARE(signatureText(globals(), u"b"_s).text, u"of b"_s);
    QCOMPARE(storedFiles(), QStringList{u"sign_b.dll"_s});
    // A text of its own, which an older program may have left to a file signature, goes along.
    store(u"B"_s, "its own");
    QVERIFY(save(SignatureChange::Rename, u"B"_s, u"c"_s));
    QCOMPARE(stored(u"c"_s), QByteArray("its own"));
}

void TestSignatureLeftovers::aRenamedTextSignatureKeepsWhatStandsThere()
{
    setList("a\t  \r\n");
    store(u"b"_s, "left behind");
    QVERIFY(save(SignatureChange::Rename, u"a"_s, u"b"_s));
    QCOMPARE(stored(u"b"_s), QByteArray("left behind"));
}

void TestSignatureLeftovers::aFileNameMayHave255Octets_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("possible");
    QTest::newRow("254") << QString(245, u'n') << true;
    QTest::newRow("255") << QString(246, u'n') << true;
    QTest::newRow("256") << QString(247, u'n') << false;
    QTest::newRow("255 of three each") << QString(82, QChar(0x20AC)) << true;
    QTest::newRow("256 with one more") << QString(82, QChar(0x20AC)) + u'n' << false;
}

void TestSignatureLeftovers::aFileNameMayHave255Octets()
{
    QFETCH(const QString, name);
    QFETCH(const bool, possible);
    QCOMPARE(signatureFile(globals(), name), possible ? file(name) : QString());
    addSignature(globals(), name);
    modify(name, u"text"_s);
    QCOMPARE(list(), name.toUtf8() + "\t\r\n");
    QCOMPARE(signatureContent(globals(), name).text, possible ? u"text"_s : QString());
}

void TestSignatureLeftovers::aNulEndsNoFileName()
{
    QCOMPARE(signatureFile(globals(), u"a\0b"_s), QString());
    QCOMPARE(signatureFile(globals(), u"ab\0"_s), QString());
}

void TestSignatureLeftovers::theEndingIsNoPartOfAName()
{
    setList(".d\t\r\nx\t\r\n");
    store(QString(), "of a name without letters");
    store(u".d"_s, "own");
    store(u".d 2"_s, "begins with it");
    writeFile(globals().paths.signs + u"/sign_.dx.DLL"_s, "begins with it, too");
    modify(u".d"_s, {}, u"/d.txt"_s);
    QCOMPARE(storedFiles(), QStringList{u"sign_.dll"_s});
}

void TestSignatureLeftovers::aSignatureWithoutANameDropsNoOthersText()
{
    setList("\t\r\na\t\r\n");
    store(QString(), "nameless");
    store(u"a"_s, "A");
    QVERIFY(save(SignatureChange::Modify, {}, {}, u"more"_s));
    QCOMPARE(list(), QByteArray("a\t\r\n\t\r\n"));
    QCOMPARE(stored(QString()), QByteArray("more"));
    QVERIFY(save(SignatureChange::Modify, {}, {}, {}, u"/x.txt"_s));
    QCOMPARE(list(), QByteArray("a\t\r\n\t/x.txt\r\n"));
    QCOMPARE(storedFiles(), QStringList{u"sign_a.dll"_s});
}

void TestSignatureLeftovers::aNameIsFoundAsItsLineHasIt()
{
    const QByteArray others = "old\t/old.txt\r\n";
    setList(others + " old \t\r\n");
    store(u" old "_s, "text");
    modify(u" old "_s, u"new text"_s);
    QCOMPARE(list(), others + " old \t\r\n");
    QCOMPARE(stored(u" old "_s), QByteArray("new text"));
    QVERIFY(save(SignatureChange::Rename, u" old "_s, u"young"_s));
    QCOMPARE(list(), others + "young\t\r\n");
    setList(others + " old \t\r\n");
    save(SignatureChange::Delete, u" old "_s, {});
    QCOMPARE(list(), others);
    save(SignatureChange::Delete, u"\told "_s, {}); // and no such line is there: as it would be written
    QCOMPARE(list(), QByteArray(""));
}

void TestSignatureLeftovers::aPathOfBlanksChangesNothing()
{
    setList("a\t/a.txt\r\nb\t\r\n");
    store(u"b"_s, "B");
    QVERIFY(!save(SignatureChange::Modify, u"a"_s, {}, u"typed"_s, u" \t"_s));
    QVERIFY(!save(SignatureChange::Modify, u"b"_s, {}, u"typed"_s, u" "_s));
    QCOMPARE(list(), QByteArray("a\t/a.txt\r\nb\t\r\n"));
    QCOMPARE(storedFiles(), QStringList{u"sign_b.dll"_s});
    QCOMPARE(stored(u"b"_s), QByteArray("B"));
}

void TestSignatureLeftovers::aTextOfNoSignatureIsNotDeleted()
{
    setList("a\t\r\nb\t\r\n");
    store(u"a"_s, "A");
    store(u"gone"_s, "of one that is gone");
    deleteSignatures(globals(), {u"gone"_s, u"a"_s});
    QCOMPARE(list(), QByteArray("b\t\r\n"));
    QCOMPARE(storedFiles(), QStringList{u"sign_gone.dll"_s});
}

void TestSignatureLeftovers::aNameThatIsAddedTwiceKeepsItsText()
{
    setList("a\t\r\n");
    store(u"a"_s, "A");
    QVERIFY(save(SignatureChange::Add, {}, u"a"_s));
    QCOMPARE(list(), QByteArray("a\t\r\na\t\r\n"));
    QCOMPARE(storedFiles(), QStringList{u"sign_a.dll"_s});
    QCOMPARE(stored(u"a"_s), QByteArray("A"));
}

QTEST_GUILESS_MAIN(TestSignatureLeftovers)
#include "test_signatureleftovers.moc"
