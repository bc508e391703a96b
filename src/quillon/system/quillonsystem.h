#pragma once

#include "quillon/sequence/pending.h"
#include "quillon/system/prompts.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace quillon {

/// The system's services, as far as they need no display; QuillonWindows has those on windows, menus and the clipboard.
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
    /// Ends all of this user's processes whose executable has that file name and that work on the same data; settled
    /// when they are gone, two seconds later at most, while the event loop goes on.
    Pending<> EndProcess(const QString &executable) const;
    /// A pause: settled when it is over, while the event loop goes on; nothing shortens it.
    Pending<> WaitMilliseconds(qint64 milliseconds) const;
};

} // namespace quillon
