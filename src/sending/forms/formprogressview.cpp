#include "sending/forms/formprogressview.h"

#include "core/formnames.h"
#include "quillon/forms/formregistry.h"
#include "quillon/forms/keepabove.h"
#include "quillon/forms/screenfit.h"
#include "quillon/hook.h"
#include "sending/forms/frmpubprogress.h"

#include <QApplication>

#include <utility>

using namespace Qt::StringLiterals;

namespace corvane {

FormProgressView::FormProgressView(quillon::FormRegistry &forms, std::function<QWidget *()> owner)
    : m_forms(forms), m_owner(std::move(owner))
{
    quillon::requireHook(m_owner, u"FormProgressView::owner"_s);
}

frmPubProgress *FormProgressView::form() const
{
    return m_forms.as<frmPubProgress>(progressForm);
}

bool FormProgressView::isVisible() const
{
    const frmPubProgress *dialog = form();
    return dialog && dialog->isVisible();
}

void FormProgressView::makeVisible()
{
    frmPubProgress *dialog = form();
    if (!dialog || dialog->isVisible()) {
        return;
    }
    quillon::keepAbove(dialog, m_owner());
    dialog->show();
}

void FormProgressView::bringToFront()
{
    makeVisible();
    if (frmPubProgress *dialog = form()) {
        dialog->setWindowState(dialog->windowState() & ~Qt::WindowMinimized);
        dialog->raise();
        dialog->activateWindow();
    }
}

void FormProgressView::hide()
{
    if (frmPubProgress *dialog = form()) {
        dialog->hide();
    }
}

void FormProgressView::ownerShown()
{
    frmPubProgress *dialog = m_forms.isLoaded(progressForm) ? form() : nullptr;
    if (!dialog || !dialog->isVisible() || QApplication::activeModalWidget()) {
        return; // what waits for an answer is not to be covered
    }
    const QPoint corner = dialog->pos();
    dialog->hide();
    quillon::moveFrame(dialog, corner);
    dialog->setAttribute(Qt::WA_ShowWithoutActivating);
    makeVisible();
    dialog->setAttribute(Qt::WA_ShowWithoutActivating, false);
}

QString FormProgressView::activity() const
{
    const frmPubProgress *dialog = form();
    return dialog ? dialog->activity() : QString();
}

void FormProgressView::setActivity(const QString &text)
{
    if (frmPubProgress *dialog = form()) {
        dialog->setActivity(text);
    }
}

QString FormProgressView::counter() const
{
    const frmPubProgress *dialog = form();
    return dialog ? dialog->counter() : QString();
}

void FormProgressView::setCounter(const QString &text)
{
    if (frmPubProgress *dialog = form()) {
        dialog->setCounter(text);
    }
}

void FormProgressView::setProgress(int taken, int total)
{
    if (frmPubProgress *dialog = form()) {
        dialog->setProgress(taken, total);
    }
}

void FormProgressView::setAtRest()
{
    if (frmPubProgress *dialog = form()) {
        dialog->setAtRest();
    }
}

} // namespace corvane
