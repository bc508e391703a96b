#include "quillon/files/descriptors.h"

#include <fcntl.h>
#include <sys/eventfd.h>
#include <unistd.h>
#include <vector>

namespace quillon {

bool descriptorsLeft(int count)
{
    // Nothing tells how many are left but to take them.
    std::vector<int> taken;
    for (int i = 0; i < count; ++i) {
        const int next = i == 0 ? ::eventfd(0, EFD_CLOEXEC) : ::fcntl(taken.front(), F_DUPFD_CLOEXEC, 0);
        if (next < 0) {
            break;
        }
        taken.push_back(next);
    }
    for (const int descriptor : taken) {
        ::close(descriptor);
    }
    return static_cast<int>(taken.size()) == count;
}

} // namespace quillon
