#pragma once

#include "core/globals.h"

#include <QDateTime>

namespace corvane {

/// Works out all paths and makes the folders and files of the data tree that are missing, moves old data of all users
/// over once, and makes everything readable and writable for its owner. Reports nothing; the next step runs in any
/// case.
void PrepareDataFolder(ApplicationGlobals &globals);

/// Converts templates of old versions, each conversion once: senders that were kept without an address, and subjects
/// that were kept unencoded.
void UpgradeOldData(const ApplicationGlobals &globals);

/// The paths of the data tree below a user's and a shared application data folder. A folder that is there in another
/// case is the one.
[[nodiscard]] DataPaths dataPathsBelow(const QString &userFolder, const QString &sharedFolder);

/// The file of the sending log of that moment's month.
[[nodiscard]] QString logPathAt(const ApplicationGlobals &globals, const QDateTime &moment);

} // namespace corvane
