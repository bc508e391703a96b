// The reply parser: what a server sends gives the same replies however it is cut, and never grows without bound.

#include "check.h"
#include "quillon/mail/smtpextensions.h"
#include "quillon/mail/smtpreply.h"

using quillon::SmtpReply;
using quillon::SmtpReplyParser;

namespace {

struct Heard {
    QList<SmtpReply> replies;
    QString fault;
};

void takeAll(SmtpReplyParser &parser, Heard &heard)
{
    while (const auto reply = parser.next()) {
        mustHold(reply->Code >= 200 && reply->Code <= 599 && !reply->Lines.isEmpty());
        mustHold(reply->Lines.size() <= SmtpReplyParser::MaxLines);
        for (const QChar c : reply->text()) {
            mustHold(c.unicode() >= 0x20);
        }
        heard.replies.append(*reply);
    }
    heard.fault = parser.fault();
}

/// The replies to the input when it comes in pieces of that many octets.
Heard hear(const QByteArray &input, qsizetype piece)
{
    Heard heard;
    SmtpReplyParser parser;
    for (qsizetype at = 0; at < input.size(); at += piece) {
        parser.feed(input.mid(at, piece));
        takeAll(parser, heard);
    }
    return heard;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray input(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const Heard whole = hear(input, qMax<qsizetype>(input.size(), 1));
    const Heard octets = hear(input, 1);
    mustHold(whole.replies.size() == octets.replies.size());
    mustHold(whole.fault == octets.fault);
    for (qsizetype i = 0; i < whole.replies.size(); ++i) {
        mustHold(whole.replies[i].Code == octets.replies[i].Code && whole.replies[i].Lines == octets.replies[i].Lines);
        const auto extensions = quillon::SmtpExtensions::fromEhlo(whole.replies[i]);
        mustHold(extensions.MaxSize >= 0);
    }
    return 0;
}
