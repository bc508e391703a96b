#include "core/launcher.h"

#include "core/datatree.h"
#include "core/formnames.h"
#include "core/settings.h"
#include "core/texts.h"
#include "quillon/hook.h"
#include "quillon/system/platform.h"
#include "quillon/system/quillonregistry.h"

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

constexpr int positionInterval = 6000;
constexpr int firstSystemWithoutAccountManager = 6;

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

void handOver(ApplicationGlobals &globals, Companion &companion, HandOver steps)
{
    quillon::requireHook(steps.showMainWindow, u"HandOver::showMainWindow"_s);
    quillon::requireHook(steps.createHiddenProgress, u"HandOver::createHiddenProgress"_s);
    quillon::requireHook(steps.setPositionTimer, u"HandOver::setPositionTimer"_s);
    quillon::requireHook(steps.unloadSplash, u"HandOver::unloadSplash"_s);
    quillon::requireHook(steps.isEnding, u"HandOver::isEnding"_s);
    // The setting is read twice on purpose: it may change while the main window loads.
    const auto startsAsLast = [&] { return globals.settings.is(Setting::Startup, startupLast); };
    if (startsAsLast()) {
        globals.RestoringFromLast = true;
    }
    steps.showMainWindow();
    if (steps.isEnding()) {
        return;
    }
    steps.createHiddenProgress();
    steps.setPositionTimer(positionInterval);
    companion.restart();
    if (startsAsLast()) {
        globals.RestoringFromLast = false;
    }
    steps.unloadSplash();
}

quillon::Task<bool> exitProgram(Companion &companion, bool stopScheduler, ExitSteps steps)
{
    quillon::requireHook(steps.saveCancelled, u"ExitSteps::saveCancelled"_s);
    quillon::requireHook(steps.unloadForm, u"ExitSteps::unloadForm"_s);
    quillon::requireHook(steps.closeHelp, u"ExitSteps::closeHelp"_s);
    quillon::requireHook(steps.removeTrayIcon, u"ExitSteps::removeTrayIcon"_s);
    quillon::requireHook(steps.unloadMainWindow, u"ExitSteps::unloadMainWindow"_s);
    if (steps.saveCancelled()) {
        co_return false;
    }
    for (const QString &form :
         {optionsForm, senderForm, contactsForm, templatesForm, progressForm, aboutForm, splashForm, scheduleForm}) {
        steps.unloadForm(form);
    }
    steps.closeHelp();
    co_await companion.takeLeave(stopScheduler);
    steps.removeTrayIcon();
    steps.unloadMainWindow();
    co_return true;
}

} // namespace corvane
