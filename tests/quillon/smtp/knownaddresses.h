#pragma once

#include "quillon/mail/resolver.h"

#include <QStringList>

#include <optional>

/// Knows what it was told, at once or when it is let, and keeps what it was asked.
struct KnownAddresses : quillon::Resolver {
    explicit KnownAddresses(const QStringList &known = {}) : m_before(quillon::setResolver(this))
    {
        for (const QString &address : known) {
            Found.Addresses += QHostAddress(address);
        }
    }
    ~KnownAddresses() override { quillon::setResolver(m_before); }

    quillon::Pending<quillon::HostAddresses> lookUp(const QString &host) override
    {
        Asked += host;
        if (!Holds) {
            return quillon::Pending<quillon::HostAddresses>::settled(Found);
        }
        quillon::Pending<quillon::HostAddresses> pending;
        m_held = pending.settler();
        return pending;
    }
    /// What was asked last is answered now.
    void answer() { m_held->settle(Found); }
    [[nodiscard]] bool isWanted() const { return m_held && m_held->isWanted(); }

    quillon::HostAddresses Found;
    QStringList Asked;
    bool Holds = false;

private:
    std::optional<quillon::Pending<quillon::HostAddresses>::Settler> m_held;
    quillon::Resolver *m_before;
};
