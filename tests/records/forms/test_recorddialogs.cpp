#include "core/texts.h"
#include "quillon/files/settingsfile.h"
#include "recorddialogfixture.h"
#include "records/forms/fieldboxes.h"

#include <QAccessible>
#include <QComboBox>
#include <QLabel>
#include <QRadioButton>
#include <QRegularExpression>

using namespace Qt::StringLiterals;
using namespace corvane;
using Mode = RecordDialog::Mode;

namespace {

/// Where the three forms differ in what is tested for all of them.
struct FormFacts {
    QString name;
    QString record; ///< can be saved as it stands
    QStringList boxes;
    QString saveAndAdd;
    QString help;
    QStringList keys; ///< letters that belong to a button, each with that button
};

QList<FormFacts> allForms()
{
    const QStringList boxes = {u"txt(0)"_s, u"txt(1)"_s, u"txt(2)"_s, u"txt(3)"_s};
    return {{u"frmPubSMTP"_s,
             u"mail\t25\tN\tY\tu\tsecret word\tn\ta@b.example\tr\tc@d.example\t/SAEND"_s,
             boxes + QStringList{u"txt(4)"_s, u"txt(5)"_s, u"txt(6)"_s, u"txt(7)"_s},
             u"sbtSA"_s,
             u"sbtHelp"_s,
             {u"A sbtSA"_s, u"C sbtSC"_s}},
            {u"frmPubProxy"_s,
             u"Socks5\tproxy\t1080\tY\tu\tsecret word\t/PSEND"_s,
             boxes,
             u"sbtSA"_s,
             u"sbtHelp"_s,
             {u"A sbtSA"_s, u"C sbtSC"_s}},
            {u"frmPubSender"_s,
             u"n\ta@b.example\tr"_s,
             {u"txtDisp"_s, u"txtEmail"_s, u"txtRemark"_s},
             u"sbt(0)"_s,
             u"sbt(3)"_s,
             {u"S sbt(0)"_s, u"C sbt(1)"_s}}};
}

QString languageSource()
{
    return QStringLiteral(TEST_SOURCE_DIR) + u"/../../../language/en"_s;
}

/// What a label or a button reads; empty for another control.
QString captionOf(const QWidget *control)
{
    if (const auto *label = qobject_cast<const QLabel *>(control)) {
        return label->text();
    }
    const auto *button = qobject_cast<const QAbstractButton *>(control);
    return button ? button->text() : QString();
}

/// The letter after a single "&", in upper case, as a text; empty without one.
QString mnemonic(const QWidget *control)
{
    static const QRegularExpression pattern(u"&([^&])"_s);
    return pattern.match(captionOf(control).remove(u"&&"_s)).captured(1).toUpper();
}

QString nameOf(QWidget *control)
{
    return QAccessible::queryAccessibleInterface(control)->text(QAccessible::Name);
}

/// The controls that a user works with.
QList<QWidget *> inputs(const QWidget *form)
{
    QList<QWidget *> controls;
    const QList<QWidget *> all = form->findChildren<QWidget *>();
    for (QWidget *control : all) {
        if (qobject_cast<QLineEdit *>(control) || qobject_cast<QAbstractButton *>(control) ||
            qobject_cast<QComboBox *>(control)) {
            controls.append(control);
        }
    }
    return controls;
}

/// Doubles the application's font while it lives.
class DoubleFont {
public:
    DoubleFont() : m_before(QApplication::font())
    {
        QFont font = m_before;
        font.setPointSizeF(font.pointSizeF() * 2);
        QApplication::setFont(font);
    }
    ~DoubleFont() { QApplication::setFont(m_before); }
    DoubleFont(const DoubleFont &) = delete;
    DoubleFont &operator=(const DoubleFont &) = delete;

private:
    QFont m_before;
};

} // namespace

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
    void f1AndTheButtonOpenTheHelpOnceThereIsOne();
    void withoutATaskNothingIsSaved();
    void aListThatCannotBeAskedHoldsNoDuplicate();
    void aTranslatedCaptionLeavesTheModeAlone();
    void mnemonicsAreUniqueAndTheKeysBelongToTheirButtons();
    void everyControlHasANameForAssistiveTools();
    void everyControlHasAToolTip();
    void aPasswordIsReadByNobody();
    void everyTextOfTheLanguageFileHasItsControl();
    void withoutALanguageFileTheDialogsReadTheSame();
    void withADoubleFontTheDialogsFitASmallScreen();
    void theDialogsCanBeResizedAndNothingIsCutOff();
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

void TestRecordDialogs::f1AndTheButtonOpenTheHelpOnceThereIsOne()
{
    for (const FormFacts &facts : allForms()) {
        RecordDialogFixture d(facts.name);
        d.show();
        QVERIFY(!d.button(facts.help)->isEnabled());
        QTest::keyClick(d.dialog(), Qt::Key_F1); // nothing to open
        d.forms.unload(facts.name);

        int opened = 0;
        d.help = [&opened] { ++opened; };
        d.show();
        QTest::keyClick(d.dialog()->focusWidget(), Qt::Key_F1);
        QCOMPARE(opened, 1);
        d.click(facts.help);
        QCOMPARE(opened, 2);
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

void TestRecordDialogs::aListThatCannotBeAskedHoldsNoDuplicate()
{
    for (const FormFacts &facts : allForms()) {
        RecordDialogFixture d(facts.name);
        QStringList saved;
        d.dialog()->begin({Mode::Add, facts.record, {}, [&saved](const QString &line) { saved.append(line); }});
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

void TestRecordDialogs::mnemonicsAreUniqueAndTheKeysBelongToTheirButtons()
{
    setLanguageFolder(languageSource());
    for (const FormFacts &facts : allForms()) {
        RecordDialogFixture d(facts.name);
        QStringList letters;
        const QList<QWidget *> controls = d.dialog()->findChildren<QWidget *>();
        for (const QWidget *control : controls) {
            if (const QString letter = mnemonic(control); !letter.isEmpty()) {
                QVERIFY2(!letters.contains(letter), qPrintable(facts.name + u' ' + control->objectName()));
                letters.append(letter);
            }
        }
        QVERIFY(letters.size() >= facts.boxes.size() + 4);
        for (const QString &key : facts.keys) {
            QCOMPARE(mnemonic(d.button(key.section(u' ', 1))), key.section(u' ', 0, 0));
        }
    }
}

void TestRecordDialogs::everyControlHasANameForAssistiveTools()
{
    for (const FormFacts &facts : allForms()) {
        RecordDialogFixture d(facts.name);
        QStringList names;
        for (QWidget *control : inputs(d.dialog())) {
            QString name = nameOf(control);
            if (name.isEmpty()) {
                const auto labels = QAccessible::queryAccessibleInterface(control)->relations(QAccessible::Label);
                name = labels.isEmpty() ? QString() : labels.constFirst().first->text(QAccessible::Name);
            }
            QVERIFY2(!name.isEmpty(), qPrintable(control->objectName()));
            QVERIFY2(!names.contains(name), qPrintable(name));
            names.append(name);
        }
    }
}

void TestRecordDialogs::everyControlHasAToolTip()
{
    for (const FormFacts &facts : allForms()) {
        RecordDialogFixture d(facts.name);
        for (const QWidget *control : inputs(d.dialog())) {
            QVERIFY2(!control->toolTip().isEmpty(), qPrintable(control->objectName()));
        }
    }
}

void TestRecordDialogs::aPasswordIsReadByNobody()
{
    const QString secret = u"secret word"_s;
    for (const QString &name : {u"frmPubSMTP"_s, u"frmPubProxy"_s}) {
        const QList<FormFacts> forms = allForms();
        const auto facts = std::find_if(forms.begin(), forms.end(), [&](const FormFacts &f) { return f.name == name; });
        RecordDialogFixture d(name);
        d.begin(Mode::Edit, facts->record);
        QCOMPARE(d.txt(3)->text(), secret);
        QCOMPARE(d.txt(3)->echoMode(), QLineEdit::Password);
        QVERIFY(!d.txt(3)->displayText().contains(secret));
        QVERIFY(!d.dialog()->windowTitle().contains(secret));
        const QList<QWidget *> controls = d.dialog()->findChildren<QWidget *>();
        for (QWidget *control : controls) {
            QVERIFY(!control->toolTip().contains(secret));
            QAccessibleInterface *seen = QAccessible::queryAccessibleInterface(control);
            for (const QAccessible::Text part :
                 {QAccessible::Name, QAccessible::Description, QAccessible::Value, QAccessible::Help}) {
                QVERIFY(!seen->text(part).contains(secret));
            }
        }
        d.txt(3)->selectAll();
        QApplication::clipboard()->setText(u"kept"_s);
        d.txt(3)->copy();
        QCOMPARE(QApplication::clipboard()->text(), u"kept"_s);
    }
}

void TestRecordDialogs::everyTextOfTheLanguageFileHasItsControl()
{
    const quillon::SettingsFile tips(languageSource() + u"/tips.dll"_s);
    setLanguageFolder(languageSource());
    for (const FormFacts &facts : allForms()) {
        RecordDialogFixture d(facts.name);
        const QStringList keys = tips.keys(facts.name);
        for (const QString &key : keys) {
            auto *control = d.dialog()->findChild<QWidget *>(key.section(u'.', 0, 0));
            QVERIFY2(control, qPrintable(key));
            QCOMPARE(key.endsWith(u".tip"_s) ? control->toolTip() : captionOf(control), tips.value(facts.name, key));
        }
        // And each control has its texts there.
        for (const QWidget *control : inputs(d.dialog())) {
            QVERIFY2(keys.contains(control->objectName() + u".tip"_s), qPrintable(control->objectName()));
        }
        const QList<QWidget *> controls = d.dialog()->findChildren<QWidget *>();
        for (const QWidget *control : controls) {
            QVERIFY2(captionOf(control).isEmpty() || keys.contains(control->objectName()),
                     qPrintable(control->objectName()));
        }
    }
}

void TestRecordDialogs::withoutALanguageFileTheDialogsReadTheSame()
{
    const auto captions = [] {
        QStringList texts;
        for (const FormFacts &facts : allForms()) {
            RecordDialogFixture d(facts.name);
            texts.append(d.dialog()->windowTitle());
            const QList<QWidget *> widgets = d.dialog()->findChildren<QWidget *>();
            for (const QWidget *widget : widgets) {
                texts.append(widget->toolTip());
                texts.append(captionOf(widget));
            }
        }
        return texts;
    };
    setLanguageFolder(u"/nowhere"_s);
    const QStringList designed = captions();
    setLanguageFolder(languageSource());
    QCOMPARE(captions(), designed);
}

void TestRecordDialogs::withADoubleFontTheDialogsFitASmallScreen()
{
    QList<QSize> sizes;
    for (const FormFacts &facts : allForms()) {
        RecordDialogFixture d(facts.name);
        sizes.append(d.dialog()->sizeHint());
    }
    const DoubleFont font;
    for (const FormFacts &facts : allForms()) {
        RecordDialogFixture d(facts.name);
        d.show();
        const QSize size = d.dialog()->size();
        QVERIFY2(size.width() <= 1024 && size.height() <= 768 - 60, // a title bar and a task bar are there, too
                 qPrintable(u"%1: %2x%3"_s.arg(facts.name).arg(size.width()).arg(size.height())));
        QVERIFY(d.dialog()->sizeHint().height() > sizes.takeFirst().height()); // it grew with the font
        for (const QWidget *control : inputs(d.dialog())) {
            QVERIFY2(control->height() >= control->minimumSizeHint().height(), qPrintable(control->objectName()));
        }
    }
}

void TestRecordDialogs::theDialogsCanBeResizedAndNothingIsCutOff()
{
    for (const FormFacts &facts : allForms()) {
        RecordDialogFixture d(facts.name);
        QWidget *window = d.dialog();
        d.show();
        for (const QSize size : {window->minimumSizeHint(), window->sizeHint(), QSize(1400, 900)}) {
            window->resize(size);
            QCoreApplication::processEvents();
            QCOMPARE(window->size(), size);
            const QList<QWidget *> widgets = window->findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly);
            for (const QWidget *widget : widgets) {
                QVERIFY2(window->rect().contains(widget->geometry()), qPrintable(widget->objectName()));
                if (!captionOf(widget).isEmpty()) {
                    QVERIFY2(widget->width() >= widget->minimumSizeHint().width(), qPrintable(widget->objectName()));
                }
            }
        }
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

QTEST_MAIN(TestRecordDialogs)
#include "test_recorddialogs.moc"
