#include "quillon/files/quillonlines.h"

#include "quillon/fault.h"
#include "quillon/files/linefile.h"
#include "quillon/files/safefile.h"
#include "quillon/files/textcoding.h"

#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <optional>

using namespace Qt::StringLiterals;

namespace quillon {

namespace {

/// What of a line is compared to a key: the line, or, with a delimiter, its field of that index if it has one.
std::optional<QString> keyPart(const QString &line, const QString &delimiter, int field)
{
    if (delimiter.isEmpty()) {
        return line;
    }
    const QStringList fields = line.split(delimiter);
    return field >= 0 && field < fields.size() ? std::optional(fields.at(field)) : std::nullopt;
}

/// What an appended line finds at the end of its file.
struct FileEnd {
    bool empty = true; ///< the line will be the first
    bool utf16 = false;
    bool open = false; ///< the last line has no line end yet
};

FileEnd lookAtEnd(const QString &path)
{
    FileEnd end;
    QFile file(existingPath(path));
    if (QFileInfo(file).isFile() && file.open(QIODevice::ReadOnly) && file.size() > 0) {
        const QByteArray start = file.read(4);
        char last = '\n';
        end.empty = false;
        end.utf16 = isUtf16(start);
        end.open = !isMarkOnly(start) && file.seek(file.size() - 1) && file.getChar(&last) && last != '\n';
    }
    return end;
}

} // namespace

bool QuillonLines::AppendLine(const QString &path, const QString &line) const
{
    return AppendLines(path, {line});
}

bool QuillonLines::AppendLines(const QString &path, const QStringList &lines) const
{
    QByteArray bytes;
    for (const QString &line : lines) {
        bytes += encodeText(line) + "\r\n";
    }
    if (bytes.isEmpty()) {
        return true;
    }
    const FileEnd end = lookAtEnd(path);
    if (end.utf16) {
        const LineFile present(path);
        if (!present.save()) {
            return false;
        }
    } else if (end.open) {
        bytes.prepend("\r\n");
    } else if (end.empty) {
        bytes = guardedFromMark(bytes);
    }
    return appendToFile(path, bytes);
}

int QuillonLines::CountLines(const QString &path) const
{
    return static_cast<int>(LineFile(path).count());
}

bool QuillonLines::DeleteLineByKey(const QString &path, const QString &key, const QString &delimiter, int field) const
{
    return DeleteLinesByKeys(path, {key}, delimiter, field);
}

bool QuillonLines::DeleteLinesByKeys(const QString &path, const QStringList &keys, const QString &delimiter,
                                     int field) const
{
    const QSet<QString> doomed(keys.cbegin(), keys.cend());
    LineFile file(path);
    const auto matches = [&](const QString &line) {
        const std::optional<QString> part = keyPart(line, delimiter, field);
        return part && doomed.contains(*part);
    };
    const bool nothingToDo = file.removeIf(matches) == 0 && file.readable();
    return nothingToDo || file.save();
}

bool QuillonLines::ReplaceLine(const QString &path, const QString &key, const QString &newLine,
                               const QString &delimiter, int field) const
{
    LineFile file(path);
    for (qsizetype i = 0; i < file.count(); ++i) {
        const QString line = file.at(i);
        if (keyPart(line, delimiter, field) != key) {
            continue;
        }
        if (delimiter.isEmpty()) {
            file.replace(i, newLine);
        } else {
            QStringList fields = line.split(delimiter);
            fields[field] = newLine;
            file.replace(i, fields.join(delimiter));
        }
        return file.save();
    }
    return file.readable() || file.save(); // which tells that it cannot be
}

void QuillonLines::MoveLineToEnd(const QString &path, const QString &line, const QString &newLine) const
{
    LineFile file(path);
    file.removeIf([&line](const QString &present) { return present == line; });
    file.append(newLine);
    file.save();
}

bool QuillonLines::LineExists(const QString &path, const QString &line) const
{
    return ReadLines(path).contains(line);
}

QString QuillonLines::FindLineByKey(const QString &path, const QString &key, int mode) const
{
    Q_UNUSED(mode)
    const LineFile file(path);
    for (qsizetype i = 0; i < file.count(); ++i) {
        QString line = file.at(i);
        if (line.startsWith(key)) {
            return line;
        }
    }
    return {};
}

bool QuillonLines::WriteTextFile(const QString &path, const QString &text, const QString &charset) const
{
    if (charset.compare("utf-8"_L1, Qt::CaseInsensitive) != 0) {
        reportFault(u"text files are written as utf-8 only, not as '"_s + charset + u'\'');
        return false;
    }
    return writeWholeFile(path, guardedFromMark(encodeText(text)));
}

QString QuillonLines::ReadTextFile(const QString &path) const
{
    return decodeText(readWholeFile(path).value_or(QByteArray()));
}

QStringList QuillonLines::ReadLines(const QString &path) const
{
    const LineFile file(path);
    QStringList lines;
    lines.reserve(file.count());
    for (qsizetype i = 0; i < file.count(); ++i) {
        lines.append(file.at(i));
    }
    return lines;
}

} // namespace quillon
