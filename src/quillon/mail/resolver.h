#pragma once

#include "quillon/sequence/pending.h"

#include <QHostAddress>
#include <QList>
#include <QString>

namespace quillon {

/// What a host's name leads to: addresses, the best one first, or why there are none, as the end of a sentence.
struct HostAddresses {
    QList<QHostAddress> Addresses;
    QString Fault;
};

/// How names of hosts become addresses; this one asks the system, without blocking.
class Resolver {
public:
    virtual ~Resolver() = default;
    virtual Pending<HostAddresses> lookUp(const QString &host);
};

Resolver &resolver();
/// Puts another one in force and returns the one before; nullptr is the system's. The caller keeps ownership.
Resolver *setResolver(Resolver *next);

/// Whether @p host names this machine: "localhost" and all names below it, which nobody needs to be asked for
/// (RFC 6761, 6.3).
[[nodiscard]] bool isLocalhost(const QString &host);

} // namespace quillon
