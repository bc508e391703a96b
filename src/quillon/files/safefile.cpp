#include "quillon/files/safefile.h"

#include "quillon/fault.h"
#include "quillon/files/writeoutcome.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace quillon {

namespace {

constexpr mode_t ownerOnly = S_IRUSR | S_IWUSR;
QString temporaryFolder;

void fault(const char *operation, const QString &path)
{
    reportFault(QString::fromLatin1(operation) + u" '"_s + path + u"': "_s +
                QString::fromLocal8Bit(std::strerror(errno)));
}

/// A write has failed; errno tells why. Always false.
bool failedWrite(const QString &path, WriteUse use = WriteUse::Lasting)
{
    const int error = errno;
    fault("cannot write", path);
    if (use == WriteUse::Lasting) {
        tellNotWritten(path, error);
    }
    return false;
}

/// A file handle that closes itself.
class Handle {
public:
    explicit Handle(int number) : m_number(number) {}
    ~Handle() { close(); }
    Handle(const Handle &) = delete;
    Handle &operator=(const Handle &) = delete;

    [[nodiscard]] bool valid() const { return m_number >= 0; }
    [[nodiscard]] int number() const { return m_number; }
    bool close()
    {
        const int number = m_number;
        m_number = -1;
        return number < 0 || ::close(number) == 0;
    }

private:
    int m_number;
};

bool writeAll(int file, const QByteArray &bytes)
{
    qsizetype done = 0;
    while (done < bytes.size()) {
        const ssize_t count = ::write(file, bytes.constData() + done, static_cast<size_t>(bytes.size() - done));
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            return false;
        }
        done += count;
    }
    return true;
}

/// What a link points to, so that the link stays and its target is replaced.
QString followLinks(const QString &path)
{
    const QFileInfo info(path);
    if (!info.isSymLink()) {
        return path;
    }
    const QString target = info.canonicalFilePath();
    return target.isEmpty() ? info.symLinkTarget() : target;
}

void flushFolder(const QString &folder)
{
    const Handle handle(::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (handle.valid()) {
        ::fsync(handle.number());
    }
}

/// Writes @p bytes to a new file in @p folder and moves it to @p path. On failure errno tells why and nothing is left.
bool replaceThrough(const QString &folder, const QString &path, const QByteArray &bytes, mode_t mode)
{
    QByteArray name = QFile::encodeName(folder + u"/.corvane-write-XXXXXX"_s);
    Handle file(::mkostemp(name.data(), O_CLOEXEC));
    if (!file.valid()) {
        return false;
    }
    const bool written = ::fchmod(file.number(), mode) == 0 && writeAll(file.number(), bytes) &&
                         ::fsync(file.number()) == 0 && file.close() &&
                         ::rename(name.constData(), QFile::encodeName(path).constData()) == 0;
    if (!written) {
        const int reason = errno;
        ::unlink(name.constData());
        errno = reason;
    }
    return written;
}

/// @p path itself when it is there, else one of that kind whose last part differs from it in case only.
QString inPresentCase(const QString &path, QDir::Filters kind)
{
    struct stat status {};
    if (path.isEmpty() || ::lstat(QFile::encodeName(path).constData(), &status) == 0) {
        return path;
    }
    const QFileInfo info(path);
    const QString wanted = info.fileName();
    const QStringList names = QDir(info.path()).entryList(kind);
    for (const QString &name : names) {
        if (name.compare(wanted, Qt::CaseInsensitive) == 0) {
            return info.path() + u'/' + name;
        }
    }
    return path;
}

} // namespace

void setTemporaryFolder(const QString &folder)
{
    temporaryFolder = folder;
}

QString existingPath(const QString &path)
{
    return inPresentCase(path, QDir::Files | QDir::Hidden | QDir::System);
}

QString existingFolder(const QString &path)
{
    return inPresentCase(path, QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot);
}

std::optional<QByteArray> readWholeFile(const QString &path, qint64 limit)
{
    const QString found = existingPath(path);
    // Without waiting, so that a pipe of that name cannot hold the program.
    const Handle file(::open(QFile::encodeName(found).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (!file.valid()) {
        if (errno == ENOENT || errno == ENOTDIR) {
            return QByteArray();
        }
        fault("cannot read", found);
        return std::nullopt;
    }
    struct stat status {};
    if (::fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode)) {
        errno = S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
        fault("cannot read", found);
        return std::nullopt;
    }
    if (status.st_size > limit) {
        errno = EFBIG;
        fault("cannot read", found);
        return std::nullopt;
    }
    QFile reader;
    QByteArray bytes;
    if (!reader.open(file.number(), QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        fault("cannot read", found);
        return std::nullopt;
    }
    bytes = reader.readAll();
    if (reader.error() != QFileDevice::NoError || bytes.size() < status.st_size) {
        fault("cannot read", found);
        return std::nullopt;
    }
    return bytes;
}

bool writeWholeFile(const QString &path, const QByteArray &bytes)
{
    const QString found = existingPath(path);
    const QString target = found == path ? followLinks(path) : path;
    struct stat status {};
    const bool present = ::stat(QFile::encodeName(found).constData(), &status) == 0;
    if (present && !S_ISREG(status.st_mode)) {
        errno = EISDIR;
        return failedWrite(path);
    }
    const mode_t mode = present ? (status.st_mode & 0777U) | ownerOnly : ownerOnly;
    const QString folder = QFileInfo(target).path();
    bool written = !temporaryFolder.isEmpty() && replaceThrough(temporaryFolder, target, bytes, mode);
    if (!written) {
        written = replaceThrough(folder, target, bytes, mode);
    }
    if (!written) {
        return failedWrite(path);
    }
    if (found != path && QFile::encodeName(found) != QFile::encodeName(target)) {
        ::unlink(QFile::encodeName(found).constData());
    }
    flushFolder(folder);
    tellWritten(path);
    return true;
}

bool appendToFile(const QString &path, const QByteArray &bytes, WriteUse use)
{
    const QString found = existingPath(path);
    const Handle file(::open(QFile::encodeName(found).constData(),
                             O_WRONLY | O_APPEND | O_CREAT | O_NONBLOCK | O_CLOEXEC, ownerOnly));
    struct stat status {};
    if (!file.valid() || ::fstat(file.number(), &status) != 0) {
        return failedWrite(path, use);
    }
    if (!S_ISREG(status.st_mode)) {
        errno = EINVAL;
        return failedWrite(path, use);
    }
    const ssize_t count = ::write(file.number(), bytes.constData(), static_cast<size_t>(bytes.size()));
    if (count == bytes.size()) {
        if (use == WriteUse::Lasting) {
            tellWritten(path);
        }
        return true;
    }
    const int error = count < 0 ? errno : ENOSPC; // a write comes short where the space ends
    if (count > 0 && ::ftruncate(file.number(), status.st_size) != 0) {
        fault("cannot take back a part of a line in", path);
    }
    errno = error;
    return failedWrite(path, use);
}

} // namespace quillon
