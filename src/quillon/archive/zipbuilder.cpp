#include "quillon/archive/zipbuilder.h"

#include "quillon/fault.h"
#include "quillon/files/textcoding.h"

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
#include <sys/stat.h>
#include <unistd.h>
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
/// does not promise a text.
std::vector<QByteArray> namesIn(const QByteArray &folder)
{
    std::vector<QByteArray> names;
    const std::unique_ptr<DIR, DirDeleter> stream(::opendir(folder.constData()));
    while (stream) {
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

/// Fills an archive from folders.
class Packer {
public:
    Packer(archive *writer, std::function<bool()> breathe)
        : m_writer(writer), m_breathe(std::move(breathe)), m_chunk(chunkSize, Qt::Uninitialized)
    {
        m_sinceBreath.start();
    }

    /// Adds the content of @p folder and of @p levels - 1 levels below it, under @p prefix. False when the archive
    /// cannot be written to.
    bool addFolder(const QByteArray &folder, const QString &prefix, int levels)
    {
        for (const QByteArray &name : namesIn(folder)) {
            if (!breathe()) {
                return false;
            }
            const QByteArray path = folder + '/' + name;
            struct stat status {};
            if (::lstat(path.constData(), &status) != 0) {
                continue;
            }
            const QString shown = uniqueName(prefix + decodeLine(name));
            if (S_ISDIR(status.st_mode)) {
                if (!addHeader(shown + u'/', status) || (levels > 1 && !addFolder(path, shown + u'/', levels - 1))) {
                    return false;
                }
            } else if (!addFile(path, shown)) {
                return false;
            }
        }
        return true;
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

    bool addFile(const QByteArray &path, const QString &name)
    {
        // Without waiting, so that a pipe cannot hold the program.
        const int file = ::open(path.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
        struct stat status {};
        if (file < 0 || ::fstat(file, &status) != 0 || !S_ISREG(status.st_mode)) {
            reportFault(u"left out of the archive: '"_s + name + u'\'');
            if (file >= 0) {
                ::close(file);
            }
            return true;
        }
        const bool added = addHeader(name, status) && copy(file, status.st_size);
        ::close(file);
        return added;
    }

    /// At most the octets that the header told: a file that grows while it is read is taken as it was at the start.
    bool copy(int file, qint64 size)
    {
        while (size > 0) {
            const auto wanted = static_cast<std::size_t>(std::min<qint64>(size, m_chunk.size()));
            const ssize_t count = ::read(file, m_chunk.data(), wanted);
            if (count < 0 && errno == EINTR) {
                continue;
            }
            if (count <= 0) {
                return true;
            }
            if (archive_write_data(m_writer, m_chunk.constData(), static_cast<std::size_t>(count)) != count) {
                return false;
            }
            size -= count;
            if (!breathe()) {
                return false;
            }
        }
        return true;
    }

    /// False when the work is to end.
    bool breathe()
    {
        if (!m_breathe || !m_sinceBreath.hasExpired(breathMilliseconds)) {
            return true;
        }
        const bool goOn = m_breathe();
        m_sinceBreath.restart();
        return goOn;
    }

    archive *m_writer;
    std::function<bool()> m_breathe;
    QElapsedTimer m_sinceBreath;
    QByteArray m_chunk;
    QSet<QString> m_names;
};

} // namespace

void ZipBuilder::AddPattern(const QString &pattern)
{
    m_patterns.append(pattern);
}

bool ZipBuilder::Build()
{
    std::map<QString, int> levelsOf;
    for (QString folder : std::as_const(m_patterns)) {
        int levels = 0;
        while (folder.endsWith(u"/*"_s)) {
            folder.chop(2);
            ++levels;
        }
        levelsOf[folder] = std::max(levelsOf[folder], levels);
    }
    const QByteArray target = QFile::encodeName(ArchivePath);
    const QByteArray partial = target + ".part";
    const int file = ::open(partial.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, S_IRUSR | S_IWUSR);
    const Writer writer(archive_write_new());
    bool built = archive_write_set_format_zip(writer.get()) == ARCHIVE_OK &&
                 archive_write_set_options(writer.get(), "zip:hdrcharset=UTF-8") == ARCHIVE_OK && file >= 0 &&
                 archive_write_open_fd(writer.get(), file) == ARCHIVE_OK;
    if (built) {
        Packer packer(writer.get(), Breathe);
        for (const auto &[folder, levels] : levelsOf) {
            built = built && levels > 0 && packer.addFolder(QFile::encodeName(folder), QString(), levels);
        }
    }
    const bool ended = archive_write_close(writer.get()) == ARCHIVE_OK;
    const bool closed = file >= 0 && ::close(file) == 0;
    built = built && ended && closed && ::rename(partial.constData(), target.constData()) == 0;
    if (!built) {
        const char *reason = archive_error_string(writer.get());
        reportFault(u"cannot write the archive '"_s + ArchivePath + u"': "_s +
                    QString::fromLocal8Bit(reason ? reason : std::strerror(errno)));
        ::unlink(partial.constData());
    }
    return built;
}

} // namespace quillon
