#include "quillon/forms/formregistry.h"
#include "quillon/forms/qtprompts.h"
#include "quillon/forms/tabbedform.h"

#include <QApplication>
#include <QColorDialog>
#include <QDialog>
#include <QFileDialog>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QWindow>

#include <functional>

using namespace Qt::StringLiterals;
using quillon::BoxAnswer;
using quillon::FileFilter;

namespace {

/// What a box was like while it was on the screen.
struct Seen {
    QString title;
    QString text;
    QString information;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QStringList buttons;
    QString defaultButton;
    Qt::TextFormat format = Qt::AutoText;
    QSize size;
};

QString nameOf(QMessageBox *box, QAbstractButton *button)
{
    switch (box->standardButton(button)) {
    case QMessageBox::Ok:
        return u"Ok"_s;
    case QMessageBox::Cancel:
        return u"Cancel"_s;
    case QMessageBox::Yes:
        return u"Yes"_s;
    case QMessageBox::No:
        return u"No"_s;
    default:
        return u"?"_s;
    }
}

Seen look(QMessageBox *box)
{
    Seen seen{box->windowTitle(),         box->text(), box->informativeText(), box->icon(), {}, {}, box->textFormat(),
              box->frameGeometry().size()};
    for (const QMessageBox::StandardButton button :
         {QMessageBox::Ok, QMessageBox::Yes, QMessageBox::No, QMessageBox::Cancel}) {
        if (box->button(button)) {
            seen.buttons.append(nameOf(box, box->button(button)));
        }
    }
    seen.defaultButton = box->defaultButton() ? nameOf(box, box->defaultButton()) : QString();
    return seen;
}

/// Runs @p act on the dialog of that kind that is modal once the event loop turns; one of another kind is closed, so
/// that the test fails and does not hang.
template <typename Dialog> void meet(std::function<void(Dialog *)> act)
{
    QTimer::singleShot(0, qApp, [act = std::move(act)] {
        QWidget *modal = QApplication::activeModalWidget();
        if (auto *dialog = qobject_cast<Dialog *>(modal)) {
            act(dialog);
        } else {
            QTest::qFail("another window than the expected one is modal", __FILE__, __LINE__);
            if (auto *other = qobject_cast<QDialog *>(modal)) {
                other->done(0);
            }
        }
    });
}

class TabForm : public QDialog, public quillon::TabbedForm {
    Q_OBJECT

public:
    void showTab(int tab) override { shownTab = tab; }
    int shownTab = -1;
};

} // namespace

class TestQtPrompts : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void eachStyleHasItsIconAndButtons_data();
    void eachStyleHasItsIconAndButtons();
    void theFirstButtonIsTheDefault();
    void theAnswerIsTheButtonThatWasPressed();
    void escapePressesCancelWhereThereIsOne();
    void escapeDoesNothingInAYesNoBox();
    void escapeClosesABoxWithOneButton();
    void closingDoesNothingInAYesNoBox();
    void anAddressInABoxShowsAsWritten();
    void aLongTextStaysOnTheScreen_data();
    void aLongTextStaysOnTheScreen();
    void aBoxOutlivesTheWindowItBelongsTo();
    void inputGivesTheLineOrNothingOnCancel();
    void inputShowsItsPromptAsWritten();
    void filtersKeepTheirNamesAndPatterns_data();
    void filtersKeepTheirNamesAndPatterns();
    void openingFilesGivesTheChosenPaths();
    void savingStartsWithTheDefaultName();
    void aFolderIsChosenOrNothing();
    void aColourComesAsBlueGreenRed();
    void aModalFormIsShownOnItsTabAndUnloadedAfter();
    void aModalFormBelongsAboveTheWindowInFront();
    void aModalFormOpenedTwiceIsShownOnce();
    void aModalFormThatIsUnloadedMeanwhileEndsTheWait();
    void aModalWindowThatIsNoDialogIsWaitedForToo();

private:
    std::unique_ptr<quillon::FormRegistry> m_forms;
    std::unique_ptr<quillon::QtPrompts> m_prompts;
};

void TestQtPrompts::init()
{
    QCoreApplication::setApplicationName(u"Corvane"_s);
    m_forms = std::make_unique<quillon::FormRegistry>();
    m_prompts = std::make_unique<quillon::QtPrompts>(*m_forms);
}

void TestQtPrompts::cleanup()
{
    m_prompts.reset();
    m_forms.reset();
}

void TestQtPrompts::eachStyleHasItsIconAndButtons_data()
{
    QTest::addColumn<int>("style");
    QTest::addColumn<QMessageBox::Icon>("icon");
    QTest::addColumn<QStringList>("buttons");
    QTest::newRow("0") << 0 << QMessageBox::NoIcon << QStringList{u"Ok"_s};
    QTest::newRow("16") << 16 << QMessageBox::Critical << QStringList{u"Ok"_s};
    QTest::newRow("33") << 33 << QMessageBox::Question << QStringList{u"Ok"_s, u"Cancel"_s};
    QTest::newRow("35") << 35 << QMessageBox::Question << QStringList{u"Yes"_s, u"No"_s, u"Cancel"_s};
    QTest::newRow("36") << 36 << QMessageBox::Question << QStringList{u"Yes"_s, u"No"_s};
    QTest::newRow("48") << 48 << QMessageBox::Warning << QStringList{u"Ok"_s};
    QTest::newRow("64") << 64 << QMessageBox::Information << QStringList{u"Ok"_s};
    QTest::newRow("65") << 65 << QMessageBox::Information << QStringList{u"Ok"_s, u"Cancel"_s};
}

void TestQtPrompts::eachStyleHasItsIconAndButtons()
{
    QFETCH(int, style);
    Seen seen;
    meet<QMessageBox>([&seen](QMessageBox *box) {
        seen = look(box);
        box->defaultButton()->click();
    });
    m_prompts->box({u"KEY"_s, u"A text."_s, QString(), style});
    QCOMPARE(seen.title, u"Corvane"_s);
    QCOMPARE(seen.text, u"A text."_s);
    QTEST(seen.icon, "icon");
    QTEST(seen.buttons, "buttons");
}

void TestQtPrompts::theFirstButtonIsTheDefault()
{
    for (const auto &[style, first] : {std::pair(64, u"Ok"_s), std::pair(35, u"Yes"_s), std::pair(36, u"Yes"_s),
                                       std::pair(33, u"Ok"_s), std::pair(65, u"Ok"_s)}) {
        Seen seen;
        meet<QMessageBox>([&seen](QMessageBox *box) {
            seen = look(box);
            QTest::keyClick(box, Qt::Key_Return);
        });
        const BoxAnswer answer = m_prompts->box({u"KEY"_s, u"A text."_s, QString(), style});
        QCOMPARE(seen.defaultButton, first);
        QCOMPARE(answer, first == u"Yes" ? BoxAnswer::Yes : BoxAnswer::Ok);
    }
}

void TestQtPrompts::theAnswerIsTheButtonThatWasPressed()
{
    const QList<std::tuple<int, QMessageBox::StandardButton, BoxAnswer>> cases = {
        {35, QMessageBox::Yes, BoxAnswer::Yes},       {35, QMessageBox::No, BoxAnswer::No},
        {35, QMessageBox::Cancel, BoxAnswer::Cancel}, {36, QMessageBox::No, BoxAnswer::No},
        {65, QMessageBox::Cancel, BoxAnswer::Cancel}, {16, QMessageBox::Ok, BoxAnswer::Ok},
    };
    for (const auto &[style, button, answer] : cases) {
        meet<QMessageBox>([press = button](QMessageBox *box) { box->button(press)->click(); });
        QCOMPARE(m_prompts->box({u"KEY"_s, u"A text."_s, QString(), style}), answer);
    }
}

void TestQtPrompts::escapePressesCancelWhereThereIsOne()
{
    for (const int style : {33, 35, 65}) {
        meet<QMessageBox>([](QMessageBox *box) { QTest::keyClick(box, Qt::Key_Escape); });
        QCOMPARE(m_prompts->box({u"KEY"_s, u"A text."_s, QString(), style}), BoxAnswer::Cancel);
    }
}

void TestQtPrompts::escapeDoesNothingInAYesNoBox()
{
    bool stayed = false;
    meet<QMessageBox>([&stayed](QMessageBox *box) {
        QTest::keyClick(box, Qt::Key_Escape);
        QTest::keyClick(box->button(QMessageBox::No), Qt::Key_Escape);
        stayed = box->isVisible();
        box->button(QMessageBox::Yes)->click();
    });
    QCOMPARE(m_prompts->box({u"KEY"_s, u"A text."_s, QString(), 36}), BoxAnswer::Yes);
    QVERIFY(stayed);
}

void TestQtPrompts::escapeClosesABoxWithOneButton()
{
    meet<QMessageBox>([](QMessageBox *box) { QTest::keyClick(box, Qt::Key_Escape); });
    QCOMPARE(m_prompts->box({u"KEY"_s, u"A text."_s, QString(), 48}), BoxAnswer::Ok);
}

void TestQtPrompts::closingDoesNothingInAYesNoBox()
{
    bool stayed = false;
    meet<QMessageBox>([&stayed](QMessageBox *box) {
        box->close();
        stayed = box->isVisible();
        box->button(QMessageBox::No)->click();
    });
    QCOMPARE(m_prompts->box({u"KEY"_s, u"A text."_s, QString(), 36}), BoxAnswer::No);
    QVERIFY(stayed);
}

void TestQtPrompts::anAddressInABoxShowsAsWritten()
{
    Seen seen;
    meet<QMessageBox>([&seen](QMessageBox *box) {
        seen = look(box);
        box->accept();
    });
    m_prompts->box({u"KEY"_s, u"'<b>Ann</b> <a@b.c>' is not an address."_s, u"<b>Ann</b> <a@b.c>"_s, 48});
    QCOMPARE(seen.text, u"'<b>Ann</b> <a@b.c>' is not an address."_s);
    QCOMPARE(seen.format, Qt::PlainText);
}

void TestQtPrompts::aLongTextStaysOnTheScreen_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("words") << u"word "_s.repeated(2000);
    QTest::newRow("one word") << QString(10000, u'x');
    QTest::newRow("lines") << u"a line\n"_s.repeated(1500);
}

void TestQtPrompts::aLongTextStaysOnTheScreen()
{
    QFETCH(QString, text);
    Seen seen;
    QSize room;
    bool buttonInside = false;
    meet<QMessageBox>([&](QMessageBox *box) {
        seen = look(box);
        room = box->screen()->availableSize();
        QWidget *ok = box->button(QMessageBox::Ok);
        buttonInside = box->rect().contains(QRect(ok->mapTo(box, QPoint()), ok->size()));
        box->accept();
    });
    m_prompts->box({QString(), text, QString(), 16});
    QCOMPARE(seen.text, text);
    QVERIFY2(
        seen.size.width() <= room.width() && seen.size.height() <= room.height(),
        qPrintable(
            u"%1x%2 on %3x%4"_s.arg(seen.size.width()).arg(seen.size.height()).arg(room.width()).arg(room.height())));
    QVERIFY(buttonInside);
}

void TestQtPrompts::aBoxOutlivesTheWindowItBelongsTo()
{
    auto *window = new QDialog;
    window->setModal(true);
    window->show();
    QVERIFY(QTest::qWaitForWindowActive(window));
    meet<QMessageBox>([window](QMessageBox *) { delete window; });
    QCOMPARE(m_prompts->box({u"KEY"_s, u"A text."_s, QString(), 35}), BoxAnswer::Cancel);
}

void TestQtPrompts::inputGivesTheLineOrNothingOnCancel()
{
    QString offered;
    QString title;
    meet<QInputDialog>([&](QInputDialog *dialog) {
        offered = dialog->textValue();
        title = dialog->windowTitle();
        dialog->setTextValue(u"typed"_s);
        dialog->accept();
    });
    QCOMPARE(m_prompts->input({u"KEY"_s, u"Name?"_s, u"default"_s}), u"typed"_s);
    QCOMPARE(offered, u"default"_s);
    QCOMPARE(title, u"Corvane"_s);

    meet<QInputDialog>([](QInputDialog *dialog) { dialog->reject(); });
    QCOMPARE(m_prompts->input({u"KEY"_s, u"Name?"_s, u"default"_s}), QString());
}

void TestQtPrompts::inputShowsItsPromptAsWritten()
{
    Qt::TextFormat format = Qt::AutoText;
    QString prompt;
    meet<QInputDialog>([&](QInputDialog *dialog) {
        format = dialog->findChild<QLabel *>()->textFormat();
        prompt = dialog->labelText();
        dialog->reject();
    });
    m_prompts->input({u"KEY"_s, u"Value for <b>Ann</b>?"_s, QString()});
    QCOMPARE(prompt, u"Value for <b>Ann</b>?"_s);
    QCOMPARE(format, Qt::PlainText);
}

void TestQtPrompts::filtersKeepTheirNamesAndPatterns_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("filter");
    QTest::newRow("one") << u"Text Files (*.txt)"_s << u"*.txt"_s << u"Text Files (*.txt)"_s;
    QTest::newRow("two") << u"Text Files (*.txt)"_s << u"*.txt; *.text"_s << u"Text Files (*.txt *.text)"_s;
    QTest::newRow("words in brackets") << u"Text Files (Tab Separated, *.txt)"_s << u"*.txt"_s
                                       << u"Text Files [Tab Separated] (*.txt)"_s;
    QTest::newRow("two brackets") << u"Text Files (Tab Separated) (*.txt)"_s << u"*.txt"_s
                                  << u"Text Files [Tab Separated] (*.txt)"_s;
    QTest::newRow("all") << u"All Files (*.*)"_s << u"*.*"_s << u"All Files (*)"_s;
}

void TestQtPrompts::filtersKeepTheirNamesAndPatterns()
{
    QFETCH(QString, name);
    QFETCH(QString, pattern);
    QTEST(quillon::qtFileFilter(FileFilter{name, pattern}), "filter");
}

void TestQtPrompts::openingFilesGivesTheChosenPaths()
{
    const QTemporaryDir folder;
    QStringList paths;
    for (const QString &name : {u"a.txt"_s, u"b.text"_s}) {
        QFile file(folder.filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        paths.append(file.fileName());
    }
    const auto choose = [&](QFileDialog::FileMode expected, const QStringList &files) {
        meet<QFileDialog>([=](QFileDialog *dialog) {
            QCOMPARE(dialog->windowTitle(), u"Choose"_s);
            QCOMPARE(dialog->fileMode(), expected);
            QCOMPARE(dialog->nameFilters(), QStringList{u"Text Files (*.txt *.text)"_s});
            QStringList quoted;
            for (const QString &file : files) {
                quoted.append(u'"' + QFileInfo(file).fileName() + u'"');
            }
            dialog->findChild<QLineEdit *>(u"fileNameEdit"_s)->setText(quoted.join(u' '));
            QMetaObject::invokeMethod(dialog, "accept");
        });
    };
    const QList<FileFilter> filters = {{u"Text Files (*.txt)"_s, u"*.txt; *.text"_s}};
    choose(QFileDialog::ExistingFiles, paths);
    QCOMPARE(m_prompts->openFiles({u"Choose"_s, filters, folder.path(), true}), paths);
    meet<QFileDialog>([](QFileDialog *dialog) { dialog->reject(); });
    QCOMPARE(m_prompts->openFiles({u"Choose"_s, filters, folder.path(), false}), QStringList());
}

void TestQtPrompts::savingStartsWithTheDefaultName()
{
    const QTemporaryDir folder;
    QString offered;
    meet<QFileDialog>([&offered](QFileDialog *dialog) {
        offered = dialog->findChild<QLineEdit *>(u"fileNameEdit"_s)->text();
        QCOMPARE(dialog->acceptMode(), QFileDialog::AcceptSave);
        QMetaObject::invokeMethod(dialog, "accept");
    });
    const QString path = folder.filePath(u"list.txt"_s);
    QCOMPARE(m_prompts->saveFile({u"Specify File"_s, {{u"Text Files (*.txt)"_s, u"*.txt"_s}}, path, false}), path);
    QCOMPARE(offered, u"list.txt"_s);
}

void TestQtPrompts::aFolderIsChosenOrNothing()
{
    const QTemporaryDir folder;
    meet<QFileDialog>([&folder](QFileDialog *dialog) {
        QCOMPARE(dialog->fileMode(), QFileDialog::Directory);
        dialog->setDirectory(folder.path());
        dialog->findChild<QLineEdit *>(u"fileNameEdit"_s)->setText(folder.path());
        QMetaObject::invokeMethod(dialog, "accept");
    });
    QCOMPARE(m_prompts->selectFolder(u"Folder"_s), folder.path());
    meet<QFileDialog>([](QFileDialog *dialog) { dialog->reject(); });
    QCOMPARE(m_prompts->selectFolder(u"Folder"_s), QString());
}

void TestQtPrompts::aColourComesAsBlueGreenRed()
{
    meet<QColorDialog>([](QColorDialog *dialog) {
        dialog->setCurrentColor(QColor(0x12, 0x34, 0x56));
        dialog->accept();
    });
    QCOMPARE(m_prompts->chooseColor(), 0x563412L);
    meet<QColorDialog>([](QColorDialog *dialog) { dialog->reject(); });
    QCOMPARE(m_prompts->chooseColor(), -1L);
}

void TestQtPrompts::aModalFormIsShownOnItsTabAndUnloadedAfter()
{
    m_forms->add(u"frmPubOptions"_s, [] { return new TabForm; });
    int tab = -1;
    bool modal = false;
    meet<TabForm>([&](TabForm *form) {
        tab = form->shownTab;
        modal = form->isModal();
        form->close();
    });
    m_prompts->showModalForm(u"frmPubOptions"_s, 1);
    QCOMPARE(tab, 1);
    QVERIFY(modal);
    QVERIFY(!m_forms->isLoaded(u"frmPubOptions"_s));

    meet<TabForm>([&tab](TabForm *form) {
        tab = form->shownTab;
        form->hide(); // as a dialog's own reject would
    });
    m_prompts->showModalForm(u"frmPubOptions"_s, -1);
    QCOMPARE(tab, -1);
    QVERIFY(!m_forms->isLoaded(u"frmPubOptions"_s));
}

void TestQtPrompts::aModalFormBelongsAboveTheWindowInFront()
{
    QWidget main;
    main.show();
    main.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&main));
    m_forms->add(u"frmPubOptions"_s, [] { return new TabForm; });
    const QWindow *below = nullptr;
    meet<TabForm>([&](TabForm *form) {
        below = form->windowHandle()->transientParent();
        form->close();
    });
    m_prompts->showModalForm(u"frmPubOptions"_s, 0);
    QCOMPARE(below, main.windowHandle());
}

void TestQtPrompts::aModalFormOpenedTwiceIsShownOnce()
{
    int made = 0;
    m_forms->add(u"frmPubOptions"_s, [&made] {
        ++made;
        return new TabForm;
    });
    bool stillThere = false;
    meet<TabForm>([&](TabForm *form) {
        m_prompts->showModalForm(u"frmPubOptions"_s, 3); // would hang here if it waited for a second one
        stillThere = form->isVisible() && m_forms->isLoaded(u"frmPubOptions"_s);
        form->close();
    });
    m_prompts->showModalForm(u"frmPubOptions"_s, 1);
    QCOMPARE(made, 1);
    QVERIFY(stillThere);
}

void TestQtPrompts::aModalFormThatIsUnloadedMeanwhileEndsTheWait()
{
    m_forms->add(u"frmPubOptions"_s, [] { return new TabForm; });
    meet<TabForm>([&](TabForm *) { m_forms->unload(u"frmPubOptions"_s); });
    m_prompts->showModalForm(u"frmPubOptions"_s, 1);
    QVERIFY(!m_forms->isLoaded(u"frmPubOptions"_s));
}

void TestQtPrompts::aModalWindowThatIsNoDialogIsWaitedForToo()
{
    m_forms->add(u"frmPubAbout"_s, [] { return new QWidget; });
    bool modal = false;
    meet<QWidget>([&modal](QWidget *form) {
        modal = form->isModal();
        form->close();
    });
    m_prompts->showModalForm(u"frmPubAbout"_s, -1);
    QVERIFY(modal);
    QVERIFY(!m_forms->isLoaded(u"frmPubAbout"_s));
}

QTEST_MAIN(TestQtPrompts)
#include "test_qtprompts.moc"
