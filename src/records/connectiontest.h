#pragma once

#include "core/site.h"

#include <QString>

namespace corvane {

// Both tests block their caller while the event loop runs inside, show nothing and keep nothing of their caller's but
// @p reason, which has to outlive the call: a local variable. It gets one sentence that says why the test failed,
// without any password; empty when it did not, and when the program's exit broke it off. A test that is begun while
// another is under way fails at once.

/// Whether the server of an account's line accepts a session, with its security and login, through the proxy of
/// @p proxy's line unless that is empty. A line with a wrong number of fields, or a proxy's without an address, fails
/// without a connection.
bool TestSmtpConnection(const QString &account, const QString &proxy, QString *reason = nullptr);

/// Whether the outside, that is the site's web server, can be reached through the proxy of @p proxy's line. It fails
/// without a connection as above.
bool TestProxyConnection(const QString &proxy, const Site &site, QString *reason = nullptr);

} // namespace corvane
