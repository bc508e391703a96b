#pragma once

#include "quillon/mail/smtpbody.h"
#include "quillon/mail/smtpenvelope.h"

namespace quillon {

class SmtpWire;

/// One mail over a session that stands: MAIL, RCPT, DATA, the body, the final dot (RFC 5321, 3.3). The mail is
/// delivered to all of its recipients or to nobody: when one is refused, DATA is not sent, or, where it went along
/// with the recipient and was accepted, the connection is given up before a word of the mail is said.
class SmtpTransaction {
public:
    enum class State {
        Planned,
        Envelope,  ///< MAIL, RCPT, DATA
        Body,      ///< the mail itself
        EndOfData, ///< the final dot is written, its answer is awaited
        Sent,      ///< the server has the mail
        Refused,   ///< it has not, and the session stands
        Broken     ///< it has not, and the connection cannot be used any more
    };

    SmtpTransaction(SmtpWire &wire, const SmtpMail &mail, const SmtpExtensions &extensions);

    void begin();
    void handle(const SmtpReply &reply);
    /// Writes more of the body when the wire has room.
    void pump();

    [[nodiscard]] State state() const { return m_state; }
    [[nodiscard]] bool isOver() const { return m_state >= State::Sent; }
    [[nodiscard]] SmtpFailure failure() const { return m_failure; }
    /// Where the transaction stands, for the start of an error's text: "Sending the message (DATA)".
    [[nodiscard]] QString stageName() const;
    /// Whether the server has been told anything that RSET must take back.
    [[nodiscard]] bool needsReset() const { return m_written > 0; }
    [[nodiscard]] int percent() const { return m_body.percent(); }

private:
    void writeCommands();
    void handleEnvelope(const SmtpReply &reply);
    void handleEndOfData(const SmtpReply &reply);
    void end(State state, const SmtpFailure &failure);
    void breakOff(const QString &what, const SmtpReply &reply);
    [[nodiscard]] QString commandName(qsizetype index) const;

    SmtpWire &m_wire;
    SmtpEnvelope m_envelope;
    SmtpBody m_body;
    State m_state = State::Planned;
    qsizetype m_window = 1;               // commands that may be under way at once
    qsizetype m_written = 0;              // commands written so far; the last one is DATA
    qsizetype m_answered = 0;             // and answered
    std::optional<SmtpFailure> m_refusal; // the first of the envelope
    SmtpFailure m_failure;
};

} // namespace quillon
