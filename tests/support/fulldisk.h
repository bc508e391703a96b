#pragma once

#include <QDir>
#include <QFile>
#include <QString>

#include <csignal>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <unistd.h>

/// A small file system of its own that can be filled up, seen by this process only; needs the right to mount.
class FullDisk {
public:
    explicit FullDisk(const QString &path) : m_path(QFile::encodeName(path)), m_filler(path + QStringLiteral("/filler"))
    {
        QDir().mkpath(path);
        // In a mount namespace of our own nothing is left behind, whatever becomes of the test.
        m_mounted = ::unshare(CLONE_NEWNS) == 0 && ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                    ::mount("corvane-test", m_path.constData(), "tmpfs", 0, size) == 0;
    }
    ~FullDisk()
    {
        if (m_mounted) {
            ::umount2(m_path.constData(), MNT_DETACH);
        }
    }
    FullDisk(const FullDisk &) = delete;
    FullDisk &operator=(const FullDisk &) = delete;

    [[nodiscard]] bool mounted() const { return m_mounted; }
    /// Why a test is skipped that needs it.
    static constexpr char reason[] = "a small disk cannot be mounted here: it takes the rights of an administrator";

    /// Leaves no room for one more octet in any file, nor for one more file.
    void fill()
    {
        QFile filler(m_filler);
        if (!filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
            qFatal("the disk cannot be filled");
        }
        while (filler.write(QByteArray(512, 'f')) > 0) {
        }
    }
    void makeRoom() { QFile::remove(m_filler); }

    /// Makes it read-only: by the mount, or where there is none, by the folder's mode.
    [[nodiscard]] bool lock(const QString &path) const
    {
        if (m_mounted) {
            return ::mount("corvane-test", m_path.constData(), "tmpfs", MS_REMOUNT | MS_RDONLY, size) == 0;
        }
        return ::geteuid() != 0 && QFile::setPermissions(path, QFileDevice::ReadOwner | QFileDevice::ExeOwner);
    }
    [[nodiscard]] bool unlock() const
    {
        return ::mount("corvane-test", m_path.constData(), "tmpfs", MS_REMOUNT, size) == 0;
    }

private:
    static constexpr char size[] = "size=128k";

    QByteArray m_path;
    QString m_filler;
    bool m_mounted = false;
};

/// No file can grow beyond a size while this lives: the write that would has only a part of its octets written.
class SizeLimit {
public:
    explicit SizeLimit(rlim_t size)
    {
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        m_handler = std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{size, m_before.rlim_max};
        m_set = ::setrlimit(RLIMIT_FSIZE, &limit) == 0;
    }
    ~SizeLimit()
    {
        ::setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }
    SizeLimit(const SizeLimit &) = delete;
    SizeLimit &operator=(const SizeLimit &) = delete;

    [[nodiscard]] bool isSet() const { return m_set; }

private:
    rlimit m_before{};
    void (*m_handler)(int) = nullptr;
    bool m_set = false;
};
