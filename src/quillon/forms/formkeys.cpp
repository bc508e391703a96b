#include "quillon/forms/formkeys.h"

#include "quillon/forms/leavechecks.h"

#include <QApplication>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTextEdit>

namespace quillon {

namespace {

/// Keys with which a dialog would press a button of its own accord.
bool isDialogKey(const QKeyEvent *event)
{
    return event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter || event->key() == Qt::Key_Escape ||
           event->matches(QKeySequence::Cancel);
}

void selectAll(QWidget *edit)
{
    if (auto *line = qobject_cast<QLineEdit *>(edit)) {
        line->selectAll();
    } else if (auto *text = qobject_cast<QTextEdit *>(edit)) {
        text->selectAll();
    } else if (auto *plain = qobject_cast<QPlainTextEdit *>(edit)) {
        plain->selectAll();
    }
}

class FocusSelector : public QObject {
public:
    explicit FocusSelector(QWidget *edit) : QObject(edit), m_edit(edit) { edit->installEventFilter(this); }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (watched == m_edit && event->type() == QEvent::FocusIn) {
            const Qt::FocusReason reason = static_cast<QFocusEvent *>(event)->reason();
            // A menu or another window that took the focus and gives it back leaves the selection alone.
            if (reason != Qt::PopupFocusReason && reason != Qt::ActiveWindowFocusReason) {
                // After the box has seen the event, and after the press of the mouse that brought the focus: either
                // would place the caret and drop the selection.
                QMetaObject::invokeMethod(
                    this, [this] { selectAll(m_edit); }, Qt::QueuedConnection);
            }
        }
        return false;
    }

private:
    QWidget *m_edit;
};

} // namespace

FormKeys::FormKeys(QWidget *form) : QObject(form), m_form(form)
{
    const QList<QPushButton *> buttons = form->findChildren<QPushButton *>();
    for (QPushButton *button : buttons) {
        button->setAutoDefault(false);
        button->setDefault(false);
    }
    // The application's events, since the form itself sees a key only after its controls had their way with it.
    qApp->installEventFilter(this);
}

FormKeys::~FormKeys() = default;

void FormKeys::on(QKeyCombination key, std::function<void()> action, std::function<bool()> when)
{
    m_lines.push_back({key, std::move(action), std::move(when)});
}

const FormKeys::Line *FormKeys::find(const QKeyEvent *event) const
{
    const Qt::KeyboardModifiers modifiers = event->modifiers() & ~(Qt::KeypadModifier | Qt::GroupSwitchModifier);
    for (const Line &line : m_lines) {
        if (line.key.key() == event->key() && line.key.keyboardModifiers() == modifiers &&
            (!line.when || line.when())) {
            return &line;
        }
    }
    return nullptr;
}

bool FormKeys::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress && event->type() != QEvent::ShortcutOverride) {
        return false;
    }
    auto *widget = qobject_cast<QWidget *>(watched);
    if (!widget || widget->window() != m_form || !m_form->isEnabled()) {
        return false;
    }
    auto *key = static_cast<QKeyEvent *>(event);
    if (const Line *line = find(key)) {
        event->accept();
        if (event->type() == QEvent::KeyPress) {
            // A copy: the action may unload the form, and this table with it.
            const std::function<void()> action = line->action;
            if (LeaveChecks::allow(m_form)) {
                action();
            }
        }
        return true;
    }
    // What the controls did not want arrives at the form itself, where a dialog would make a button press of it.
    return event->type() == QEvent::KeyPress && watched == m_form && isDialogKey(key);
}

void selectAllOnFocus(QWidget *edit)
{
    new FocusSelector(edit);
}

} // namespace quillon
