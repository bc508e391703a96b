#include "quillon/mail/resolver.h"

#include <QCoreApplication>
#include <QHostInfo>

#include <utility>

using namespace Qt::StringLiterals;

namespace quillon {

namespace {

struct ResolverSlot {
    Resolver standard;
    Resolver *present = &standard;
};

ResolverSlot &resolverSlot()
{
    static ResolverSlot slot;
    return slot;
}

} // namespace

Pending<HostAddresses> Resolver::lookUp(const QString &host)
{
    Pending<HostAddresses> pending;
    QHostInfo::lookupHost(host, QCoreApplication::instance(), [settler = pending.settler()](const QHostInfo &found) {
        const bool failed = found.error() != QHostInfo::NoError;
        settler.settle({found.addresses(), failed ? found.errorString() : QString()});
    });
    return pending;
}

Resolver &resolver()
{
    return *resolverSlot().present;
}

Resolver *setResolver(Resolver *next)
{
    ResolverSlot &slot = resolverSlot();
    Resolver *before = std::exchange(slot.present, next ? next : &slot.standard);
    return before == &slot.standard ? nullptr : before;
}

bool isLocalhost(const QString &host)
{
    const QString name = host.endsWith(u'.') ? host.chopped(1) : host;
    return name.compare("localhost"_L1, Qt::CaseInsensitive) == 0 ||
           name.endsWith(".localhost"_L1, Qt::CaseInsensitive);
}

} // namespace quillon
