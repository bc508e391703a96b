#include "quillon/mail/subjectcodec.h"

#include "quillon/mail/encodedword.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quillon {

namespace {

/// A text that needs no coding: nothing in it is lost in a line of a file or is taken for an encoded word.
bool standsForItself(const QString &text)
{
    return !text.startsWith(u' ') && !text.endsWith(u' ') && !text.contains(u"=?"_s) &&
           std::all_of(text.begin(), text.end(), [](QChar c) { return c >= u' ' && c < u'\x7f'; });
}

} // namespace

// A member, as callers hold the codec as an object; it has no state.
QString SubjectCodec::Encode(const QString &text, const QString &charset) const
{
    if (standsForItself(text)) {
        return text;
    }
    return QString::fromLatin1(encodedWords(text, charset.toLatin1()).join(' '));
}

QString SubjectCodec::Decode(const QString &text, const QString & /*charset*/) const
{
    return decodeEncodedWords(text);
}

} // namespace quillon
