#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <functional>
#include <optional>

namespace quillon {

/// An HTML document made ready for a mail.
struct HtmlMail {
    struct Range {
        qsizetype Begin = 0;
        qsizetype End = 0;
    };
    QString Html;
    QList<Range> Raw; ///< scripts and styles, where character references mean nothing
};

/// Rewrites @p html: each reference to a picture (src of IMG), a background (of any element) and a background sound
/// (src of BGSOUND) is offered to @p replace, which gives the new reference or an empty text to leave it; and the
/// document's own charset, in both forms of META, becomes @p charset. The rest stays as it is.
[[nodiscard]] HtmlMail htmlForMail(const QString &html, const QByteArray &charset,
                                   const std::function<QString(const QString &)> &replace);

/// @p mail in @p charset; a character that does not fit becomes "&#N;". Nothing when the charset is not known, or when
/// such a character stands in a script or a style.
[[nodiscard]] std::optional<QByteArray> encodeHtml(const HtmlMail &mail, const QByteArray &charset);

} // namespace quillon
