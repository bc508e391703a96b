#include "quillon/mail/smtptransaction.h"

#include "quillon/mail/mailtexts.h"
#include "quillon/mail/smtpwire.h"

namespace quillon {

namespace {

// Commands under way at once where PIPELINING is offered: one round trip for most lists, and no server's buffer is
// overrun by a very long one.
constexpr qsizetype pipelineWindow = 100;

constexpr int serviceNotAvailable = 421;
constexpr int startMailInput = 354;

} // namespace

SmtpTransaction::SmtpTransaction(SmtpWire &wire, const SmtpMail &mail, const SmtpExtensions &extensions)
    : m_wire(wire), m_envelope(SmtpEnvelope::plan(mail, extensions)), m_body(mail.Content),
      m_window(extensions.Pipelining ? pipelineWindow : 1)
{
    m_envelope.Commands += "DATA";
}

void SmtpTransaction::begin()
{
    if (m_envelope.Failure) {
        end(State::Refused, *m_envelope.Failure);
        return;
    }
    m_state = State::Envelope;
    writeCommands();
}

void SmtpTransaction::writeCommands()
{
    if (m_written == m_answered && m_wire.hasPending()) {
        // An answer to a question that was not asked would be taken for the answer to the next one.
        breakOff(say(mailtexts::outOfTurn), SmtpReply());
        return;
    }
    const qsizetype data = m_envelope.Commands.size() - 1;
    QByteArray lines;
    while (m_written < m_envelope.Commands.size() && m_written - m_answered < m_window) {
        // With one recipient DATA can go along: a server that refuses the recipient refuses DATA as well. With more,
        // DATA would be accepted for those that are left, so it waits until all answers are there.
        if (m_written == data && m_answered < data && m_envelope.Recipients.size() > 1) {
            break;
        }
        lines += m_envelope.Commands.at(m_written++) + "\r\n";
    }
    if (!lines.isEmpty()) {
        m_wire.write(lines);
        m_wire.flush();
    }
}

void SmtpTransaction::handle(const SmtpReply &reply)
{
    switch (m_state) {
    case State::Envelope:
        handleEnvelope(reply);
        break;
    case State::Body:
        breakOff(reply.isRefusal() ? say(mailtexts::refusedMidway) : say(mailtexts::outOfTurn), reply);
        break;
    case State::EndOfData:
        handleEndOfData(reply);
        break;
    default:
        break;
    }
}

void SmtpTransaction::handleEnvelope(const SmtpReply &reply)
{
    const qsizetype data = m_envelope.Commands.size() - 1;
    const qsizetype index = m_answered;
    if (index == m_written || reply.Code == serviceNotAvailable) {
        breakOff(say(mailtexts::endedSession), reply);
        return;
    }
    ++m_answered;
    const bool accepted = index == data ? reply.Code == startMailInput : reply.isPositive();
    if (index == data && (accepted ? m_refusal.has_value() : !reply.isRefusal())) {
        end(State::Broken,
            m_refusal.value_or(SmtpFailure{reply.Code, say(mailtexts::failedByAnswer, stageName(), reply.text())}));
        return;
    }
    if (!accepted && !m_refusal) {
        m_refusal = SmtpFailure{reply.Code, say(mailtexts::refused, commandName(index), reply.text())};
    }
    if (m_refusal) {
        if (m_answered == m_written) {
            end(State::Refused, *m_refusal);
        }
        return;
    }
    if (index < data) {
        writeCommands();
        return;
    }
    if (m_wire.hasPending()) {
        breakOff(say(mailtexts::outOfTurn), SmtpReply());
        return;
    }
    m_state = State::Body;
    pump();
}

void SmtpTransaction::pump()
{
    while (m_state == State::Body && m_wire.hasRoom()) {
        const QByteArray piece = m_body.next();
        if (!m_body.fault().isEmpty()) {
            end(State::Broken, {0, say(mailtexts::failedByFile, stageName(), m_body.fault())});
            return;
        }
        if (m_body.isAtEnd() && m_wire.hasPending()) {
            breakOff(say(mailtexts::outOfTurn), SmtpReply());
            return;
        }
        m_wire.write(piece);
        if (m_body.isAtEnd()) {
            m_state = State::EndOfData;
        }
    }
    if (m_state == State::EndOfData) {
        m_wire.flush();
    }
}

void SmtpTransaction::handleEndOfData(const SmtpReply &reply)
{
    if (m_wire.unsent() > 0) {
        // It has not got the end yet: whatever it says, the mail is not with it.
        breakOff(reply.isRefusal() ? say(mailtexts::refusedMidway) : say(mailtexts::outOfTurn), reply);
    } else if (reply.isPositive()) {
        m_state = State::Sent;
    } else if (reply.isRefusal() && reply.Code != serviceNotAvailable) {
        end(State::Refused, {reply.Code, say(mailtexts::refusedAtEnd, reply.text())});
    } else {
        breakOff(say(mailtexts::notTaken), reply);
    }
}

void SmtpTransaction::breakOff(const QString &what, const SmtpReply &reply)
{
    const QString text = reply.Code == 0 ? say(mailtexts::failed, stageName(), what)
                                         : say(mailtexts::failedWith, stageName(), what, reply.text());
    end(State::Broken, {reply.Code, text});
}

void SmtpTransaction::end(State state, const SmtpFailure &failure)
{
    m_state = state;
    m_failure = failure;
}

QString SmtpTransaction::stageName() const
{
    switch (m_state) {
    case State::Body:
        return say(mailtexts::sendingMessage);
    case State::EndOfData:
        return say(mailtexts::awaitingAcceptance);
    default:
        return say(mailtexts::sendingCommand, commandName(qMin(m_answered, m_envelope.Commands.size() - 1)));
    }
}

QString SmtpTransaction::commandName(qsizetype index) const
{
    if (index == 0) {
        return say(mailtexts::commandSender);
    }
    if (index <= m_envelope.Recipients.size()) {
        return say(mailtexts::commandRecipient, printableText(m_envelope.Recipients.at(index - 1), 254));
    }
    return say(mailtexts::commandMessage);
}

} // namespace quillon
