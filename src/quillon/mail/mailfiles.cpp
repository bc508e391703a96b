#include "quillon/mail/mailfiles.h"

#include "quillon/mail/mailtexts.h"

#include <QFile>
#include <QFileInfo>
#include <QMimeDatabase>
#include <QUrl>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace quillon {

namespace {

constexpr qsizetype sniffedOctets = 4096;
constexpr qint64 nanosecondsPerSecond = 1'000'000'000;

bool isGeneric(const QMimeType &type)
{
    return type.isDefault() || type.name() == u"text/plain"_s;
}

/// The content decides. The name decides where the content tells nothing, and which of a family it is (a document in
/// a zip archive).
QByteArray typeOf(const QString &path, const QByteArray &start)
{
    const QMimeDatabase database;
    const QMimeType byName = database.mimeTypeForFile(path, QMimeDatabase::MatchExtension);
    const QMimeType byContent = database.mimeTypeForData(start);
    const bool nameDecides =
        !byName.isDefault() && (start.isEmpty() || isGeneric(byContent) || byName.inherits(byContent.name()));
    const QByteArray type = (nameDecides ? byName : byContent).name().toLatin1();
    // Their content must not be coded in Base64 (RFC 2046), and an empty file has a type of no registry.
    if (type.startsWith("message/") || type.startsWith("multipart/") || type == "application/x-zerosize") {
        return "application/octet-stream";
    }
    return type;
}

QString sentence(const QString &path, const QString &reason)
{
    return say(mailtexts::fileNotAdded, path, reason);
}

} // namespace

std::optional<MailFile> MailEncoderCache::inspect(const QString &path, QString &error)
{
    const QByteArray name = QFile::encodeName(path);
    struct stat status {};
    if (::stat(name.constData(), &status) != 0) {
        error = sentence(path, qt_error_string(errno));
        return std::nullopt;
    }
    if (!S_ISREG(status.st_mode)) {
        error = sentence(path, S_ISDIR(status.st_mode) ? say(mailtexts::fileIsFolder) : say(mailtexts::fileNotRegular));
        return std::nullopt;
    }
    const qint64 changed = status.st_mtim.tv_sec * nanosecondsPerSecond + status.st_mtim.tv_nsec;
    const auto known = m_entries.constFind(path);
    if (known != m_entries.constEnd() && known->Changed == changed && known->Size == status.st_size &&
        known->Node == status.st_ino) {
        return MailFile{path, known->Size, known->Type};
    }
    const int descriptor = ::open(name.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) {
        error = sentence(path, qt_error_string(errno));
        return std::nullopt;
    }
    QByteArray start(sniffedOctets, Qt::Uninitialized);
    const ssize_t count = ::read(descriptor, start.data(), static_cast<size_t>(start.size()));
    const int readError = errno;
    ::close(descriptor);
    if (count < 0) {
        error = sentence(path, qt_error_string(readError));
        return std::nullopt;
    }
    start.truncate(count);
    const Entry entry{changed, status.st_size, status.st_ino, typeOf(path, start)};
    m_entries.insert(path, entry);
    return MailFile{path, entry.Size, entry.Type};
}

QStringList localPaths(const QString &reference)
{
    if (reference.startsWith(u"file:"_s, Qt::CaseInsensitive)) {
        const QString decoded = QUrl(reference).toLocalFile();
        QString plain = reference.mid(5);
        if (plain.startsWith(u"//localhost/"_s, Qt::CaseInsensitive)) {
            plain = plain.mid(11);
        } else if (plain.startsWith(u"///"_s)) {
            plain = plain.mid(2);
        }
        QStringList paths;
        for (const QString &path : {decoded, plain}) {
            if (path.startsWith(u'/') && !path.startsWith(u"//"_s) && !paths.contains(path)) {
                paths.append(path);
            }
        }
        return paths;
    }
    // Two slashes begin the address of another machine.
    if (!reference.startsWith(u'/') || reference.startsWith(u"//"_s)) {
        return {};
    }
    const QString decoded = QUrl::fromPercentEncoding(reference.toUtf8());
    return decoded == reference ? QStringList{reference} : QStringList{reference, decoded};
}

bool isShownInPlace(const QByteArray &type)
{
    return type.startsWith("image/") || type.startsWith("audio/") || type.startsWith("video/");
}

} // namespace quillon
