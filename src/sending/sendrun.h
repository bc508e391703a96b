#pragma once

#include "core/globals.h"
#include "message/message.h"
#include "message/window.h"
#include "quillon/sequence/sequence.h"
#include "recipients/inputprompts.h"
#include "sending/connection.h"
#include "sending/progressview.h"
#include "sending/runstate.h"
#include "sending/sendchecks.h"
#include "sending/sendinglog.h"

#include <QString>

namespace corvane {

/// The command that turns a message into mail. One run at a time, as a sequence that the event loop carries: the window
/// stays live meanwhile, and only the run's own boxes hold it. It ends with this object.
class SendRun {
public:
    /// What a run works with; all of it outlives this object.
    struct Rooms {
        const ApplicationGlobals &globals;
        Message &message;
        Window &window;
        ProgressView &progress;
        InputPrompts &prompts;
    };

    explicit SendRun(const Rooms &rooms, RunMode mode = RunMode::Manual);

    /// Checks, logs, connects, fills, delivers and reports; returns when it first waits. All the outcome is shown and
    /// logged.
    void run();

    /// The program ends: a run under way is gone where it rests, and nothing is shown or written any more.
    void end();

    [[nodiscard]] const RunState &state() const { return m_state; }
    /// Cancel, see RunState.
    void requestStop() { m_state.requestStop(); }
    /// What a transport of the run tells: its errors go to the log of their moment and, in a manual run, to a box; its
    /// progress to the dialog.
    [[nodiscard]] TransportEvents events();

private:
    quillon::Task<> carryOut();
    quillon::Task<> sendChecked(const RunValues &values);
    quillon::Task<> reportFailedConnection(const QString &accountRecord, const SendingLog &log);
    quillon::Task<> deliverToAll(quillon::MailMessage &message, Connection &connection, const SendingLog &log);
    void transportFailed(const QString &text) const;
    void transportProgressed(const QString &text);
    void finish(const SendingLog &log);

    Rooms m_rooms;
    RunMode m_mode;
    RunState m_state;
    quillon::Sequence m_sequence; // last, since what it ends with uses the others
};

} // namespace corvane
