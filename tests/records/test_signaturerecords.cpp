#include "signaturefixture.h"

#include <QProcess>
#include <QRandomGenerator>
#include <QTest>

#include <csignal>
#include <functional>
#include <sys/resource.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace corvane;

class TestSignatureRecords : public QObject, SignatureFixture {
    Q_OBJECT

private Q_SLOTS:
    void init() { makeTree(); }
    void cleanup() { dropTree(); }

    void addAppendsTheLineAndWritesTheText();
    void addWithoutATextWritesNoFile();
    void theAddCommandStartsWithAnEmptyFile();
    void modifyMovesTheLineToTheEnd();
    void modifyWithAPathDropsTheStoredText();
    void aFileSignatureDropsTheTextsOfAllWhoseNamesBeginWithItsOwn();
    void signsThatAreWildcardsElsewhereAreLettersInAName();
    void aReadOnlyTextIsDroppedToo();
    void otherLinesKeepTheirOctets();
    void aSaveThatChangesNothingWritesNothing();
    void deleteRemovesTheLineAndTheText();
    void severalAreDeletedWithOneRewrite();
    void aChangeThatCouldNotBeMadeSaysSo();
    void clearLeavesAnEmptyListAlone();
    void clearDoesNotFollowALink();
    void unreadableListIsNotRewrittenAndNoTextGoes();
    void aFullDiskLosesNothing();
    void aKillLosesAtMostTheLastChange();
};

void TestSignatureRecords::addAppendsTheLineAndWritesTheText()
{
    setList("a\t\r\n");
    save(SignatureChange::Add, {}, u"Öl"_s, u"Grüße\r\nAnn"_s);
    save(SignatureChange::Add, {}, u"page"_s, {}, u"/home/x/page.html"_s);
    QCOMPARE(list(), QByteArray("a\t\r\n\xC3\x96l\t\r\npage\t/home/x/page.html\r\n"));
    QCOMPARE(stored(u"Öl"_s), QByteArray("Gr\xC3\xBC\xC3\x9F"
                                         "e\r\nAnn"));
    QCOMPARE(modeOf(file(u"Öl"_s)), mode_t(0600));
    QCOMPARE(storedFiles(), QStringList{u"sign_Öl.dll"_s});
}

void TestSignatureRecords::addWithoutATextWritesNoFile()
{
    save(SignatureChange::Add, {}, u"a"_s);
    QCOMPARE(list(), QByteArray("a\t\r\n"));
    QCOMPARE(storedFiles(), QStringList());
}

void TestSignatureRecords::theAddCommandStartsWithAnEmptyFile()
{
    store(u"Signature #0"_s, "of one that is gone");
    addSignature(globals(), u"Signature #0"_s);
    QCOMPARE(list(), QByteArray("Signature #0\t\r\n"));
    QCOMPARE(stored(u"Signature #0"_s), QByteArray(""));
    QVERIFY(QFileInfo::exists(file(u"Signature #0"_s)));
}

void TestSignatureRecords::modifyMovesTheLineToTheEnd()
{
    setList("a\t\r\nb\t/b.txt\r\nc\t\r\n");
    modify(u"a"_s, u"text"_s);
    QCOMPARE(list(), QByteArray("b\t/b.txt\r\nc\t\r\na\t\r\n"));
    QCOMPARE(stored(u"a"_s), QByteArray("text"));
    modify(u"b"_s, u"own"_s);
    QCOMPARE(list(), QByteArray("c\t\r\na\t\r\nb\t\r\n"));
    QCOMPARE(stored(u"b"_s), QByteArray("own"));
    modify(u"c"_s, {}, u"/c.txt"_s);
    modify(u"a"_s, {}, u" /a.txt "_s);
    QCOMPARE(list(), QByteArray("b\t\r\nc\t/c.txt\r\na\t/a.txt\r\n"));
}

void TestSignatureRecords::modifyWithAPathDropsTheStoredText()
{
    setList("a\t\r\nb\t\r\n");
    store(u"a"_s, "A");
    store(u"b"_s, "B");
    modify(u"a"_s, u"is not stored"_s, u"/a.txt"_s);
    QCOMPARE(list(), QByteArray("b\t\r\na\t/a.txt\r\n"));
    QCOMPARE(storedFiles(), QStringList{u"sign_b.dll"_s});
}

void TestSignatureRecords::aFileSignatureDropsTheTextsOfAllWhoseNamesBeginWithItsOwn()
{
    setList("Work\t\r\nWork 2\t\r\nMy Work\t\r\nwork 3\t\r\n");
    for (const QString &name : {u"Work"_s, u"Work 2"_s, u"My Work"_s, u"work 3"_s}) {
        store(name, "text");
    }
    writeFile(globals().paths.signs + u"/sign_Work.txt"_s, "of somebody else");
    modify(u"Work"_s, {}, u"/w.txt"_s);
    QCOMPARE(list(), QByteArray("Work 2\t\r\nMy Work\t\r\nwork 3\t\r\nWork\t/w.txt\r\n"));
    QCOMPARE(storedFiles(), (QStringList{u"sign_My Work.dll"_s, u"sign_work 3.dll"_s, u"sign_Work.txt"_s}));
}

void TestSignatureRecords::signsThatAreWildcardsElsewhereAreLettersInAName()
{
    setList("*\t\r\n?\t\r\n[a]\t\r\na\t\r\n*x\t\r\n");
    for (const QString &name : {u"*"_s, u"?"_s, u"[a]"_s, u"a"_s, u"*x"_s}) {
        store(name, "text");
    }
    modify(u"?"_s, {}, u"/q.txt"_s);
    QCOMPARE(storedFiles().size(), 4);
    modify(u"[a]"_s, {}, u"/q.txt"_s);
    QCOMPARE(storedFiles().size(), 3);
    modify(u"*"_s, {}, u"/q.txt"_s);
    QCOMPARE(storedFiles(), QStringList{u"sign_a.dll"_s});
}

void TestSignatureRecords::aReadOnlyTextIsDroppedToo()
{
    setList("a\t\r\n");
    store(u"a"_s, "A");
    QVERIFY(QFile::setPermissions(file(u"a"_s), QFileDevice::ReadOwner));
    modify(u"a"_s, {}, u"/a.txt"_s);
    QCOMPARE(storedFiles(), QStringList());
}

void TestSignatureRecords::otherLinesKeepTheirOctets()
{
    setList("caf\xE9\t/caf\xE9.txt\r\nshort\r\n\r\na\t\r\nlong\t\tx\ty\r\n");
    modify(u"a"_s, u"t"_s);
    QCOMPARE(list(), QByteArray("caf\xE9\t/caf\xE9.txt\r\nshort\r\n\r\nlong\t\tx\ty\r\na\t\r\n"));
    save(SignatureChange::Rename, u"long"_s, u"b"_s);
    QCOMPARE(list(), QByteArray("caf\xE9\t/caf\xE9.txt\r\nshort\r\n\r\nb\t\tx\ty\r\na\t\r\n"));
    save(SignatureChange::Delete, u"a"_s, {});
    QCOMPARE(list(), QByteArray("caf\xE9\t/caf\xE9.txt\r\nshort\r\n\r\nb\t\tx\ty\r\n"));
}

void TestSignatureRecords::aSaveThatChangesNothingWritesNothing()
{
    setList("a\t\r\nb\t\r\n");
    modify(u"b"_s, u"text"_s);
    const ino_t listed = node(globals().paths.signsFile);
    const ino_t text = node(file(u"b"_s));
    modify(u"b"_s, u"text"_s);
    QCOMPARE(node(file(u"b"_s)), text);
    modify(u"b"_s, u"text!"_s);
    QVERIFY(node(file(u"b"_s)) != text);
    QCOMPARE(node(globals().paths.signsFile), listed);
    modify(u"a"_s, u"text"_s);
    QVERIFY(node(globals().paths.signsFile) != listed);
}

void TestSignatureRecords::deleteRemovesTheLineAndTheText()
{
    setList("a\t\r\nab\t\r\na\t/second.txt\r\n");
    store(u"a"_s, "A");
    store(u"ab"_s, "AB");
    save(SignatureChange::Delete, u"a"_s, {});
    QCOMPARE(list(), QByteArray("ab\t\r\n"));
    QCOMPARE(storedFiles(), QStringList{u"sign_ab.dll"_s});
    save(SignatureChange::Delete, u"not there"_s, {});
    QCOMPARE(list(), QByteArray("ab\t\r\n"));
}

void TestSignatureRecords::severalAreDeletedWithOneRewrite()
{
    setList("a\t\r\nb\t\r\nA\t\r\nc\t/c.txt\r\nd\t\r\n");
    for (const QString &name : {u"a"_s, u"b"_s, u"A"_s, u"d"_s}) {
        store(name, "text");
    }
    deleteSignatures(globals(), {u"d"_s, u"c"_s, u"a"_s, u"not there"_s});
    QCOMPARE(list(), QByteArray("b\t\r\nA\t\r\n"));
    QCOMPARE(storedFiles().toList(), (QStringList{u"sign_A.dll"_s, u"sign_b.dll"_s}));
}

void TestSignatureRecords::aChangeThatCouldNotBeMadeSaysSo()
{
    QVERIFY(QFile::remove(globals().paths.signsFile));
    QVERIFY(QDir().mkpath(globals().paths.signsFile)); // unreadable, for root too
    QVERIFY(!save(SignatureChange::Add, {}, u"a"_s));
    QVERIFY(!save(SignatureChange::Modify, u"a"_s, {}, u"text"_s));
    QVERIFY(!save(SignatureChange::Rename, u"a"_s, u"b"_s));
    QVERIFY(!corvane::signatureContent(globals(), u"a"_s).readable);
}

void TestSignatureRecords::clearLeavesAnEmptyListAlone()
{
    setList("a\t\r\nb\t/b.txt\r\n");
    store(u"a"_s, "A");
    const QString deep = globals().paths.signs + u"/folder/in folder"_s;
    QVERIFY(QDir().mkpath(deep));
    writeFile(deep + u"/file"_s, "x");
    writeFile(m_tree->path(u"kept"_s), "kept");
    QVERIFY(QFile::link(m_tree->path(u"kept"_s), globals().paths.signs + u"/link"_s));
    save(SignatureChange::Clear, {}, {});
    QCOMPARE(storedFiles(), QStringList());
    QCOMPARE(list(), QByteArray(""));
    QCOMPARE(modeOf(globals().paths.signs), mode_t(0700));
    QCOMPARE(modeOf(globals().paths.signsFile), mode_t(0600));
    QCOMPARE(contentOf(m_tree->path(u"kept"_s)), QByteArray("kept"));
    save(SignatureChange::Add, {}, u"a"_s, u"text"_s);
    QCOMPARE(list(), QByteArray("a\t\r\n"));
}

void TestSignatureRecords::clearDoesNotFollowALink()
{
    setList("a\t\r\n");
    store(u"a"_s, "A");
    const QString elsewhere = m_tree->path(u"elsewhere"_s);
    QVERIFY(QDir().rename(globals().paths.signs, elsewhere));
    QVERIFY(QFile::link(elsewhere, globals().paths.signs));
    save(SignatureChange::Clear, {}, {});
    QVERIFY(!QFileInfo(globals().paths.signs).isSymLink());
    QCOMPARE(list(), QByteArray(""));
    QCOMPARE(contentOf(elsewhere + u"/signs.dll"_s), QByteArray("a\t\r\n"));
    QCOMPARE(contentOf(elsewhere + u"/sign_a.dll"_s), QByteArray("A"));
}

void TestSignatureRecords::unreadableListIsNotRewrittenAndNoTextGoes()
{
    store(u"a"_s, "A");
    QVERIFY(QFile::remove(globals().paths.signsFile));
    QVERIFY(QDir().mkpath(globals().paths.signsFile + u"/x"_s));
    modify(u"a"_s, u"new"_s);
    modify(u"a"_s, {}, u"/a.txt"_s);
    save(SignatureChange::Delete, u"a"_s, {});
    save(SignatureChange::Rename, u"a"_s, u"b"_s);
    save(SignatureChange::Add, {}, u"a"_s, u"added"_s);
    QCOMPARE(stored(u"a"_s), QByteArray("A"));
    QVERIFY(!signatureContent(globals(), u"a"_s).found);
}

void TestSignatureRecords::aFullDiskLosesNothing()
{
    setList("a\t\r\nb\t/b.txt\r\n");
    store(u"a"_s, "A");
    const QByteArray before = list();
    rlimit disk{};
    QCOMPARE(getrlimit(RLIMIT_FSIZE, &disk), 0);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const auto withRoomFor = [&](rlim_t octets, const std::function<void()> &change) {
        rlimit full = disk;
        full.rlim_cur = octets;
        const bool limited = setrlimit(RLIMIT_FSIZE, &full) == 0;
        change();
        return setrlimit(RLIMIT_FSIZE, &disk) == 0 && limited;
    };
    QVERIFY(withRoomFor(100, [&] { modify(u"b"_s, QString(4000, u'x')); })); // for the list, but not for the text
    QCOMPARE(list(), before);
    QVERIFY(withRoomFor(4, [&] {
        modify(u"a"_s, {}, u"/a.txt"_s);
        save(SignatureChange::Rename, u"a"_s, u"c"_s);
        save(SignatureChange::Delete, u"a"_s, {});
    }));
    std::signal(SIGXFSZ, handler);
    QCOMPARE(list(), before);
    QCOMPARE(storedFiles(), QStringList{u"sign_a.dll"_s});
    QCOMPARE(stored(u"a"_s), QByteArray("A"));
}

void TestSignatureRecords::aKillLosesAtMostTheLastChange()
{
    QRandomGenerator random(11);
    const QByteArray others = "caf\xE9\t/x.txt\r\nstays\t\r\n";
    setList(others + "typed\t\r\nswitched\t\r\none\t\r\n");
    store(u"typed"_s, "0x0");
    store(u"switched"_s, "0x0");
    store(u"one"_s, "the text");
    const QString outside = m_tree->path(u"outside.txt"_s);
    const auto isWhole = [](const QByteArray &text) {
        const QByteArray mark = text.left(text.indexOf('x'));
        return !mark.isEmpty() && text.startsWith(mark + 'x') && text.endsWith('x' + mark);
    };
    bool switchedToAFile = false;
    bool renamed = false;
    for (int round = 0; round < 80; ++round) {
        QProcess writer;
        writer.start(QStringLiteral(WRITE_SIGNATURES), {m_tree->userFolder(), outside});
        const int changes = round % 5; // so that each change is the one that is hit, however busy the machine is
        while (writer.bytesAvailable() < changes) {
            QVERIFY(writer.waitForReadyRead());
        }
        ::usleep(static_cast<useconds_t>(random.bounded(3000))); // the random moment, not a wait for anything
        writer.kill();
        QVERIFY(writer.waitForFinished());

        const QByteArray now = list();
        QVERIFY2(now.startsWith(others), now.constData());
        QCOMPARE(now.count('\n'), 5);
        QVERIFY2(isWhole(stored(u"typed"_s)), stored(u"typed"_s).constData());
        const SignatureContent switched = signatureContent(globals(), u"switched"_s);
        QVERIFY(switched.found);
        QVERIFY(switched.path.isEmpty() ? isWhole(switched.text.toUtf8()) : switched.path == outside);
        switchedToAFile |= !switched.path.isEmpty();
        const bool other = signatureNames(globals()).contains(u"other"_s);
        QCOMPARE(signatureContent(globals(), other ? u"other"_s : u"one"_s).text, u"the text"_s);
        renamed |= other;
        if (other) {
            save(SignatureChange::Rename, u"other"_s, u"one"_s); // the writer begins with that name
        }
    }
    QVERIFY(switchedToAFile && renamed); // the kills did meet the changes
}

QTEST_GUILESS_MAIN(TestSignatureRecords)
#include "test_signaturerecords.moc"
