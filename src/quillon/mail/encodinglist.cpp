#include "quillon/mail/encodinglist.h"

using namespace Qt::StringLiterals;

namespace quillon {

// Left out on purpose: charsets that common readers refuse to decode for safety (ISO-2022-KR, UTF-7) and the wide
// forms of Unicode, which no mail may hold as text.
QString encodingList()
{
    return u"_autodetect | Auto-Select"
           u" || _user | User Defined"
           u" || iso-8859-6 | Arabic (ISO)"
           u" || windows-1256 | Arabic (Windows)"
           u" || iso-8859-4 | Baltic (ISO)"
           u" || iso-8859-13 | Baltic (ISO-8859-13)"
           u" || windows-1257 | Baltic (Windows)"
           u" || iso-8859-14 | Celtic (ISO)"
           u" || iso-8859-2 | Central European (ISO)"
           u" || windows-1250 | Central European (Windows)"
           u" || gb18030 | Chinese Simplified (GB18030)"
           u" || gb2312 | Chinese Simplified (GB2312)"
           u" || big5 | Chinese Traditional (Big5)"
           u" || iso-8859-5 | Cyrillic (ISO)"
           u" || koi8-r | Cyrillic (KOI8-R)"
           u" || koi8-u | Cyrillic (KOI8-U)"
           u" || windows-1251 | Cyrillic (Windows)"
           u" || iso-8859-7 | Greek (ISO)"
           u" || windows-1253 | Greek (Windows)"
           u" || iso-8859-8 | Hebrew (ISO)"
           u" || windows-1255 | Hebrew (Windows)"
           u" || euc-jp | Japanese (EUC)"
           u" || iso-2022-jp | Japanese (JIS)"
           u" || shift_jis | Japanese (Shift-JIS)"
           u" || euc-kr | Korean"
           u" || iso-8859-10 | Nordic (ISO)"
           u" || iso-8859-3 | South European (ISO)"
           u" || iso-8859-16 | South-Eastern European (ISO)"
           u" || tis-620 | Thai"
           u" || iso-8859-9 | Turkish (ISO)"
           u" || windows-1254 | Turkish (Windows)"
           u" || utf-8 | Unicode (UTF-8)"
           u" || us-ascii | US-ASCII"
           u" || windows-1258 | Vietnamese (Windows)"
           u" || iso-8859-1 | Western European (ISO)"
           u" || iso-8859-15 | Western European (ISO-8859-15)"
           u" || windows-1252 | Western European (Windows)"_s;
}

} // namespace quillon
