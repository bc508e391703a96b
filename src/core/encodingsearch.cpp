#include "core/encodingsearch.h"

#include "quillon/mail/encodinglist.h"

namespace corvane {

QString selectEncodingOfName(MessageWindow &window, const QString &displayName)
{
    for (int i = 0; i < window.encodingCount(); ++i) {
        window.selectEncoding(i);
        const auto entry = quillon::EncodingEntry::parse(window.selectedEncoding());
        if (entry && entry->Name == displayName) {
            return entry->Code;
        }
    }
    return {};
}

} // namespace corvane
