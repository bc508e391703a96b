#pragma once

#include "core/globals.h"
#include "records/recordstore.h"

#include <QString>
#include <QStringList>

#include <vector>

namespace corvane {

/// The keys of what a kind's commands show. A command without a "need" key goes on with an empty list.
struct RecordMessages {
    const char16_t *needForEdit;
    const char16_t *needForCopy;
    const char16_t *askDelete;
    const char16_t *needForClear;
    const char16_t *askClear;
};

/// How a list tells after a deletion that it still has its default.
enum class DefaultMarker {
    BoldRow, ///< a row is marked
    Name,    ///< a row is the default by what it holds
};

/// What tells one kind of records from another; all else about their lists is alike.
struct RecordKind {
    QString DataPaths::*file;
    std::vector<int> columns; ///< the fields that a row shows
    int numberField;          ///< the one that holds a number; -1 for none
    RecordMessages messages;
    DefaultMarker marker;

    /// What a row keeps of its line, and what is the line in the file when the record is edited.
    QString (*rowOf)(const QString &line);
    /// Whether two records may not stand beside each other.
    bool (*same)(const QString &line, const QString &other);
    /// By what Delete tells a record.
    QString (*key)(const QString &line);
    // What changes the file or the settings is true unless they could not be written.

    /// Adds a record's line to the file.
    bool (*append)(const ApplicationGlobals &globals, const QString &line);
    /// Changes the file: see SaveSmtpRecord(). A kind that is edited in other ways knows RecordChange::Delete only.
    bool (*save)(ApplicationGlobals &globals, RecordChange change, const QStringList &keys, const RecordEdit &edit);
    /// Empties the file.
    bool (*clear)(const ApplicationGlobals &globals);

    bool (*isDefault)(const ApplicationGlobals &globals, const QString &line);
    /// Makes a record the default, in memory and in the settings; an empty line stands for none.
    bool (*storeDefault)(ApplicationGlobals &globals, const QString &line);
    /// What else follows when a record becomes the default; nullptr: nothing.
    void (*becameDefault)(const ApplicationGlobals &globals);
};

[[nodiscard]] const RecordKind &senderKind();
[[nodiscard]] const RecordKind &signatureKind();
[[nodiscard]] const RecordKind &proxyKind();
[[nodiscard]] const RecordKind &accountKind();

} // namespace corvane
