#pragma once

#include <QString>
#include <QStringList>

namespace quillon {

/// Operations on a text file, whole lines. Reading takes UTF-8, with or without a byte-order mark, UTF-16 with one, and
/// Windows-1252, line by line; lines end with CR LF or LF. Writing is UTF-8 with CR LF; a rewrite is whole or not at
/// all, and lines that are not concerned keep their octets. A file that cannot be read is never rewritten. Failures are
/// faults (see reportFault()) and give empty values; what changes a file is true unless the change could not be
/// written, and a change that finds nothing to do is true.
class QuillonLines {
public:
    /// Adds a line and its line end at the end of the file, which is made if it is missing (0600).
    bool AppendLine(const QString &path, const QString &line) const;
    /// Lines of the file; 0 for one that cannot be read.
    [[nodiscard]] int CountLines(const QString &path) const;
    /// Removes all lines that equal @p key, or, with a delimiter, whose field @p field (from 0) equals it.
    bool DeleteLineByKey(const QString &path, const QString &key, const QString &delimiter, int field) const;
    /// The same for several keys, with one rewrite.
    bool DeleteLinesByKeys(const QString &path, const QStringList &keys, const QString &delimiter, int field) const;
    /// Puts @p newLine in place of the first line that matches as in DeleteLineByKey(); with a delimiter only that
    /// field changes.
    bool ReplaceLine(const QString &path, const QString &key, const QString &newLine, const QString &delimiter,
                     int field) const;
    /// Removes all lines that equal @p line and adds @p newLine at the end, with one rewrite.
    void MoveLineToEnd(const QString &path, const QString &line, const QString &newLine) const;
    /// True if exactly this line is in the file.
    [[nodiscard]] bool LineExists(const QString &path, const QString &line) const;
    /// The first line that begins with @p key, or empty. @p mode is always -1.
    [[nodiscard]] QString FindLineByKey(const QString &path, const QString &key, int mode) const;
    /// Replaces the whole file. @p charset is "utf-8"; another one is a fault and nothing is written.
    bool WriteTextFile(const QString &path, const QString &text, const QString &charset) const;
    /// The whole text of a file, as WriteTextFile() wrote it or as another program did.
    [[nodiscard]] QString ReadTextFile(const QString &path) const;

    /// All lines of a file without their line ends; empty for one that cannot be read.
    [[nodiscard]] QStringList ReadLines(const QString &path) const;
    /// Adds several lines with one write.
    bool AppendLines(const QString &path, const QStringList &lines) const;
};

} // namespace quillon
