#pragma once

#include "composer/commandtable.h"
#include "composer/mainhooks.h"
#include "core/globals.h"
#include "message/window.h"

namespace corvane {

class ContentLayout;
class ContentViews;
class AttachmentList;
class DocumentFlow;
class EditCommands;

/// What the commands work on.
struct CommandTargets {
    const MainHooks &hooks;
    const ApplicationGlobals &globals;
    Message &message;
    Window &window;
    DocumentFlow &flow;
    EditCommands &edit;
    ContentLayout &layout;
    ContentViews &views;
    AttachmentList &attachments;
};

/// All commands of the main window. The targets outlive the table.
[[nodiscard]] std::vector<Command> mainCommands(const CommandTargets &targets);

} // namespace corvane
