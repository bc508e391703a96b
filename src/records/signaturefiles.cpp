#include "records/signaturefiles.h"

#include "quillon/fault.h"
#include "quillon/files/safefile.h"
#include "quillon/files/writeoutcome.h"

#include <QCryptographicHash>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

constexpr qsizetype longestFileName = 255; // octets, on every file system of this platform
constexpr mode_t fileMode = S_IRUSR | S_IWUSR;
const QString ending = u".dll"_s;

QString beginning(const QString &name)
{
    return u"sign_"_s + name;
}

/// The file name for a signature; empty when there can be none.
QString fileName(const QString &name)
{
    const QString file = beginning(name) + ending;
    const bool possible =
        !name.contains(u'/') && !name.contains(QChar(u'\0')) && QFile::encodeName(file).size() <= longestFileName;
    return possible ? file : QString();
}

/// What stands at a path; a link counts as itself.
std::optional<struct stat> entryAt(const QString &path)
{
    struct stat status {};
    const bool there = !path.isEmpty() && ::lstat(QFile::encodeName(path).constData(), &status) == 0;
    return there ? std::optional(status) : std::nullopt;
}

bool isSame(const struct stat &one, const struct stat &other)
{
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

void fault(const QString &what, const QString &path)
{
    quillon::reportFault(what + u" '"_s + path + u"': "_s + QString::fromLocal8Bit(std::strerror(errno)));
}

void removeFile(const QString &path)
{
    if (::unlink(QFile::encodeName(path).constData()) != 0 && errno != ENOENT) {
        fault(u"cannot delete"_s, path);
    }
}

bool move(const QString &from, const QString &to)
{
    return ::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
}

} // namespace

SignatureFiles::SignatureFiles(QString folder, const QStringList &names) : m_folder(std::move(folder)), m_names(names)
{
    for (const QString &name : names) {
        m_own.insert(fileName(name));
    }
}

QString SignatureFiles::target(const QString &name) const
{
    const QString file = fileName(name);
    return file.isEmpty() ? QString() : m_folder + u'/' + file;
}

QString SignatureFiles::place(const QString &name) const
{
    const QString exact = target(name);
    if (!exact.isEmpty()) {
        return exact;
    }
    const QByteArray hash = QCryptographicHash::hash(name.toUtf8(), QCryptographicHash::Sha1).toHex();
    return m_folder + u"/kept_"_s + QString::fromLatin1(hash) + ending;
}

const QStringList &SignatureFiles::listing() const
{
    if (!m_listing) {
        m_listing.emplace();
        // Everything that is no folder, pipes and broken links too.
        QDirIterator entries(m_folder, QDir::Files | QDir::Hidden | QDir::System);
        while (entries.hasNext()) {
            entries.next();
            m_listing->append(entries.fileName());
            m_byCase.insert(entries.fileName().toCaseFolded(), entries.fileName());
        }
    }
    return *m_listing;
}

QString SignatureFiles::present(const QString &name) const
{
    const QString exact = place(name);
    if (entryAt(exact)) {
        return exact;
    }
    if (fileName(name).isEmpty()) {
        return {};
    }
    (void)listing();
    const QStringList others = m_byCase.values(fileName(name).toCaseFolded());
    for (const QString &other : others) {
        if (!m_own.contains(other) && entryAt(m_folder + u'/' + other)) {
            return m_folder + u'/' + other;
        }
    }
    return {};
}

bool SignatureFiles::write(const QString &name, const QByteArray &octets) const
{
    const QString exact = target(name);
    if (exact.isEmpty()) {
        quillon::reportFault(u"no file can have the name of the signature '"_s + name + u'\'');
        return false;
    }
    if (const QString found = present(name); !found.isEmpty() && found != exact) {
        move(found, exact);
    } else if (found.isEmpty() && quillon::existingPath(exact) != exact) {
        // The file of a signature in another case is not this one's: it must not be taken for it.
        const int made =
            ::open(QFile::encodeName(exact).constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, fileMode);
        if (made < 0) {
            const int error = errno;
            fault(u"cannot make"_s, exact);
            quillon::tellNotWritten(exact, error);
            return false;
        }
        ::close(made);
    }
    return quillon::writeWholeFile(exact, octets);
}

void SignatureFiles::remove(const QString &name) const
{
    if (const QString found = present(name); !found.isEmpty()) {
        if (target(name).isEmpty()) {
            dropOtherNames(found);
        }
        removeFile(found);
    }
    quillon::tellDeleted(target(name));
}

void SignatureFiles::dropOtherNames(const QString &path) const
{
    const auto text = entryAt(path);
    if (!text || text->st_nlink < 2) {
        return;
    }
    for (const QString &file : listing()) {
        const QString other = m_folder + u'/' + file;
        const auto entry = entryAt(other);
        if (other != path && !m_own.contains(file) && entry && isSame(*entry, *text)) {
            removeFile(other);
        }
    }
}

bool SignatureFiles::setAside(const QString &name) const
{
    const QString left = present(name);
    const auto entry = entryAt(left);
    if (!entry) {
        return true;
    }
    if (m_own.contains(QFileInfo(left).fileName()) || isOfAnother(name, name)) {
        return false;
    }
    if (entry->st_size == 0) {
        return ::unlink(QFile::encodeName(left).constData()) == 0;
    }
    for (int number = 1;; ++number) {
        const QString aside = m_folder + u"/left_%1.dll"_s.arg(number);
        if (!entryAt(aside)) {
            return move(left, aside);
        }
    }
}

bool SignatureFiles::isOfAnother(const QString &newName, const QString &name) const
{
    const auto there = entryAt(target(newName));
    return there && std::any_of(m_names.cbegin(), m_names.cend(), [&](const QString &other) {
               if (other == name || other.compare(newName, Qt::CaseInsensitive) != 0) {
                   return false;
               }
               const auto owned = entryAt(present(other));
               return owned && isSame(*owned, *there);
           });
}

void SignatureFiles::removeAllThatBeginWith(const QString &name) const
{
    remove(name);
    if (name.isEmpty()) {
        return; // all names begin with it, and it is none
    }
    const QString start = beginning(name);
    for (const QString &file : listing()) {
        if (file.size() >= start.size() + ending.size() && file.startsWith(start) &&
            file.endsWith(ending, Qt::CaseInsensitive)) {
            removeFile(m_folder + u'/' + file);
            quillon::tellDeleted(m_folder + u'/' + file);
        }
    }
}

SignatureFiles::Move::Move(const SignatureFiles &files, const QString &name, const QString &newName)
    : m_files(files), m_from(files.present(name)), m_to(files.place(newName)),
      m_waits(!files.target(name).isEmpty() && files.target(newName).isEmpty()),
      m_waited(files.target(name).isEmpty() && !files.target(newName).isEmpty())
{
    if (m_from.isEmpty()) {
        return;
    }
    const auto from = entryAt(m_from);
    const auto to = entryAt(m_to);
    if (from && to && isSame(*from, *to)) {
        // A second name is left over from a move that was killed; with one name only it is told in another case.
        m_how = from->st_nlink > 1 ? How::Linked : How::Later;
    } else if (!makeRoom(files, name, newName)) {
        quillon::reportFault(u"cannot move '"_s + m_from + u"': there is already '"_s + m_to + u'\'');
    } else {
        const bool linked = ::link(QFile::encodeName(m_from).constData(), QFile::encodeName(m_to).constData()) == 0;
        m_how = linked ? How::Linked : How::Later;
    }
}

bool SignatureFiles::Move::makeRoom(const SignatureFiles &files, const QString &name, const QString &newName)
{
    return !entryAt(m_to) || (!files.isOfAnother(newName, name) && files.setAside(newName));
}

void SignatureFiles::Move::finish() const
{
    if (m_how == How::Linked && !m_waits) {
        removeFile(m_from);
    } else if (m_how == How::Later && !move(m_from, m_to)) {
        fault(u"cannot move"_s, m_from);
    }
    if (m_waited && m_how != How::Nothing) {
        m_files.dropOtherNames(m_to);
    }
}

void SignatureFiles::Move::takeBack() const
{
    if (m_how == How::Linked) {
        removeFile(m_to);
    }
}

} // namespace corvane
