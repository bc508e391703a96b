#pragma once

#include <QFile>
#include <QString>

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

/// A file system of a few octets on a folder, seen by this process and its children only, as long as it lives. Where
/// the system allows none, isThere() is false.
class SmallDisk {
public:
    SmallDisk(const QString &folder, const QByteArray &size) : m_folder(QFile::encodeName(folder))
    {
        const QByteArray options = "mode=0700,size=" + size;
        m_there = hasOwnMounts() && ::mount("small", m_folder.constData(), "tmpfs", 0, options.constData()) == 0;
    }
    ~SmallDisk()
    {
        if (m_there) {
            ::umount2(m_folder.constData(), MNT_DETACH);
        }
    }
    SmallDisk(const SmallDisk &) = delete;
    SmallDisk &operator=(const SmallDisk &) = delete;

    [[nodiscard]] bool isThere() const { return m_there; }
    /// Gives it another size, which must hold what is on it.
    [[nodiscard]] bool resize(const QByteArray &size)
    {
        return ::mount("small", m_folder.constData(), "tmpfs", MS_REMOUNT, ("size=" + size).constData()) == 0;
    }

private:
    /// Mounts of this process's own, which a user who is not the administrator gets as that of a namespace of users.
    static bool hasOwnMounts()
    {
        static const bool has = [] {
            const QByteArray user = QByteArray::number(::getuid());
            if (::unshare(CLONE_NEWNS) != 0) {
                if (::unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) {
                    return false;
                }
                const QByteArray map = user + ' ' + user + " 1\n";
                const int file = ::open("/proc/self/uid_map", O_WRONLY | O_CLOEXEC);
                const bool mapped = file >= 0 && ::write(file, map.constData(), static_cast<size_t>(map.size())) > 0;
                ::close(file);
                if (!mapped) {
                    return false;
                }
            }
            return ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
        }();
        return has;
    }

    QByteArray m_folder;
    bool m_there = false;
};
