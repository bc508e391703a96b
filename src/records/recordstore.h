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

/// Changes the accounts' file. Modes: "EN" puts the new line of @p edit in place of its old one; "ED" does the same to
/// the default account, which stays the default; "D" deletes all lines that equal one of @p keys, with one rewrite.
/// A line that is not there changes nothing.
void SaveSmtpRecord(ApplicationGlobals &globals, const QString &mode, const QStringList &keys,
                    const RecordEdit &edit = {});

/// The same for the proxy servers.
void SaveProxyRecord(ApplicationGlobals &globals, const QString &mode, const QStringList &keys,
                     const RecordEdit &edit = {});

/// The same for the custom senders, whose keys are email addresses: two senders with one address go together.
void SaveSenderRecord(ApplicationGlobals &globals, const QString &mode, const QStringList &keys,
                      const RecordEdit &edit = {});

/// Make a record the default of its kind, in memory and in the settings; an empty line stands for none.
void storeDefaultAccount(ApplicationGlobals &globals, const QString &line);
void storeDefaultProxy(ApplicationGlobals &globals, const QString &line);
void storeDefaultSender(ApplicationGlobals &globals, const QString &line);
void storeDefaultSignature(ApplicationGlobals &globals, const QString &line);

} // namespace corvane
