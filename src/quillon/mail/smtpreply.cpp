#include "quillon/mail/smtpreply.h"

#include "quillon/mail/mailtexts.h"

#include <QStringDecoder>

#include <algorithm>

namespace quillon {

namespace {

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// The code that a reply line begins with, 0 if it is not a reply line.
int codeOf(const QByteArray &line)
{
    const bool separated = line.size() == 3 || (line.size() > 3 && (line.at(3) == ' ' || line.at(3) == '-'));
    if (!separated || line.at(0) < '2' || line.at(0) > '5' || !isDigit(line.at(1)) || !isDigit(line.at(2))) {
        return 0;
    }
    return (line.at(0) - '0') * 100 + (line.at(1) - '0') * 10 + (line.at(2) - '0');
}

} // namespace

QString printableText(const QByteArray &octets, qsizetype limit)
{
    // Four octets a character at most: no need to decode what is cut anyway.
    const QByteArray head = octets.left(limit * 4 + 4);
    // A character cut in two at the end of the head is no fault of the text.
    const bool whole = head.size() == octets.size();
    QStringDecoder utf8(QStringDecoder::Utf8, whole ? QStringDecoder::Flag::Stateless : QStringDecoder::Flag::Default);
    const QString text = utf8(head);
    return printableText(utf8.hasError() ? QString::fromLatin1(head) : text, limit);
}

QString printableText(const QString &text, qsizetype limit)
{
    QString shown = text.left(limit * 4);
    for (QChar &c : shown) {
        if (!c.isPrint() && !c.isSurrogate()) {
            c = u' ';
        }
    }
    shown = shown.simplified();
    if (shown.size() > limit) {
        shown.truncate(limit);
        if (shown.back().isHighSurrogate()) {
            shown.chop(1);
        }
        shown += u'…';
    }
    return shown;
}

QString SmtpReply::text() const
{
    return printableText(QByteArray::number(Code) + ' ' + Lines.join(' '));
}

void SmtpReplyParser::feed(const QByteArray &octets)
{
    if (m_fault.isEmpty()) {
        m_input += octets;
    }
}

std::optional<SmtpReply> SmtpReplyParser::next()
{
    while (m_fault.isEmpty()) {
        const qsizetype end = m_input.indexOf('\n', m_scanned);
        if ((end < 0 ? m_input.size() : end) - m_start > MaxLineLength) {
            m_fault = say(mailtexts::lineWithoutEnd, printableText(m_input.mid(m_start, 60), 60));
            break;
        }
        if (end < 0) {
            m_input.remove(0, m_start);
            m_start = 0;
            m_scanned = m_input.size();
            return std::nullopt;
        }
        QByteArray line = m_input.mid(m_start, end - m_start);
        if (line.endsWith('\r')) {
            line.chop(1);
        }
        m_start = m_scanned = end + 1;
        if (takeLine(line)) {
            SmtpReply whole;
            std::swap(whole, m_reply);
            return whole;
        }
    }
    m_input.clear();
    m_start = m_scanned = 0;
    m_reply = SmtpReply();
    return std::nullopt;
}

// Adds one line to the reply; true when the reply is whole with it.
bool SmtpReplyParser::takeLine(const QByteArray &line)
{
    if (std::all_of(line.cbegin(), line.cend(), isBlank)) {
        if (++m_blankLines > MaxBlankLines) {
            m_fault = say(mailtexts::onlyBlankLines);
        }
        return false;
    }
    m_blankLines = 0;
    const int code = codeOf(line);
    if (code == 0 || (m_reply.Code != 0 && m_reply.Code != code)) {
        m_fault = say(mailtexts::notSmtp, printableText(line, 120));
        return false;
    }
    if (m_reply.Lines.size() == MaxLines) {
        m_fault = say(mailtexts::tooManyLines);
        return false;
    }
    m_reply.Code = code;
    m_reply.Lines += line.mid(4);
    return line.size() < 4 || line.at(3) == ' ';
}

bool SmtpReplyParser::hasPending() const
{
    return m_reply.Code != 0 || !std::all_of(m_input.cbegin() + m_start, m_input.cend(), isBlank);
}

} // namespace quillon
