#include "quillon/fault.h"
#include "quillon/system/platform.h"

#include <QBasicTimer>
#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include <csignal>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>
#include <utility>

using namespace Qt::StringLiterals;

namespace quillon {

namespace {

constexpr int graceMilliseconds = 2000;
constexpr int lookMilliseconds = 20;

/// The data root that a process works on, by the environment that it was started with.
QString dataRootOf(const QString &processFolder)
{
    QFile file(processFolder + u"/environ"_s);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    QString dataHome;
    QString home;
    const QList<QByteArray> entries = file.readAll().split('\0');
    for (const QByteArray &entry : entries) {
        if (entry.startsWith("XDG_DATA_HOME=")) {
            dataHome = QFile::decodeName(entry.sliced(14));
        } else if (entry.startsWith("HOME=")) {
            home = QFile::decodeName(entry.sliced(5));
        }
    }
    return dataRootBelow(QDir::isAbsolutePath(dataHome) ? dataHome : home + u"/.local/share"_s);
}

QString executableOf(const QString &processFolder)
{
    QString target = QFile::symLinkTarget(processFolder + u"/exe"_s);
    const QString deleted = u" (deleted)"_s; // as the system says of a program that was replaced while it runs
    if (target.endsWith(deleted)) {
        target.chop(deleted.size());
    }
    return QFileInfo(target).fileName();
}

/// Whether a process of this user has that executable and works on that data root.
bool isThere(pid_t process, const QString &executable, const QString &realRoot)
{
    const QString folder = u"/proc/"_s + QString::number(process);
    struct stat status {};
    return ::stat(folder.toLatin1().constData(), &status) == 0 && status.st_uid == ::getuid() &&
           executableOf(folder) == executable && realPath(dataRootOf(folder)) == realRoot;
}

QList<pid_t> matching(const QString &executable, const QString &realRoot)
{
    QList<pid_t> found;
    const QStringList names = QDir(u"/proc"_s).entryList({u"[0-9]*"_s}, QDir::Dirs);
    for (const QString &name : names) {
        const auto process = static_cast<pid_t>(name.toInt());
        if (isThere(process, executable, realRoot)) {
            found.append(process);
        }
    }
    return found;
}

/// Looks after processes that were asked to end until they are gone, and kills after the grace those that are not. It
/// does so also when nobody waits for it any more, and goes by itself.
class Ending : public QObject {
public:
    Ending(const QList<pid_t> &left, const QString &executable, const QString &realRoot, Pending<>::Settler done)
        : QObject(QCoreApplication::instance()), m_left(left), m_executable(executable), m_realRoot(realRoot),
          m_done(std::move(done))
    {
        m_look.start(lookMilliseconds, this);
    }

protected:
    void timerEvent(QTimerEvent *event) override
    {
        Q_UNUSED(event)
        m_left.removeIf([this](pid_t process) { return !isThere(process, m_executable, m_realRoot); });
        if (!m_left.isEmpty() && !m_grace.hasExpired()) {
            return;
        }
        for (const pid_t process : std::as_const(m_left)) {
            ::kill(process, SIGKILL);
        }
        m_look.stop();
        deleteLater();
        m_done.settle();
    }

private:
    QList<pid_t> m_left;
    QString m_executable;
    QString m_realRoot;
    Pending<>::Settler m_done;
    QDeadlineTimer m_grace{graceMilliseconds};
    QBasicTimer m_look;
};

} // namespace

Pending<> Processes::end(const QString &executable, const QString &dataRoot)
{
    const QString realRoot = realPath(dataRoot);
    const QList<pid_t> found = matching(executable, realRoot);
    if (found.isEmpty()) {
        return Pending<>::settled();
    }
    for (const pid_t process : found) {
        ::kill(process, SIGTERM);
    }
    Pending<> pending;
    new Ending(found, executable, realRoot, pending.settler());
    return pending;
}

bool Processes::start(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.setProgram(program);
    process.setArguments(arguments);
    process.setWorkingDirectory(QFileInfo(program).path());
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    return process.startDetached();
}

} // namespace quillon
