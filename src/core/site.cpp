#include "core/site.h"

#include "quillon/fault.h"
#include "quillon/files/settingsfile.h"

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

constexpr long webPort = 80;
constexpr long maxPort = 65535;

QString valueOf(const quillon::SettingsFile &file, const QString &key, const QString &standard)
{
    const QString value = file.value(u"Site"_s, key).trimmed();
    return value.isEmpty() ? standard : value;
}

long portOf(const QString &text)
{
    const long port = text.toLong();
    if (port < 1 || port > maxPort) {
        quillon::reportFault(u"not a port: '"_s + text + u'\'');
        return webPort;
    }
    return port;
}

} // namespace

Site readSite(const QString &programFolder)
{
    const quillon::SettingsFile file(programFolder + u"/site.dll"_s);
    QString address = valueOf(file, u"Address"_s, u"http://www.corvane.invalid/"_s);
    if (!address.endsWith(u'/')) {
        address += u'/';
    }
    return {address, valueOf(file, u"Proxy Test Host"_s, u"www.corvane.invalid"_s),
            portOf(valueOf(file, u"Proxy Test Port"_s, QString::number(webPort)))};
}

} // namespace corvane
