#include "app/programservices.h"

#include <QCoreApplication>
#include <QSystemTrayIcon>

namespace corvane {

ProgramServices desktopServices()
{
    // Not quit(), which asks every window first, and a box may say no.
    return {&QSystemTrayIcon::isSystemTrayAvailable, [] { QCoreApplication::exit(); }, nullptr};
}

} // namespace corvane
