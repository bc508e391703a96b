#include "quillon/mail/encodinglist.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace quillon {

namespace {

constexpr auto betweenEntries = " || "_L1;
constexpr auto betweenCodeAndName = " | "_L1;

struct Encoding {
    const char16_t *code;
    const char16_t *name;
};

// Left out on purpose: charsets that common readers refuse to decode for safety (ISO-2022-KR, UTF-7) and the wide
// forms of Unicode, which no mail may hold as text.
constexpr Encoding encodings[] = {
    {u"_autodetect", u"Auto-Select"},
    {u"_user", u"User Defined"},
    {u"iso-8859-6", u"Arabic (ISO)"},
    {u"windows-1256", u"Arabic (Windows)"},
    {u"iso-8859-4", u"Baltic (ISO)"},
    {u"iso-8859-13", u"Baltic (ISO-8859-13)"},
    {u"windows-1257", u"Baltic (Windows)"},
    {u"iso-8859-14", u"Celtic (ISO)"},
    {u"iso-8859-2", u"Central European (ISO)"},
    {u"windows-1250", u"Central European (Windows)"},
    {u"gb18030", u"Chinese Simplified (GB18030)"},
    {u"gb2312", u"Chinese Simplified (GB2312)"},
    {u"big5", u"Chinese Traditional (Big5)"},
    {u"iso-8859-5", u"Cyrillic (ISO)"},
    {u"koi8-r", u"Cyrillic (KOI8-R)"},
    {u"koi8-u", u"Cyrillic (KOI8-U)"},
    {u"windows-1251", u"Cyrillic (Windows)"},
    {u"iso-8859-7", u"Greek (ISO)"},
    {u"windows-1253", u"Greek (Windows)"},
    {u"iso-8859-8", u"Hebrew (ISO)"},
    {u"windows-1255", u"Hebrew (Windows)"},
    {u"euc-jp", u"Japanese (EUC)"},
    {u"iso-2022-jp", u"Japanese (JIS)"},
    {u"shift_jis", u"Japanese (Shift-JIS)"},
    {u"euc-kr", u"Korean"},
    {u"iso-8859-10", u"Nordic (ISO)"},
    {u"iso-8859-3", u"South European (ISO)"},
    {u"iso-8859-16", u"South-Eastern European (ISO)"},
    {u"tis-620", u"Thai"},
    {u"iso-8859-9", u"Turkish (ISO)"},
    {u"windows-1254", u"Turkish (Windows)"},
    {u"utf-8", u"Unicode (UTF-8)"},
    {u"us-ascii", u"US-ASCII"},
    {u"windows-1258", u"Vietnamese (Windows)"},
    {u"iso-8859-1", u"Western European (ISO)"},
    {u"iso-8859-15", u"Western European (ISO-8859-15)"},
    {u"windows-1252", u"Western European (Windows)"},
};

} // namespace

std::optional<EncodingEntry> EncodingEntry::parse(const QString &text)
{
    const qsizetype bar = text.indexOf(betweenCodeAndName);
    if (bar < 0) {
        return std::nullopt;
    }
    return EncodingEntry{text.first(bar), text.sliced(bar + betweenCodeAndName.size())};
}

QString EncodingEntry::format() const
{
    return Code + betweenCodeAndName + Name;
}

QString encodingList()
{
    QStringList entries;
    for (const Encoding &encoding : encodings) {
        entries.append(EncodingEntry{QString::fromUtf16(encoding.code), QString::fromUtf16(encoding.name)}.format());
    }
    return entries.join(betweenEntries);
}

QList<EncodingEntry> offeredEncodings(const QString &list)
{
    QList<EncodingEntry> offered;
    const QStringList texts = list.split(betweenEntries);
    for (const QString &text : texts) {
        if (auto entry = EncodingEntry::parse(text); entry && entry->isOffered()) {
            offered.append(*std::move(entry));
        }
    }
    return offered;
}

} // namespace quillon
