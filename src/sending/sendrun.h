#pragma once

#include "core/globals.h"
#include "core/messagewindow.h"
#include "quillon/mail/mailtransport.h"
#include "recipients/inputprompts.h"
#include "sending/progressview.h"
#include "sending/sendchecks.h"
#include "sending/sendinglog.h"

#include <QString>

#include <memory>

namespace corvane {

/// The command that turns what the window shows into mail. One run at a time; the window stays live meanwhile.
class SendRun {
public:
    SendRun(const ApplicationGlobals &globals, MessageWindow &window, ProgressView &progress, InputPrompts &prompts);
    ~SendRun();
    SendRun(const SendRun &) = delete;
    SendRun &operator=(const SendRun &) = delete;

    /// Checks, logs, connects, fills, delivers and reports. All the outcome is shown and logged.
    void run();

    /// The program ends: a run under way unwinds without a further box or log line.
    void abandon();

    /// The transport of the connection that stands, or nullptr; lives until the run's end or its next connection.
    [[nodiscard]] quillon::MailTransport *transport() const { return m_transport.get(); }

private:
    /// What one run holds from its checks to its end.
    struct Delivery {
        const RunValues &values;
        const SendingLog &log;
        const QString &accountRecord;
        quillon::MailMessage &message;
    };

    void carryOut(const RunValues &values);
    bool connectTransport(const QString &accountRecord);
    void reportFailedConnection(const QString &accountRecord, const SendingLog &log) const;
    void deliverToAll(const Delivery &delivery);
    void deliverOneByOne(const Delivery &delivery);
    void transportFailed(const QString &text) const;
    void transportProgressed(const QString &text);
    void finish(const SendingLog &log);
    void leave();

    const ApplicationGlobals &m_globals;
    MessageWindow &m_window;
    ProgressView &m_progress;
    InputPrompts &m_prompts;
    std::unique_ptr<quillon::MailTransport> m_transport;
    bool m_abandoned = false;
};

} // namespace corvane
