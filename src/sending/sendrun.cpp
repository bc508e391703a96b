#include "sending/sendrun.h"

#include "core/texts.h"
#include "macros/expansion.h"
#include "quillon/system/platform.h"
#include "records/accountrecords.h"
#include "records/recordfields.h"
#include "sending/messagefill.h"
#include "sending/onebyone.h"
#include "sending/sendingtexts.h"

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

using Phase = RunState::Phase;

const QString counterAtRest = QString::fromUtf16(progressRestText);

} // namespace

SendRun::SendRun(const Rooms &rooms, RunMode mode) : m_rooms(rooms), m_mode(mode) {}

void SendRun::run()
{
    if (m_state.Sending()) {
        showMessage(u"OTHER_RUN"_s, quillon::InformationBox);
        return;
    }
    m_sequence.start(carryOut());
}

void SendRun::end()
{
    m_sequence.end();
    m_state.enter(Phase::Resting);
}

quillon::Task<> SendRun::carryOut()
{
    m_state.enter(Phase::Checking);
    const std::optional<RunValues> values = co_await checkMessage(m_rooms.globals, m_rooms.message, m_rooms.window);
    if (values) {
        co_await sendChecked(*values);
    }
    m_state.enter(Phase::Resting);
    m_rooms.progress.hide();
}

quillon::Task<> SendRun::sendChecked(const RunValues &values)
{
    m_state.enter(Phase::Preparing);
    const ApplicationGlobals &globals = m_rooms.globals;
    const SendingLog log(globals, quillon::systemClock().now());
    log.divider();
    log.moment(logtexts::begin);
    m_rooms.window.setStatusText(QString::fromUtf16(sendingText));
    m_rooms.progress.setProgress(0, 0);

    Connection connection(globals, FindSmtpRecord(globals, values.account.trimmed()), events());
    if (co_await connection.connect()) {
        quillon::MailMessage message;
        const FillContext filling{
            globals, m_rooms.message, values, connection.accountRecord(), log, m_mode, [this, &values] {
                m_rooms.prompts.upsSavePrompts(values.to, values.cc, values.bcc);
                m_rooms.prompts.upsReadPrompts();
            }};
        co_await fillMessage(message, filling);
        // What the user did meanwhile is handled first: a Cancel holds before the first mail.
        co_await quillon::nextTurn();
        if (!co_await connection.accepted()) {
            co_await reportFailedConnection(connection.accountRecord(), log);
        } else if (values.oneByOne) {
            const OneByOneContext context{globals, m_rooms.message, m_rooms.progress, values, log, m_state, connection};
            co_await sendOneByOne(message, context);
        } else {
            co_await deliverToAll(message, connection, log);
        }
    } else {
        co_await reportFailedConnection(connection.accountRecord(), log);
    }
    finish(log);
}

quillon::Task<> SendRun::reportFailedConnection(const QString &accountRecord, const SendingLog &log)
{
    m_state.enter(Phase::Closing);
    const QString text = LookupText(u"CONN_FAILED"_s) + u' ' + recordField(accountRecord, AccountServer) + u':' +
                         recordField(accountRecord, AccountPort);
    log.entry(logtexts::error, text);
    m_rooms.progress.setAtRest();
    co_await textShown(text, quillon::WarningBox, u"CONN_FAILED"_s);
}

quillon::Task<> SendRun::deliverToAll(quillon::MailMessage &message, Connection &connection, const SendingLog &log)
{
    ProgressView &progress = m_rooms.progress;
    m_state.enter(Phase::Counting);
    progress.makeVisible();
    progress.setCounter(QString::fromUtf16(progressOneText));
    progress.setProgress(0, 1);
    ExpandMacros(m_rooms.globals, message);
    const bool sent = co_await connection.send(message);
    m_state.enter(Phase::Closing);
    progress.setCounter(counterAtRest);
    progress.setProgress(sent ? 1 : 0, 1);
    progress.setAtRest();
    progress.setActivity(QString());
    const QString key = sent ? u"SENT_SUCC"_s : u"SENT_UNSUCC"_s;
    log.line(LookupText(key));
    co_await messageShown(key, sent ? quillon::InformationBox : quillon::WarningBox);
    connection.quit();
}

TransportEvents SendRun::events()
{
    return {[this](const QString &text) { transportFailed(text); },
            [this](const QString &text) { transportProgressed(text); }};
}

void SendRun::transportFailed(const QString &text) const
{
    if (text.trimmed().isEmpty()) {
        return;
    }
    const SendingLog log(m_rooms.globals, quillon::systemClock().now());
    log.entry(logtexts::error, text);
    if (m_mode == RunMode::Manual) {
        showText(text, quillon::CriticalBox);
    }
}

void SendRun::transportProgressed(const QString &text)
{
    if (m_mode == RunMode::Automatic) {
        return;
    }
    m_rooms.progress.makeVisible();
    m_rooms.progress.setActivity(text);
}

void SendRun::finish(const SendingLog &log)
{
    log.moment(logtexts::end);
    m_state.enter(Phase::Closing); // a Cancel is over with its run
    m_rooms.progress.hide();
    m_rooms.progress.setCounter(counterAtRest);
    m_rooms.progress.setAtRest();
    m_rooms.window.setStatusText(QString::fromUtf16(readyText));
}

} // namespace corvane
