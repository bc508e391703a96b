#include "records/accountpresets.h"

#include "core/recordline.h"

using namespace Qt::StringLiterals;

namespace corvane {

QString presetLine(const AccountPreset &preset)
{
    const QString name = u"Your Name"_s;
    const QString address = u"Your Account@"_s + QString::fromUtf16(preset.domain);
    return recordLine({QString::fromUtf16(preset.server), QString::fromUtf16(preset.port),
                       QString::fromUtf16(preset.security), u"Y"_s, address, QString(), name, address, name, address,
                       u"/SAEND"_s});
}

} // namespace corvane
