#pragma once

#include <QString>

class QIcon;
class QListWidget;
class QMainWindow;
class QMenu;
class QMenuBar;
class QWidget;

namespace quillon {

/// Those of the system's services that work on windows, menus and the clipboard; QuillonSystem has the others. They
/// need a display, so a program of logic only does not know them.
class QuillonWindows {
public:
    [[nodiscard]] QWidget *FindWindowByTitle(const QString &title) const;
    /// Message 16 closes the window; another is a fault.
    void SendWindowMessage(QWidget *window, int message, long first, long second) const;
    [[nodiscard]] QIcon DrawFileIcon(const QString &path) const;
    void SetListExtent(QListWidget *list, int width) const;
    [[nodiscard]] QMenuBar *GetMenuHandle(QMainWindow *window) const;
    [[nodiscard]] QMenu *GetSubMenuHandle(QMenuBar *bar, int position) const;
    [[nodiscard]] QMenu *GetSubMenuHandle(QMenu *menu, int position) const;
    /// Shows a radio mark at that position (from 0), and takes it from the others of its group.
    void MarkMenuItem(QMenu *menu, int position) const;
    void SetClipboardText(const QString &text) const;
    [[nodiscard]] QString GetClipboardText() const;
};

} // namespace quillon
