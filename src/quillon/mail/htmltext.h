#pragma once

#include <QString>
#include <QStringView>

namespace quillon {

/// A readable text version of the HTML document @p html, with CR LF line ends: blocks and breaks on lines of their own,
/// links with their address in angle brackets, lists with marks, quotes with ">", cells of a row on one line, pictures
/// by their alternative text. Broken documents give what a browser would show. Empty when nothing is shown.
[[nodiscard]] QString textOfHtml(QStringView html);

} // namespace quillon
