#pragma once

#include "core/globals.h"

#include <QString>
#include <QStringList>

namespace corvane {

/// What an edit puts in place of what.
struct RecordEdit {
    QString oldLine; ///< the line as the selected row keeps it
    QString newLine;
};

/// What is done to records.
enum class RecordChange {
    Edit,        ///< the new line of an edit takes the place of its old one
    EditDefault, ///< the same to the default record, which stays the default
    Delete,      ///< all lines that keys tell go, with one rewrite
};

/// Changes the accounts' file; an account's key is its whole line. A line that is not there changes nothing.
/// False when a file or the settings could not be written: the record and the default are then what they were.
bool SaveSmtpRecord(ApplicationGlobals &globals, RecordChange change, const QStringList &keys,
                    const RecordEdit &edit = {});

/// The same for the proxy servers.
bool SaveProxyRecord(ApplicationGlobals &globals, RecordChange change, const QStringList &keys,
                     const RecordEdit &edit = {});

/// The same for the custom senders, whose keys are email addresses: two senders with one address go together.
bool SaveSenderRecord(ApplicationGlobals &globals, RecordChange change, const QStringList &keys,
                      const RecordEdit &edit = {});

/// Make a record the default of its kind, in memory and in the settings; an empty line stands for none. False when the
/// settings could not be written.
bool storeDefaultAccount(ApplicationGlobals &globals, const QString &line);
bool storeDefaultProxy(ApplicationGlobals &globals, const QString &line);
bool storeDefaultSender(ApplicationGlobals &globals, const QString &line);
bool storeDefaultSignature(ApplicationGlobals &globals, const QString &line);

} // namespace corvane
