#include "composer/editcommands.h"

#include "core/texts.h"
#include "quillon/system/prompts.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextBlock>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

/// Whether the commands apply to a control of that name; array indexes do not count.
bool isTextControl(const QString &objectName)
{
    static const QStringList names = {u"txt"_s, u"cbb"_s, u"utbSource"_s, u"utbContent"_s, u"utbSubject"_s};
    return names.contains(objectName.section(u'(', 0, 0));
}

} // namespace

EditCommands::EditCommands(QWidget *form) : QObject(form), m_form(form) {}

EditCommands::Target EditCommands::changeable() const
{
    const Target to = target();
    return to.line && to.line->isReadOnly() ? Target() : to;
}

EditCommands::Target EditCommands::target() const
{
    QWidget *active = m_form->focusWidget();
    if (auto *inner = qobject_cast<QLineEdit *>(active); inner && qobject_cast<QComboBox *>(inner->parentWidget())) {
        active = inner->parentWidget();
    }
    if (!active || !isTextControl(active->objectName())) {
        return {};
    }
    if (const auto *combo = qobject_cast<QComboBox *>(active)) {
        return {combo->lineEdit(), nullptr};
    }
    return {qobject_cast<QLineEdit *>(active), qobject_cast<QPlainTextEdit *>(active)};
}

void EditCommands::undo()
{
    if (const Target to = changeable(); to.line) {
        to.line->undo();
    } else if (to.box) {
        to.box->undo();
    }
}

void EditCommands::cut()
{
    if (const Target to = changeable(); to.line) {
        to.line->cut();
    } else if (to.box) {
        to.box->cut();
    }
}

void EditCommands::copy()
{
    if (const Target to = target(); to.line) {
        to.line->copy();
    } else if (to.box) {
        to.box->copy();
    }
}

void EditCommands::paste()
{
    if (const Target to = changeable(); to.line) {
        to.line->paste();
    } else if (to.box) {
        to.box->paste();
    }
}

void EditCommands::clearSelection()
{
    if (const Target to = changeable(); to.line) {
        if (to.line->hasSelectedText()) {
            to.line->del();
        }
        to.line->setFocus();
    } else if (to.box) {
        to.box->textCursor().removeSelectedText();
        to.box->setFocus();
    }
}

void EditCommands::selectAll()
{
    if (const Target to = target(); to.line) {
        to.line->selectAll();
        to.line->setFocus();
    } else if (to.box) {
        to.box->selectAll();
        to.box->setFocus();
    }
}

void EditCommands::find()
{
    const Target to = target();
    if (!to.line && !to.box) {
        showMessage(u"FIND_FOCUS"_s, quillon::InformationBox);
        return;
    }
    const QString wanted = quillon::prompts().input({u"FIND_WHAT"_s, LookupText(u"FIND_WHAT"_s), QString()});
    if (wanted.isEmpty()) {
        return;
    }
    // In the raw text of a document each character, line ends included, is one position of its cursor.
    const QString text = to.line ? to.line->text() : to.box->document()->toRawText();
    const auto at = static_cast<int>(text.indexOf(wanted, 0, Qt::CaseSensitive));
    if (at < 0) {
        return;
    }
    if (to.line) {
        to.line->setSelection(at, static_cast<int>(wanted.size()));
        return;
    }
    QTextCursor cursor = to.box->textCursor();
    cursor.setPosition(at);
    cursor.setPosition(at + static_cast<int>(wanted.size()), QTextCursor::KeepAnchor);
    to.box->setTextCursor(cursor);
    to.box->setFocus();
}

} // namespace corvane
