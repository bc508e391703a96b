#include "signaturefixture.h"

#include <QTest>

#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace corvane;

/// What becomes of a signature's text when its name changes, or is one that files have trouble with.
class TestSignatureRename : public QObject, SignatureFixture {
    Q_OBJECT

private Q_SLOTS:
    void init() { makeTree(); }
    void cleanup() { dropTree(); }

    void renameKeepsThePlaceAndMovesTheText();
    void renameKeepsThePathOfAFileSignature();
    void renameToAnotherCaseKeepsTheText();
    void renameSetsATextAsideThatWasLeftBehind();
    void aNewSignatureKeepsTheTextThatAnEarlierOneLeft();
    void renameToATakenNameChangesNothing();
    void renameThereAndBackOverANameThatNoFileCanHaveKeepsTheText();
    void aTextGoesOverANameThatNoFileCanHave_data();
    void aTextGoesOverANameThatNoFileCanHave();
    void aTextThatWaitsIsNobodyElses();
    void aTextThatWaitsGoesWithItsSignature();
    void aNameThatNoFileCanHaveLeavesTheRowAndWritesNoText_data();
    void aNameThatNoFileCanHaveLeavesTheRowAndWritesNoText();
    void aNameIsKeptInOneLineWithoutTabs();
    void namesThatDifferOnlyInCaseAreTwoSignatures();
    void aTextIsFoundWithoutRegardToTheCaseOfItsFile();
};

void TestSignatureRename::renameKeepsThePlaceAndMovesTheText()
{
    setList("a\t\r\nb\t\r\na\t/second\r\n");
    store(u"a"_s, "A");
    save(SignatureChange::Rename, u"a"_s, u" new name "_s);
    QCOMPARE(list(), QByteArray("new name\t\r\nb\t\r\na\t/second\r\n"));
    QCOMPARE(storedFiles(), QStringList{u"sign_new name.dll"_s});
    QCOMPARE(stored(u"new name"_s), QByteArray("A"));
}

void TestSignatureRename::renameKeepsThePathOfAFileSignature()
{
    setList("a\t/a.txt\r\n");
    store(u"b"_s, "left behind");
    save(SignatureChange::Rename, u"a"_s, u"b"_s);
    QCOMPARE(list(), QByteArray("b\t/a.txt\r\n"));
    QCOMPARE(storedFiles(), QStringList());
}

void TestSignatureRename::renameToAnotherCaseKeepsTheText()
{
    setList("work\t\r\n");
    store(u"work"_s, "text");
    save(SignatureChange::Rename, u"work"_s, u"Work"_s);
    QCOMPARE(list(), QByteArray("Work\t\r\n"));
    QCOMPARE(storedFiles(), QStringList{u"sign_Work.dll"_s});
    QCOMPARE(stored(u"Work"_s), QByteArray("text"));
}

void TestSignatureRename::renameSetsATextAsideThatWasLeftBehind()
{
    setList("a\t\r\n");
    store(u"a"_s, "A");
    store(u"b"_s, "left behind");
    save(SignatureChange::Rename, u"a"_s, u"b"_s);
    QCOMPARE(stored(u"b"_s), QByteArray("A"));
    QCOMPARE(storedFiles(), (QStringList{u"left_1.dll"_s, u"sign_b.dll"_s}));
    QCOMPARE(contentOf(globals().paths.signs + u"/left_1.dll"_s), QByteArray("left behind"));
    // A text that stands under both names is what a move leaves that was killed half-way.
    QCOMPARE(::link(QFile::encodeName(file(u"b"_s)).constData(), QFile::encodeName(file(u"c"_s)).constData()), 0);
    save(SignatureChange::Rename, u"b"_s, u"c"_s);
    QCOMPARE(stored(u"c"_s), QByteArray("A"));
    QCOMPARE(storedFiles(), (QStringList{u"left_1.dll"_s, u"sign_c.dll"_s}));
}

void TestSignatureRename::aNewSignatureKeepsTheTextThatAnEarlierOneLeft()
{
    setList("Signature #1\t\r\n");
    store(u"Signature #1"_s, "the only copy");
    QVERIFY(save(SignatureChange::Rename, u"Signature #1"_s,
                 u"Sales/Support"_s)); // no file can have that name: the text waits for the next
    corvane::addSignature(globals(), u"Signature #1"_s);
    QCOMPARE(stored(u"Signature #1"_s), QByteArray(""));
    QCOMPARE(contentOf(globals().paths.signs + u"/left_1.dll"_s), QByteArray("the only copy"));
    QCOMPARE(signatureContent(globals(), u"Sales/Support"_s).text, u"the only copy"_s); // and it is still its own
    QCOMPARE(list(), QByteArray("Sales/Support\t\r\nSignature #1\t\r\n"));
}

void TestSignatureRename::renameToATakenNameChangesNothing()
{
    setList("a\t\r\nb\t\r\n");
    store(u"a"_s, "A");
    store(u"b"_s, "B");
    for (const QString &newName : {u"b"_s, u"  "_s, u"a"_s}) {
        save(SignatureChange::Rename, u"a"_s, newName);
        QCOMPARE(list(), QByteArray("a\t\r\nb\t\r\n"));
        QCOMPARE(stored(u"a"_s), QByteArray("A"));
        QCOMPARE(stored(u"b"_s), QByteArray("B"));
    }
}

void TestSignatureRename::renameThereAndBackOverANameThatNoFileCanHaveKeepsTheText()
{
    setList("a\t\r\n");
    store(u"a"_s, "A");
    save(SignatureChange::Rename, u"a"_s, u"a/b"_s);
    QCOMPARE(list(), QByteArray("a/b\t\r\n"));
    save(SignatureChange::Rename, u"a/b"_s, u"a"_s);
    QCOMPARE(list(), QByteArray("a\t\r\n"));
    QCOMPARE(signatureContent(globals(), u"a"_s).text, u"A"_s);
}

void TestSignatureRename::aTextGoesOverANameThatNoFileCanHave_data()
{
    QTest::addColumn<QStringList>("names");
    QTest::newRow("to another name") << QStringList{u"a/b"_s, u"good"_s};
    QTest::newRow("and back") << QStringList{u"a/b"_s, u"x"_s};
    QTest::newRow("over two of them") << QStringList{u"a/b"_s, u"/"_s, u"good"_s};
    QTest::newRow("too long") << QStringList{QString(300, u'n'), u"good"_s};
    QTest::newRow("twice") << QStringList{u"a/b"_s, u"good"_s, u"a/b"_s, u"better"_s};
}

void TestSignatureRename::aTextGoesOverANameThatNoFileCanHave()
{
    QFETCH(const QStringList, names);
    setList("first\t\r\nx\t\r\n");
    store(u"x"_s, "the text");
    QString name = u"x"_s;
    QString last = name; // that can have a file
    for (const QString &next : names) {
        QVERIFY(save(SignatureChange::Rename, name, next));
        const bool waits = signatureFile(globals(), next).isEmpty();
        QCOMPARE(stored(last), waits || next == last ? QByteArray("the text") : QByteArray()); // it stays, or it goes
        last = waits ? last : next;
        // Where the name can have no file, the text is read and sent all the same.
        QCOMPARE(signatureContent(globals(), next).text, u"the text"_s);
        QCOMPARE(signatureText(globals(), next).text, u"the text"_s);
        name = next;
    }
    QCOMPARE(list(), "first\t\r\n" + name.toUtf8() + "\t\r\n");
    QCOMPARE(storedFiles(), QStringList{u"sign_"_s + name + u".dll"_s});
    QCOMPARE(stored(name), QByteArray("the text"));
}

void TestSignatureRename::aTextThatWaitsIsNobodyElses()
{
    setList("x\t\r\ny\t\r\n");
    store(u"x"_s, "of x");
    store(u"y"_s, "of y");
    QVERIFY(save(SignatureChange::Rename, u"x"_s, u"a/b"_s));
    QVERIFY(save(SignatureChange::Rename, u"y"_s, u"c/d"_s));
    addSignature(globals(), u"x"_s);
    QCOMPARE(signatureContent(globals(), u"x"_s).text, QString());
    modify(u"x"_s, u"new"_s);
    modify(u"x"_s, {}, u"/x.txt"_s);
    QVERIFY(save(SignatureChange::Rename, u"c/d"_s, u"of y"_s));
    QVERIFY(save(SignatureChange::Rename, u"a/b"_s, u"of x"_s));
    QCOMPARE(stored(u"of x"_s), QByteArray("of x"));
    QCOMPARE(stored(u"of y"_s), QByteArray("of y"));
    QCOMPARE(storedFiles(), (QStringList{u"sign_of x.dll"_s, u"sign_of y.dll"_s}));
}

void TestSignatureRename::aTextThatWaitsGoesWithItsSignature()
{
    setList("x\t\r\n");
    store(u"x"_s, "of x");
    QVERIFY(save(SignatureChange::Rename, u"x"_s, u"a/b"_s));
    QVERIFY(save(SignatureChange::Delete, u"a/b"_s, {}));
    QVERIFY(storedFiles().isEmpty());
}

void TestSignatureRename::aNameThatNoFileCanHaveLeavesTheRowAndWritesNoText_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("slash") << u"/"_s;
    QTest::newRow("inner slash") << u"a/b"_s;
    QTest::newRow("up and out") << u"../data/smtp"_s;
    QTest::newRow("up only") << u"/../../smtp"_s;
    QTest::newRow("300 characters") << QString(300, u'n');
    QTest::newRow("300 octets") << QString(100, QChar(0x20AC));
}

void TestSignatureRename::aNameThatNoFileCanHaveLeavesTheRowAndWritesNoText()
{
    QFETCH(const QString, name);
    writeFile(globals().paths.smtpFile, "account");
    // A folder that would make the way out of the folder of signatures exist.
    QVERIFY(QDir().mkpath(globals().paths.signs + u"/sign_.."_s));
    const int faults = quillon::faultCount();
    QCOMPARE(signatureFile(globals(), name), QString());
    addSignature(globals(), name);
    modify(name, u"text"_s);
    QCOMPARE(list(), name.toUtf8() + "\t\r\n");
    QCOMPARE(quillon::faultCount(), faults + 2);
    const SignatureContent content = signatureContent(globals(), name);
    QVERIFY(content.found);
    QCOMPARE(content.text, QString());
    QVERIFY(!signatureText(globals(), name).found);
    modify(name, {}, u"/x.txt"_s);
    QCOMPARE(list(), name.toUtf8() + "\t/x.txt\r\n");
    save(SignatureChange::Rename, name, u"good"_s);
    QCOMPARE(list(), QByteArray("good\t/x.txt\r\n"));
    save(SignatureChange::Rename, u"good"_s, name);
    save(SignatureChange::Delete, name, {});
    QCOMPARE(list(), QByteArray(""));
    QCOMPARE(storedFiles(), QStringList{u"sign_.."_s});
    QCOMPARE(contentOf(globals().paths.smtpFile), QByteArray("account"));
    QCOMPARE(QDir(globals().paths.data).entryList({u"*sign_*"_s}, QDir::AllEntries), QStringList());
}

void TestSignatureRename::aNameIsKeptInOneLineWithoutTabs()
{
    const QString typed = u" a\tb\r\nc\x01 \xD800 "_s;
    const QString name = signatureNameOf(typed);
    QVERIFY2(name.startsWith(u"a b c  "_s) && name.size() == 8, qPrintable(name));
    QCOMPARE(QString::fromUtf8(name.toUtf8()), name); // half a letter becomes one that a file can hold
    addSignature(globals(), typed);
    modify(typed, u"first"_s);
    modify(name, u"second"_s);
    QCOMPARE(signatureNames(globals()), QStringList{name});
    QCOMPARE(list(), name.toUtf8() + "\t\r\n");
    QCOMPARE(signatureContent(globals(), name).text, u"second"_s);
    modify(name, {}, u"/a\tb.txt"_s);
    QCOMPARE(list(), name.toUtf8() + "\t/a b.txt\r\n");
    addSignature(globals(), u" \t"_s);
    modify({}, u"text"_s);
    QCOMPARE(list(), name.toUtf8() + "\t/a b.txt\r\n");
}

void TestSignatureRename::namesThatDifferOnlyInCaseAreTwoSignatures()
{
    addSignature(globals(), u"Work"_s);
    modify(u"Work"_s, u"capital"_s);
    addSignature(globals(), u"work"_s);
    modify(u"work"_s, u"small"_s);
    QCOMPARE(list(), QByteArray("Work\t\r\nwork\t\r\n"));
    QCOMPARE(signatureContent(globals(), u"Work"_s).text, u"capital"_s);
    QCOMPARE(signatureContent(globals(), u"work"_s).text, u"small"_s);
    modify(u"work"_s, {}, u"/w.txt"_s);
    QCOMPARE(signatureContent(globals(), u"Work"_s).text, u"capital"_s);
    QVERIFY(!signatureText(globals(), u"work"_s).found); // nor does it take the other's text
    save(SignatureChange::Rename, u"work"_s, u"WORK"_s);
    save(SignatureChange::Delete, u"WORK"_s, {});
    QCOMPARE(list(), QByteArray("Work\t\r\n"));
    QCOMPARE(stored(u"Work"_s), QByteArray("capital"));
}

void TestSignatureRename::aTextIsFoundWithoutRegardToTheCaseOfItsFile()
{
    setList("Work\t\r\nB\t\r\nC\t\r\nD\t\r\n");
    for (const QString &name : {u"WORK"_s, u"b"_s, u"c"_s, u"d"_s}) {
        store(name, "text of " + name.toUtf8());
    }
    QCOMPARE(signatureContent(globals(), u"Work"_s).text, u"text of WORK"_s);
    QCOMPARE(signatureText(globals(), u"Work"_s).text, u"text of WORK"_s);
    modify(u"Work"_s, u"new"_s);
    save(SignatureChange::Rename, u"B"_s, u"E"_s);
    modify(u"C"_s, {}, u"/c.txt"_s);
    save(SignatureChange::Delete, u"D"_s, {});
    QCOMPARE(storedFiles(), (QStringList{u"sign_E.dll"_s, u"sign_Work.dll"_s}));
    QCOMPARE(stored(u"Work"_s), QByteArray("new"));
    QCOMPARE(stored(u"E"_s), QByteArray("text of b"));
}

QTEST_GUILESS_MAIN(TestSignatureRename)
#include "test_signaturerename.moc"
