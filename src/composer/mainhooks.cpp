#include "composer/mainhooks.h"

#include "quillon/hook.h"

using namespace Qt::StringLiterals;

namespace corvane {

MainHooks requireAll(MainHooks hooks)
{
    quillon::requireHook(hooks.send, u"MainHooks::send"_s);
    quillon::requireHook(hooks.exitProgram, u"MainHooks::exitProgram"_s);
    quillon::requireHook(hooks.findSmtpRecord, u"MainHooks::findSmtpRecord"_s);
    quillon::requireHook(hooks.insertIntoSignature, u"MainHooks::insertIntoSignature"_s);
    quillon::requireHook(hooks.findSignature, u"MainHooks::findSignature"_s);
    quillon::requireHook(hooks.showForm, u"MainHooks::showForm"_s);
    quillon::requireHook(hooks.optionsOpen, u"MainHooks::optionsOpen"_s);
    quillon::requireHook(hooks.sending, u"MainHooks::sending"_s);
    quillon::requireHook(hooks.showProgress, u"MainHooks::showProgress"_s);
    quillon::requireHook(hooks.prompts, u"MainHooks::prompts"_s);
    quillon::requireHook(hooks.rememberRecipients, u"MainHooks::rememberRecipients"_s);
    quillon::requireHook(hooks.loadLists, u"MainHooks::loadLists"_s);
    quillon::requireHook(hooks.checkAccount, u"MainHooks::checkAccount"_s);
    quillon::requireHook(hooks.readPrompts, u"MainHooks::readPrompts"_s);
    quillon::requireHook(hooks.minimised, u"MainHooks::minimised"_s);
    quillon::requireHook(hooks.closed, u"MainHooks::closed"_s);
    return hooks;
}

} // namespace corvane
