#pragma once

#include "quillon/system/quillonsystem.h"

#include <QString>
#include <QStringList>

#include <functional>

class QListWidget;

namespace corvane {

/// The list of files and folders that go with the message. A row's full path identifies it; the name without a path
/// is its key, which only one row can have.
class AttachmentList {
public:
    enum Role { PathRole = Qt::UserRole, KeyRole };

    struct Hooks {
        std::function<void()> changed; ///< a row was added, or rows were removed, by a command
        std::function<void()> done;    ///< a command was not cancelled
    };

    AttachmentList(QListWidget *list, const quillon::QuillonSystem &system, Hooks hooks);

    [[nodiscard]] QStringList paths() const;
    /// Shows these files and folders in place of all others. One that does not exist is left out, and so is the second
    /// of two with the same name. That is no change by the user.
    void setPaths(const QStringList &paths);

    // The commands.
    void addFiles();
    void addFolder();
    void removeSelected();
    void clear();
    void openSelected() const;

private:
    void add(const QString &path, const QString &key);
    [[nodiscard]] bool hasKey(const QString &key) const;
    void choose(const QString &path);

    QListWidget *m_list;
    const quillon::QuillonSystem &m_system;
    Hooks m_hooks;
};

} // namespace corvane
