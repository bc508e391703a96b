#pragma once

#include "core/site.h"
#include "quillon/sequence/task.h"

#include <QString>

namespace corvane {

/// How a test of a connection came out.
struct ConnectionTestResult {
    bool works = false;
    QString reason; ///< why not, in one sentence without any password; empty when it works
};

// Both tests show nothing. One that is begun while another is under way fails at once; one that is ended, because its
// owner goes, leaves nothing behind.

/// Whether the server of an account's line accepts a session, with its security and login, through the proxy of
/// @p proxy's line unless that is empty. A line with a wrong number of fields, or a proxy's without an address, fails
/// without a connection.
quillon::Task<ConnectionTestResult> TestSmtpConnection(QString account, QString proxy);

/// Whether the outside, that is the site's web server, can be reached through the proxy of @p proxy's line. It fails
/// without a connection as above.
quillon::Task<ConnectionTestResult> TestProxyConnection(QString proxy, Site site);

} // namespace corvane
