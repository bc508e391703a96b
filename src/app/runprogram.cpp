#include "app/runprogram.h"

#include "app/program.h"
#include "core/forms/artwork.h"
#include "core/instancelock.h"
#include "core/launcher.h"
#include "quillon/fault.h"
#include "quillon/forms/qtopener.h"
#include "quillon/system/platform.h"
#include "quillon/system/quillonsystem.h"
#include "quillon/system/terminationsignals.h"

#include <QApplication>
#include <QIcon>

using namespace Qt::StringLiterals;

namespace corvane {

int runProgram(const QString &programFolder, const QStringList &arguments)
{
    // The name, and not the display name, which the desktop would append to every window's title.
    QApplication::setApplicationName(u"Corvane"_s);
    QApplication::setDesktopFileName(u"corvane"_s);
    // The splash and the dialogs come and go; only the exit command ends the program.
    QApplication::setQuitOnLastWindowClosed(false);

    initResources();
    QApplication::setWindowIcon(QIcon(u":/corvane.svg"_s));

    const quillon::QuillonSystem system;
    const InstanceLock lock(quillon::dataRootBelow(system.GetSpecialFolder(26)));
    if (lock.otherInstanceRuns()) {
        return 0;
    }
    const bool stopOnFault = isSwitch(arguments);
    quillon::setStopOnFault(stopOnFault);

    const quillon::QtOpener opener;
    const quillon::TerminationSignals signals;
    Program program(programFolder, stopOnFault, desktopServices());
    QObject::connect(&signals, &quillon::TerminationSignals::received, &program, &Program::endBySystem);
    program.start();
    // Showing the splash may handle events too, among them one that ends the program.
    return program.isEnding() ? 0 : QApplication::exec();
}

} // namespace corvane
