#pragma once

#include "sending/sendbench.h"
#include "support/scriptedserver.h"

#include <QTest>

#include <memory>

/// What the tests of whole send runs share: a bench, and the scripted server of its account.
class ServedBench {
protected:
    using Field = corvane::Message::Field;

    void begin()
    {
        m_bench = std::make_unique<SendBench>();
        m_server = std::make_unique<testsupport::ScriptedServer>();
        m_bench->useServer(QStringLiteral("127.0.0.1"), m_server->port());
    }
    void end()
    {
        m_bench.reset();
        m_server.reset();
    }

    /// Runs with the box of a success expected.
    void sendWell()
    {
        ExpectedPrompts asked;
        asked.expectBox(QStringLiteral("SENT_SUCC"), quillon::InformationBox);
        m_bench->run();
    }
    [[nodiscard]] QByteArray mail(qsizetype index = 0) const { return m_server->Mails.value(index); }

    const QString divider = QString(75, u'-');
    std::unique_ptr<SendBench> m_bench;
    std::unique_ptr<testsupport::ScriptedServer> m_server;
};
