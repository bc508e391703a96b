#pragma once

#include <functional>

namespace quillon {
class Prompts;
}

namespace corvane {

/// What the program takes from around it, beside what platform.h tells.
struct ProgramServices {
    std::function<bool()> trayAvailable; ///< whether the desktop has a tray; required
    std::function<void()> quit;          ///< ends the event loop, and so the process; required
    quillon::Prompts *prompts = nullptr; ///< asks the user; without it, boxes and forms on the screen do
};

/// Those of the desktop and of the running application object.
[[nodiscard]] ProgramServices desktopServices();

} // namespace corvane
