#pragma once

#include <QHostAddress>
#include <QList>

#include <arpa/inet.h>
#include <cerrno>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

/// An address of this machine that does not answer who connects: its queue is full and nobody empties it.
class SilentAddress {
public:
    SilentAddress(const QHostAddress &address, quint16 port)
    {
        m_where.sin_family = AF_INET;
        m_where.sin_port = htons(port);
        m_where.sin_addr.s_addr = htonl(address.toIPv4Address());
        const int listener = add();
        if (bind(listener, where(), sizeof m_where) != 0 || listen(listener, 0) != 0) {
            return;
        }
        constexpr int most = 16;
        for (int i = 0; i < most && !m_silent; ++i) {
            const int filler = add();
            const bool begun = connect(filler, where(), sizeof m_where) != 0 && errno == EINPROGRESS;
            pollfd question{filler, POLLOUT, 0};
            constexpr int moment = 100; // ms; an answer on loopback comes at once
            m_silent = begun && poll(&question, 1, moment) == 0;
        }
    }
    ~SilentAddress()
    {
        for (const int handle : m_handles) {
            close(handle);
        }
    }
    SilentAddress(const SilentAddress &) = delete;
    SilentAddress &operator=(const SilentAddress &) = delete;

    /// Whether it was seen not to answer.
    [[nodiscard]] bool isSilent() const { return m_silent; }

private:
    int add()
    {
        m_handles += socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
        return m_handles.constLast();
    }
    [[nodiscard]] const sockaddr *where() const { return reinterpret_cast<const sockaddr *>(&m_where); }

    sockaddr_in m_where{};
    QList<int> m_handles;
    bool m_silent = false;
};
