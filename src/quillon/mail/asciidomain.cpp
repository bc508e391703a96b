#include "quillon/mail/asciidomain.h"

#include <QUrl>

#include <algorithm>

namespace quillon {

QByteArray asciiDomain(const QString &domain)
{
    const bool isAscii =
        std::all_of(domain.begin(), domain.end(), [](QChar letter) { return letter.unicode() < 0x80; });
    return isAscii ? domain.toLatin1() : QUrl::toAce(domain);
}

} // namespace quillon
