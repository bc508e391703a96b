#pragma once

#include "quillon/sequence/pending.h"

#include <QDateTime>
#include <QString>
#include <QStringList>

namespace quillon {

/// The clock of the program: what time it is, and how it waits.
class Clock {
public:
    virtual ~Clock() = default;
    [[nodiscard]] virtual QDateTime now() const;
    /// Settled when that time is over; 0 or less is no time.
    virtual Pending<> wait(qint64 milliseconds);
};

/// Other processes of this user.
class Processes {
public:
    virtual ~Processes() = default;
    /// Asks every process of this user to end whose executable has the file name @p executable and that works on the
    /// data root @p dataRoot, and kills after a grace of two seconds what is still there. Settled when they are gone.
    virtual Pending<> end(const QString &executable, const QString &dataRoot);
    /// Starts a program of its own, detached, with nothing shown. False when it could not be started.
    virtual bool start(const QString &program, const QStringList &arguments);
};

/// Opening of documents, pages and programs by the desktop. The library's form target brings the real one.
class DesktopOpener {
public:
    virtual ~DesktopOpener() = default;
    /// False when the desktop could not open it.
    virtual bool open(const QString &pathOrUrl);
};

Clock &systemClock();
Processes &processes();
DesktopOpener &desktopOpener();

/// Each puts another service in force and returns the one before; nullptr is the default. The caller keeps ownership.
Clock *setSystemClock(Clock *next);
Processes *setProcesses(Processes *next);
DesktopOpener *setDesktopOpener(DesktopOpener *next);

/// The major version that GetOsMajorVersion() gives; 10 unless set.
[[nodiscard]] int osMajorVersion();
void setOsMajorVersion(int version);

/// The data root below a per-user application data folder.
[[nodiscard]] QString dataRootBelow(const QString &userFolder);

/// Where a path leads to, links followed; a part that is not there stands as it is.
[[nodiscard]] QString realPath(const QString &path);

} // namespace quillon
