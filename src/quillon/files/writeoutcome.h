#pragma once

#include <QString>

#include <functional>

namespace quillon {

/// Hears of every write of a file that is meant to last: its path, and why it failed, in the language in use; an empty
/// reason says that the file holds what it was to hold, or that it was deleted (a folder too) and nothing waits for it.
using WriteListener = std::function<void(const QString &path, const QString &reason)>;

/// Puts another listener in force and returns the one before; none is there at the start.
WriteListener setWriteListener(WriteListener next);

/// What the operations on files call, each once for a write. @p error is an errno.
void tellWritten(const QString &path);
void tellNotWritten(const QString &path, int error);
/// A file, or a folder with all that was in it, was deleted, so that nothing waits to be written there.
void tellDeleted(const QString &path);
/// Tells that a file is not written because what it holds could not be read, and would be lost.
void tellNotRewritten(const QString &path);

} // namespace quillon
