#include "core/instancelock.h"

#include "quillon/system/platform.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

/// What became of the attempt to lock a file.
struct Attempt {
    int file = -1;       ///< open while the lock is held
    bool isHeld = false; ///< by another process
};

Attempt lockFile(const QString &path, int flags)
{
    Attempt attempt;
    const int file =
        ::open(QFile::encodeName(path).constData(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | flags, S_IRUSR | S_IWUSR);
    if (file < 0) {
        return attempt;
    }
    if (::flock(file, LOCK_EX | LOCK_NB) == 0) {
        attempt.file = file;
        return attempt;
    }
    attempt.isHeld = errno == EWOULDBLOCK;
    ::close(file);
    return attempt;
}

QString besideRoot(const QString &root)
{
    const QFileInfo info(root);
    return info.path() + u"/."_s + info.fileName() + u".lock"_s;
}

QString inRuntimeFolder(const QString &root)
{
    const QByteArray hash = QCryptographicHash::hash(root.toUtf8(), QCryptographicHash::Sha256).toHex().first(16);
    return QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation) + u"/corvane-"_s +
           QString::fromLatin1(hash) + u".lock"_s;
}

/// Whether a process holds the lock in the runtime folder, as one does that started while the tree could not be locked.
bool isHeldInRuntimeFolder(const QString &root)
{
    if (!qEnvironmentVariableIsSet("XDG_RUNTIME_DIR")) {
        return false; // there would be none but one that is made up
    }
    const Attempt attempt = lockFile(inRuntimeFolder(root), 0);
    if (attempt.file >= 0) {
        ::close(attempt.file);
    }
    return attempt.isHeld;
}

} // namespace

InstanceLock::InstanceLock(const QString &dataRoot)
{
    const QString folder = QFileInfo(QDir::cleanPath(dataRoot)).path();
    QDir().mkpath(QFileInfo(folder).path());
    ::mkdir(QFile::encodeName(folder).constData(), S_IRWXU);
    const QString root = quillon::realPath(dataRoot);
    Attempt attempt = lockFile(besideRoot(root), O_CREAT);
    if (attempt.file >= 0) {
        attempt.isHeld = isHeldInRuntimeFolder(root);
    } else if (!attempt.isHeld) {
        attempt = lockFile(inRuntimeFolder(root), O_CREAT);
    }
    m_file = attempt.file;
    m_other = attempt.isHeld;
}

InstanceLock::~InstanceLock()
{
    if (m_file >= 0) {
        ::close(m_file);
    }
}

} // namespace corvane
