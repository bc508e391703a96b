#include "quillon/system/quillonregistry.h"

#include "quillon/files/settingsfile.h"

using namespace Qt::StringLiterals;

namespace quillon {

namespace {

QString registryFile;

QString sectionOf(QuillonRegistry::Hive hive, const QString &keyPath)
{
    return (hive == QuillonRegistry::CurrentUser ? u"User\\"_s : u"Machine\\"_s) + keyPath;
}

} // namespace

void QuillonRegistry::setFile(const QString &path)
{
    registryFile = path;
}

QString QuillonRegistry::ReadValue(Hive hive, const QString &keyPath, const QString &name) const
{
    return registryFile.isEmpty() ? QString() : SettingsFile(registryFile).value(sectionOf(hive, keyPath), name);
}

void QuillonRegistry::WriteValue(Hive hive, const QString &keyPath, const QString &name, Type type,
                                 const QString &value) const
{
    if (registryFile.isEmpty()) {
        return;
    }
    SettingsFile file(registryFile);
    file.setValue(sectionOf(hive, keyPath), name, type == Number ? QString::number(value.toUInt()) : value);
    file.save();
}

void QuillonRegistry::DeleteKey(Hive hive, const QString &keyPath) const
{
    if (registryFile.isEmpty()) {
        return;
    }
    SettingsFile file(registryFile);
    const QString section = sectionOf(hive, keyPath);
    if (file.sections().contains(section, Qt::CaseInsensitive)) {
        file.removeSection(section);
        file.save();
    }
}

} // namespace quillon
