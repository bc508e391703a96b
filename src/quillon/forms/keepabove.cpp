#include "quillon/forms/keepabove.h"

#include <QWidget>
#include <QWindow>

namespace quillon {

void keepAbove(QWidget *form, const QWidget *below)
{
    if (below && below != form && below->window()->windowHandle()) {
        form->winId(); // makes the form's native window, if it has none yet
        form->windowHandle()->setTransientParent(below->window()->windowHandle());
    }
}

} // namespace quillon
