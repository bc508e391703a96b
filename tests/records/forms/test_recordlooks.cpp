#include "core/texts.h"
#include "quillon/files/settingsfile.h"
#include "recorddialogfixture.h"
#include "recordforms.h"
#include "support/doublefont.h"

#include <QAccessible>
#include <QComboBox>
#include <QLabel>
#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace corvane;
using Mode = RecordDialog::Mode;

namespace {

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

} // namespace

class TestRecordLooks : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void mnemonicsAreUniqueAndTheKeysBelongToTheirButtons();
    void everyControlHasANameForAssistiveTools();
    void everyControlHasAToolTip();
    void aPasswordIsReadByNobody();
    void everyTextOfTheLanguageFileHasItsControl();
    void withoutALanguageFileTheDialogsReadTheSame();
    void withADoubleFontTheDialogsFitASmallScreen();
    void theDialogsCanBeResizedAndNothingIsCutOff();
};

void TestRecordLooks::mnemonicsAreUniqueAndTheKeysBelongToTheirButtons()
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

void TestRecordLooks::everyControlHasANameForAssistiveTools()
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

void TestRecordLooks::everyControlHasAToolTip()
{
    for (const FormFacts &facts : allForms()) {
        RecordDialogFixture d(facts.name);
        for (const QWidget *control : inputs(d.dialog())) {
            QVERIFY2(!control->toolTip().isEmpty(), qPrintable(control->objectName()));
        }
    }
}

void TestRecordLooks::aPasswordIsReadByNobody()
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

void TestRecordLooks::everyTextOfTheLanguageFileHasItsControl()
{
    const quillon::SettingsFile tips(languageSource() + u"/tips.dll"_s);
    setLanguageFolder(languageSource());
    for (const FormFacts &facts : allForms()) {
        RecordDialogFixture d(facts.name);
        const QStringList keys = tips.keys(facts.name);
        for (const QString &key : keys) {
            auto *control = d.dialog()->findChild<QWidget *>(key.section(u'.', 0, 0));
            QVERIFY2(control, qPrintable(key));
            if (key.endsWith(u".tip.edit"_s)) {
                d.begin(RecordDialogFixture::Mode::Edit);
                QCOMPARE(control->toolTip(), tips.value(facts.name, key));
                d.begin(RecordDialogFixture::Mode::Add);
                continue;
            }
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

void TestRecordLooks::withoutALanguageFileTheDialogsReadTheSame()
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

void TestRecordLooks::withADoubleFontTheDialogsFitASmallScreen()
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

void TestRecordLooks::theDialogsCanBeResizedAndNothingIsCutOff()
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

QTEST_MAIN(TestRecordLooks)
#include "test_recordlooks.moc"
