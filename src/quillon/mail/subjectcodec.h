#pragma once

#include <QString>

namespace quillon {

/// Brings a subject into a form that can stand in one line of a settings file and in the header of a mail.
class SubjectCodec {
public:
    /// @p text as encoded words (RFC 2047) on one line, parted by one blank each; a text of printable US-ASCII that
    /// reads back as itself stays as it is. @p charset is the MIME charset of the words; where the text does not fit
    /// it, or it is not known, the words are UTF-8. The result is US-ASCII without control characters and without
    /// blanks at its ends; Decode() gives back exactly @p text (a lone surrogate comes back as U+FFFD).
    [[nodiscard]] QString Encode(const QString &text, const QString &charset) const;

    /// The text that Encode() got. A text that was never encoded is given back unchanged. @p charset is not looked at,
    /// since each word names its own.
    [[nodiscard]] QString Decode(const QString &text, const QString &charset) const;
};

} // namespace quillon
