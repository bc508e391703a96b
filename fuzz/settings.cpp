// The settings reader: any file may be read, a write changes one line, and what was written reads back the same.

#include "check.h"
#include "quillon/files/settingsfile.h"
#include "quillon/files/textcoding.h"

#include <algorithm>

using namespace Qt::StringLiterals;
using quillon::SettingsFile;

namespace {

/// All of @p before is there, in its order, but for one line that may have another text; at most two are new.
void mustHaveChangedOneLine(const QList<QByteArray> &before, const QList<QByteArray> &after)
{
    const qsizetype added = after.size() - before.size();
    mustHold(added >= 0 && added <= 2);
    qsizetype front = 0;
    while (front < before.size() && before[front] == after[front]) {
        ++front;
    }
    qsizetype back = 0;
    while (back < before.size() - front && before[before.size() - 1 - back] == after[after.size() - 1 - back]) {
        ++back;
    }
    mustHold(before.size() - front - back <= (added == 0 ? 1 : 0));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray input(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    SettingsFile settings = SettingsFile::fromBytes(input);
    const QByteArray before = settings.toBytes();

    // The input's own octets once more, as a value that has to come back: what is not UTF-8 becomes replacement signs.
    const QString value = QString::fromUtf8(input.left(512)).remove(QChar(0));
    const QString section = value.left(9);
    const QStringList sections = settings.sections();
    const QString known = sections.isEmpty() ? QString() : sections.last();
    const QStringList keys = settings.keys(known);
    const QString kept = keys.isEmpty() ? QString() : settings.value(known, keys.first());
    settings.setValue(section, u"Key"_s, value);
    const QByteArray changed = settings.toBytes();
    mustHaveChangedOneLine(quillon::splitLines(before), quillon::splitLines(changed));

    const SettingsFile after = SettingsFile::fromBytes(changed);
    mustHold(after.toBytes() == changed);
    mustHold(after.value(section, u"KEY"_s) == value);
    if (!keys.isEmpty() && keys.first().compare(u"Key"_s, Qt::CaseInsensitive) != 0) {
        mustHold(after.value(known, keys.first()) == kept);
    }
    return 0;
}
