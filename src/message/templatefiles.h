#pragma once

#include "core/globals.h"
#include "message/message.h"

#include <QString>
#include <QStringList>

#include <functional>

namespace corvane {

/// Paths of a template's files.
[[nodiscard]] QString headPath(const ApplicationGlobals &globals, const QString &name);
[[nodiscard]] QString contentPath(const ApplicationGlobals &globals, const QString &name);

/// The names of the stored templates, as templates.dll lists them, in the order of creation.
[[nodiscard]] QStringList templateNames(const ApplicationGlobals &globals);

/// Whether templates.dll lists that name; both are compared without their outer blanks and without regard to case.
[[nodiscard]] bool isListed(const ApplicationGlobals &globals, const QString &name);

/// Writes a message as the template of that name: adds the name to the list when @p isNew, then the head, key by key
/// over what stands there, then the content. An attachment that is gone from the disk is left out; an encoding that the
/// list does not offer leaves the key as it was. @p rememberRecipients runs once the recipients and the subject are
/// taken, as the first to know new addresses. False when any of
/// the three could not be written; each is then the old one, whole.
bool writeTemplate(const ApplicationGlobals &globals, const QString &name, bool isNew, Message &message,
                   const std::function<void()> &rememberRecipients);

/// Fills @p message from the files of a template: blanks recipients, subject and body first, and leaves it at that when
/// there is no head. Neither pblnChanged nor any title is looked after here. A type of an unknown word is rich text, a
/// priority of one is Low; a choice of one is Custom, and an encoding that the list does not offer leaves that of
/// the message.
void LoadTemplate(const ApplicationGlobals &globals, const QString &name, Message &message);

/// Takes the template off the list and deletes its files; one that fails to go leaves nothing else undone.
void deleteTemplate(const ApplicationGlobals &globals, const QString &name);

/// Puts @p newName at the end of the list in place of @p name, and the files under that name. A file that cannot have
/// it, or would take the place of another one, keeps its old name; the list is changed all the same. Ended at any
/// moment, the list names a template that has its files.
void renameTemplate(const ApplicationGlobals &globals, const QString &name, const QString &newName);

} // namespace corvane
