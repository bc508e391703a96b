#pragma once

#include "core/globals.h"
#include "quillon/mail/mailtransport.h"

#include <QString>

#include <functional>
#include <memory>

namespace corvane {

/// Who hears the events of a transport.
struct TransportEvents {
    std::function<void(const QString &text)> error;
    std::function<void(const QString &text)> progress;
};

/// Makes a new transport in @p transport, dropping any earlier one with its events, configures it from the two record
/// lines and connects. Whether the proxy is used is told by the settings, not by @p proxyRecord. True when it stands.
bool ConnectTransport(const ApplicationGlobals &globals, const QString &accountRecord, const QString &proxyRecord,
                      const TransportEvents &events, std::unique_ptr<quillon::MailTransport> &transport);

} // namespace corvane
