#include "quillon/files/writeoutcome.h"

#include "quillon/files/writetexts.h"

#include <cerrno>
#include <cstring>
#include <utility>

namespace quillon {

namespace {

WriteListener &listener()
{
    static WriteListener present;
    return present;
}

void tell(const QString &path, const QString &reason)
{
    // A copy: what it does may put another one in its place.
    if (const WriteListener hears = listener()) {
        hears(path, reason);
    }
}

/// The system's own words are in its language and style; those that a user is likely to meet are ours.
QString reasonOf(int error)
{
    switch (error) {
    case ENOSPC:
    case EDQUOT:
        return say(noSpace);
    case EACCES:
    case EPERM:
        return say(noPermission);
    case EROFS:
        return say(readOnlyDevice);
    case EISDIR:
    case EINVAL:
    case ENXIO:
    case ELOOP:
        return say(noFileThere);
    case ENOENT:
    case ENOTDIR:
        return say(noFolder);
    case EFBIG:
        return say(tooLarge);
    case EIO:
        return say(deviceError);
    default:
        return QString::fromLocal8Bit(std::strerror(error));
    }
}

} // namespace

WriteListener setWriteListener(WriteListener next)
{
    return std::exchange(listener(), std::move(next));
}

void tellWritten(const QString &path)
{
    tell(path, {});
}

void tellNotWritten(const QString &path, int error)
{
    tell(path, reasonOf(error));
}

void tellDeleted(const QString &path)
{
    tell(path, {});
}

void tellNotRewritten(const QString &path)
{
    tell(path, say(unreadableFile));
}

} // namespace quillon
