#include "composer/maincommands.h"

#include "composer/attachmentlist.h"
#include "composer/contentlayout.h"
#include "composer/contentviews.h"
#include "composer/editcommands.h"
#include "core/datatree.h"
#include "core/formnames.h"
#include "core/texts.h"
#include "message/documentflow.h"
#include "quillon/system/platform.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

using Run = std::function<void()>;
using Field = Message::Field;

constexpr int maximised = 3;

/// The command is the item's own check mark, which has turned already.
void turnCheckMark() {}

void clearRecipients(Message &message, Window &window)
{
    if (showMessage(u"CLEAR_RECIP"_s, quillon::YesNoCancelBox) != quillon::BoxAnswer::Yes) {
        return;
    }
    for (const Field field : {Field::To, Field::CC, Field::BCC}) {
        message.setText(field, QString());
    }
    window.setFocus(Field::To);
}

void viewLog(const ApplicationGlobals &globals)
{
    const QString path = logPathAt(globals, quillon::systemClock().now());
    if (QFileInfo(path).isFile()) {
        globals.system.OpenDocument(path, maximised);
    } else {
        showMessage(u"NO_LOG"_s, quillon::InformationBox);
    }
}

/// A hook with its argument as a handler.
template <typename Hook, typename... Arguments> Run from(const Hook &hook, Arguments... arguments)
{
    return [hook, arguments...] { hook(arguments...); };
}

std::vector<Command> fileCommands(const CommandTargets &t)
{
    DocumentFlow *flow = &t.flow;
    return {
        {u"menfn"_s, u"tlbNew"_s, {}, [flow] { flow->New(); }},
        {u"menfo"_s, u"tlbOpen"_s, {}, [flow] { flow->Open(); }},
        {u"menfa"_s, u"tlbSave"_s, {}, [flow] { flow->SaveAsTemplate(); }},
        {u"menfs"_s, u"tlbSend"_s, {}, from(t.hooks.send)},
        {u"menfb"_s, u"tlbOBO"_s, {u"sbtSeen"_s}, turnCheckMark},
        {u"menfc"_s, u"tlbSchedule"_s, {}, {}},
        {u"menfp"_s, {}, {}, {}},
        {u"menfe"_s, {}, {}, {}},
        {u"menfi"_s, {}, {}, {}},
        {u"menfu"_s, {}, {}, from(t.hooks.exitProgram, false)},
        {u"menfx"_s, {}, {}, from(t.hooks.exitProgram, true)},
    };
}

std::vector<Command> editCommands(const CommandTargets &t)
{
    EditCommands *edit = &t.edit;
    Message *message = &t.message;
    Window *window = &t.window;
    ContentLayout *layout = &t.layout;
    return {
        {u"meneu"_s, u"tlbUndo"_s, {}, [edit] { edit->undo(); }},
        {u"mener"_s, u"tlbRedo"_s, {}, [edit] { edit->redo(); }},
        {u"menet"_s, u"tlbCut"_s, {}, [edit] { edit->cut(); }},
        {u"menec"_s, u"tlbCopy"_s, {}, [edit] { edit->copy(); }},
        {u"menep"_s, u"tlbPaste"_s, {}, [edit] { edit->paste(); }},
        {u"mened"_s, u"tlbDelete"_s, {}, [edit] { edit->clearSelection(); }},
        {u"menea"_s, {}, {}, [edit] { edit->selectAll(); }},
        {u"menef"_s, u"tlbFind"_s, {}, [edit] { edit->find(); }},
        {u"menei"_s, {}, {}, {}, Command::RichOnly},
        {u"meneo"_s, {}, {}, {}, Command::RichOnly},
        {u"menes"_s, {}, {}, {}, Command::RichOnly},
        {u"meneh"_s, {}, {u"sbt(23)"_s}, {}, Command::RichOnly},
        {u"menel"_s, {}, {u"sbt(13)"_s}, [message, window] { clearRecipients(*message, *window); }},
        {u"menve"_s, u"tlbExpand"_s, {}, [layout] { layout->toggle(); }},
    };
}

std::vector<Command> insertCommands(const CommandTargets &t)
{
    AttachmentList *attachments = &t.attachments;
    return {
        {u"meniaa"_s, {}, {u"sbt(2)"_s}, [attachments] { attachments->addFiles(); }},
        {u"meniaf"_s, {}, {u"sbt(21)"_s}, [attachments] { attachments->addFolder(); }},
        {u"meniao"_s, {}, {u"sbt(5)"_s}, [attachments] { attachments->openSelected(); }, Command::OnAttachment},
        {u"meniar"_s, {}, {u"sbt(3)"_s}, [attachments] { attachments->removeSelected(); }, Command::OnAttachment},
        {u"meniac"_s, {}, {u"sbt(4)"_s}, [attachments] { attachments->clear(); }},
        {u"menit"_s, {}, {}, {}},
        {u"menil"_s, {}, {}, {}, Command::RichOnly},
        {u"menissa(0)"_s, {}, {}, {}},
        {u"menimsa(0)"_s, {}, {}, {}},
        {u"menip"_s, {}, {u"sbt(24)"_s}, {}, Command::RichOnly},
        {u"menih"_s, {}, {u"sbt(22)"_s}, {}, Command::RichOnly},
    };
}

std::vector<Command> formatCommands(const CommandTargets &t)
{
    ContentViews *views = &t.views;
    std::vector<Command> commands = {
        {u"menop"_s, {}, {}, [views] { views->setFormat(Message::Format::Plain); }},
        {u"menor"_s, {}, {}, {}, Command::Anywhere, {u"opt(8)"_s}},
        {u"menof"_s, {}, {}, {}, Command::RichOnly, {u"cbb(4)"_s, u"cbb(5)"_s}},
        {u"menoi"_s, {}, {u"sbt(17)"_s}, {}, Command::RichOnly},
        {u"menod"_s, {}, {u"sbt(16)"_s}, {}, Command::RichOnly},
        {u"menobi"_s, {}, {}, {}, Command::RichOnly, {u"menob"_s}},
        {u"menobc"_s, {}, {}, {}, Command::RichOnly},
        {u"menobs"_s, {}, {}, {}, Command::RichOnly},
        {u"menosh(0)"_s, {}, {}, turnCheckMark},
        {u"menosh(1)"_s, {}, {}, turnCheckMark},
        {u"menosh(2)"_s, {}, {}, turnCheckMark},
    };
    for (const int button : {6, 7, 8, 9, 10, 11, 14, 15, 18, 19, 20}) {
        commands.push_back({{}, {}, {u"sbt(%1)"_s.arg(button)}, {}, Command::RichOnly});
    }
    return commands;
}

std::vector<Command> toolCommands(const CommandTargets &t)
{
    const ApplicationGlobals *globals = &t.globals;
    DocumentFlow *flow = &t.flow;
    return {
        {u"mentr"_s, {}, {}, turnCheckMark},
        {u"mentsk"_s, {}, {u"sbt(0)"_s}, {}},
        {u"mentsf"_s, {}, {u"sbt(1)"_s}, {}},
        {u"mentf"_s, {}, {u"sbt(12)"_s}, {}},
        {u"menta"_s, u"tlbContacts"_s, {}, {}},
        {u"mentv"_s, {}, {}, [globals] { viewLog(*globals); }},
        {u"mentl"_s, {}, {}, [globals] { globals->system.OpenTarget(globals->paths.logs, maximised); }},
        {u"mentt"_s, u"tlbTemplate"_s, {}, [flow] { flow->manage(); }},
        {u"menti"_s, {}, {}, from(t.hooks.showForm, promptsForm, noTab)},
        {u"mentm"_s, u"tlbMacro"_s, {}, from(t.hooks.showForm, macrosForm, noTab)},
        {u"mento"_s, u"tlbOptions"_s, {}, from(t.hooks.showForm, optionsForm, noTab)},
        {{}, {}, {u"sbtMain(0)"_s}, from(t.hooks.showForm, optionsForm, AccountTab)},
        {{}, {}, {u"sbtMain(1)"_s}, from(t.hooks.showForm, optionsForm, SenderTab)},
        {{}, {}, {u"sbtMain(2)"_s}, from(t.hooks.showForm, optionsForm, SenderTab)},
    };
}

std::vector<Command> helpCommands()
{
    std::vector<Command> commands = {{u"menho"_s, u"tlbFlowchart"_s, {}, {}}};
    for (const char16_t *item :
         {u"menhh", u"menhf", u"menhw", u"menhb", u"menhr", u"menhc", u"menhl", u"menht", u"menha", u"menhe"}) {
        commands.push_back({QString::fromUtf16(item), {}, {}, {}});
    }
    return commands;
}

} // namespace

std::vector<Command> mainCommands(const CommandTargets &targets)
{
    std::vector<Command> all;
    for (std::vector<Command> group : {fileCommands(targets), editCommands(targets), insertCommands(targets),
                                       formatCommands(targets), toolCommands(targets), helpCommands()}) {
        all.insert(all.end(), group.begin(), group.end());
    }
    return all;
}

} // namespace corvane
