// The dialogue with a SOCKS5 proxy: what it says leads to the same however it is cut, and what is sent stays short.

#include "check.h"
#include "quillon/mail/socksclient.h"

using namespace Qt::StringLiterals;
using quillon::SocksClient;

namespace {

struct Outcome {
    SocksClient::State state;
    QByteArray sent;
    QByteArray rest;
    QString fault;
    bool operator==(const Outcome &) const = default;
};

/// What comes of it when the proxy's words come in pieces of that many octets.
Outcome talk(const QByteArray &input, qsizetype piece, const QString &user)
{
    SocksClient client(u"mail.example.org"_s, 25, user, u"secret"_s);
    QByteArray sent = client.takeOutput();
    QByteArray rest;
    for (qsizetype at = 0; at < input.size(); at += piece) {
        if (client.state() == SocksClient::State::Open) {
            rest += client.takeRest();
        }
        client.feed(input.mid(at, piece));
        sent += client.takeOutput();
    }
    if (client.state() == SocksClient::State::Open) {
        rest += client.takeRest();
    }
    return {client.state(), sent, rest, client.fault()};
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray input(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    for (const QString &user : {QString(), u"user"_s}) {
        const Outcome whole = talk(input, qMax<qsizetype>(input.size(), 1), user);
        mustHold(whole == talk(input, 1, user));
        mustHold(whole.sent.size() < 100 && whole.rest.size() <= input.size());
        mustHold((whole.state == SocksClient::State::Failed) != whole.fault.isEmpty());
    }
    return 0;
}
