#pragma once

#include <QString>

namespace corvane {

/// What the deployer of the program tells it, in site.dll beside the program.
struct Site {
    QString address;       ///< base address of the product's web site; ends in "/"
    QString proxyTestHost; ///< the web server that the test of a proxy reaches for
    long proxyTestPort;    ///< its port, 1 to 65535
};

/// Reads site.dll in @p programFolder. What is missing, blank or, for the port, no port has its default: a reserved
/// name that never resolves, so that nobody is called unasked, and port 80.
[[nodiscard]] Site readSite(const QString &programFolder);

} // namespace corvane
