#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>

namespace quillon {

/// Octets of a peer as text that can be shown: UTF-8, else Latin-1; control and format characters become blanks, runs
/// of blanks one, and what is longer than @p limit characters is cut and ends in an ellipsis.
[[nodiscard]] QString printableText(const QByteArray &octets, qsizetype limit = 300);
[[nodiscard]] QString printableText(const QString &text, qsizetype limit = 300);

/// One reply of an SMTP server (RFC 5321, 4.2): a code and at least one line of text, which may be empty.
struct SmtpReply {
    int Code = 0;            ///< 200 to 599
    QList<QByteArray> Lines; ///< what stands behind the code and its separator, one entry a line

    [[nodiscard]] bool isPositive() const { return Code / 100 == 2; }
    [[nodiscard]] bool isRefusal() const { return Code >= 400; }

    /// The code and all lines in one printable line of bounded length.
    [[nodiscard]] QString text() const;
};

/// Cuts what a server sends into replies. Input may be cut anywhere; lines end in CR LF or LF; blank lines are passed
/// over. Everything is bounded: a line, the lines of a reply and a run of blank lines. What is not SMTP is a fault
/// that stays: after it the parser takes nothing more.
class SmtpReplyParser {
public:
    static constexpr qsizetype MaxLineLength = 8192; ///< RFC 5321 allows 512; extensions and chatty servers use more
    static constexpr qsizetype MaxLines = 512;
    static constexpr int MaxBlankLines = 64;

    void feed(const QByteArray &octets);

    /// The next whole reply, nothing when more input is needed or there is a fault.
    std::optional<SmtpReply> next();

    /// Whether there is input, other than line ends and blanks, that next() has not given as part of a reply.
    [[nodiscard]] bool hasPending() const;

    /// Empty, or what is wrong with the input, as the end of a sentence.
    [[nodiscard]] QString fault() const { return m_fault; }

    /// Forgets all input, as TLS asks for (RFC 3207, 4.2).
    void clear() { *this = SmtpReplyParser(); }

private:
    bool takeLine(const QByteArray &line);

    QByteArray m_input;
    qsizetype m_start = 0;   // of the line that comes next
    qsizetype m_scanned = 0; // no line end between m_start and here
    SmtpReply m_reply;       // begun, when Code is not 0
    int m_blankLines = 0;
    QString m_fault;
};

} // namespace quillon
