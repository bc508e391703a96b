#include "quillon/fault.h"
#include "recorddialogfixture.h"
#include "recordforms.h"
#include "records/forms/fieldboxes.h"

using namespace Qt::StringLiterals;
using namespace corvane;
using Mode = RecordDialog::Mode;

class TestRecordDialogs : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aPastedTabBecomesABlankInEachBox();
    void aPastedLineEndBecomesOneBlank_data();
    void aPastedLineEndBecomesOneBlank();
    void theCaretStaysWhereThePasteEnded();
    void aBlankedTabFillsTheOtherBoxesWithTheBlank();
    void noTabReachesARecord();
    void aLongTextIsNotCut();
    void eachBoxThatGetsTheFocusIsSelected();
    void enterAndEscapeDoNothing();
    void f1AndTheButtonOpenTheHelp();
    void aHelpThatIsNotSetIsAFaultByItsForm();
    void withoutATaskNothingIsSaved();
    void whatCouldNotBeWrittenStaysInTheDialog();
    void aRecordToCompleteBeginsInItsFirstEmptyBox();
    void anEditThatMeetsAnotherRecordIsStopped();
    void aListThatCannotBeAskedHoldsNoDuplicate();
    void aTranslatedCaptionLeavesTheModeAlone();
    void portsCountAsTheirValue_data();
    void portsCountAsTheirValue();
};

void TestRecordDialogs::aPastedTabBecomesABlankInEachBox()
{
    for (const FormFacts &facts : allForms()) {
        RecordDialogFixture d(facts.name);
        for (const QString &name : facts.boxes) {
            QLineEdit *box = d.box(name);
            box->clear();
            ExpectedPrompts prompts;
            const bool isPort = facts.name != "frmPubSender"_L1 && name == "txt(1)"_L1;
            if (isPort) {
                prompts.expectBox(u"PORT_LIMIT"_s, 64, quillon::BoxAnswer::Ok, std::nullopt,
                                  [box] { QCOMPARE(box->text(), u"one two"_s); });
            }
            paste(box, u"one\ttwo"_s);
            QCOMPARE(box->text(), isPort ? (facts.name == "frmPubSMTP"_L1 ? u"25"_s : u"1080"_s) : u"one two"_s);
        }
    }
}

void TestRecordDialogs::aPastedLineEndBecomesOneBlank_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("line feed") << u"one\ntwo"_s;
    QTest::newRow("carriage return") << u"one\rtwo"_s;
    QTest::newRow("both") << u"one\r\ntwo"_s;
    QTest::newRow("line separator") << u"one\u2028two"_s;
    QTest::newRow("paragraph separator") << u"one\u2029two"_s;
    QTest::newRow("next line") << u"one\u0085two"_s;
    QTest::newRow("null") << u"one"_s + QChar() + u"two"_s;
}

void TestRecordDialogs::aPastedLineEndBecomesOneBlank()
{
    QFETCH(QString, text);
    RecordDialogFixture d(u"frmPubSender"_s);
    d.box(u"txtRemark"_s)->insert(text);
    QCOMPARE(d.box(u"txtRemark"_s)->text(), u"one two"_s);
}

void TestRecordDialogs::theCaretStaysWhereThePasteEnded()
{
    RecordDialogFixture d(u"frmPubSender"_s);
    QLineEdit *box = d.box(u"txtRemark"_s);
    box->setText(u"before after"_s);
    box->setCursorPosition(7);
    paste(box, u"a\tb\r\nc "_s);
    QCOMPARE(box->text(), u"before a b c after"_s);
    QCOMPARE(box->cursorPosition(), 13);
}

void TestRecordDialogs::aBlankedTabFillsTheOtherBoxesWithTheBlank()
{
    RecordDialogFixture d(u"frmPubSMTP"_s);
    d.begin();
    paste(d.txt(4), u"Ann\tLee"_s);
    QCOMPARE(d.txt(6)->text(), u"Ann Lee"_s);
}

void TestRecordDialogs::noTabReachesARecord()
{
    for (const FormFacts &facts : allForms()) {
        RecordDialogFixture d(facts.name);
        d.begin(Mode::Add, facts.record);
        d.box(facts.boxes.constLast())->setText(QString());
        d.box(facts.boxes.constFirst())->setText(u"a\tb\nc"_s);
        d.click(facts.saveAndAdd);
        QCOMPARE(d.saved.size(), 1);
        QCOMPARE(d.saved.constFirst().count(u'\t'), facts.record.count(u'\t'));
        QVERIFY(d.saved.constFirst().contains(u"a b c"_s));
    }
}

void TestRecordDialogs::aLongTextIsNotCut()
{
    const QString text = u"0123456789"_s.repeated(10'000);
    RecordDialogFixture d(u"frmPubSender"_s);
    d.begin(Mode::Edit, u"n\ta@b.example\t"_s + text);
    d.click(u"sbt(1)"_s);
    QCOMPARE(d.saved, QStringList{u"n\ta@b.example\t"_s + text});
}

void TestRecordDialogs::eachBoxThatGetsTheFocusIsSelected()
{
    for (const FormFacts &facts : allForms()) {
        RecordDialogFixture d(facts.name);
        d.begin(Mode::Edit, facts.record);
        d.show();
        for (const QString &name : facts.boxes) {
            d.focus(d.button(facts.saveAndAdd));
            d.box(name)->deselect();
            d.focus(d.box(name));
            QVERIFY(!d.box(name)->text().isEmpty());
            // A password box tells nobody what is selected in it, but how much.
            QCOMPARE(d.box(name)->selectionLength(), static_cast<int>(d.box(name)->text().size()));
        }
    }
}

void TestRecordDialogs::enterAndEscapeDoNothing()
{
    const ExpectedPrompts prompts;
    for (const FormFacts &facts : allForms()) {
        RecordDialogFixture d(facts.name);
        d.begin(Mode::Edit, facts.record);
        d.show();
        for (const QString &name : facts.boxes + QStringList{facts.saveAndAdd}) {
            d.focus(d.get<QWidget>(name));
            for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Escape}) {
                QTest::keyClick(d.dialog()->focusWidget(), key);
            }
        }
        QVERIFY(d.dialog()->isVisible());
        QVERIFY(d.saved.isEmpty());
    }
    QVERIFY(prompts.log().isEmpty());
}

void TestRecordDialogs::f1AndTheButtonOpenTheHelp()
{
    for (const FormFacts &facts : allForms()) {
        RecordDialogFixture d(facts.name);
        int opened = 0;
        d.help = [&opened] { ++opened; };
        d.show();
        QTest::keyClick(d.dialog()->focusWidget(), Qt::Key_F1);
        QCOMPARE(opened, 1);
        d.click(facts.help);
        QCOMPARE(opened, 2);
    }
}

void TestRecordDialogs::aHelpThatIsNotSetIsAFaultByItsForm()
{
    for (const FormFacts &facts : allForms()) {
        RecordDialogFixture d(facts.name);
        d.help = {};
        QTest::ignoreMessage(QtWarningMsg, qPrintable(u"hook not set: "_s + facts.name + u"::help"_s));
        const int before = quillon::faultCount();
        d.click(facts.help);
        QCOMPARE(quillon::faultCount() - before, 1);
    }
}

void TestRecordDialogs::withoutATaskNothingIsSaved()
{
    const ExpectedPrompts prompts;
    for (const FormFacts &facts : allForms()) {
        RecordDialogFixture d(facts.name);
        d.dialog()->begin({Mode::Add, facts.record, {}, {}});
        d.click(facts.saveAndAdd);
        QVERIFY(!d.box(facts.boxes.constFirst())->text().isEmpty()); // what was entered stays
    }
}

void TestRecordDialogs::anEditThatMeetsAnotherRecordIsStopped()
{
    QStringList messages = {u"SMTP_EXISTS"_s, u"PROXY_EXISTS"_s, u"SEND_EXISTS"_s};
    for (const FormFacts &facts : allForms()) {
        RecordDialogFixture d(facts.name);
        d.taken = [](const QString &) { return true; };
        d.begin(Mode::Edit, facts.record);
        ExpectedPrompts prompts;
        prompts.expectBox(messages.takeFirst(), 64);
        d.click(facts.saveAndAdd);
        QCOMPARE(d.asked, QStringList{facts.record});
        QVERIFY(d.saved.isEmpty());
    }
}

void TestRecordDialogs::aListThatCannotBeAskedHoldsNoDuplicate()
{
    for (const FormFacts &facts : allForms()) {
        RecordDialogFixture d(facts.name);
        QStringList saved;
        d.dialog()->begin({Mode::Add, facts.record, {}, [&saved](const QString &line) {
                               saved.append(line);
                               return true;
                           }});
        d.click(facts.saveAndAdd);
        QCOMPARE(saved, QStringList{facts.record});
    }
}

void TestRecordDialogs::aTranslatedCaptionLeavesTheModeAlone()
{
    for (const FormFacts &facts : allForms()) {
        RecordDialogFixture d(facts.name);
        d.begin(Mode::Edit, facts.record);
        d.dialog()->setWindowTitle(u"Konto hinzufügen"_s);
        d.click(facts.saveAndAdd);
        QCOMPARE(d.dialog()->mode(), Mode::Edit);
    }
}

void TestRecordDialogs::portsCountAsTheirValue_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<quint64>("value");
    QTest::newRow("a number") << u"587"_s << quint64(587);
    QTest::newRow("zeros before it") << u"0025"_s << quint64(25);
    QTest::newRow("blanks around it") << u" 25 "_s << quint64(25);
    QTest::newRow("a large one") << u"4294967321"_s << quint64(4294967321);
    QTest::newRow("one too large for any number") << u"18446744073709551641"_s << quint64(0);
    QTest::newRow("nothing") << QString() << quint64(0);
    QTest::newRow("a word") << u"smtp"_s << quint64(0);
    QTest::newRow("a sign") << u"-25"_s << quint64(0);
    QTest::newRow("another script") << u"٢٥"_s << quint64(0);
}

void TestRecordDialogs::portsCountAsTheirValue()
{
    QFETCH(QString, text);
    QFETCH(quint64, value);
    QCOMPARE(portValue(text), value);
}

void TestRecordDialogs::whatCouldNotBeWrittenStaysInTheDialog()
{
    RecordDialogFixture d(u"frmPubSender"_s);
    d.begin(RecordDialogFixture::Mode::Add);
    d.show();
    d.stores = false;
    d.box(u"txtDisp"_s)->setText(u"Ann"_s);
    d.box(u"txtEmail"_s)->setText(u"ann@x.example"_s);
    for (const QString &button : {u"sbt(0)"_s, u"sbt(1)"_s}) {
        d.click(button);
        QVERIFY(d.dialog()->isVisible());
        QCOMPARE(d.box(u"txtDisp"_s)->text(), u"Ann"_s);
        QCOMPARE(d.box(u"txtEmail"_s)->text(), u"ann@x.example"_s);
    }
    QCOMPARE(d.saved.size(), 2); // it was tried
    d.stores = true;
    d.click(u"sbt(0)"_s);
    QCOMPARE(d.box(u"txtEmail"_s)->text(), QString());
}

void TestRecordDialogs::aRecordToCompleteBeginsInItsFirstEmptyBox()
{
    const auto focused = [](const QString &line, bool completes) {
        RecordDialogFixture d(u"frmPubSMTP"_s);
        RecordDialogFixture::Task task;
        task.line = line;
        task.completes = completes;
        d.dialog()->begin(task);
        return d.dialog()->focusWidget()->objectName();
    };
    const QString preset = u"smtp.x.example\t465\tS\tY\tann@x.example\t\tAnn\tann@x.example\tAnn\t\t/SAEND"_s;
    QCOMPARE(focused(preset, true), u"txt(3)"_s);
    QCOMPARE(focused(preset, false), u"txt(0)"_s); // a copy begins at its start
    // A box that cannot be written in is passed over.
    QCOMPARE(focused(QString(preset).replace(u"S\tY"_s, u"S\tN"_s), true), u"txt(7)"_s);
    QCOMPARE(focused(u"s\t1\tS\tY\tu\tp\tn\ta@x.example\tn\ta@x.example\t/SAEND"_s, true), u"txt(0)"_s);
}

QTEST_MAIN(TestRecordDialogs)
#include "test_recorddialogs.moc"
