#pragma once

#include "quillon/mail/smtptls.h"
#include "quillon/smtp/client.h"
#include "support/certificates.h"
#include "support/scriptedserver.h"

#include <QTest>

/// What the tests of the client's dialogue with a scripted server share.
namespace dialogue {

using namespace quillon;
using namespace Qt::StringLiterals;
using testsupport::ScriptedServer;

inline constexpr int shortSilence = 150;
inline constexpr int shortGrace = 40;
inline const QByteArray text = "Subject: x\r\n\r\nhello\r\n.\r\nend\r\n";
inline const QByteArray textOnWire = "Subject: x\r\n\r\nhello\r\n..\r\nend\r\n.\r\n";

// The commands of a session with login, by which the stages are known.
inline void addStages(bool withConnect, bool withSend)
{
    QTest::addColumn<QByteArray>("command");
    QTest::addColumn<QString>("stage");
    if (withConnect) {
        QTest::newRow("greeting") << QByteArray() << u"greeting"_s;
        QTest::newRow("EHLO") << QByteArray("EHLO") << u"Greeting 127.0.0.1"_s;
        QTest::newRow("AUTH") << QByteArray("AUTH") << u"AUTH PLAIN"_s;
    }
    if (withSend) {
        QTest::newRow("MAIL") << QByteArray("MAIL") << u"MAIL FROM"_s;
        QTest::newRow("RCPT") << QByteArray("RCPT") << u"to@example.org (RCPT TO)"_s;
        QTest::newRow("DATA") << QByteArray("DATA") << u"DATA"_s;
        QTest::newRow("end") << QByteArray(".") << QString();
    }
}

// Sets the server so that it gives `reply` at the stage.
inline void setReply(ScriptedServer &server, const QByteArray &command, const QByteArray &reply)
{
    server.Offers = {"AUTH PLAIN"};
    if (command.isEmpty()) {
        server.Greeting = reply;
    } else {
        server.answer(command, reply);
        if (command == "EHLO") {
            server.answer("HELO", reply);
        }
    }
}

// Connects with a login and sends; whether it was sent.
inline bool runSession(Client &client, const ScriptedServer &server)
{
    client.Transport.User = u"user"_s;
    client.Transport.Password = u"geheim"_s;
    client.connectTo(server.port());
    return client.send(text);
}

// Large enough that it cannot all lie in the system's buffers before the server's word is read.
inline const QByteArray &largeText()
{
    static const QByteArray large =
        QByteArray("0123456789abcdef0123456789abcdef0123456789abcdef\r\n").repeated(1'000'000);
    return large;
}

} // namespace dialogue
