#include "message/documentflow.h"

#include "core/texts.h"
#include "message/messagetexts.h"
#include "message/saveflow.h"
#include "message/templatefiles.h"
#include "message/templatename.h"
#include "quillon/hook.h"
#include "quillon/system/prompts.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace corvane {

using Field = Message::Field;
using quillon::BoxAnswer;

DocumentFlow::DocumentFlow(const ApplicationGlobals &globals, Message &message, Window &window, Hooks hooks)
    : m_globals(globals), m_message(message), m_window(window), m_hooks(std::move(hooks))
{
    quillon::requireHook(m_hooks.layOutNew, u"DocumentFlow::layOutNew"_s);
    quillon::requireHook(m_hooks.richText, u"DocumentFlow::richText"_s);
    quillon::requireHook(m_hooks.showTemplates, u"DocumentFlow::showTemplates"_s);
    quillon::requireHook(m_hooks.rememberRecipients, u"DocumentFlow::rememberRecipients"_s);
}

QString DocumentFlow::bodyText(bool withSource) const
{
    if (m_message.format() == Message::Format::Plain) {
        return m_message.text(Field::PlainContent);
    }
    const QString text = m_hooks.richText().trimmed();
    return withSource ? text + m_message.text(Field::Source).trimmed() : text;
}

bool DocumentFlow::ConfirmSave()
{
    if (!m_message.pblnChanged || isBlank(m_message, bodyText(true))) {
        return false;
    }
    for (;;) {
        switch (showMessage(u"SAVE_MAIL_PROMPT"_s, quillon::YesNoCancelBox)) {
        case BoxAnswer::Yes:
            if (SaveAsTemplate()) {
                return false;
            }
            break; // who gave no name is asked again
        case BoxAnswer::No:
            return false;
        default:
            return true;
        }
    }
}

bool DocumentFlow::SaveAsTemplate()
{
    if (isBlank(m_message, bodyText(false))) {
        showMessage(u"NEED_INFO"_s, quillon::InformationBox);
        return false;
    }
    for (;;) {
        const QString proposed = proposedName(m_window.title(), m_message.text(Field::Subject));
        const QString key = u"INPUT_NAME"_s;
        const QString answer = quillon::prompts().input({key, LookupText(key), proposed});
        const QString name = withoutForbiddenCharacters(answer);
        const NameAnswer decision = decideName(answer, name, proposed, templateNames(m_globals));
        if (decision == NameAnswer::End) {
            return false;
        }
        if (decision == NameAnswer::Ask && showMessage(u"TEMP_EXISTS"_s, quillon::YesNoBox, name) != BoxAnswer::Yes) {
            continue;
        }
        if (!writeTemplate(m_globals, name, decision == NameAnswer::New, m_message, m_hooks.rememberRecipients)) {
            return false; // nothing is said here, but what was written is not given up either
        }
        m_window.setTitle(editTitle(name));
        m_message.pblnChanged = false;
        return true;
    }
}

void DocumentFlow::New()
{
    if (ConfirmSave()) {
        return;
    }
    m_window.mblnReady = false;
    m_window.setTitle(newMessageTitle());
    m_hooks.layOutNew();
    m_window.mblnReady = true;
    m_message.pblnChanged = false;
}

void DocumentFlow::showDialog(bool managing)
{
    m_managing = managing;
    m_window.mblnReady = false;
    m_hooks.showTemplates();
}

void DocumentFlow::Open()
{
    if (ConfirmSave()) {
        return;
    }
    psTempName.clear();
    showDialog(false);
    if (!psTempName.isEmpty()) {
        show(psTempName);
        m_message.pblnChanged = false;
    }
    m_window.mblnReady = true;
}

void DocumentFlow::manage()
{
    if (ConfirmSave()) {
        return;
    }
    showDialog(true);
    m_window.mblnReady = true;
}

void DocumentFlow::preview(const QString &name)
{
    LoadTemplate(m_globals, name, m_message);
    m_window.setTitle(previewTitle(name));
}

void DocumentFlow::show(const QString &name)
{
    LoadTemplate(m_globals, name, m_message);
    m_window.setTitle(editTitle(name));
}

QString DocumentFlow::openName() const
{
    return isNewMessageTitle(m_window.title()) ? noTemplateMark() : nameInTitle(m_window.title());
}

QString DocumentFlow::noTemplateMark()
{
    return QString::fromUtf16(noTemplateMarkText);
}

} // namespace corvane
