#pragma once

#include "message/message.h"

#include <QString>
#include <QStringList>

namespace corvane {

// What the saving of a message decides. Who asks the user, and writes, is told here what to do.

/// Whether recipients, subject and body are blank. @p bodyText is the body as text: that of the plain box, or what
/// copying all of the rich document gives.
[[nodiscard]] bool isBlank(const Message &message, const QString &bodyText);

/// The name that is proposed for a message under that title: of a new message its subject, or "New Template" where that
/// is blank; of a template its own. Forbidden characters are left out, so it may be empty.
[[nodiscard]] QString proposedName(const QString &title, const QString &subject);

/// What an answer to the question for a name leads to.
enum class NameAnswer {
    End,       ///< nothing was given
    New,       ///< the name joins the list
    Overwrite, ///< it is the template's own
    Ask,       ///< there is another of that name: may it be overwritten?
};

/// @p name is the answer without forbidden characters, which may leave it empty; @p answer is what was given.
/// @p listed are the names of the list.
[[nodiscard]] NameAnswer decideName(const QString &answer, const QString &name, const QString &proposed,
                                    const QStringList &listed);

} // namespace corvane
