#include "composer/statushints.h"

#include "composer/composertexts.h"
#include "composer/menuitemarray.h"
#include "core/formnames.h"
#include "core/texts.h"
#include "quillon/system/quillonsystem.h"

#include <QAction>
#include <QEvent>
#include <QLabel>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QMouseEvent>
#include <QStatusBar>

using namespace Qt::StringLiterals;

namespace corvane {

StatusHints::StatusHints(QMainWindow *form, const Bar &bar, Hooks hooks)
    : QObject(form), m_form(form), m_bar(bar), m_hooks(std::move(hooks))
{
    const QList<QWidget *> widgets = form->findChildren<QWidget *>();
    for (QWidget *widget : widgets) {
        if (!widget->isWindow()) {
            widget->setMouseTracking(true);
            widget->installEventFilter(this);
        }
    }
    form->setMouseTracking(true);
    form->installEventFilter(this);
    const QList<QMenu *> menus = form->menuBar()->findChildren<QMenu *>();
    for (QMenu *menu : menus) {
        watchMenu(menu);
    }
}

void StatusHints::watchMenu(QMenu *menu)
{
    connect(menu, &QMenu::hovered, this, [this](const QAction *item) {
        if (item->menu<QMenu *>()) {
            return;
        }
        show(u' ' +
             quillon::QuillonSystem().ReadSetting(languageFolder() + u"/menutips.dll"_s, mainForm, itemCaption(item)));
    });
    // The line of an item goes with its menu; what the chosen item tells of itself comes after that.
    connect(menu, &QMenu::aboutToHide, this, [this] { show(QString::fromUtf16(readyText)); });
}

void StatusHints::show(const QString &text)
{
    if (!m_hooks.sending()) {
        m_bar.panel1->setText(text);
    }
}

QString StatusHints::hintFor(const QWidget *widget) const
{
    // A control's own parts, such as the text area of a box, have no tip: the control's is theirs.
    for (; widget && widget != m_form; widget = widget->parentWidget()) {
        if (widget->objectName() == u"dhe") {
            return u' ' + QString::fromUtf16(contentName) + u'.';
        }
        if (!widget->toolTip().isEmpty()) {
            return widget->toolTip() + u' ';
        }
    }
    return QString::fromUtf16(readyText);
}

bool StatusHints::eventFilter(QObject *watched, QEvent *event)
{
    auto *widget = qobject_cast<QWidget *>(watched);
    if (widget && event->type() == QEvent::MouseMove) {
        // A move that a control has no use for goes on to its parents: the hint stays that of the control.
        const QWidget *over = widget->childAt(static_cast<QMouseEvent *>(event)->position().toPoint());
        show(hintFor(over ? over : widget));
    } else if (widget && event->type() == QEvent::MouseButtonPress &&
               (widget == m_bar.bar || widget == m_bar.panel1 || widget == m_bar.panel2)) {
        m_hooks.clicked(widget == m_bar.panel1 ? 1 : widget == m_bar.panel2 ? 2 : 0);
        return true;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace corvane
