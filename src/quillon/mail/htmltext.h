#pragma once

#include <QString>
#include <QStringView>

namespace quillon {

/// What stands in the tags and not on the page: addresses of links, texts in place of pictures.
enum class HtmlExtras { Told, LeftOut };

/// A readable text version of the HTML document @p html, with CR LF line ends: blocks and breaks on lines of their own,
/// links with their address in angle brackets, lists with marks, quotes with ">", cells of a row on one line, pictures
/// by their alternative text; addresses and pictures only with @p extras. Broken documents give what a browser would
/// show. Empty when nothing is shown.
[[nodiscard]] QString textOfHtml(QStringView html, HtmlExtras extras = HtmlExtras::Told);

} // namespace quillon
