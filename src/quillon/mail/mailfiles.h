#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>

#include <optional>

namespace quillon {

/// A file that a mail carries.
struct MailFile {
    QString Path;
    qint64 Size = 0; ///< octets
    QByteArray Type; ///< MIME type by content, and by name where the content does not tell
};

/// What is known of the files of one run, so that each is looked into once and again only when it has changed.
class MailEncoderCache {
public:
    /// The file at @p path, a regular file that can be read; otherwise nothing, and @p error gets a sentence that names
    /// the file and the reason. Reads its first octets, never the whole.
    std::optional<MailFile> inspect(const QString &path, QString &error);

private:
    struct Entry {
        qint64 Changed = 0; ///< nanoseconds, by the file's modification time
        qint64 Size = 0;
        quint64 Node = 0;
        QByteArray Type;
    };
    QHash<QString, Entry> m_entries;
};

/// The local paths that @p reference, an URL or path out of an HTML document, may stand for, the likeliest first; none
/// where it does not name a local file. Percent escapes count in an URL, and in a path when nothing has that name.
[[nodiscard]] QStringList localPaths(const QString &reference);

/// Whether @p type is one that a document shows or plays in place: a picture, sound or film.
[[nodiscard]] bool isShownInPlace(const QByteArray &type);

} // namespace quillon
