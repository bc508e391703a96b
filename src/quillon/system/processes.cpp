#include "quillon/fault.h"
#include "quillon/system/platform.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include <csignal>
#include <sys/stat.h>
#include <sys/types.h>
#include <thread>
#include <unistd.h>

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

QList<pid_t> matching(const QString &executable, const QString &dataRoot)
{
    QList<pid_t> found;
    const QStringList names = QDir(u"/proc"_s).entryList({u"[0-9]*"_s}, QDir::Dirs);
    for (const QString &name : names) {
        const QString folder = u"/proc/"_s + name;
        struct stat status {};
        if (::stat(folder.toLatin1().constData(), &status) != 0 || status.st_uid != ::getuid()) {
            continue;
        }
        if (executableOf(folder) == executable && realPath(dataRootOf(folder)) == realPath(dataRoot)) {
            found.append(static_cast<pid_t>(name.toInt()));
        }
    }
    return found;
}

} // namespace

void Processes::end(const QString &executable, const QString &dataRoot)
{
    QList<pid_t> left = matching(executable, dataRoot);
    for (const pid_t process : left) {
        ::kill(process, SIGTERM);
    }
    const QDeadlineTimer deadline(graceMilliseconds);
    while (!left.isEmpty() && !deadline.hasExpired()) {
        std::this_thread::sleep_for(std::chrono::milliseconds(lookMilliseconds));
        left = matching(executable, dataRoot);
    }
    for (const pid_t process : std::as_const(left)) {
        ::kill(process, SIGKILL);
    }
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
