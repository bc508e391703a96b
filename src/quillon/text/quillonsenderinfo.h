#pragma once

#include <QString>

namespace quillon {

/// The default custom sender in memory.
struct QuillonSenderInfo {
    QString EmailAddr;
    QString DispName;
};

} // namespace quillon
