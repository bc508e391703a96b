#include "core/instancelock.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QStandardPaths>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace corvane {

InstanceLock::InstanceLock(const QString &dataRoot)
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    const QByteArray hash =
        QCryptographicHash::hash(QDir::cleanPath(dataRoot).toUtf8(), QCryptographicHash::Sha256).toHex().first(16);
    const QString path = folder + u"/corvane-"_s + QString::fromLatin1(hash) + u".lock"_s;
    m_file = ::open(QFile::encodeName(path).constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR);
    if (m_file >= 0 && ::flock(m_file, LOCK_EX | LOCK_NB) != 0) {
        m_other = errno == EWOULDBLOCK;
    }
}

InstanceLock::~InstanceLock()
{
    if (m_file >= 0) {
        ::close(m_file);
    }
}

} // namespace corvane
