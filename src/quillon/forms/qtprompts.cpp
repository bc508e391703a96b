#include "quillon/forms/qtprompts.h"

#include "quillon/fault.h"
#include "quillon/files/descriptors.h"
#include "quillon/forms/formregistry.h"
#include "quillon/forms/keepabove.h"
#include "quillon/forms/messagebox.h"
#include "quillon/forms/prompttexts.h"
#include "quillon/forms/tabbedform.h"

#include <QApplication>
#include <QColorDialog>
#include <QDialog>
#include <QEvent>
#include <QEventLoop>
#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QRegularExpression>
#include <QScreen>

#include <memory>

using namespace Qt::StringLiterals;

namespace quillon {

namespace {

constexpr int usualLetters = 72; // of an input box

/// The window that a prompt belongs to; none while the program shows no window.
QWidget *owner()
{
    QWidget *modal = QApplication::activeModalWidget();
    return modal ? modal : QApplication::activeWindow();
}

/// Runs a dialog that its owner may delete while it is on the screen; true when it was accepted and is still there.
template <typename Dialog> bool run(const QPointer<Dialog> &dialog)
{
    const int result = dialog->exec();
    return dialog && result == QDialog::Accepted;
}

template <typename Dialog> struct Cleaner {
    QPointer<Dialog> dialog;
    ~Cleaner() { delete dialog; }
};

void startAt(QFileDialog &dialog, const QString &path)
{
    if (path.isEmpty()) {
        return;
    }
    const QFileInfo info(path);
    if (info.isDir()) {
        dialog.setDirectory(path);
        return;
    }
    if (info.absoluteDir().exists() && path.contains(u'/')) {
        dialog.setDirectory(info.absolutePath());
    }
    dialog.selectFile(info.fileName());
}

// A file dialog reads folders in a thread, which ends the program when it finds no descriptor.
bool mayChooseFiles()
{
    constexpr int descriptorsOfADialog = 16;
    if (descriptorsLeft(descriptorsOfADialog)) {
        return true;
    }
    Cleaner<MessageBox> cleaner{new MessageBox(say(prompttexts::tooManyFilesOpen), WarningBox, owner())};
    cleaner.dialog->exec();
    return false;
}

QStringList chooseFiles(const FileRequest &request, QFileDialog::AcceptMode mode, QFileDialog::FileMode files)
{
    if (!mayChooseFiles()) {
        return {};
    }
    Cleaner<QFileDialog> cleaner{new QFileDialog(owner(), request.Title)};
    QFileDialog &dialog = *cleaner.dialog;
    dialog.setAcceptMode(mode);
    dialog.setFileMode(files);
    QStringList filters;
    for (const FileFilter &filter : request.Filters) {
        filters.append(qtFileFilter(filter));
    }
    if (!filters.isEmpty()) {
        dialog.setNameFilters(filters);
    }
    startAt(dialog, request.DefaultPath);
    return run(cleaner.dialog) ? cleaner.dialog->selectedFiles() : QStringList();
}

/// Waits until a window that is no dialog has closed.
void waitForClose(QWidget *form)
{
    class Closed : public QObject {
    public:
        explicit Closed(QEventLoop &loop) : m_loop(loop) {}
        bool eventFilter(QObject *, QEvent *event) override
        {
            if (event->type() == QEvent::Hide) {
                m_loop.quit();
            }
            return false;
        }

    private:
        QEventLoop &m_loop;
    };
    QEventLoop loop;
    Closed closed(loop);
    form->installEventFilter(&closed);
    QObject::connect(form, &QObject::destroyed, &loop, &QEventLoop::quit);
    form->setWindowModality(Qt::ApplicationModal);
    form->show();
    loop.exec();
}

} // namespace

QString qtFileFilter(const FileFilter &filter)
{
    static const QRegularExpression patternInName(u"[,;]?\\s*\\*\\.[\\w*]+"_s);
    static const QRegularExpression emptyBrackets(u"\\s*\\(\\s*\\)\\s*$"_s);
    static const QRegularExpression separator(u"[;\\s]+"_s);
    QString name = filter.Name;
    name.remove(patternInName);
    name.remove(emptyBrackets);
    // Round brackets in the name itself would be read as patterns.
    name.replace(u'(', u'[').replace(u')', u']');
    QStringList patterns = filter.Pattern.split(separator, Qt::SkipEmptyParts);
    patterns.replaceInStrings(u"*.*"_s, u"*"_s);
    return name + u" ("_s + patterns.join(u' ') + u')';
}

BoxAnswer QtPrompts::box(const BoxRequest &request)
{
    Cleaner<MessageBox> cleaner{new MessageBox(request.Text, request.Style, owner())};
    if (!request.Details.isEmpty()) {
        cleaner.dialog->setDetails(request.Details);
    }
    const bool cancels = cleaner.dialog->standardButtons().testFlag(QMessageBox::Cancel);
    const bool asks = cleaner.dialog->standardButtons().testFlag(QMessageBox::No);
    const int button = cleaner.dialog->exec();
    if (!cleaner.dialog || button == 0) {
        // The box went without an answer, because its window did.
        return cancels ? BoxAnswer::Cancel : asks ? BoxAnswer::No : BoxAnswer::Ok;
    }
    return MessageBox::answerOf(button);
}

QString QtPrompts::input(const InputRequest &request)
{
    Cleaner<QInputDialog> cleaner{new QInputDialog(owner())};
    QInputDialog &dialog = *cleaner.dialog;
    dialog.setWindowTitle(QGuiApplication::applicationDisplayName());
    dialog.setInputMode(QInputDialog::TextInput);
    dialog.setLabelText(request.Prompt);
    dialog.setTextValue(request.Default);
    const QList<QLabel *> labels = dialog.findChildren<QLabel *>();
    for (QLabel *label : labels) {
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);
    }
    if (auto *box = dialog.findChild<QLineEdit *>()) {
        // Room for a name with its address, and for more where more is offered.
        const QFontMetrics letters = box->fontMetrics();
        const int wanted = qMax(letters.averageCharWidth() * usualLetters,
                                letters.horizontalAdvance(request.Default) + letters.averageCharWidth() * 4);
        box->setMinimumWidth(qMin(wanted, dialog.screen()->availableSize().width() / 2));
    }
    return run(cleaner.dialog) ? cleaner.dialog->textValue() : QString();
}

QStringList QtPrompts::openFiles(const FileRequest &request)
{
    return chooseFiles(request, QFileDialog::AcceptOpen,
                       request.Many ? QFileDialog::ExistingFiles : QFileDialog::ExistingFile);
}

QString QtPrompts::saveFile(const FileRequest &request)
{
    return chooseFiles(request, QFileDialog::AcceptSave, QFileDialog::AnyFile).value(0);
}

QString QtPrompts::selectFolder(const QString &title)
{
    if (!mayChooseFiles()) {
        return {};
    }
    Cleaner<QFileDialog> cleaner{new QFileDialog(owner(), title)};
    cleaner.dialog->setFileMode(QFileDialog::Directory);
    cleaner.dialog->setOption(QFileDialog::ShowDirsOnly);
    return run(cleaner.dialog) ? cleaner.dialog->selectedFiles().value(0) : QString();
}

long QtPrompts::chooseColor()
{
    Cleaner<QColorDialog> cleaner{new QColorDialog(owner())};
    if (!run(cleaner.dialog)) {
        return -1;
    }
    const QColor color = cleaner.dialog->selectedColor();
    return color.isValid() ? long{color.blue()} << 16 | long{color.green()} << 8 | long{color.red()} : -1;
}

void QtPrompts::showModalForm(const QString &form, int tab)
{
    QWidget *widget = m_forms.form(form);
    if (!widget) {
        return;
    }
    if (widget->isVisible()) {
        widget->raise();
        widget->activateWindow();
        return;
    }
    keepAbove(widget, owner());
    if (auto *tabbed = dynamic_cast<TabbedForm *>(widget); tabbed && tab >= 0) {
        tabbed->showTab(tab);
    }
    if (auto *dialog = qobject_cast<QDialog *>(widget)) {
        dialog->exec();
    } else {
        waitForClose(widget);
    }
    // A form that closed has left the registry by itself; one that was merely hidden is unloaded here.
    if (m_forms.isLoaded(form) && m_forms.form(form) == widget) {
        m_forms.unload(form);
    }
}

} // namespace quillon
