// The address test and the entries around it: whatever passes can stand in a header and in an envelope.

#include "check.h"
#include "core/recipiententry.h"
#include "quillon/text/quillonaddress.h"

using namespace Qt::StringLiterals;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const quillon::QuillonAddress address;
    if (address.IsEmailAddress(text)) {
        mustHold(text.contains(u'@') && text.toUtf8().size() <= 254);
        for (const QChar c : text) {
            mustHold(c.unicode() > 0x20 && c.unicode() != 0x7f && !u"<>,"_s.contains(c));
        }
        mustHold(corvane::IsRecipientEntry(text));
    }
    for (const QString &entry : corvane::splitRecipients(text)) {
        mustHold(!entry.contains(u','));
        if (corvane::IsRecipientEntry(entry)) {
            mustHold(address.IsEmailAddress(corvane::toMailAddress(entry).Address));
        }
    }
    return 0;
}
