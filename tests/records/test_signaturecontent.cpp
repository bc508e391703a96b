#include "signaturefixture.h"

#include <QTest>

#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace corvane;

class TestSignatureContent : public QObject, SignatureFixture {
    Q_OBJECT

private Q_SLOTS:
    void init() { makeTree(); }
    void cleanup() { dropTree(); }

    void aTextSignatureShowsItsText();
    void aFileSignatureShowsItsPath();
    void aBlankPathIsATextSignature();
    void aSignatureThatIsNotListedShowsNothing();
    void aTextThatCannotBeReadIsNeitherShownNorWrittenOver();
    void aTextThatCannotBeReadIsNeitherShownNorWrittenOver_data();
    void aTextIsShownAndInsertedUpToASize();
    void aMessageGetsTheStoredTextBeforeTheFile();
    void aMessageGetsTheTextOfTheFile();
    void anHtmlFileIsToldByItsEnding();
    void anHtmlFileIsToldByItsEnding_data();
    void aMessageGetsNothingFromAFileThatIsGoneOrNoText();
    void theFirstSignatureHasTheNumberZero();
    void theFirstFreeNumberIsTakenAndTheNumberOfARenamedOneIsFree();
    void withAThousandNumbersTakenThereIsNoName();
    void namesAreThoseOfAllLines();
};

void TestSignatureContent::aTextSignatureShowsItsText()
{
    setList("a\t\r\nb\r\n");
    store(u"a"_s, "Gr\xFC\xDF"
                  "e\r\nAnn");
    SignatureContent content = signatureContent(globals(), u"a"_s);
    QVERIFY(content.found && content.readable);
    QCOMPARE(content.text, u"Grüße\r\nAnn"_s);
    QCOMPARE(content.path, QString());
    content = signatureContent(globals(), u"b"_s); // a short line, and no file yet
    QVERIFY(content.found && content.readable);
    QCOMPARE(content.text, QString());
}

void TestSignatureContent::aFileSignatureShowsItsPath()
{
    setList("a\t/not/there.txt\r\na\t\r\n");
    store(u"a"_s, "stored");
    const SignatureContent content = signatureContent(globals(), u"a"_s);
    QVERIFY(content.found && content.readable);
    QCOMPARE(content.path, u"/not/there.txt"_s);
    QCOMPARE(content.text, QString());
}

void TestSignatureContent::aBlankPathIsATextSignature()
{
    setList("a\t   \r\n");
    store(u"a"_s, "stored");
    const SignatureContent content = signatureContent(globals(), u"a"_s);
    QCOMPARE(content.path, QString());
    QCOMPARE(content.text, u"stored"_s);
}

void TestSignatureContent::aSignatureThatIsNotListedShowsNothing()
{
    store(u"a"_s, "left behind");
    setList("A\t\r\n");
    const SignatureContent content = signatureContent(globals(), u"a"_s);
    QVERIFY(!content.found);
    QCOMPARE(content.text, QString());
}

void TestSignatureContent::aTextThatCannotBeReadIsNeitherShownNorWrittenOver_data()
{
    QTest::addColumn<QString>("kind");
    for (const char *kind : {"folder", "fifo", "1 GB", "no text", "broken link"}) {
        QTest::newRow(kind) << QString::fromLatin1(kind);
    }
}

void TestSignatureContent::aTextThatCannotBeReadIsNeitherShownNorWrittenOver()
{
    QFETCH(const QString, kind);
    setList("a\t\r\nb\t\r\n");
    const QByteArray path = QFile::encodeName(file(u"a"_s));
    if (kind == "folder"_L1) {
        QVERIFY(QDir().mkpath(file(u"a"_s) + u"/x"_s));
    } else if (kind == "fifo"_L1) {
        QCOMPARE(::mkfifo(path.constData(), 0600), 0);
    } else if (kind == "1 GB"_L1) {
        store(u"a"_s, "x");
        QCOMPARE(::truncate(path.constData(), 1 << 30), 0);
    } else if (kind == "no text"_L1) {
        store(u"a"_s, QByteArray("\x89PNG\r\n\x1A\n\0\0\0\rIHDR", 16));
    } else {
        QVERIFY(QFile::link(m_tree->path(u"not there/x"_s), file(u"a"_s)));
    }
    const ino_t before = node(file(u"a"_s));
    const bool shown = kind == "broken link"_L1; // as a file that does not exist yet
    QCOMPARE(signatureContent(globals(), u"a"_s).readable, shown);
    QCOMPARE(signatureContent(globals(), u"a"_s).text, QString());
    QVERIFY(!signatureText(globals(), u"a"_s).found);
    modify(u"a"_s, u"typed"_s);
    QCOMPARE(node(file(u"a"_s)), before);
    QCOMPARE(list(), QByteArray("a\t\r\nb\t\r\n"));
    save(SignatureChange::Rename, u"a"_s, u"c"_s); // but it can be moved and deleted
    QCOMPARE(storedFiles(), QStringList{u"sign_c.dll"_s});
    QCOMPARE(node(file(u"c"_s)), before);
    save(SignatureChange::Delete, u"c"_s, {});
    QCOMPARE(list(), QByteArray("b\t\r\n"));
    QCOMPARE(storedFiles().isEmpty(), kind != "folder"_L1);
}

void TestSignatureContent::aTextIsShownAndInsertedUpToASize()
{
    setList("a\t\r\n");
    const auto shown = [this] { return signatureContent(globals(), u"a"_s).readable; };
    const auto inserted = [this] { return signatureText(globals(), u"a"_s).found; };
    store(u"a"_s, QByteArray(signatureEditLimit, 'x'));
    QVERIFY(shown() && inserted());
    store(u"a"_s, QByteArray(signatureEditLimit + 1, 'x'));
    QVERIFY(!shown() && inserted());
    store(u"a"_s, QByteArray(signatureTextLimit, 'x'));
    QVERIFY(!shown() && inserted());
    store(u"a"_s, QByteArray(signatureTextLimit + 1, 'x'));
    QVERIFY(!shown() && !inserted());
}

void TestSignatureContent::aMessageGetsTheStoredTextBeforeTheFile()
{
    writeFile(m_tree->path(u"a.html"_s), "<b>file</b>");
    setList("a\t" + m_tree->path(u"a.html"_s).toUtf8() + "\r\n");
    store(u"a"_s, "stored <b>");
    SignatureText text = signatureText(globals(), u"a"_s);
    QVERIFY(text.found && !text.html);
    QCOMPARE(text.text, u"stored <b>"_s);
    // A stored text needs no line; and a folder of that name is no file.
    setList("");
    QCOMPARE(signatureText(globals(), u"a"_s).text, u"stored <b>"_s);
    setList("a\t" + m_tree->path(u"a.html"_s).toUtf8() + "\r\n");
    QVERIFY(QFile::remove(file(u"a"_s)) && QDir().mkdir(file(u"a"_s)));
    text = signatureText(globals(), u"a"_s);
    QVERIFY(text.found && text.html);
}

void TestSignatureContent::aMessageGetsTheTextOfTheFile()
{
    writeFile(m_tree->path(u"a.txt"_s), "\xEF\xBB\xBFGr\xC3\xBC\xC3\x9F"
                                        "e");
    writeFile(m_tree->path(u"w.txt"_s), QByteArray("\xFF\xFEH\0i\0", 6));
    setList("a\t" + m_tree->path(u"a.txt"_s).toUtf8() + "\r\nw\t" + m_tree->path(u"w.txt"_s).toUtf8() + "\r\n");
    const SignatureText text = signatureText(globals(), u"a"_s);
    QVERIFY(text.found && !text.html);
    QCOMPARE(text.text, u"Grüße"_s);
    QCOMPARE(signatureText(globals(), u"w"_s).text, u"Hi"_s);
}

void TestSignatureContent::anHtmlFileIsToldByItsEnding_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<bool>("html");
    QTest::newRow("htm") << u"a.htm"_s << true;
    QTest::newRow("html") << u"a.html"_s << true;
    QTest::newRow("HTML") << u"a.HTML"_s << true;
    QTest::newRow("HTM") << u"a.HTM"_s << true;
    QTest::newRow("no point") << u"ahtm"_s << false;
    QTest::newRow("xhtml") << u"a.xhtml"_s << false;
    QTest::newRow("txt") << u"a.html.txt"_s << false;
}

void TestSignatureContent::anHtmlFileIsToldByItsEnding()
{
    QFETCH(const QString, fileName);
    QFETCH(const bool, html);
    writeFile(m_tree->path(fileName), "<p>Ann");
    setList("a\t" + m_tree->path(fileName).toUtf8() + "\r\n");
    const SignatureText text = signatureText(globals(), u"a"_s);
    QCOMPARE(text.html, html);
    QCOMPARE(text.text, u"<p>Ann"_s);
}

void TestSignatureContent::aMessageGetsNothingFromAFileThatIsGoneOrNoText()
{
    const QString path = m_tree->path(u"signature.txt"_s);
    setList("a\t" + path.toUtf8() + "\r\nblank\t\r\nshort\r\n");
    QVERIFY(!signatureText(globals(), u"a"_s).found);
    QVERIFY(!signatureText(globals(), u"blank"_s).found);
    QVERIFY(!signatureText(globals(), u"short"_s).found);
    QVERIFY(!signatureText(globals(), u"in neither place"_s).found);
    QVERIFY(QDir().mkdir(path));
    QVERIFY(!signatureText(globals(), u"a"_s).found);
    QVERIFY(QDir().rmdir(path));
    QCOMPARE(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
    QVERIFY(!signatureText(globals(), u"a"_s).found);
    QVERIFY(QFile::remove(path));
    writeFile(path, QByteArray("a\0b", 3));
    QVERIFY(!signatureText(globals(), u"a"_s).found);
    writeFile(path, "x");
    QVERIFY(signatureText(globals(), u"a"_s).found);
    QCOMPARE(::truncate(QFile::encodeName(path).constData(), 1 << 30), 0);
    QVERIFY(!signatureText(globals(), u"a"_s).found);
}

void TestSignatureContent::theFirstSignatureHasTheNumberZero()
{
    QCOMPARE(newSignatureName({}), u"Signature #0"_s);
}

void TestSignatureContent::theFirstFreeNumberIsTakenAndTheNumberOfARenamedOneIsFree()
{
    QCOMPARE(newSignatureName({u"Signature #0"_s}), u"Signature #1"_s);
    QCOMPARE(newSignatureName({u"x"_s, u"Signature #2"_s, u"Signature #1"_s}), u"Signature #3"_s);
    QCOMPARE(newSignatureName({u"renamed"_s, u"Signature #2"_s}), u"Signature #1"_s);
    QCOMPARE(newSignatureName({u"signature #1"_s}), u"Signature #1"_s);
}

void TestSignatureContent::withAThousandNumbersTakenThereIsNoName()
{
    QStringList taken;
    for (int number = 1; number < 1000; ++number) {
        taken.append(u"Signature #"_s + QString::number(number));
    }
    QCOMPARE(newSignatureName(taken), u"Signature #1000"_s);
    taken.append(u"Signature #1000"_s);
    QCOMPARE(newSignatureName(taken), QString());
}

void TestSignatureContent::namesAreThoseOfAllLines()
{
    setList("b\t/b.txt\r\na\t\r\n\r\nshort\r\nb\t\r\n");
    QCOMPARE(signatureNames(globals()), (QStringList{u"b"_s, u"a"_s, u""_s, u"short"_s, u"b"_s}));
}

QTEST_GUILESS_MAIN(TestSignatureContent)
#include "test_signaturecontent.moc"
