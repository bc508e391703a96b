#include "core/recordline.h"

#include "quillon/text/lineends.h"

namespace corvane {

QString fieldText(const QString &text)
{
    return quillon::withoutControls(text).trimmed();
}

QString recordLine(const QStringList &fields)
{
    QStringList clean;
    for (const QString &field : fields) {
        clean.append(fieldText(field));
    }
    return clean.join(u'\t');
}

QString recordField(const QString &record, int field)
{
    return record.section(u'\t', field, field);
}

} // namespace corvane
