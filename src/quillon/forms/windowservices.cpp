#include "quillon/forms/windowservices.h"

#include "quillon/fault.h"
#include "quillon/forms/formregistry.h"
#include "quillon/text/lineends.h"

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QClipboard>
#include <QFileIconProvider>
#include <QFileInfo>
#include <QListWidget>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QStyledItemDelegate>

using namespace Qt::StringLiterals;

namespace quillon {

namespace {

constexpr int closeMessage = 16;

/// Gives every row at least the list's extent, so that long lines can be scrolled to.
class ExtentDelegate : public QStyledItemDelegate {
public:
    ExtentDelegate(int width, QObject *parent) : QStyledItemDelegate(parent), m_width(width) {}

    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        const QSize own = QStyledItemDelegate::sizeHint(option, index);
        return {qMax(own.width(), m_width), own.height()};
    }

private:
    int m_width;
};

QMenu *menuAt(const QList<QAction *> &items, int position)
{
    QMenu *menu = position >= 0 && position < items.size() ? items.at(position)->menu<QMenu *>() : nullptr;
    if (!menu) {
        reportFault(u"no sub-menu stands at position "_s + QString::number(position));
    }
    return menu;
}

} // namespace

QWidget *QuillonWindows::FindWindowByTitle(const QString &title) const
{
    QWidget *hidden = nullptr;
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget *window : windows) {
        if (window->windowTitle() != title || window->property(unloadedProperty).toBool()) {
            continue;
        }
        if (window->isVisible()) {
            return window;
        }
        hidden = window;
    }
    return hidden;
}

void QuillonWindows::SendWindowMessage(QWidget *window, int message, long first, long second) const
{
    Q_UNUSED(first)
    Q_UNUSED(second)
    if (message != closeMessage || !window) {
        reportFault(u"a window cannot be sent the message "_s + QString::number(message));
        return;
    }
    window->close();
}

QIcon QuillonWindows::DrawFileIcon(const QString &path) const
{
    return QFileIconProvider().icon(QFileInfo(path));
}

void QuillonWindows::SetListExtent(QListWidget *list, int width) const
{
    list->setWordWrap(false);
    list->setTextElideMode(Qt::ElideNone);
    list->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    list->setItemDelegate(new ExtentDelegate(width, list));
}

QMenuBar *QuillonWindows::GetMenuHandle(QMainWindow *window) const
{
    return window->menuBar();
}

QMenu *QuillonWindows::GetSubMenuHandle(QMenuBar *bar, int position) const
{
    return menuAt(bar->actions(), position);
}

QMenu *QuillonWindows::GetSubMenuHandle(QMenu *menu, int position) const
{
    return menuAt(menu->actions(), position);
}

void QuillonWindows::MarkMenuItem(QMenu *menu, int position) const
{
    const QList<QAction *> items = menu->actions();
    QAction *item = position >= 0 && position < items.size() ? items.at(position) : nullptr;
    if (!item || item->isSeparator() || item->menu<QMenu *>()) {
        reportFault(u"no menu item stands at position "_s + QString::number(position));
        return;
    }
    if (!item->actionGroup()) {
        auto *group = new QActionGroup(menu);
        for (QAction *other : items) {
            if (!other->isSeparator() && !other->menu<QMenu *>() && !other->actionGroup()) {
                other->setCheckable(true);
                group->addAction(other);
            }
        }
    }
    item->actionGroup()->setExclusionPolicy(QActionGroup::ExclusionPolicy::Exclusive);
    item->setCheckable(true);
    item->setChecked(true);
}

void QuillonWindows::SetClipboardText(const QString &text) const
{
    // The desktop's line end is a line feed; other programs would show a carriage return as a character.
    QApplication::clipboard()->setText(withCrLf(text).remove(u'\r'));
}

QString QuillonWindows::GetClipboardText() const
{
    return withCrLf(QApplication::clipboard()->text());
}

} // namespace quillon
