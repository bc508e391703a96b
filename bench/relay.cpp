// A slow link on this machine: passes connections on to a port of loopback and holds each direction back for a while.
// The bandwidth is not limited. The handshake of TCP, which the system answers at once here, is held back as on a real
// link: the client would know after two ways that the connection stands, and the server, who speaks first, after three.
// Prints "PORT n" and ends with its standard input.
//   bench_relay TARGET-PORT MILLISECONDS

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <deque>
#include <list>
#include <netinet/tcp.h>
#include <poll.h>
#include <string>
#include <sys/socket.h>
#include <unistd.h>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

/// What came at one moment; no octets: the end.
struct Parcel {
    Clock::time_point due;
    std::string octets;
};

/// One direction of a connection.
struct Direction {
    int from = -1;
    int to = -1;
    Clock::time_point stands; ///< when the connection would stand at this direction's sender
    std::deque<Parcel> held;
    bool ended = false;    ///< nothing more comes
    bool finished = false; ///< and all of it has gone

    void take(Clock::duration hold)
    {
        std::array<char, 65536> buffer{};
        const ssize_t got = ::recv(from, buffer.data(), buffer.size(), 0);
        if (got < 0 && errno == EAGAIN) {
            return;
        }
        ended = got <= 0;
        held.push_back({std::max(Clock::now(), stands) + hold,
                        std::string(buffer.data(), got > 0 ? static_cast<size_t>(got) : 0)});
    }

    void pass(Clock::time_point now)
    {
        while (!held.empty() && held.front().due <= now) {
            std::string &octets = held.front().octets;
            if (octets.empty()) {
                ::shutdown(to, SHUT_WR);
                finished = true;
            } else {
                const ssize_t sent = ::send(to, octets.data(), octets.size(), MSG_NOSIGNAL);
                if (sent < 0 && errno == EAGAIN) {
                    return;
                }
                if (sent >= 0 && static_cast<size_t>(sent) < octets.size()) {
                    octets.erase(0, static_cast<size_t>(sent));
                    return;
                }
            }
            held.pop_front();
        }
    }
};

struct Link {
    Direction up;
    Direction down;
};

sockaddr_in loopback(int port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<in_port_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

void sendAtOnce(int descriptor)
{
    const int on = 1;
    ::setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

void acceptOne(int listener, int target, Clock::duration hold, std::list<Link> &links)
{
    const int client = ::accept4(listener, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
    if (client < 0) {
        return;
    }
    const int server = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = loopback(target);
    if (::connect(server, reinterpret_cast<sockaddr *>(&address), sizeof address) != 0) {
        std::perror("connect");
        ::close(server);
        ::close(client);
        return;
    }
    sendAtOnce(client);
    sendAtOnce(server);
    const Clock::time_point begin = Clock::now();
    links.push_back({{client, server, begin + 2 * hold, {}}, {server, client, begin + 3 * hold, {}}});
}

void run(int listener, int target, Clock::duration hold)
{
    std::list<Link> links;
    for (;;) {
        std::vector<pollfd> polled{{STDIN_FILENO, POLLIN, 0}, {listener, POLLIN, 0}};
        std::vector<Direction *> directions;
        Clock::time_point next = Clock::time_point::max();
        for (Link &link : links) {
            for (Direction *direction : {&link.up, &link.down}) {
                if (!direction->ended) {
                    polled.push_back({direction->from, POLLIN, 0});
                    directions.push_back(direction);
                }
                if (!direction->held.empty()) {
                    next = std::min(next, direction->held.front().due);
                }
            }
        }
        timespec wait{};
        if (next != Clock::time_point::max()) {
            const auto left = std::max<long long>(
                0, std::chrono::duration_cast<std::chrono::nanoseconds>(next - Clock::now()).count());
            wait = {static_cast<time_t>(left / 1'000'000'000), static_cast<long>(left % 1'000'000'000)};
        }
        ::ppoll(polled.data(), polled.size(), next == Clock::time_point::max() ? nullptr : &wait, nullptr);
        char octet = 0;
        if (polled[0].revents != 0 && ::read(STDIN_FILENO, &octet, 1) <= 0) {
            return;
        }
        for (size_t i = 0; i < directions.size(); ++i) {
            if (polled[i + 2].revents != 0) {
                directions[i]->take(hold);
            }
        }
        if (polled[1].revents != 0) {
            acceptOne(listener, target, hold, links);
        }
        const Clock::time_point now = Clock::now();
        for (Link &link : links) {
            link.up.pass(now);
            link.down.pass(now);
        }
        links.remove_if([](const Link &link) {
            if (!link.up.finished || !link.down.finished) {
                return false;
            }
            ::close(link.up.from);
            ::close(link.up.to);
            return true;
        });
    }
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 3) {
        std::fputs("usage: bench_relay TARGET-PORT MILLISECONDS\n", stderr);
        return 2;
    }
    std::signal(SIGPIPE, SIG_IGN);
    const int listener = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    sockaddr_in address = loopback(0);
    socklen_t size = sizeof address;
    if (listener < 0 || ::bind(listener, reinterpret_cast<sockaddr *>(&address), size) != 0 ||
        ::listen(listener, 64) != 0 || ::getsockname(listener, reinterpret_cast<sockaddr *>(&address), &size) != 0) {
        std::perror("listen");
        return 1;
    }
    std::printf("PORT %d\n", ntohs(address.sin_port));
    std::fflush(stdout);
    run(listener, std::atoi(argv[1]), std::chrono::milliseconds(std::atoi(argv[2])));
    return 0;
}
