// Starts a program on the display and tells how long it takes until its window is drawn, and what memory it then has:
//   bench_starter SPLASH-MILLISECONDS TITLE PROGRAM
// The time ends with the first drawing in the window of that title, as the display's server reports it. Where the
// milliseconds are above 0 the program first shows another window for that long; from when that one is shown until the
// program wakes to go on the time does not count. Prints {"seconds", "splash": seconds left out, "rss", "pss" and
// "private": KB of the process at its first rest after the drawing}, and ends the program.

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <optional>
#include <poll.h>
#include <set>
#include <sstream>
#include <string>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xcb/xcb.h>
#include <xcb/xcbext.h>

namespace {

using Clock = std::chrono::steady_clock;

constexpr auto patience = std::chrono::seconds(120); ///< a safety net against a program that hangs
constexpr auto resting = std::chrono::milliseconds(300);

[[noreturn]] void fail(const std::string &reason)
{
    std::fprintf(stderr, "bench_starter: %s\n", reason.c_str());
    std::exit(1);
}

/// The extension DAMAGE of the X protocol, of which the library's own header need not be there.
class Damage {
public:
    explicit Damage(xcb_connection_t *display) : m_display(display)
    {
        const xcb_query_extension_reply_t *found = xcb_get_extension_data(display, &extension());
        if (found == nullptr || found->present == 0) {
            fail("the display does not report what is drawn");
        }
        m_event = found->first_event;
        struct {
            uint8_t major, minor;
            uint16_t length;
            uint32_t wantedMajor, wantedMinor;
        } version{0, 0, 0, 1, 1};
        const unsigned sequence = send(0, &version, sizeof version, false);
        std::free(xcb_wait_for_reply(display, sequence, nullptr));
    }

    /// From here on each drawing in the window is an event.
    void watch(xcb_window_t window)
    {
        struct {
            uint8_t major, minor;
            uint16_t length;
            uint32_t damage, drawable;
            uint8_t level; ///< 0: every rectangle
            std::array<uint8_t, 3> padding;
        } create{0, 0, 0, xcb_generate_id(m_display), window, 0, {}};
        send(1, &create, sizeof create, true);
    }

    /// The window that was drawn in, if the event tells of that.
    [[nodiscard]] std::optional<xcb_window_t> drawn(const xcb_generic_event_t *event) const
    {
        if ((event->response_type & 0x7f) != m_event) {
            return std::nullopt;
        }
        xcb_window_t window = 0;
        std::memcpy(&window, reinterpret_cast<const char *>(event) + 4, sizeof window);
        return window;
    }

private:
    static xcb_extension_t &extension()
    {
        static xcb_extension_t damage{"DAMAGE", 0};
        return damage;
    }

    unsigned send(uint8_t opcode, void *request, size_t size, bool isVoid)
    {
        const xcb_protocol_request_t kind{1, &extension(), opcode, static_cast<uint8_t>(isVoid ? 1 : 0)};
        // The library wants room for itself in front.
        std::array<iovec, 3> parts{};
        parts[2] = {request, size};
        return xcb_send_request(m_display, 0, &parts[2], &kind);
    }

    xcb_connection_t *m_display;
    uint8_t m_event = 0;
};

xcb_atom_t atom(xcb_connection_t *display, const char *name)
{
    xcb_intern_atom_reply_t *reply = xcb_intern_atom_reply(
        display, xcb_intern_atom(display, 0, static_cast<uint16_t>(std::strlen(name)), name), nullptr);
    const xcb_atom_t found = reply != nullptr ? reply->atom : 0;
    std::free(reply);
    return found;
}

std::string property(xcb_connection_t *display, xcb_window_t window, xcb_atom_t name)
{
    xcb_get_property_reply_t *reply = xcb_get_property_reply(
        display, xcb_get_property(display, 0, window, name, XCB_GET_PROPERTY_TYPE_ANY, 0, 256), nullptr);
    std::string value;
    if (reply != nullptr) {
        value.assign(static_cast<const char *>(xcb_get_property_value(reply)),
                     static_cast<size_t>(xcb_get_property_value_length(reply)));
    }
    std::free(reply);
    return value;
}

/// Counts of the process's main thread that change whenever it gets a processor.
std::string activity(pid_t process)
{
    std::ifstream file("/proc/" + std::to_string(process) + "/schedstat");
    std::string line;
    std::getline(file, line);
    return line;
}

pid_t start(char **program)
{
    const pid_t process = ::fork();
    if (process < 0) {
        fail("no process could be made");
    }
    if (process == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGTERM);
        ::execv(program[0], program);
        std::perror(program[0]);
        ::_exit(127);
    }
    return process;
}

/// Follows one program from its start to the rest after its window is drawn.
class Watch {
public:
    Watch(xcb_connection_t *display, Clock::duration splash, std::string title)
        : m_display(display), m_damage(display), m_splash(splash), m_title(std::move(title)),
          m_processOf(atom(display, "_NET_WM_PID")), m_nameOf(atom(display, "_NET_WM_NAME"))
    {
        const uint32_t tell = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
        const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(display)).data->root;
        xcb_change_window_attributes(display, root, XCB_CW_EVENT_MASK, &tell);
        xcb_flush(display);
    }

    void follow(char **program)
    {
        m_begin = Clock::now();
        m_lastWork = m_begin;
        m_process = start(program);
        while (!m_drawn || Clock::now() - m_lastWork < resting) {
            pollfd polled{xcb_get_file_descriptor(m_display), POLLIN, 0};
            ::poll(&polled, 1, 1);
            while (xcb_generic_event_t *event = xcb_poll_for_event(m_display)) {
                handle(event);
                std::free(event);
            }
            xcb_flush(m_display);
            lookAtWork();
            if (xcb_connection_has_error(m_display) != 0) {
                fail("the display is gone");
            }
            if (::waitpid(m_process, nullptr, WNOHANG) != 0) {
                fail("the program ended before its window was drawn");
            }
            if (Clock::now() - m_begin > patience) {
                fail("no window '" + m_title + "' was drawn");
            }
        }
    }

    void tell() const
    {
        Clock::duration leftOut{};
        if (m_splash.count() > 0) {
            if (!m_splashShown || !m_woken) {
                fail("the window before the main window was not seen to come and to go");
            }
            leftOut = *m_woken - *m_splashShown;
        }
        const auto seconds = [](Clock::duration time) { return std::chrono::duration<double>(time).count(); };
        std::printf("{\"seconds\": %.6f, \"splash\": %.6f, \"rss\": %ld, \"pss\": %ld, \"private\": %ld}\n",
                    seconds(*m_drawn - m_begin - leftOut), seconds(leftOut), memory("Rss:"), memory("Pss:"),
                    memory("Private_Clean:") + memory("Private_Dirty:"));
    }

    void end() const
    {
        ::kill(m_process, SIGTERM);
        ::waitpid(m_process, nullptr, 0);
    }

private:
    void handle(const xcb_generic_event_t *event)
    {
        const int kind = event->response_type & 0x7f;
        if (kind == XCB_CREATE_NOTIFY) {
            // Before anything is drawn in it, and before a window manager puts it into a frame.
            const xcb_window_t window = reinterpret_cast<const xcb_create_notify_event_t *>(event)->window;
            const uint32_t tell = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
            xcb_change_window_attributes(m_display, window, XCB_CW_EVENT_MASK, &tell);
            m_damage.watch(window);
        } else if (kind == XCB_MAP_NOTIFY) {
            const xcb_window_t window = reinterpret_cast<const xcb_map_notify_event_t *>(event)->window;
            if (!m_splashShown && isOfProgram(window) && !isWanted(window)) {
                m_splashShown = Clock::now();
            }
            m_mapped.insert(window);
        } else if (const auto window = m_damage.drawn(event)) {
            if (!m_drawn && m_mapped.contains(*window) && isOfProgram(*window) && isWanted(*window)) {
                m_drawn = Clock::now();
            }
        }
    }

    /// When the program last worked, and when it woke from the wait of its first window.
    void lookAtWork()
    {
        std::string now = activity(m_process);
        if (now.empty()) {
            fail("the system does not tell when a process works");
        }
        if (now == m_activity) {
            return;
        }
        m_activity = std::move(now);
        m_lastWork = Clock::now();
        // Qt's timers may come a twentieth early or late.
        if (m_splashShown && !m_woken && m_lastWork - *m_splashShown > m_splash * 9 / 10) {
            m_woken = m_lastWork;
        }
    }

    [[nodiscard]] bool isOfProgram(xcb_window_t window) const
    {
        const std::string value = property(m_display, window, m_processOf);
        uint32_t process = 0;
        std::memcpy(&process, value.data(), std::min(value.size(), sizeof process));
        return process == static_cast<uint32_t>(m_process);
    }

    [[nodiscard]] bool isWanted(xcb_window_t window) const { return property(m_display, window, m_nameOf) == m_title; }

    [[nodiscard]] long memory(const std::string &name) const
    {
        std::ifstream file("/proc/" + std::to_string(m_process) + "/smaps_rollup");
        for (std::string line; std::getline(file, line);) {
            std::istringstream words(line);
            std::string first;
            long kilobytes = 0;
            if (words >> first >> kilobytes && first == name) {
                return kilobytes;
            }
        }
        fail("the memory of the program is not told");
    }

    xcb_connection_t *m_display;
    Damage m_damage;
    Clock::duration m_splash;
    std::string m_title;
    xcb_atom_t m_processOf;
    xcb_atom_t m_nameOf;
    pid_t m_process = 0;
    std::string m_activity;
    std::set<xcb_window_t> m_mapped;
    Clock::time_point m_begin;
    Clock::time_point m_lastWork;
    std::optional<Clock::time_point> m_splashShown;
    std::optional<Clock::time_point> m_woken;
    std::optional<Clock::time_point> m_drawn;
};

} // namespace

int main(int argc, char **argv)
{
    if (argc != 4) {
        std::fputs("usage: bench_starter SPLASH-MILLISECONDS TITLE PROGRAM\n", stderr);
        return 2;
    }
    xcb_connection_t *display = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(display) != 0) {
        fail("no display");
    }
    Watch watch(display, std::chrono::milliseconds(std::atoi(argv[1])), argv[2]);
    watch.follow(argv + 3);
    watch.tell();
    watch.end();
    xcb_disconnect(display);
    return 0;
}
