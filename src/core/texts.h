#pragma once

#include "quillon/sequence/pending.h"
#include "quillon/system/prompts.h"

#include <QString>

#include <optional>

namespace corvane {

// Fixed texts: the same in every language.
inline constexpr char16_t programTitle[] = u"Corvane";
inline constexpr char16_t helpTitle[] = u"Corvane Help"; ///< of the manual's window
inline constexpr char16_t readyText[] = u" Ready.";
inline constexpr char16_t sendingText[] = u" Sending email, please click here to display the progress...";
inline constexpr char16_t allFilesFilter[] = u"All Files (*.*)";
inline constexpr char16_t markerFileName[] = u"Corvane data folder, please do not delete it";

/// The folder that holds tips.dll, menus.dll and menutips.dll: that of the running program, unless set.
[[nodiscard]] QString languageFolder();
void setLanguageFolder(const QString &folder);

/// Makes the sentences of the library and of the rooms (see quillon::OwnText) those of tips.dll, in which each room's
/// have a section of their own. Without this, as in a program that has no language files, they are the English ones.
void useLanguageTexts();

/// The text of a message key, read from tips.dll at the moment of use. A key that is not there gives an empty text.
[[nodiscard]] QString LookupText(const QString &key);

/// A text of a form that is no control's caption, read as LookupText() does; @p standard where there is none.
[[nodiscard]] QString formText(const QString &form, const QString &key, const QString &standard = QString());

/// Shows the text of @p key in a box of @p style (see quillon::BoxStyle). With @p value, the value stands in front of
/// it as "'", the value, "' ".
quillon::BoxAnswer showMessage(const QString &key, int style, const std::optional<QString> &value = std::nullopt);

/// Shows a text that has no key of its own.
quillon::BoxAnswer showText(const QString &text, int style);

/// The same for a sequence, which rests while the box is open. @p key names the text, where it has one.
quillon::Pending<quillon::BoxAnswer> messageShown(const QString &key, int style,
                                                  const std::optional<QString> &value = std::nullopt);
/// The same with something more below the message's text.
quillon::Pending<quillon::BoxAnswer> messageShownWith(const QString &details, const QString &key, int style);
quillon::Pending<quillon::BoxAnswer> textShown(const QString &text, int style, const QString &key = QString());

} // namespace corvane
