#pragma once

#include "core/globals.h"
#include "message/message.h"
#include "message/window.h"

namespace corvane {

/// Fills the main window's account box with the sender addresses of all accounts; the box keeps its text. An empty
/// box gets the default account's address when there is a default.
void LoadSmtpLists(const ApplicationGlobals &globals, Message &message, Window &window);

/// Fills the main window's sender and reply receiver boxes with all custom senders; both keep their text.
/// The list of the options is a RecordList, which loads itself.
void LoadSenderLists(const ApplicationGlobals &globals, Message &message, Window &window);

} // namespace corvane
