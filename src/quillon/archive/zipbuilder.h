#pragma once

#include "quillon/sequence/task.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

namespace quillon {

/// Writes one .zip archive (ZIP64 where it is needed, names in UTF-8). Files are streamed; a link to a file is stored
/// as that file, a link to a folder is left out, as are pipes, devices and what cannot be read.
class ZipBuilder {
public:
    /// Why something of a folder is not in the archive.
    enum class Why { LinkToFolder, LinkToNothing, Pipe, Socket, Device, Unreadable };
    struct LeftOut {
        QString Name; ///< its path in the archive
        Why Reason;
    };

    QString ArchivePath; ///< where the archive goes

    /// Adds what matches a path of a folder and one or more levels "/*": each level takes in the files and folders
    /// of one further level below that folder.
    void AddPattern(const QString &pattern);

    /// Writes the archive, whole or not at all, and lets the event loop run some twenty times a second meanwhile. False
    /// with a fault when that failed; no archive is then there, nor when the sequence ends before. Outlives its task.
    Task<bool> Build();

    /// What the last Build() left out, in the order in which it came to it.
    [[nodiscard]] const QList<LeftOut> &leftOut() const { return m_leftOut; }

private:
    QStringList m_patterns;
    QList<LeftOut> m_leftOut;
};

} // namespace quillon
