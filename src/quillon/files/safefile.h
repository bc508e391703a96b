#pragma once

#include <QByteArray>
#include <QString>

#include <limits>
#include <optional>

namespace quillon {

/// Folder for the temporary files of whole-file writes; empty: the folder of the file itself. It should lie on the
/// same file system as the data, outside the folders that are searched or copied.
void setTemporaryFolder(const QString &folder);

/// The path of an existing file that @p path names without regard to the case of its last part; @p path itself when
/// it exists as it stands or when there is no such file. A folder is never matched under another case.
[[nodiscard]] QString existingPath(const QString &path);

/// The same for a folder, and a file is never matched.
[[nodiscard]] QString existingFolder(const QString &path);

/// What a file is written for.
enum class WriteUse {
    Lasting, ///< to be there tomorrow: its user wants to know when it could not be written
    Passing, ///< for what is being done only
};

/// The whole file. A missing file gives an empty array and is no fault; anything else that cannot be read (a folder,
/// a pipe, no permission) gives nullopt and is a fault, and so does a file of more than @p limit octets, of which no
/// octet is read.
[[nodiscard]] std::optional<QByteArray> readWholeFile(const QString &path,
                                                      qint64 limit = std::numeric_limits<qint64>::max());

/// Replaces a file, whole or not at all: written aside, flushed to the disk, then renamed into place. A new file is
/// made with mode 0600, a present one keeps its own. A file of the same name in another case gets the new case.
/// False with a fault when it failed; the old file then stands. Either way the listener of writes is told.
bool writeWholeFile(const QString &path, const QByteArray &bytes);

/// Adds octets at the end of a file with one write; a file that is missing is made with mode 0600. When the write
/// comes short, as on a full disk, the file is cut back to what it was. False with a fault when it failed. The listener
/// of writes is told of a file that is meant to last.
bool appendToFile(const QString &path, const QByteArray &bytes, WriteUse use = WriteUse::Lasting);

} // namespace quillon
