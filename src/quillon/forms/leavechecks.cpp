#include "quillon/forms/leavechecks.h"

#include <QAbstractButton>
#include <QFocusEvent>
#include <QPointer>
#include <QShortcutEvent>
#include <QTabWidget>

#include <utility>

namespace quillon {

namespace {

/// Brings the tab of a control to the front, where the focus had gone to another tab.
void showPageOf(QWidget *control)
{
    for (QWidget *page = control; page; page = page->parentWidget()) {
        QWidget *stack = page->parentWidget();
        auto *tabs = stack ? qobject_cast<QTabWidget *>(stack->parentWidget()) : nullptr;
        if (tabs && tabs->indexOf(page) >= 0) {
            tabs->setCurrentWidget(page);
        }
    }
}

} // namespace

LeaveChecks::LeaveChecks(QWidget *form) : QObject(form), m_form(form)
{
    const QList<QAbstractButton *> buttons = form->findChildren<QAbstractButton *>();
    for (QAbstractButton *button : buttons) {
        button->installEventFilter(this);
    }
}

void LeaveChecks::add(QWidget *box, std::function<bool()> passes)
{
    box->installEventFilter(this);
    m_checks.push_back({box, std::move(passes)});
}

bool LeaveChecks::allow(const QWidget *form)
{
    auto *checks = form->findChild<LeaveChecks *>(QString(), Qt::FindDirectChildrenOnly);
    return !checks || checks->leave();
}

bool LeaveChecks::leave()
{
    if (!m_left.empty()) {
        return checkLeft();
    }
    const Check *check = checkOf(m_form->focusWidget());
    return !check || run(*check);
}

bool LeaveChecks::eventFilter(QObject *watched, QEvent *event)
{
    if (auto *button = qobject_cast<QAbstractButton *>(watched)) {
        if (event->type() == QEvent::Shortcut) {
            // One of several with that mnemonic only gets the focus.
            return !static_cast<QShortcutEvent *>(event)->isAmbiguous() && !leave();
        }
        if (event->type() == QEvent::MouseButtonRelease && !m_left.empty() && !checkLeft()) {
            button->setDown(false); // a quick click: the box that it took the focus from comes first
            return true;
        }
        return false;
    }
    if (event->type() != QEvent::FocusOut || m_checking) {
        return false;
    }
    const Qt::FocusReason reason = static_cast<QFocusEvent *>(event)->reason();
    if (reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason) {
        return false; // the box has the focus again when the window has
    }
    if (const Check *check = checkOf(watched)) {
        m_left.push_back(check->box);
        // Once the focus has arrived where it goes: a box in the middle of its move would upset it.
        QMetaObject::invokeMethod(this, &LeaveChecks::checkLeft, Qt::QueuedConnection);
    }
    return false;
}

bool LeaveChecks::checkLeft()
{
    bool allPass = true;
    const QPointer<LeaveChecks> alive(this);
    for (const QWidget *box : std::exchange(m_left, {})) {
        allPass &= run(*checkOf(box));
        if (!alive) {
            return false;
        }
    }
    return allPass;
}

bool LeaveChecks::run(const Check &check)
{
    if (m_checking) {
        return true; // giving the focus back takes it from another box, which is not checked for that
    }
    m_checking = true;
    const QPointer<LeaveChecks> alive(this);
    QWidget *box = check.box;
    const bool fine = check.passes();
    if (!alive) {
        return false; // the form went while the fault was told
    }
    if (!fine) {
        showPageOf(box);
        box->setFocus();
    }
    m_checking = false;
    return fine;
}

const LeaveChecks::Check *LeaveChecks::checkOf(const QObject *box) const
{
    for (const Check &check : m_checks) {
        if (check.box == box) {
            return &check;
        }
    }
    return nullptr;
}

} // namespace quillon
