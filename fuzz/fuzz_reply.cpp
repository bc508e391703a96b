// The reply parser with whatever a server may send, cut wherever the network may cut it.

#include "quillon/mail/smtpextensions.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

void require(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size == 0) {
        return 0;
    }
    // The first octet says how long the pieces are; the same input in one piece must give the same replies.
    const qsizetype step = data[0] % 32 + 1;
    const QByteArray input(reinterpret_cast<const char *>(data + 1), static_cast<qsizetype>(size - 1));
    QList<QString> inPieces;
    quillon::SmtpReplyParser parser;
    for (qsizetype at = 0; at < input.size(); at += step) {
        parser.feed(input.mid(at, step));
        while (const auto reply = parser.next()) {
            require(reply->Code >= 200 && reply->Code < 600);
            require(!reply->Lines.isEmpty() && reply->Lines.size() <= quillon::SmtpReplyParser::MaxLines);
            require(reply->text().size() <= 301);
            static_cast<void>(quillon::SmtpExtensions::fromEhlo(*reply));
            inPieces += reply->text();
        }
        require(parser.fault().isEmpty() || !parser.hasPending());
    }
    quillon::SmtpReplyParser whole;
    whole.feed(input);
    QList<QString> inOne;
    while (const auto reply = whole.next()) {
        inOne += reply->text();
    }
    require(inOne == inPieces);
    require(whole.fault().isEmpty() == parser.fault().isEmpty());
    return 0;
}
