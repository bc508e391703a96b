#include "composer/richeditor.h"
#include "mainfixture.h"
#include "records/signaturerecords.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QSignalSpy>

using namespace Qt::StringLiterals;
using namespace corvane;
using Field = Message::Field;

/// The window over signatures that are kept in files, as the program puts the two together.
class SignatureMain : public MainFixture {
public:
    explicit SignatureMain(const QByteArray &list = {}, const QHash<QString, QByteArray> &files = {},
                           const std::function<void(SettingsMemory &)> &settings = {})
        : MainFixture([&](MainFixture &main) {
              QByteArray lines = list;
              writeFile(main.globals().paths.signsFile, lines.replace("FOLDER", main.tree.path().toUtf8()));
              for (auto file = files.cbegin(); file != files.cend(); ++file) {
                  const bool stored = file.key().startsWith("sign_"_L1);
                  writeFile(stored ? main.globals().paths.signs + u'/' + file.key() : main.tree.path(file.key()),
                            file.value());
              }
              if (settings) {
                  settings(main.globals().settings);
              }
          })
    {
        window->setSignatureMenu(signatureNames(globals()), globals().settings.text(Setting::DefaultSignature));
    }

    [[nodiscard]] QPlainTextEdit *body() const { return get<QPlainTextEdit>(u"utbContent"_s); }
    /// The captions as they are seen, from item 1 on.
    [[nodiscard]] QStringList captions() const
    {
        QStringList seen;
        for (const QAction *item : get<QMenu>(u"menis"_s)->actions()) {
            if (item->objectName() != "menissa(0)"_L1) {
                QString text = item->text();
                seen.append(text.replace(u"&&"_s, u"&"_s));
            }
        }
        return seen;
    }
    void pick(int index) const { item(u"menissa(%1)"_s.arg(index))->trigger(); }
};

class TestSignatures : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { QGuiApplication::clipboard()->clear(); }

    void withoutASignatureTheMenuIsDisabledAndTellsSo();
    void signaturesStandInTheMenuInTheOrderOfTheFile();
    void theDefaultSaysSoInTheMenu();
    void aDefaultThatIsNotListedMarksNothing();
    void aTextIsInsertedInPlaceOfTheSelection();
    void aPickGivesTheFocusToTheContent();
    void theClipboardHoldsTheTextAfterwards();
    void theTextOfAFileIsInserted();
    void anHtmlFileLosesItsTagsAndFetchesNothing();
    void aStoredTextIsInsertedAsItIsThoughItHasTags();
    void aSignatureWhoseFileIsGoneInsertsNothing();
    void theMarkOfTheDefaultIsCutFromTheCaption();
    void aNameThatItselfEndsLikeTheMarkIsLookedUpWithoutIt();
    void undoTakesItBackInOneStep();
    void insertingMarksTheMessageAsChanged();
    void theDefaultIsAddedToANewMessage();
    void theDefaultIsAddedToANewMessage_data();
    void anAddedHtmlFileIsTextInOneBodyAndSourceInTheOther();
    void theClipboardIsLeftAloneWhenASignatureIsAdded();
    void aDefaultThatIsGoneLeavesTheNewMessageEmpty();
};

void TestSignatures::withoutASignatureTheMenuIsDisabledAndTellsSo()
{
    const SignatureMain main;
    QVERIFY(!main.get<QMenu>(u"menis"_s)->menuAction()->isEnabled());
    QVERIFY(main.item(u"menissa(0)"_s)->isVisible());
    main.window->setSignatureMenu({u"a"_s}, {});
    QVERIFY(main.get<QMenu>(u"menis"_s)->menuAction()->isEnabled());
    QVERIFY(!main.item(u"menissa(0)"_s)->isVisible());
    main.window->setSignatureMenu({}, u"a"_s);
    QVERIFY(!main.get<QMenu>(u"menis"_s)->menuAction()->isEnabled());
    QVERIFY(main.item(u"menissa(0)"_s)->isVisible());
    QVERIFY(!main.window->findChild<QAction *>(u"menissa(1)"_s));
}

void TestSignatures::signaturesStandInTheMenuInTheOrderOfTheFile()
{
    const SignatureMain main("Tom & Ann\t\r\n&b\t/b.txt\r\na\t\r\n");
    QCOMPARE(main.captions(), (QStringList{u"Tom & Ann"_s, u"&b"_s, u"a"_s}));
    QVERIFY(main.item(u"menissa(3)"_s)->isEnabled());
    main.window->setSignatureMenu({u"a"_s}, {});
    QCOMPARE(main.captions(), QStringList{u"a"_s});
}

void TestSignatures::theDefaultSaysSoInTheMenu()
{
    const SignatureMain main("a\t\r\nB & C\t\r\nb & c\t\r\n", {},
                             [](SettingsMemory &settings) { settings.set(Setting::DefaultSignature, u"B & C"_s); });
    QCOMPARE(main.captions(), (QStringList{u"a"_s, u"B & C (default)"_s, u"b & c"_s}));
}

void TestSignatures::aDefaultThatIsNotListedMarksNothing()
{
    const SignatureMain main("a\t\r\n\r\n");
    QCOMPARE(main.captions(), (QStringList{u"a"_s, u""_s}));
    main.window->setSignatureMenu({u"a"_s}, u"A"_s);
    QCOMPARE(main.captions(), QStringList{u"a"_s});
}

void TestSignatures::aTextIsInsertedInPlaceOfTheSelection()
{
    const SignatureMain main("a\t\r\n", {{u"sign_a.dll"_s, "Gr\xC3\xBC\xC3\x9F"
                                                           "e\r\nAnn"}});
    main.body()->setPlainText(u"Dear you, me"_s);
    QTextCursor cursor = main.body()->textCursor();
    cursor.setPosition(10);
    cursor.setPosition(12, QTextCursor::KeepAnchor);
    main.body()->setTextCursor(cursor);
    main.pick(1);
    QCOMPARE(main.window->message().text(Field::PlainContent), u"Dear you, Grüße\r\nAnn"_s);
}

void TestSignatures::aPickGivesTheFocusToTheContent()
{
    const SignatureMain main("a\t\r\ngone\t\r\n", {{u"sign_a.dll"_s, "Ann"}});
    auto *subject = main.get<QLineEdit>(u"utbSubject"_s);
    for (const int item : {1, 2}) {
        subject->setFocus();
        QTRY_VERIFY(subject->hasFocus());
        main.pick(item);
        QTRY_VERIFY(main.body()->hasFocus());
    }
    QCOMPARE(subject->text(), QString());
    QCOMPARE(main.body()->toPlainText(), u"Ann"_s);
}

void TestSignatures::theClipboardHoldsTheTextAfterwards()
{
    const SignatureMain main("a\t\r\nempty\t\r\n", {{u"sign_a.dll"_s, "Ann\r\nLee"}, {u"sign_empty.dll"_s, ""}});
    QGuiApplication::clipboard()->setText(u"the user's"_s);
    main.pick(2); // nothing to paste
    QCOMPARE(QGuiApplication::clipboard()->text(), u"the user's"_s);
    main.pick(1);
    QCOMPARE(QGuiApplication::clipboard()->text(), u"Ann\nLee"_s);
    QCOMPARE(main.body()->toPlainText(), u"Ann\nLee"_s);
}

void TestSignatures::theTextOfAFileIsInserted()
{
    const SignatureMain main("a\tFOLDER/a.txt\r\n", {{u"a.txt"_s, "<b>caf\xE9</b>"}});
    main.pick(1);
    QCOMPARE(main.body()->toPlainText(), u"<b>café</b>"_s);
}

void TestSignatures::anHtmlFileLosesItsTagsAndFetchesNothing()
{
    const SignatureMain main("a\tFOLDER/a.HTM\r\n",
                             {{u"a.HTM"_s, "<html><head><title>Title</title><style>@import 'file:FOLDER/x.css'; b "
                                           "{color:red}</style><link rel=stylesheet href='file:/dev/zero'></head><body>"
                                           "<p>Ann&nbsp;&amp; <b>Lee</b></p><img src='file:/dev/zero'><p>Smith<br>"
                                           "<a href='https://example.com'>Site</a></body></html>"}});
    main.pick(1);
    QStringList lines = main.body()->toPlainText().split(u'\n');
    lines.removeAll(QString());
    QCOMPARE(lines, (QStringList{u"Ann & Lee"_s, u"Smith"_s, u"Site"_s}));
}

void TestSignatures::aStoredTextIsInsertedAsItIsThoughItHasTags()
{
    const SignatureMain main("a.html\t\r\n", {{u"sign_a.html.dll"_s, "<b>Ann</b>"}});
    main.pick(1);
    QCOMPARE(main.body()->toPlainText(), u"<b>Ann</b>"_s);
}

void TestSignatures::aSignatureWhoseFileIsGoneInsertsNothing()
{
    const SignatureMain main("a\tFOLDER/gone.txt\r\nb\tFOLDER/gone.html\r\nc\t\r\nshort\r\n");
    main.body()->setPlainText(u"selected"_s);
    main.body()->selectAll();
    QGuiApplication::clipboard()->setText(u"the user's"_s);
    for (const int item : {1, 2, 3, 4}) {
        main.pick(item); // and no message: the queue of expected ones is empty
        QCOMPARE(main.body()->toPlainText(), u"selected"_s);
    }
    QCOMPARE(QGuiApplication::clipboard()->text(), u"the user's"_s);
}

void TestSignatures::theMarkOfTheDefaultIsCutFromTheCaption()
{
    const SignatureMain main("a\t\r\n", {{u"sign_a.dll"_s, "Ann"}}, [](SettingsMemory &settings) {
        settings.set(Setting::DefaultSignature, u"a"_s);
        settings.set(Setting::AutoAddSignature, u"False"_s);
    });
    QCOMPARE(main.captions(), QStringList{u"a (default)"_s});
    main.pick(1);
    QCOMPARE(main.body()->toPlainText(), u"Ann"_s);
}

void TestSignatures::aNameThatItselfEndsLikeTheMarkIsLookedUpWithoutIt()
{
    const SignatureMain main(
        "a\t\r\na (default)\t\r\nb (default)\t\r\n",
        {{u"sign_a.dll"_s, "[a]"}, {u"sign_a (default).dll"_s, "[a default]"}, {u"sign_b (default).dll"_s, "[b]"}});
    main.pick(2);
    QCOMPARE(main.body()->toPlainText(), u"[a]"_s);
    main.pick(3); // there is no signature of the shorter name
    QCOMPARE(main.body()->toPlainText(), u"[a]"_s);
    main.window->setSignatureMenu({u"a (default)"_s}, u"a (default)"_s);
    main.pick(1); // of two marks one is cut
    QCOMPARE(main.body()->toPlainText(), u"[a][a default]"_s);
}

void TestSignatures::undoTakesItBackInOneStep()
{
    const SignatureMain main("a\t\r\nb\tFOLDER/b.html\r\n",
                             {{u"sign_a.dll"_s, "Ann\r\n\r\nLee"}, {u"b.html"_s, "<p>1<p>2"}});
    main.body()->setFocus();
    QTest::keyClicks(main.body(), u"typed"_s);
    for (const int item : {1, 2}) {
        main.pick(item);
        QVERIFY(main.body()->toPlainText().size() > 5);
        main.item(u"meneu"_s)->trigger();
        QCOMPARE(main.body()->toPlainText(), u"typed"_s);
    }
}

void TestSignatures::insertingMarksTheMessageAsChanged()
{
    SignatureMain main("a\t\r\n", {{u"sign_a.dll"_s, "Ann"}});
    QVERIFY(!main.message().pblnChanged);
    main.pick(1);
    QVERIFY(main.message().pblnChanged);
}

void TestSignatures::theDefaultIsAddedToANewMessage_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("autoAdd");
    QTest::addColumn<QString>("content");
    QTest::newRow("on") << u"a"_s << u"True"_s << u"Ann\r\nLee"_s;
    QTest::newRow("anything but False") << u"a"_s << u""_s << u"Ann\r\nLee"_s;
    QTest::newRow("false in small letters") << u"a"_s << u"false"_s << u"Ann\r\nLee"_s;
    QTest::newRow("off") << u"a"_s << u"False"_s << u""_s;
    QTest::newRow("none is the default") << u""_s << u"True"_s << u""_s;
    QTest::newRow("a blank default") << u"  "_s << u"True"_s << u""_s;
    QTest::newRow("a linked text file") << u"file"_s << u"True"_s << u"from <b>file</b>"_s;
    QTest::newRow("a name that ends like the mark") << u"a (default)"_s << u"True"_s << u"own"_s;
}

void TestSignatures::theDefaultIsAddedToANewMessage()
{
    QFETCH(const QString, name);
    QFETCH(const QString, autoAdd);
    QFETCH(const QString, content);
    SignatureMain main("a\t\r\nfile\tFOLDER/a.txt\r\n",
                       {{u"sign_a.dll"_s, "Ann\r\nLee"},
                        {u"sign_  .dll"_s, "of a blank name"},
                        {u"sign_a (default).dll"_s, "own"},
                        {u"a.txt"_s, "from <b>file</b>"}},
                       [&](SettingsMemory &settings) {
                           settings.set(Setting::DefaultSignature, name);
                           settings.set(Setting::AutoAddSignature, autoAdd);
                       });
    QCOMPARE(main.message().text(Field::PlainContent), content);
    QCOMPARE(main.message().text(Field::RichContent), content);
    QVERIFY(!main.message().pblnChanged);
    QVERIFY(!main.body()->document()->isUndoAvailable());
}

void TestSignatures::anAddedHtmlFileIsTextInOneBodyAndSourceInTheOther()
{
    SignatureMain main("a\tFOLDER/a.html\r\n", {{u"a.html"_s, "<p>Ann <b>Lee</b></p>"}},
                       [](SettingsMemory &settings) { settings.set(Setting::DefaultSignature, u"a"_s); });
    QCOMPARE(main.message().text(Field::PlainContent), u"Ann Lee"_s);
    QCOMPARE(main.message().text(Field::RichContent), u"<p>Ann <b>Lee</b></p>"_s);
    QVERIFY(!main.message().pblnChanged);
}

void TestSignatures::theClipboardIsLeftAloneWhenASignatureIsAdded()
{
    QGuiApplication::clipboard()->setText(u"the user's"_s);
    const SignatureMain main("a\tFOLDER/a.html\r\n", {{u"a.html"_s, "<p>Ann"}},
                             [](SettingsMemory &settings) { settings.set(Setting::DefaultSignature, u"a"_s); });
    QCOMPARE(main.body()->toPlainText(), u"Ann"_s);
    QCOMPARE(QGuiApplication::clipboard()->text(), u"the user's"_s);
}

void TestSignatures::aDefaultThatIsGoneLeavesTheNewMessageEmpty()
{
    SignatureMain main("a\tFOLDER/gone.txt\r\n", {},
                       [](SettingsMemory &settings) { settings.set(Setting::DefaultSignature, u"a"_s); });
    QCOMPARE(main.message().text(Field::PlainContent), QString());
    QVERIFY(!main.message().pblnChanged);
}

QTEST_MAIN(TestSignatures)
#include "test_signatures.moc"
