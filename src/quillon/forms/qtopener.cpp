#include "quillon/forms/qtopener.h"

#include <QDesktopServices>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace quillon {

QString openableUrl(const QString &pathOrUrl)
{
    for (const QString &scheme : {u"http://"_s, u"https://"_s, u"mailto:"_s, u"file://"_s}) {
        if (pathOrUrl.startsWith(scheme, Qt::CaseInsensitive)) {
            return pathOrUrl;
        }
    }
    return QUrl::fromLocalFile(pathOrUrl).toString(QUrl::FullyEncoded);
}

bool QtOpener::open(const QString &pathOrUrl)
{
    return QDesktopServices::openUrl(QUrl(openableUrl(pathOrUrl)));
}

} // namespace quillon
