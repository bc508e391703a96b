#pragma once

#include "core/globals.h"

#include <QString>
#include <QStringList>

namespace corvane {

/// Largest file, in octets, whose text is shown for editing.
inline constexpr qint64 signatureEditLimit = 4 * 1024 * 1024;
/// Largest file, in octets, whose text is put into a message.
inline constexpr qint64 signatureTextLimit = 16 * 1024 * 1024;

/// What a typed name is once it is kept: one line without tabs or control characters, trimmed. May be empty, and then
/// it is no name.
[[nodiscard]] QString signatureNameOf(const QString &typed);

/// The names of all signatures in the order of their lines, one for each line.
[[nodiscard]] QStringList signatureNames(const ApplicationGlobals &globals);

/// The name of the next signature: "Signature #0" where there is none yet, otherwise that with the first number from 1
/// to 1000 that is free; empty when all are taken.
[[nodiscard]] QString newSignatureName(const QStringList &taken);

/// The file that holds the text of the signature @p name; empty for a name that a file name cannot hold ("/", a NUL, or
/// too long). Names are taken literally and never lead out of the folder.
[[nodiscard]] QString signatureFile(const ApplicationGlobals &globals, const QString &name);

/// What SaveSignatureRecord() does.
enum class SignatureChange {
    Add,    ///< adds the new name with the path, and with the text when there is some
    Modify, ///< makes the name, which moves to the end of the file, a signature with that path, and deletes the stored
            ///< texts of all signatures whose names begin with it; with an empty path it stores the text instead
    Delete, ///< deletes the name with its stored text
    Rename, ///< gives the name the new name
    Clear,  ///< deletes all
};

/// Changes a signature; what a change has no use for is left empty.
/// Each change of signs.dll is one rewrite, and one that would change nothing is left out, of the text's file as well.
/// A stored text goes only when signs.dll says that it is no longer there, so that a kill at any moment loses no more
/// than this change. A text that cannot be read is not written over. Failures are faults.
/// True unless signs.dll could not be changed as told.
bool SaveSignatureRecord(const ApplicationGlobals &globals, SignatureChange change, const QString &name,
                         const QString &newName, const QString &text, const QString &path);

/// Adds a signature with an empty text file, which replaces one that a deleted signature may have left. True when its
/// line is in signs.dll.
bool addSignature(const ApplicationGlobals &globals, const QString &name);

/// Deletes several signatures with their stored texts, with one rewrite of signs.dll. False when it could not be
/// written; nothing is deleted then.
bool deleteSignatures(const ApplicationGlobals &globals, const QStringList &names);

/// A signature as the editor shows it.
struct SignatureContent {
    bool found = false;   ///< signs.dll has a line of that name
    QString path;         ///< of a file signature; its text is not read
    QString text;         ///< of a text signature
    bool readable = true; ///< false: there is a stored text, but not one that can be shown, and nothing may replace it
};

/// The signature of the first line of that name. A text that does not exist yet is empty; a folder, a pipe, a file over
/// signatureEditLimit or one that holds no text is not readable.
[[nodiscard]] SignatureContent signatureContent(const ApplicationGlobals &globals, const QString &name);

/// A signature as it goes into a message.
struct SignatureText {
    bool found = false; ///< false: nothing is to be inserted
    bool html = false;  ///< the text is the source of an HTML document
    QString text;
};

/// The text that is stored for that name, or else that of the file that its line names. Not found when there is
/// neither, or when it is no text of at most signatureTextLimit.
[[nodiscard]] SignatureText signatureText(const ApplicationGlobals &globals, const QString &name);

} // namespace corvane
