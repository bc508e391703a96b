#include "records/forms/signaturetab.h"

#include "core/formnames.h"
#include "core/texts.h"
#include "quillon/forms/arraynames.h"
#include "quillon/forms/boxtext.h"
#include "records/forms/fieldboxes.h"
#include "records/forms/renamedelegate.h"
#include "records/recordtexts.h"
#include "records/signaturerecords.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCoreApplication>
#include <QFileInfo>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QTreeView>

#include <utility>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

enum Button { Add = 0, Rename = 1, Browse = 5, Open = 6, Macro = 7 };
constexpr int normalWindow = 3;

/// A box that cannot be written in looks like the form around it.
void showEnabled(QWidget *box, bool enabled)
{
    box->setEnabled(enabled);
    QPalette colors = box->palette();
    colors.setColor(QPalette::Base, box->parentWidget()->palette().color(enabled ? QPalette::Base : QPalette::Button));
    box->setPalette(colors);
}

} // namespace

SignatureTab::SignatureTab(QWidget *form, RecordList &list, ApplicationGlobals &globals, MacroItems macroItems)
    : QObject(form), m_list(list), m_globals(globals), m_macroItems(std::move(macroItems)),
      m_opt(quillon::controlArray<QRadioButton, 2>(form, u"opt"_s)),
      m_buttons(quillon::controlArray<QAbstractButton, 8>(form, u"sbtSign"_s)),
      m_view(form->findChild<QTreeView *>(u"lsv(1)"_s)), m_delegate(new RenameDelegate(m_view)),
      m_text(form->findChild<QPlainTextEdit *>(u"utbSign"_s)), m_path(form->findChild<QLineEdit *>(u"txt(11)"_s))
{
    keepOneLine(m_path);
    m_list.model().setEditable(true);
    m_view->setItemDelegate(m_delegate);
    connect(m_delegate, &RenameDelegate::edited, this, &SignatureTab::renamed);
    connectControls();
    show();
}

void SignatureTab::connectControls()
{
    connect(&m_list.selection(), &QItemSelectionModel::currentRowChanged, this, &SignatureTab::show);
    // Also the present row's: its text comes back when the box was emptied, which is not kept.
    connect(m_view, &QTreeView::clicked, this, &SignatureTab::show);
    connect(&m_list.model(), &RecordModel::modelReset, this, &SignatureTab::show);
    connect(&m_list, &RecordList::emptied, this, &SignatureTab::emptied);
    connect(m_opt[Text], &QRadioButton::toggled, this, &SignatureTab::enableKind);
    // Each option tells when it is turned on; the other one was turned off by that.
    for (QRadioButton *option : m_opt) {
        connect(option, &QRadioButton::toggled, this, [this](bool on) {
            if (on && !m_showing) {
                kindChosen();
            }
        });
    }
    connect(m_text, &QPlainTextEdit::textChanged, this, &SignatureTab::textChanged);
    connect(m_path, &QLineEdit::textChanged, this, &SignatureTab::pathChanged);
    connect(m_buttons[Add], &QAbstractButton::clicked, this, &SignatureTab::add);
    connect(m_buttons[Rename], &QAbstractButton::clicked, this, &SignatureTab::rename);
    connect(m_buttons[Browse], &QAbstractButton::clicked, this, &SignatureTab::browse);
    connect(m_buttons[Open], &QAbstractButton::clicked, this, &SignatureTab::open);
    connect(m_buttons[Macro], &QAbstractButton::clicked, this, &SignatureTab::macro);
}

void SignatureTab::show()
{
    const bool present = m_list.present() >= 0;
    const SignatureContent content = present ? signatureContent(m_globals, name()) : SignatureContent();
    m_showing = true;
    choose(content.path.isEmpty() ? Text : File);
    m_text->setPlainText(content.text);
    m_path->setText(content.path);
    m_writable = present && content.readable && !signatureFile(m_globals, name()).isEmpty();
    // What is typed where it has no file would be lost, and a text that could not be read would be written over.
    m_text->setReadOnly(!m_writable);
    m_text->setPlaceholderText(
        m_writable ? QString() : formText(optionsForm, present ? u"utbSign.unreadable"_s : u"utbSign.none"_s));
    m_showing = false;
}

void SignatureTab::choose(Kind kind)
{
    m_opt[kind]->setChecked(true);
    enableKind();
}

void SignatureTab::enableKind()
{
    const bool text = kind() == Text;
    showEnabled(m_text, text);
    showEnabled(m_path, !text);
    m_buttons[Browse]->setEnabled(!text);
    m_buttons[Open]->setEnabled(!text);
}

void SignatureTab::kindChosen()
{
    if (kind() == Text) {
        textChanged();
        m_text->setFocus();
    } else {
        pathChanged(m_path->text());
    }
}

void SignatureTab::textChanged()
{
    const QString text = quillon::textOf(m_text);
    if (!m_showing && m_writable && !text.trimmed().isEmpty()) {
        SaveSignatureRecord(m_globals, SignatureChange::Modify, name(), {}, text, {});
    }
}

void SignatureTab::pathChanged(const QString &path)
{
    // A text of several lines has been put on one line before it comes here; that change was told by itself.
    if (m_showing || path.isEmpty() || path != m_path->text()) {
        return;
    }
    if (!QFileInfo(path).isFile()) {
        showMessage(u"SIGN_NOT_EXIST"_s, quillon::WarningBox, path);
    } else if (m_list.present() >= 0) {
        SaveSignatureRecord(m_globals, SignatureChange::Modify, name(), {}, {}, path);
    }
}

void SignatureTab::add()
{
    // A text that cannot be shown is no unfinished one.
    if (!m_list.isEmpty() && m_path->text().trimmed().isEmpty() && m_text->toPlainText().trimmed().isEmpty() &&
        m_writable) {
        showMessage(u"NEED_TEXT"_s, quillon::WarningBox);
        kind() == Text ? m_text->setFocus() : m_path->setFocus();
        return;
    }
    const QString next = newSignatureName(m_list.model().lines());
    if (next.isEmpty()) {
        return;
    }
    if (const int row = m_list.add(next); row >= 0) {
        m_list.select(row);
        m_text->setFocus();
    }
}

void SignatureTab::rename()
{
    if (m_list.present() >= 0) {
        m_view->setFocus();
        m_view->edit(m_list.model().index(m_list.present(), 0));
    }
}

bool SignatureTab::isRenaming() const
{
    const QWidget *focus = QApplication::focusWidget();
    return focus && focus != m_view && m_view->isAncestorOf(focus);
}

void SignatureTab::finishRename()
{
    m_finishing = true;
    if (QWidget *editor = m_view->indexWidget(m_view->currentIndex())) {
        Q_EMIT m_delegate->commitData(editor);
        Q_EMIT m_delegate->closeEditor(editor);
    }
    QCoreApplication::sendPostedEvents(m_delegate, QEvent::MetaCall); // what it hands over later
    m_finishing = false;
}

void SignatureTab::renamed(const QPersistentModelIndex &index, const QString &typed)
{
    const QString old = m_list.model().line(index.row());
    const QString next = signatureNameOf(typed);
    if (!index.isValid() || next == old) {
        return;
    }
    if (next.isEmpty()) {
        refuseName(index, u"NEED_SIGN", std::nullopt);
    } else if (m_list.model().lines().contains(next)) {
        refuseName(index, u"SENDER_EXISTS", next);
    } else {
        const bool standard = m_globals.settings.text(Setting::DefaultSignature) == old;
        if (!SaveSignatureRecord(m_globals, SignatureChange::Rename, old, next, {}, {})) {
            return; // the list goes on to say what the file says
        }
        m_list.model().replace(index.row(), next);
        show();
        if (standard && !storeDefaultSignature(m_globals, next)) {
            m_list.model().mark(-1); // the settings still name the old one
        }
    }
}

void SignatureTab::refuseName(const QPersistentModelIndex &index, const char16_t *key,
                              const std::optional<QString> &value)
{
    showMessage(QString::fromUtf16(key), quillon::WarningBox, value);
    if (index.isValid() && !m_finishing) {
        m_list.select(index.row());
        m_view->edit(index);
    }
}

void SignatureTab::emptied()
{
    show();
    m_text->setFocus();
}

void SignatureTab::browse()
{
    const QStringList chosen = m_globals.system.OpenFileDialog(
        LookupText(u"CSF"_s), {{QString::fromUtf16(textFilesFilter), u"*.txt"_s},
                               {QString::fromUtf16(htmlFilesFilter), QString::fromUtf16(htmlFilesPatterns)},
                               {QString::fromUtf16(allFilesFilter), u"*.*"_s}});
    if (chosen.size() == 1) {
        m_path->setText(chosen.first());
    }
}

void SignatureTab::open() const
{
    if (QFileInfo::exists(m_path->text())) {
        m_globals.system.OpenDocument(m_path->text(), normalWindow);
    }
}

void SignatureTab::macro()
{
    if (kind() == File) {
        showMessage(m_list.isEmpty() ? u"NEED_SIGN"_s : u"INSERT_MACRO"_s, quillon::InformationBox);
        return;
    }
    QAbstractButton *button = m_buttons[Macro];
    auto *menu = new QMenu(button);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addActions(m_macroItems());
    menu->popup(button->mapToGlobal(QPoint(0, button->height())));
}

void SignatureTab::selectAllText()
{
    m_text->selectAll();
}

SignatureTab::Kind SignatureTab::kind() const
{
    return m_opt[Text]->isChecked() ? Text : File;
}

} // namespace corvane
