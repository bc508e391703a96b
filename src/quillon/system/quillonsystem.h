#pragma once

#include "quillon/sequence/pending.h"
#include "quillon/system/prompts.h"

#include <QList>
#include <QString>
#include <QStringList>

class QIcon;
class QListWidget;
class QMainWindow;
class QMenu;
class QMenuBar;
class QWidget;

namespace quillon {

/// The system's services. Those that work on windows, menus and the clipboard are linked from the library's form
/// target; a program without a display does not call them.
class QuillonSystem {
public:
    /// Major version of the operating system; below 6 selects the paths of old systems. Here 10, unless a test set it.
    [[nodiscard]] int GetOsMajorVersion() const;

    /// 26: the per-user application data folder; 35: that of all users. Another number is a fault and gives "".
    [[nodiscard]] QString GetSpecialFolder(int number) const;
    /// "P": the folder of program files. Another letter is a fault and gives "".
    [[nodiscard]] QString GetSystemPath(const QString &selector) const;

    /// One key of a settings file; a missing file, section or key gives an empty text and is no fault.
    [[nodiscard]] QString ReadSetting(const QString &path, const QString &section, const QString &key) const;
    /// Writes one key; section and key are made as needed, everything else stays.
    void WriteSetting(const QString &path, const QString &section, const QString &key, const QString &value) const;

    /// Dialogs; each gives an empty result on cancel (ChooseColor: below 0).
    [[nodiscard]] QStringList OpenFileDialog(const QString &title, const QList<FileFilter> &filters,
                                             const QString &defaultPath = QString(), bool many = false) const;
    [[nodiscard]] QString SaveFileDialog(const QString &title, const QList<FileFilter> &filters,
                                         const QString &defaultName) const;
    [[nodiscard]] QString SelectFolderDialog(const QString &title) const;
    [[nodiscard]] long ChooseColor() const;

    /// Opens a data file in the program associated with it. Style 3 is maximised.
    void OpenDocument(const QString &path, int style) const;
    /// Hands a path, a URL or a program to the system. Style 3 for pages and mail links, 6 for a program that starts
    /// minimised. @p arguments go to a program only.
    void OpenTarget(const QString &target, int style, const QStringList &arguments = {}) const;
    /// Ends all of this user's processes whose executable has that file name and that work on the same data.
    void EndProcess(const QString &executable) const;
    /// A pause: settled when it is over, while the event loop goes on; nothing shortens it.
    Pending<> WaitMilliseconds(qint64 milliseconds) const;

    // Windows, menus, clipboard: defined in the form target.
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
