#include "quillon/system/platform.h"

#include "quillon/fault.h"

#include <QDir>
#include <QFileInfo>

#include <utility>

using namespace Qt::StringLiterals;

namespace quillon {

namespace {

constexpr int currentSystem = 10;

template <typename Service> struct Slot {
    Service standard;
    Service *present = &standard;

    Service *set(Service *next)
    {
        Service *before = std::exchange(present, next ? next : &standard);
        return before == &standard ? nullptr : before;
    }
};

Slot<Clock> &clockSlot()
{
    static Slot<Clock> slot;
    return slot;
}

Slot<Processes> &processSlot()
{
    static Slot<Processes> slot;
    return slot;
}

Slot<DesktopOpener> &openerSlot()
{
    static Slot<DesktopOpener> slot;
    return slot;
}

int majorVersion = currentSystem;

} // namespace

QDateTime Clock::now() const
{
    return QDateTime::currentDateTime();
}

Pending<> Clock::wait(qint64 milliseconds)
{
    return elapsed(milliseconds);
}

bool DesktopOpener::open(const QString &pathOrUrl)
{
    reportFault(u"no desktop to open '"_s + pathOrUrl + u'\'');
    return false;
}

Clock &systemClock()
{
    return *clockSlot().present;
}

Processes &processes()
{
    return *processSlot().present;
}

DesktopOpener &desktopOpener()
{
    return *openerSlot().present;
}

Clock *setSystemClock(Clock *next)
{
    return clockSlot().set(next);
}

Processes *setProcesses(Processes *next)
{
    return processSlot().set(next);
}

DesktopOpener *setDesktopOpener(DesktopOpener *next)
{
    return openerSlot().set(next);
}

int osMajorVersion()
{
    return majorVersion;
}

void setOsMajorVersion(int version)
{
    majorVersion = version;
}

QString dataRootBelow(const QString &userFolder)
{
    return userFolder + u"/Lanthorn/Corvane"_s;
}

QString realPath(const QString &path)
{
    const QFileInfo info(QDir::cleanPath(path));
    const QString real = info.canonicalFilePath();
    if (!real.isEmpty() || info.path() == info.filePath()) {
        return real.isEmpty() ? info.filePath() : real;
    }
    const QString folder = realPath(info.path());
    return folder + (folder.endsWith(u'/') ? u""_s : u"/"_s) + info.fileName();
}

} // namespace quillon
