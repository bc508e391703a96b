// The settings reader: any file may be read, a write keeps what was there, and what was written reads back the same.

#include "check.h"
#include "quillon/files/settingsfile.h"

#include <QFile>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using quillon::SettingsFile;

namespace {

const QTemporaryDir &folder()
{
    static const QTemporaryDir dir;
    return dir;
}

void writeInput(const QString &path, const QByteArray &octets)
{
    QFile file(path);
    mustHold(file.open(QIODevice::WriteOnly) && file.write(octets) == octets.size());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray input(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const QString path = folder().filePath(u"settings.dll"_s);
    writeInput(path, input);

    const SettingsFile before(path);
    // The input's own octets once more, as a value that has to come back: what is not UTF-8 becomes replacement signs.
    const QString value = QString::fromUtf8(input.left(512)).remove(QChar(0));
    SettingsFile changed(path);
    changed.setValue(u"Fuzz"_s, u"Key"_s, value);
    mustHold(changed.save());

    const SettingsFile after(path);
    mustHold(after.value(u"fuzz"_s, u"KEY"_s) == value);
    for (const QString &section : before.sections()) {
        for (const QString &key : before.keys(section)) {
            if (section.compare(u"Fuzz"_s, Qt::CaseInsensitive) != 0) {
                mustHold(after.value(section, key) == before.value(section, key));
            }
        }
    }
    return 0;
}
