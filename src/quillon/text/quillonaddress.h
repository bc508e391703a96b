#pragma once

#include <QString>

namespace quillon {

/// The test of a plain e-mail address.
class QuillonAddress {
public:
    /// True for one "@" between a local part of RFC 5321 atoms or a quoted string, and a domain of labels or an
    /// address literal; UTF-8 is allowed on both sides (RFC 6531). No blanks, control characters, "<", ">" or ",";
    /// at most 254 octets, the local part at most 64.
    [[nodiscard]] bool IsEmailAddress(const QString &text) const;
};

} // namespace quillon
