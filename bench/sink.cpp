// An SMTP server that takes every mail and throws it away, as fast as one thread can: all clients of the bench talk to
// it. It offers what usual servers offer. Prints "PORT plain starttls" and ends with its standard input.
//   bench_sink --certificate FILE --key FILE
// XCOUNT answers "250 mails recipients octets connections" since the last XRESET: recipients are different ones,
// connections those that brought mails.

#include <arpa/inet.h>
#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <netinet/tcp.h>
#include <openssl/err.h>
#include <openssl/ssl.h>
#include <string>
#include <string_view>
#include <sys/epoll.h>
#include <unistd.h>
#include <unordered_set>

namespace {

struct Tally {
    long mails = 0;
    long octets = 0;
    long connections = 0;
    std::unordered_set<std::string> recipients;
};

/// One client's connection.
class Connection {
public:
    Connection(int descriptor, SSL_CTX *context, Tally &tally)
        : m_descriptor(descriptor), m_context(context), m_tally(tally)
    {
        m_out = "220 sink.example ESMTP\r\n";
        flush();
    }
    ~Connection()
    {
        SSL_free(m_ssl);
        ::close(m_descriptor);
    }
    Connection(const Connection &) = delete;
    Connection &operator=(const Connection &) = delete;

    /// Takes what has come; false when the connection is over.
    bool turn()
    {
        static std::array<char, 65536> buffer;
        for (;;) {
            const long got = receive(buffer);
            if (got == 0) {
                return false;
            }
            if (got < 0) {
                break;
            }
            m_in.append(buffer.data(), static_cast<size_t>(got));
            if (!consume()) {
                flush();
                return false;
            }
            if (m_ssl == nullptr && static_cast<size_t>(got) < buffer.size()) {
                break;
            }
        }
        flush();
        return true;
    }

private:
    /// Octets read, 0 at the end, less when there is nothing now.
    long receive(std::array<char, 65536> &buffer)
    {
        if (m_ssl == nullptr) {
            const ssize_t got = ::recv(m_descriptor, buffer.data(), buffer.size(), 0);
            return got >= 0 ? got : errno == EAGAIN ? -1 : 0;
        }
        const int got = SSL_read(m_ssl, buffer.data(), static_cast<int>(buffer.size()));
        if (got > 0) {
            return got;
        }
        const int error = SSL_get_error(m_ssl, got);
        return error == SSL_ERROR_WANT_READ || error == SSL_ERROR_WANT_WRITE ? -1 : 0;
    }

    void flush()
    {
        // Answers are short and clients read them: the socket's own buffer always has room.
        if (m_out.empty()) {
            return;
        }
        if (m_ssl != nullptr) {
            SSL_write(m_ssl, m_out.data(), static_cast<int>(m_out.size()));
        } else if (::send(m_descriptor, m_out.data(), m_out.size(), MSG_NOSIGNAL) < 0) {
            std::perror("send");
        }
        m_out.clear();
    }

    bool consume()
    {
        for (;;) {
            if (m_inData) {
                // The line end of the DATA command stands in front, so that a dot may be the first line.
                const size_t end = m_in.find("\r\n.\r\n", m_scanned);
                if (end == std::string::npos) {
                    m_scanned = m_in.size() < 4 ? 0 : m_in.size() - 4;
                    return true;
                }
                ++m_tally.mails;
                m_tally.connections += m_hasBrought ? 0 : 1;
                m_hasBrought = true;
                m_tally.octets += static_cast<long>(end);
                m_in.erase(0, end + 5);
                m_inData = false;
                m_out += "250 2.0.0 taken\r\n";
            }
            const size_t end = m_in.find("\r\n");
            if (end == std::string::npos) {
                return true;
            }
            const std::string line = m_in.substr(0, end);
            m_in.erase(0, end + 2);
            if (!obey(line)) {
                return false;
            }
        }
    }

    bool obey(const std::string &line)
    {
        const auto is = [&line](std::string_view verb) {
            return line.size() >= verb.size() && ::strncasecmp(line.data(), verb.data(), verb.size()) == 0;
        };
        if (is("EHLO")) {
            m_out += "250-sink.example\r\n250-PIPELINING\r\n250-SIZE 52428800\r\n250-8BITMIME\r\n";
            m_out += m_context != nullptr && m_ssl == nullptr ? "250-STARTTLS\r\n" : "";
            m_out += m_ssl != nullptr ? "250-AUTH PLAIN LOGIN\r\n" : "";
            m_out += "250 ENHANCEDSTATUSCODES\r\n";
        } else if (is("STARTTLS") && m_context != nullptr && m_ssl == nullptr) {
            m_out += "220 go ahead\r\n";
            flush();
            m_in.clear();
            m_ssl = SSL_new(m_context);
            SSL_set_fd(m_ssl, m_descriptor);
            SSL_set_accept_state(m_ssl);
        } else if (is("AUTH PLAIN ")) {
            m_out += "235 2.7.0 welcome\r\n";
        } else if (is("RCPT TO:")) {
            m_tally.recipients.insert(line.substr(8));
            m_out += "250 2.1.5 ok\r\n";
        } else if (is("DATA")) {
            m_out += "354 go ahead\r\n";
            m_inData = true;
            m_scanned = 0;
            m_in.insert(0, "\r\n");
        } else if (is("QUIT")) {
            m_out += "221 2.0.0 bye\r\n";
            return false;
        } else if (is("XRESET")) {
            m_tally = {};
            m_out += "250 ok\r\n";
        } else if (is("XCOUNT")) {
            m_out += "250 " + std::to_string(m_tally.mails) + ' ' + std::to_string(m_tally.recipients.size()) + ' ' +
                     std::to_string(m_tally.octets) + ' ' + std::to_string(m_tally.connections) + "\r\n";
        } else if (is("MAIL FROM:") || is("RSET") || is("NOOP") || is("HELO")) {
            m_out += "250 2.0.0 ok\r\n";
        } else {
            m_out += "502 5.5.1 what?\r\n";
        }
        return true;
    }

    int m_descriptor;
    SSL_CTX *m_context;
    Tally &m_tally;
    SSL *m_ssl = nullptr;
    std::string m_in;
    std::string m_out;
    size_t m_scanned = 0;
    bool m_inData = false;
    bool m_hasBrought = false; ///< a mail
};

int listenOnLoopback()
{
    const int listener = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (listener < 0 || ::bind(listener, reinterpret_cast<sockaddr *>(&address), sizeof address) != 0 ||
        ::listen(listener, 512) != 0) {
        std::perror("listen");
        std::exit(1);
    }
    return listener;
}

int portOf(int listener)
{
    sockaddr_in address{};
    socklen_t size = sizeof address;
    ::getsockname(listener, reinterpret_cast<sockaddr *>(&address), &size);
    return ntohs(address.sin_port);
}

SSL_CTX *makeContext(const char *certificate, const char *key)
{
    SSL_CTX *context = SSL_CTX_new(TLS_server_method());
    SSL_CTX_set_session_id_context(context, reinterpret_cast<const unsigned char *>("sink"), 4);
    SSL_CTX_set_mode(context, SSL_MODE_AUTO_RETRY);
    if (SSL_CTX_use_certificate_chain_file(context, certificate) != 1 ||
        SSL_CTX_use_PrivateKey_file(context, key, SSL_FILETYPE_PEM) != 1) {
        ERR_print_errors_fp(stderr);
        std::exit(1);
    }
    return context;
}

void watch(int epoll, int descriptor)
{
    epoll_event event{};
    event.events = EPOLLIN;
    event.data.fd = descriptor;
    ::epoll_ctl(epoll, EPOLL_CTL_ADD, descriptor, &event);
}

void serve(int plain, int starttls, SSL_CTX *context)
{
    Tally tally;
    std::map<int, std::unique_ptr<Connection>> connections;
    const int epoll = ::epoll_create1(EPOLL_CLOEXEC);
    watch(epoll, plain);
    watch(epoll, starttls);
    watch(epoll, STDIN_FILENO);
    std::array<epoll_event, 64> events{};
    for (;;) {
        const int count = ::epoll_wait(epoll, events.data(), static_cast<int>(events.size()), -1);
        for (int i = 0; i < count; ++i) {
            const int ready = events[static_cast<size_t>(i)].data.fd;
            if (ready == STDIN_FILENO) {
                char octet = 0;
                if (::read(STDIN_FILENO, &octet, 1) <= 0) {
                    return;
                }
            } else if (ready == plain || ready == starttls) {
                const int descriptor = ::accept4(ready, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
                if (descriptor >= 0) {
                    const int on = 1;
                    ::setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
                    connections[descriptor] =
                        std::make_unique<Connection>(descriptor, ready == starttls ? context : nullptr, tally);
                    watch(epoll, descriptor);
                }
            } else if (const auto found = connections.find(ready);
                       found != connections.end() && !found->second->turn()) {
                connections.erase(found);
            }
        }
    }
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 5) {
        std::fputs("usage: bench_sink --certificate FILE --key FILE\n", stderr);
        return 2;
    }
    std::signal(SIGPIPE, SIG_IGN);
    SSL_CTX *context = makeContext(argv[2], argv[4]);
    const int plain = listenOnLoopback();
    const int starttls = listenOnLoopback();
    std::printf("PORT %d %d\n", portOf(plain), portOf(starttls));
    std::fflush(stdout);
    serve(plain, starttls, context);
    SSL_CTX_free(context);
    return 0;
}
