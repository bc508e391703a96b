#include "sending/forms/formprogressview.h"

#include "core/formnames.h"
#include "quillon/forms/formregistry.h"
#include "sending/forms/frmpubprogress.h"

using namespace Qt::StringLiterals;

namespace corvane {

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
    if (frmPubProgress *dialog = form()) {
        dialog->show();
    }
}

void FormProgressView::hide()
{
    if (frmPubProgress *dialog = form()) {
        dialog->hide();
    }
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

void FormProgressView::setProgress(int i, int total)
{
    if (frmPubProgress *dialog = form()) {
        dialog->setProgress(i, total);
    }
}

} // namespace corvane
