#include "composer/artwork.h"
#include "core/instancelock.h"
#include "core/launcher.h"
#include "program.h"
#include "quillon/fault.h"
#include "quillon/system/platform.h"
#include "quillon/system/quillonsystem.h"

#include <QApplication>
#include <QIcon>

using namespace Qt::StringLiterals;

int main(int count, char **values)
{
    QApplication application(count, values);
    // The name, and not the display name, which the desktop would append to every window's title.
    QApplication::setApplicationName(u"Corvane"_s);
    QApplication::setDesktopFileName(u"corvane"_s);
    // The splash and the dialogs come and go; only the exit command ends the program.
    QApplication::setQuitOnLastWindowClosed(false);

    corvane::initResources();
    QApplication::setWindowIcon(QIcon(u":/corvane.svg"_s));

    const quillon::QuillonSystem system;
    const corvane::InstanceLock lock(quillon::dataRootBelow(system.GetSpecialFolder(26)));
    if (lock.otherInstanceRuns()) {
        return 0;
    }
    const bool stopOnFault = corvane::isSwitch(QApplication::arguments().sliced(1));
    quillon::setStopOnFault(stopOnFault);

    corvane::Program program(QApplication::applicationDirPath(), stopOnFault);
    program.start();
    return QApplication::exec();
}
