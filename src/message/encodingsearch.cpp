#include "message/encodingsearch.h"

#include "quillon/mail/encodinglist.h"

namespace corvane {

QString selectEncodingOfName(Message &message, const QString &displayName)
{
    for (int i = 0; i < message.encodingCount(); ++i) {
        message.selectEncoding(i);
        const auto entry = quillon::EncodingEntry::parse(message.selectedEncoding());
        if (entry && entry->Name == displayName) {
            return entry->Code;
        }
    }
    return {};
}

} // namespace corvane
