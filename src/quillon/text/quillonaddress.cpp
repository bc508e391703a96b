#include "quillon/text/quillonaddress.h"

#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quillon {

namespace {

constexpr qsizetype maximumAddress = 254; // RFC 5321, 4.5.3.1.3, less the angle brackets
constexpr qsizetype maximumLocalPart = 64;
constexpr qsizetype maximumLabel = 63;

bool isForbidden(QChar character)
{
    return character.isSpace() || character.category() == QChar::Other_Control ||
           character.category() == QChar::Other_Format || u"<>,"_s.contains(character);
}

bool isAscii(QChar character)
{
    return character.unicode() < 0x80;
}

bool isAsciiAlphanumeric(QChar character)
{
    return isAscii(character) && character.isLetterOrNumber();
}

bool isAtomCharacter(QChar character)
{
    return !isAscii(character) || isAsciiAlphanumeric(character) || u"!#$%&'*+-/=?^_`{|}~"_s.contains(character);
}

bool isDotAtom(const QString &text)
{
    if (text.isEmpty() || text.startsWith(u'.') || text.endsWith(u'.') || text.contains(".."_L1)) {
        return false;
    }
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c == u'.' || isAtomCharacter(c); });
}

bool isQuotedString(const QString &text)
{
    if (text.size() < 3 || !text.startsWith(u'"') || !text.endsWith(u'"')) {
        return false;
    }
    for (qsizetype i = 1; i < text.size() - 1; ++i) {
        if (text.at(i) == u'"') {
            return false;
        }
        if (text.at(i) == u'\\' && ++i >= text.size() - 1) {
            return false;
        }
    }
    return true;
}

bool isLabel(const QString &label)
{
    if (label.isEmpty() || label.toUtf8().size() > maximumLabel || label.startsWith(u'-') || label.endsWith(u'-')) {
        return false;
    }
    return std::all_of(label.begin(), label.end(),
                       [](QChar c) { return !isAscii(c) || isAsciiAlphanumeric(c) || c == u'-'; });
}

bool isAddressLiteral(const QString &domain)
{
    if (!domain.startsWith(u'[') || !domain.endsWith(u']')) {
        return false;
    }
    const QString inner = domain.sliced(1, domain.size() - 2);
    const QStringList parts = inner.split(u'.');
    const auto isOctet = [](const QString &part) {
        bool number = false;
        const ushort value = part.toUShort(&number);
        return number && part.size() <= 3 && value <= 255 && isAsciiAlphanumeric(part.front());
    };
    if (parts.size() == 4 && std::all_of(parts.begin(), parts.end(), isOctet)) {
        return true;
    }
    const QString tag = u"IPv6:"_s;
    const auto isIpv6Character = [](QChar c) { return isAscii(c) && (c.isDigit() || u":.abcdefABCDEF"_s.contains(c)); };
    return inner.startsWith(tag, Qt::CaseInsensitive) && inner.count(u':') >= 3 &&
           std::all_of(inner.begin() + tag.size(), inner.end(), isIpv6Character);
}

bool isDomain(const QString &domain)
{
    if (domain.startsWith(u'[')) {
        return isAddressLiteral(domain);
    }
    const QStringList labels = domain.split(u'.');
    return std::all_of(labels.begin(), labels.end(), isLabel);
}

} // namespace

bool QuillonAddress::IsEmailAddress(const QString &text) const
{
    const qsizetype at = text.indexOf(u'@');
    if (at < 1 || text.count(u'@') != 1 || text.toUtf8().size() > maximumAddress || !text.isValidUtf16() ||
        std::any_of(text.begin(), text.end(), isForbidden)) {
        return false;
    }
    const QString local = text.first(at);
    if (local.toUtf8().size() > maximumLocalPart) {
        return false;
    }
    return (isDotAtom(local) || isQuotedString(local)) && isDomain(text.sliced(at + 1));
}

} // namespace quillon
