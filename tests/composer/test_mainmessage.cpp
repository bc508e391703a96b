#include "composer/richeditor.h"
#include "mainfixture.h"
#include "quillon/forms/windowservices.h"

#include <QDateEdit>
#include <QSignalSpy>
#include <QTimeEdit>

using namespace Qt::StringLiterals;
using namespace corvane;
using Field = Message::Field;
using Choice = Message::Choice;

class TestMainMessage : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void loadFillsANewMessage();
    void loadStepsRunInTheirOrder();
    void loadTakesTheAddressOfTheDefaultAccount();
    void loadWithoutADefaultLeavesTheAccountAsItIs();
    void aRichDefaultShowsPlainTextWhileThereIsNoRichEditor();
    void customDateShowsThePresentMoment();
    void lineEndsLeaveTheControlsAsCrLf();
    void aFieldOfOneLineHoldsOneLine();
    void noBreakSpacesAndOtherUnicodeSurvive();
    void theRichDocumentIsAReadableAndWritableProperty();
    void aDocumentsSourceKeepsUnicodesSeparators();
    void textChangesMarkTheMessageAsChanged();
    void textChangesWhileOptionsAreOpenMarkNothing();
    void checkMarksAndDateMarkNothing();
    void walkingTheHiddenEncodingsMarksNothing();
    void encodingsWithAnUnderscoreAreNotOffered();
    void anEncodingFromTheMenuGoesToTheBox();
    void aPickedEncodingGetsTheRadioMark();
    void anUnknownEncodingHasAnEmptyDisplayName();
    void anEmptyEncodingSettingIsUtf8();
    void priorityIsOneOfThree();
    void aMacroMenuKeepsItsCaptionsAsTheyAre();
    void theTitleIsTheWindows();
};

void TestMainMessage::loadFillsANewMessage()
{
    MainFixture main;
    QCOMPARE(main.window->windowTitle(), u"Corvane - New Message"_s);
    QVERIFY(main.message().isActual(Choice::Sender));
    QVERIFY(main.message().isActual(Choice::ReplyReceiver));
    QVERIFY(main.message().isActual(Choice::Date));
    QCOMPARE(main.message().format(), Message::Format::Plain);
    QCOMPARE(main.message().priority(), Message::Priority::Normal);
    QCOMPARE(main.message().text(Field::Encoding), u"Unicode (UTF-8)"_s);
    QVERIFY(!main.message().receipt());
    QVERIFY(!main.message().oneByOne());
    QVERIFY(!main.message().pblnChanged);
    QVERIFY(main.view().mblnReady);
    for (const Field field : {Field::To, Field::CC, Field::BCC, Field::Subject, Field::PlainContent}) {
        QCOMPARE(main.message().text(field), QString());
    }
    QCOMPARE(main.combo(4)->currentText(), u"Courier New"_s);
    QCOMPARE(main.combo(5)->currentText(), u"10"_s);
    QCOMPARE(main.get<QPlainTextEdit>(u"utbContent"_s)->font().pointSize(), 10);
    QCOMPARE(main.panel(), u" Ready."_s);
}

void TestMainMessage::loadStepsRunInTheirOrder()
{
    QStringList steps;
    bool changedBeforeTheEnd = false;
    bool ready = true;
    MainFixture main([&](MainFixture &m) {
        m.hooks.loadLists = [&] {
            steps << u"lists"_s;
            ready = m.view().mblnReady;
        };
        m.globals().settings.set(Setting::DefaultSignature, u"Formal"_s);
        m.hooks.findSignature = [&](const QString &name) {
            steps << u"signature "_s + name;
            return SignatureText{true, false, u"Ann"_s};
        };
        m.hooks.checkAccount = [&] {
            steps << u"account"_s;
            changedBeforeTheEnd = m.message().pblnChanged;
        };
        m.hooks.readPrompts = [&] { steps << u"prompts"_s; };
    });
    QCOMPARE(steps, QStringList({u"lists"_s, u"signature Formal"_s, u"account"_s, u"prompts"_s}));
    QVERIFY2(!ready, "the window is being filled");
    QVERIFY2(changedBeforeTheEnd, "the filling is a change, which the end of the loading takes back");
    QVERIFY(!main.message().pblnChanged);
}

void TestMainMessage::loadTakesTheAddressOfTheDefaultAccount()
{
    MainFixture main([](MainFixture &m) { m.addAccounts(); });
    QCOMPARE(main.message().text(Field::Account), u"ann@example.com"_s);
    QCOMPARE(main.message().text(Field::Sender), u"Ann Lee <ann@example.com>"_s);
    QCOMPARE(main.message().text(Field::ReplyReceiver), u"Ann Lee <ann@example.com>"_s);
}

void TestMainMessage::loadWithoutADefaultLeavesTheAccountAsItIs()
{
    MainFixture main([](MainFixture &m) {
        m.hooks.loadLists = [&m] { m.message().setText(Field::Account, u"kept@example.com"_s); };
    });
    QCOMPARE(main.message().text(Field::Account), u"kept@example.com"_s);
}

void TestMainMessage::aRichDefaultShowsPlainTextWhileThereIsNoRichEditor()
{
    MainFixture main([](MainFixture &m) { m.globals().settings.set(Setting::Format, u"Rich"_s); });
    QCOMPARE(main.message().format(), Message::Format::Plain);
    QVERIFY(main.get(u"utbContent"_s)->isVisible());
    QVERIFY(!main.get(u"sst"_s)->isVisible());
    QVERIFY(!main.button(u"opt(8)"_s)->isEnabled());
    QVERIFY(!main.item(u"menor"_s)->isEnabled());
    QVERIFY(main.item(u"menop"_s)->isChecked());
}

void TestMainMessage::customDateShowsThePresentMoment()
{
    MainFixture main;
    auto *date = main.get<QDateEdit>(u"dtp(0)"_s);
    auto *time = main.get<QTimeEdit>(u"dtp(1)"_s);
    QVERIFY(!date->isEnabled());
    QVERIFY(!time->isEnabled());
    main.clock.present = QDateTime(QDate(2027, 12, 31), QTime(23, 59, 58));
    main.button(u"opt(5)"_s)->click();
    QVERIFY(date->isEnabled());
    QVERIFY(time->isEnabled());
    QCOMPARE(main.message().customDate(), QDate(2027, 12, 31));
    QCOMPARE(main.message().customTime(), QTime(23, 59, 58));
    main.clock.present = QDateTime(QDate(2028, 1, 1), QTime(0, 0, 3));
    main.button(u"opt(4)"_s)->click();
    QVERIFY(!date->isEnabled());
    QVERIFY(!time->isEnabled());
    // The way back to the actual date leaves what stands there.
    QCOMPARE(main.message().customDate(), QDate(2027, 12, 31));
    QCOMPARE(main.message().customTime(), QTime(23, 59, 58));
    main.button(u"opt(5)"_s)->click();
    QCOMPARE(main.message().customDate(), QDate(2028, 1, 1));
    QCOMPARE(main.message().customTime(), QTime(0, 0, 3));
}

void TestMainMessage::lineEndsLeaveTheControlsAsCrLf()
{
    MainFixture main;
    const QString mixed = u"one\ntwo\r\nthree\rfour"_s;
    const QString expected = u"one\r\ntwo\r\nthree\r\nfour"_s;
    for (const Field field :
         {Field::To, Field::CC, Field::BCC, Field::PlainContent, Field::Source, Field::RichContent}) {
        main.message().setText(field, mixed);
        QCOMPARE(main.message().text(field), expected);
    }
    auto *to = main.recipients(0);
    to->clear();
    to->setFocus();
    QTest::keyClicks(to, u"a"_s);
    QTest::keyClick(to, Qt::Key_Return);
    QTest::keyClicks(to, u"b"_s);
    QTest::keyClick(to, Qt::Key_Return, Qt::ShiftModifier);
    QTest::keyClicks(to, u"c"_s);
    QCOMPARE(main.message().text(Field::To), u"a\r\nb\r\nc"_s);
}

void TestMainMessage::aFieldOfOneLineHoldsOneLine()
{
    MainFixture main;
    main.message().setText(Field::Subject, u"Hello\r\nBcc: x@example.com"_s);
    QCOMPARE(main.message().text(Field::Subject), u"Hello Bcc: x@example.com"_s);
    main.button(u"opt(1)"_s)->click();
    main.message().setText(Field::Sender, u"Ann\n<ann@example.com>"_s);
    QVERIFY(!main.message().text(Field::Sender).contains(u'\n'));
}

void TestMainMessage::noBreakSpacesAndOtherUnicodeSurvive()
{
    MainFixture main;
    const QString text = u"12\u00A0000 € – \U0001F426 \u200Fא\t|"_s;
    for (const Field field : {Field::To, Field::Subject, Field::PlainContent, Field::Source, Field::RichContent}) {
        main.message().setText(field, text);
        QCOMPARE(main.message().text(field), text);
    }
}

void TestMainMessage::theRichDocumentIsAReadableAndWritableProperty()
{
    MainFixture main;
    for (const QString &name : {u"dhe"_s, u"dheTmp"_s}) {
        auto *editor = main.get<RichEditor>(name);
        QVERIFY(editor->setProperty("DocumentHTML", u"<p>a</p>\n<p>b</p>"_s));
        QCOMPARE(editor->property("DocumentHTML").toString(), u"<p>a</p>\r\n<p>b</p>"_s);
    }
    QCOMPARE(main.message().text(Field::RichContent), u"<p>a</p>\r\n<p>b</p>"_s);
}

void TestMainMessage::aDocumentsSourceKeepsUnicodesSeparators()
{
    MainFixture main;
    main.message().setText(Field::RichContent, u"<p>a\u2028b\u2029c</p>"_s);
    QCOMPARE(main.message().text(Field::RichContent), u"<p>a\u2028b\u2029c</p>"_s);
    main.message().setText(Field::PlainContent, u"a\u2028b\u2029c"_s); // where they are the box's own line ends
    QCOMPARE(main.message().text(Field::PlainContent), u"a\r\nb\r\nc"_s);
}

void TestMainMessage::textChangesMarkTheMessageAsChanged()
{
    MainFixture main;
    for (const Field field : {Field::Account, Field::Sender, Field::ReplyReceiver, Field::Encoding, Field::To,
                              Field::CC, Field::BCC, Field::Subject, Field::PlainContent, Field::Source}) {
        main.message().pblnChanged = false;
        main.message().setText(field, u"new text"_s);
        QVERIFY2(main.message().pblnChanged, qPrintable(QString::number(static_cast<int>(field))));
    }
    for (const int box : {4, 5}) {
        main.message().pblnChanged = false;
        main.combo(box)->setEditText(u"24"_s);
        QVERIFY(main.message().pblnChanged);
    }
}

void TestMainMessage::textChangesWhileOptionsAreOpenMarkNothing()
{
    MainFixture main;
    main.optionsOpen = true;
    main.message().setText(Field::Account, u"other@example.com"_s);
    main.message().setText(Field::Sender, u"other@example.com"_s);
    QVERIFY(!main.message().pblnChanged);
    main.optionsOpen = false;
    main.message().setText(Field::Sender, u"third@example.com"_s);
    QVERIFY(main.message().pblnChanged);
}

void TestMainMessage::checkMarksAndDateMarkNothing()
{
    MainFixture main;
    main.item(u"mentr"_s)->trigger();
    main.item(u"menosh(0)"_s)->trigger();
    main.message().setOneByOne(true);
    main.button(u"opt(5)"_s)->click();
    main.message().setCustomDateTime(QDate(2030, 1, 1), QTime(1, 2, 3));
    QVERIFY(main.message().receipt());
    QVERIFY(!main.message().pblnChanged);
}

void TestMainMessage::walkingTheHiddenEncodingsMarksNothing()
{
    MainFixture main;
    for (int i = 0; i < main.message().encodingCount(); ++i) {
        main.message().selectEncoding(i);
    }
    QVERIFY(!main.message().pblnChanged);
}

void TestMainMessage::encodingsWithAnUnderscoreAreNotOffered()
{
    MainFixture main;
    QComboBox *hidden = main.combo(3);
    QVERIFY(hidden->isHidden());
    QStringList offered;
    for (const QString &entry : main.globals().text.GetEncodingList().split(u" || "_s)) {
        if (!entry.startsWith(u'_')) {
            offered.append(entry);
        }
    }
    QVERIFY(offered.size() > 10);
    QCOMPARE(main.message().encodingCount(), offered.size());
    QCOMPARE(main.combo(2)->count(), offered.size());
    for (int i = 0; i < offered.size(); ++i) {
        main.message().selectEncoding(i);
        QCOMPARE(main.message().selectedEncoding(), offered.at(i));
        const QString name = offered.at(i).section(u" | "_s, 1);
        QCOMPARE(main.combo(2)->itemText(i), name);
        QCOMPARE(main.item(u"menoesa(%1)"_s.arg(i + 1))->text(), name);
    }
    QVERIFY(!main.item(u"menoesa(0)"_s)->isVisible());
}

void TestMainMessage::anEncodingFromTheMenuGoesToTheBox()
{
    MainFixture main;
    QAction *second = main.item(u"menoesa(2)"_s);
    second->trigger();
    QCOMPARE(main.message().text(Field::Encoding), second->text());
    int marks = 0;
    for (int i = 1; i <= main.message().encodingCount(); ++i) {
        marks += main.item(u"menoesa(%1)"_s.arg(i))->isChecked() ? 1 : 0;
    }
    QCOMPARE(marks, 1);
    QVERIFY(second->isChecked());
    second->trigger();
    QVERIFY2(second->isChecked(), "picking it again must not take the mark away");
    QVERIFY(main.message().pblnChanged);
    // It stands at a fixed place: item 7 of menu 4.
    QMenuBar *bar = quillon::QuillonWindows().GetMenuHandle(main.window.get());
    QMenu *menu = quillon::QuillonWindows().GetSubMenuHandle(quillon::QuillonWindows().GetSubMenuHandle(bar, 4), 7);
    QVERIFY(menu && menu->actions().contains(second));
}

void TestMainMessage::aPickedEncodingGetsTheRadioMark()
{
    MainFixture main;
    main.combo(2)->setCurrentIndex(3);
    QVERIFY(main.item(u"menoesa(4)"_s)->isChecked());
    main.message().setText(Field::Encoding, u"no such encoding"_s);
    QCOMPARE(main.message().text(Field::Encoding), u"no such encoding"_s);
    QVERIFY(!main.item(u"menoesa(4)"_s)->isChecked());
}

void TestMainMessage::anUnknownEncodingHasAnEmptyDisplayName()
{
    MainFixture main([](MainFixture &m) { m.globals().settings.set(Setting::Encoding, u"UTF-8"_s); });
    QCOMPARE(main.window->EncodingDisplayName(), QString());
    QCOMPARE(main.message().text(Field::Encoding), QString());
    QCOMPARE(main.combo(3)->currentIndex(), main.combo(3)->count() - 1);
}

void TestMainMessage::anEmptyEncodingSettingIsUtf8()
{
    MainFixture main([](MainFixture &m) { m.globals().settings.set(Setting::Encoding, QString()); });
    QCOMPARE(main.message().text(Field::Encoding), u"Unicode (UTF-8)"_s);
    main.globals().settings.set(Setting::Encoding, u"utf-8"_s);
    QCOMPARE(main.window->EncodingDisplayName(), u"Unicode (UTF-8)"_s);
    QVERIFY(main.message().selectedEncoding().startsWith(u"utf-8 | "_s));
}

void TestMainMessage::priorityIsOneOfThree()
{
    MainFixture main;
    main.item(u"menosh(2)"_s)->trigger();
    QCOMPARE(main.message().priority(), Message::Priority::Low);
    QVERIFY(!main.item(u"menosh(1)"_s)->isChecked());
    main.message().setPriority(Message::Priority::High);
    QVERIFY(main.item(u"menosh(0)"_s)->isChecked());
    QVERIFY(!main.item(u"menosh(2)"_s)->isChecked());
    main.window->ResetMessageOptions();
    QCOMPARE(main.message().priority(), Message::Priority::Normal);
}

void TestMainMessage::aMacroMenuKeepsItsCaptionsAsTheyAre()
{
    MainFixture main;
    QVERIFY(!main.get<QMenu>(u"menim"_s)->menuAction()->isVisible());
    main.window->setMacroMenu({u"{A & B}"_s, u"{C}"_s});
    QVERIFY(main.get<QMenu>(u"menim"_s)->menuAction()->isVisible());
    QVERIFY(!main.item(u"menimsa(0)"_s)->isVisible());
    QCOMPARE(main.item(u"menimsa(1)"_s)->data().toString(), u"{A & B}"_s);
    QCOMPARE(main.item(u"menimsa(1)"_s)->text(), u"{A && B}"_s);
    main.window->setMacroMenu({u"{D}"_s});
    QCOMPARE(main.item(u"menimsa(1)"_s)->data().toString(), u"{D}"_s);
    QVERIFY(!main.window->findChild<QAction *>(u"menimsa(2)"_s));
}

void TestMainMessage::theTitleIsTheWindows()
{
    MainFixture main;
    main.view().setTitle(u"Corvane - Edit \"a\""_s);
    QCOMPARE(main.window->windowTitle(), u"Corvane - Edit \"a\""_s);
    QCOMPARE(main.view().title(), u"Corvane - Edit \"a\""_s);
    main.view().setStatusText(u" Working"_s);
    QCOMPARE(main.view().statusText(), u" Working"_s);
    QCOMPARE(main.panel(), u" Working"_s);
}

QTEST_MAIN(TestMainMessage)
#include "test_mainmessage.moc"
