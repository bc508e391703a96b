#include "sending/sendrun.h"

#include "core/settings.h"
#include "core/texts.h"
#include "macros/expansion.h"
#include "quillon/system/platform.h"
#include "records/accountrecords.h"
#include "records/recordfields.h"
#include "sending/connection.h"
#include "sending/messagefill.h"
#include "sending/onebyone.h"

#include <QCoreApplication>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

const QString counterAtRest = QString::fromUtf16(progressRestText);
const QString manualRun = u"M"_s;
const QString automaticRun = u"A"_s;

} // namespace

SendRun::SendRun(const ApplicationGlobals &globals, MessageWindow &window, ProgressView &progress,
                 InputPrompts &prompts)
    : m_globals(globals), m_window(window), m_progress(progress), m_prompts(prompts)
{
}

SendRun::~SendRun() = default;

void SendRun::run()
{
    if (m_window.Sending) {
        showMessage(u"OTHER_RUN"_s, quillon::InformationBox);
        return;
    }
    m_window.Sending = true;
    m_window.Tag = manualRun;
    if (const auto values = checkMessage(m_globals, m_window); values && !m_abandoned) {
        carryOut(*values);
    }
    leave();
}

void SendRun::abandon()
{
    m_abandoned = true;
}

void SendRun::carryOut(const RunValues &values)
{
    const SendingLog log(m_globals, quillon::systemClock().now());
    log.divider();
    log.moment(u"Begin"_s);
    m_window.setStatusText(QString::fromUtf16(sendingText));

    const QString accountRecord = FindSmtpRecord(m_globals, values.account.trimmed());
    const bool connected = connectTransport(accountRecord);
    if (m_abandoned) {
        return;
    }
    if (connected) {
        quillon::MailMessage message;
        fillMessage(message, {m_globals, m_window, values, accountRecord, log,
                              [&] {
                                  m_prompts.upsSavePrompts(values.to, values.cc, values.bcc);
                                  m_prompts.upsReadPrompts();
                              },
                              [this] { return !m_abandoned; }});
        // What the user did while folders were packed has waited until here: a Cancel holds before the first mail.
        QCoreApplication::processEvents();
        if (m_abandoned) {
            return;
        }
        const Delivery delivery{values, log, accountRecord, message};
        values.oneByOne ? deliverOneByOne(delivery) : deliverToAll(delivery);
    } else {
        reportFailedConnection(accountRecord, log);
    }
    if (!m_abandoned) {
        finish(log);
    }
}

bool SendRun::connectTransport(const QString &accountRecord)
{
    // Looked up for each connection, together with the flag: one that was turned on between two mails of a run must
    // not find an empty record, which would lead around the proxy.
    const QString proxyRecord = proxyInUse(m_globals) ? m_globals.settings.proxy[ProxyDefault] : QString();
    return ConnectTransport(m_globals, accountRecord, proxyRecord,
                            {[this](const QString &text) { transportFailed(text); },
                             [this](const QString &text) { transportProgressed(text); }},
                            m_transport);
}

void SendRun::reportFailedConnection(const QString &accountRecord, const SendingLog &log) const
{
    const QString text = LookupText(u"CONN_FAILED"_s) + u' ' + recordField(accountRecord, AccountServer) + u':' +
                         recordField(accountRecord, AccountPort);
    log.entry(u"Error"_s, text);
    quillon::prompts().box({u"CONN_FAILED"_s, text, QString(), quillon::WarningBox});
}

void SendRun::deliverToAll(const Delivery &delivery)
{
    m_progress.makeVisible();
    m_progress.setCounter(u"Sending 1/1 email..."_s);
    m_progress.setProgress(1, 1);
    ExpandMacros(m_globals, delivery.message);
    const bool sent = m_transport->Send(delivery.message);
    if (m_abandoned) {
        return;
    }
    m_progress.setCounter(counterAtRest);
    m_progress.setProgress(0, 0);
    m_progress.setActivity(QString());
    const QString key = sent ? u"SENT_SUCC"_s : u"SENT_UNSUCC"_s;
    delivery.log.line(LookupText(key));
    showMessage(key, sent ? quillon::InformationBox : quillon::WarningBox);
    m_transport->Quit();
}

void SendRun::deliverOneByOne(const Delivery &delivery)
{
    sendOneByOne(delivery.message, {m_globals, m_window, m_progress, delivery.values, delivery.log},
                 {[this] { m_transport->Quit(); }, [&] { connectTransport(delivery.accountRecord); },
                  [this](const quillon::MailMessage &message) { return m_transport->Send(message); },
                  [this] { return m_abandoned; }});
}

void SendRun::transportFailed(const QString &text) const
{
    if (text.trimmed().isEmpty() || m_abandoned) {
        return;
    }
    const SendingLog log(m_globals, quillon::systemClock().now());
    log.entry(u"Error"_s, text);
    if (m_window.Tag == manualRun) {
        showText(text, quillon::CriticalBox);
    }
}

void SendRun::transportProgressed(const QString &text)
{
    if (m_window.Tag == automaticRun || m_abandoned) {
        return;
    }
    m_progress.makeVisible();
    m_progress.setActivity(text);
}

void SendRun::finish(const SendingLog &log)
{
    log.moment(u"End"_s);
    m_window.pblnStop = false;
    m_progress.hide();
    m_progress.setCounter(counterAtRest);
    m_progress.setProgress(0, 0);
    m_window.setStatusText(QString::fromUtf16(readyText));
    m_transport.reset();
}

void SendRun::leave()
{
    m_transport.reset();
    m_window.Sending = false;
    if (!m_abandoned) {
        m_progress.hide();
    }
}

} // namespace corvane
