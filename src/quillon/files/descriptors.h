#pragma once

namespace quillon {

/// Whether this process may still open @p count files, sockets and the like. To be asked before what cannot do without
/// and does not fail by itself: a thread of the libraries that finds none left ends the program.
[[nodiscard]] bool descriptorsLeft(int count);

} // namespace quillon
