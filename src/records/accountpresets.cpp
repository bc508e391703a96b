#include "records/accountpresets.h"

#include "core/recordline.h"
#include "records/recordtexts.h"

using namespace Qt::StringLiterals;

namespace corvane {

QString presetLine(const AccountPreset &preset)
{
    const QString name = QString::fromUtf16(presetName);
    const QString address = QString::fromUtf16(presetUser) + QString::fromUtf16(preset.domain);
    return recordLine({QString::fromUtf16(preset.server), QString::fromUtf16(preset.port),
                       QString::fromUtf16(preset.security), u"Y"_s, address, QString(), name, address, name, address,
                       u"/SAEND"_s});
}

} // namespace corvane
