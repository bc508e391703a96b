#include "quillon/archive/zipbuilder.h"

#include "quillon/fault.h"
#include "quillon/files/textcoding.h"
#include "quillon/sequence/pending.h"

#include <QElapsedTimer>
#include <QFile>
#include <QSet>

#include <algorithm>
#include <archive.h>
#include <archive_entry.h>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <map>
#include <memory>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace quillon {

namespace {

constexpr std::size_t chunkSize = 128 * 1024;
constexpr qint64 breathMilliseconds = 50;

struct WriteDeleter {
    void operator()(archive *writer) const { archive_write_free(writer); }
};
struct EntryDeleter {
    void operator()(archive_entry *entry) const { archive_entry_free(entry); }
};
struct DirDeleter {
    void operator()(DIR *folder) const { ::closedir(folder); }
};

using Writer = std::unique_ptr<archive, WriteDeleter>;
using Entry = std::unique_ptr<archive_entry, EntryDeleter>;

/// Names of a folder in the order of their octets, "." and ".." left out. They are octets because a file system
/// does not promise a text. Nothing for one that cannot be read.
std::optional<std::vector<QByteArray>> namesIn(const QByteArray &folder)
{
    std::vector<QByteArray> names;
    const std::unique_ptr<DIR, DirDeleter> stream(::opendir(folder.constData()));
    if (!stream) {
        return {};
    }
    for (;;) {
        const dirent *entry = ::readdir(stream.get());
        if (!entry) {
            break;
        }
        const QByteArray name(entry->d_name);
        if (name != "." && name != "..") {
            names.push_back(name);
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

/// An open file, closed with its owner.
class Descriptor {
public:
    explicit Descriptor(int file) : m_file(file) {}
    ~Descriptor() { close(); }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;

    [[nodiscard]] bool isOpen() const { return m_file >= 0; }
    [[nodiscard]] int number() const { return m_file; }
    /// False when what was written could not be kept.
    bool close() { return m_file >= 0 && ::close(std::exchange(m_file, -1)) == 0; }

private:
    int m_file;
};

/// A file that is being written, beside the one it is to become. It goes with its owner unless it was kept.
class PartialFile {
public:
    explicit PartialFile(const QByteArray &target)
        : m_target(target), m_path(target + ".part"),
          m_file(::open(m_path.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, S_IRUSR | S_IWUSR))
    {
    }
    ~PartialFile()
    {
        m_file.close();
        ::unlink(m_path.constData());
    }
    PartialFile(const PartialFile &) = delete;
    PartialFile &operator=(const PartialFile &) = delete;

    [[nodiscard]] const Descriptor &file() const { return m_file; }
    bool keep() { return m_file.close() && ::rename(m_path.constData(), m_target.constData()) == 0; }

private:
    QByteArray m_target;
    QByteArray m_path;
    Descriptor m_file;
};

/// Fills an archive from folders.
class Packer {
public:
    Packer(archive *writer, QList<ZipBuilder::LeftOut> &leftOut)
        : m_writer(writer), m_leftOut(leftOut), m_chunk(chunkSize, Qt::Uninitialized)
    {
        m_sinceBreath.start();
    }

    /// Adds the content of @p folder and of @p levels - 1 levels below it, under @p prefix. False when the archive
    /// cannot be written to.
    Task<bool> addFolder(QByteArray folder, QString prefix, int levels)
    {
        const std::optional<std::vector<QByteArray>> names = namesIn(folder);
        if (!names) {
            leaveOut(prefix, ZipBuilder::Why::Unreadable);
            co_return true;
        }
        for (const QByteArray &name : *names) {
            if (needsBreath()) {
                co_await breath();
            }
            const QByteArray path = folder + '/' + name;
            struct stat status {};
            if (::lstat(path.constData(), &status) != 0) {
                continue;
            }
            const QString shown = uniqueName(prefix + decodeLine(name));
            bool added = false;
            if (S_ISDIR(status.st_mode)) {
                added = addHeader(shown + u'/', status);
                if (added && levels > 1) {
                    added = co_await addFolder(path, shown + u'/', levels - 1);
                }
            } else {
                added = co_await addFile(path, shown);
            }
            if (!added) {
                co_return false;
            }
        }
        co_return true;
    }

private:
    /// Two names that are different octets may be one text; the second then gets a number.
    QString uniqueName(const QString &name)
    {
        QString unique = name;
        for (int i = 1; m_names.contains(unique); ++i) {
            unique = name + u'~' + QString::number(i);
        }
        m_names.insert(unique);
        return unique;
    }

    void leaveOut(const QString &name, ZipBuilder::Why reason)
    {
        reportFault(u"left out of the archive: '"_s + name + u'\'');
        m_leftOut.append({name, reason});
    }

    /// Why that cannot be packed as a file.
    static ZipBuilder::Why reasonAgainst(const QByteArray &path)
    {
        struct stat status {};
        if (::stat(path.constData(), &status) != 0) {
            const bool isLink = ::lstat(path.constData(), &status) == 0 && S_ISLNK(status.st_mode);
            return isLink ? ZipBuilder::Why::LinkToNothing : ZipBuilder::Why::Unreadable;
        }
        switch (status.st_mode & S_IFMT) {
        case S_IFDIR:
            return ZipBuilder::Why::LinkToFolder; // a folder itself is walked
        case S_IFIFO:
            return ZipBuilder::Why::Pipe;
        case S_IFSOCK:
            return ZipBuilder::Why::Socket;
        case S_IFCHR:
        case S_IFBLK:
            return ZipBuilder::Why::Device;
        default:
            return ZipBuilder::Why::Unreadable;
        }
    }

    bool addHeader(const QString &name, const struct stat &status)
    {
        const Entry entry(archive_entry_new());
        archive_entry_set_pathname_utf8(entry.get(), name.toUtf8().constData());
        archive_entry_set_mtime(entry.get(), status.st_mtime, 0);
        archive_entry_set_mode(entry.get(), status.st_mode);
        if (S_ISREG(status.st_mode)) {
            archive_entry_set_size(entry.get(), status.st_size);
        }
        return archive_write_header(m_writer, entry.get()) == ARCHIVE_OK;
    }

    Task<bool> addFile(QByteArray path, QString name)
    {
        // Without waiting, so that a pipe cannot hold the program.
        const Descriptor file(::open(path.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
        struct stat status {};
        if (!file.isOpen() || ::fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode)) {
            leaveOut(name, reasonAgainst(path));
            co_return true;
        }
        if (!addHeader(name, status)) {
            co_return false;
        }
        // At most the octets that the header told: a file that grows while it is read is taken as it was at the start.
        for (qint64 left = status.st_size; left > 0;) {
            const auto wanted = static_cast<std::size_t>(std::min<qint64>(left, m_chunk.size()));
            const ssize_t count = ::read(file.number(), m_chunk.data(), wanted);
            if (count < 0 && errno == EINTR) {
                continue;
            }
            if (count <= 0) {
                co_return true;
            }
            if (archive_write_data(m_writer, m_chunk.constData(), static_cast<std::size_t>(count)) != count) {
                co_return false;
            }
            left -= count;
            if (needsBreath()) {
                co_await breath();
            }
        }
        co_return true;
    }

    [[nodiscard]] bool needsBreath() const { return m_sinceBreath.hasExpired(breathMilliseconds); }
    Pending<> breath()
    {
        m_sinceBreath.restart();
        return nextTurn();
    }

    archive *m_writer;
    QList<ZipBuilder::LeftOut> &m_leftOut;
    QElapsedTimer m_sinceBreath;
    QByteArray m_chunk;
    QSet<QString> m_names;
};

} // namespace

void ZipBuilder::AddPattern(const QString &pattern)
{
    m_patterns.append(pattern);
}

Task<bool> ZipBuilder::Build()
{
    m_leftOut.clear();
    std::map<QString, int> levelsOf;
    for (QString folder : std::as_const(m_patterns)) {
        int levels = 0;
        while (folder.endsWith(u"/*"_s)) {
            folder.chop(2);
            ++levels;
        }
        levelsOf[folder] = std::max(levelsOf[folder], levels);
    }
    PartialFile partial(QFile::encodeName(ArchivePath));
    const Writer writer(archive_write_new());
    bool built = archive_write_set_format_zip(writer.get()) == ARCHIVE_OK &&
                 archive_write_set_options(writer.get(), "zip:hdrcharset=UTF-8") == ARCHIVE_OK &&
                 partial.file().isOpen() && archive_write_open_fd(writer.get(), partial.file().number()) == ARCHIVE_OK;
    if (built) {
        Packer packer(writer.get(), m_leftOut);
        for (const auto &[folder, levels] : levelsOf) {
            built = built && levels > 0;
            if (built) {
                built = co_await packer.addFolder(QFile::encodeName(folder), QString(), levels);
            }
        }
    }
    const bool ended = archive_write_close(writer.get()) == ARCHIVE_OK;
    built = built && ended && partial.keep();
    if (!built) {
        const char *reason = archive_error_string(writer.get());
        reportFault(u"cannot write the archive '"_s + ArchivePath + u"': "_s +
                    QString::fromLocal8Bit(reason ? reason : std::strerror(errno)));
    }
    co_return built;
}

} // namespace quillon
