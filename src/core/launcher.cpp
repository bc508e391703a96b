#include "core/launcher.h"

#include "core/datatree.h"
#include "core/formnames.h"
#include "core/settings.h"
#include "core/texts.h"
#include "quillon/hook.h"
#include "quillon/system/platform.h"
#include "quillon/system/quillonregistry.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

constexpr int positionInterval = 6000;
constexpr int minimised = 6;
constexpr int firstSystemWithoutAccountManager = 6;

const QString companion = u"CorvaneS.exe"_s;

} // namespace

bool isSwitch(const QStringList &arguments)
{
    return arguments.join(u' ').toUpper() == "/D"_L1;
}

void prepareProgram(ApplicationGlobals &globals)
{
    useLanguageTexts();
    PrepareDataFolder(globals);
    UpgradeOldData(globals);
    prepareSettings(globals);
    if (globals.system.GetOsMajorVersion() < firstSystemWithoutAccountManager) {
        const quillon::QuillonRegistry registry;
        registry.DeleteKey(quillon::QuillonRegistry::CurrentUser,
                           u"Software\\Microsoft\\Internet Account Manager\\Accounts\\00000096"_s);
    }
}

void restartCompanion(const ApplicationGlobals &globals, bool stopOnFault)
{
    globals.system.EndProcess(companion);
    const QString path = globals.programFolder + u'/' + companion;
    if (!QFileInfo(path).isFile()) {
        return;
    }
    globals.system.OpenTarget(path, minimised, stopOnFault ? QStringList{u"/D"_s} : QStringList());
}

void handOver(ApplicationGlobals &globals, bool stopOnFault, HandOver steps)
{
    quillon::requireHook(steps.showMainWindow, u"HandOver::showMainWindow"_s);
    quillon::requireHook(steps.createHiddenProgress, u"HandOver::createHiddenProgress"_s);
    quillon::requireHook(steps.setPositionTimer, u"HandOver::setPositionTimer"_s);
    quillon::requireHook(steps.unloadSplash, u"HandOver::unloadSplash"_s);
    // The setting is read twice on purpose: it may change while the main window loads.
    const auto startsAsLast = [&] { return globals.settings.is(Setting::Startup, startupLast); };
    if (startsAsLast()) {
        globals.RestoringFromLast = true;
    }
    steps.showMainWindow();
    steps.createHiddenProgress();
    steps.setPositionTimer(positionInterval);
    restartCompanion(globals, stopOnFault);
    if (startsAsLast()) {
        globals.RestoringFromLast = false;
    }
    steps.unloadSplash();
}

bool exitProgram(const ApplicationGlobals &globals, bool stopScheduler, ExitSteps steps)
{
    quillon::requireHook(steps.saveCancelled, u"ExitSteps::saveCancelled"_s);
    quillon::requireHook(steps.unloadForm, u"ExitSteps::unloadForm"_s);
    quillon::requireHook(steps.closeHelp, u"ExitSteps::closeHelp"_s);
    quillon::requireHook(steps.removeTrayIcon, u"ExitSteps::removeTrayIcon"_s);
    quillon::requireHook(steps.unloadMainWindow, u"ExitSteps::unloadMainWindow"_s);
    if (steps.saveCancelled()) {
        return false;
    }
    for (const QString &form :
         {optionsForm, senderForm, contactsForm, templatesForm, progressForm, aboutForm, splashForm, scheduleForm}) {
        steps.unloadForm(form);
    }
    steps.closeHelp();
    if (stopScheduler) {
        globals.system.EndProcess(companion);
    }
    steps.removeTrayIcon();
    steps.unloadMainWindow();
    return true;
}

} // namespace corvane
