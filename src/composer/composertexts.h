#pragma once

#include "core/formnames.h"
#include "quillon/text/owntexts.h"

namespace corvane {

// Fixed texts: the same in every language.
inline constexpr char16_t selectFilesTitle[] = u"Select Files";
inline constexpr char16_t selectFolderTitle[] = u"Select Folder";
inline constexpr char16_t contentName[] = u"Email content"; ///< of the rich editor, in the status bar

/// The captions of Expand and Restore tell the state of the content area.
struct ExpansionTexts {
    const char16_t *itemCaption;
    const char16_t *toolCaption;
    const char16_t *toolTip;
};
inline constexpr ExpansionTexts expandTexts{u"&Expand", u"Expand", u"Expands the email content area <F6>."};
inline constexpr ExpansionTexts restoreTexts{u"&Restore", u"Restore", u"Restores the email content area <F6>."};

// Sentences of our own: the button that is made in the code, below the colors.
inline constexpr quillon::OwnText moreColors{mainSection, u"sbt(11)", u"More..."};
inline constexpr quillon::OwnText moreColorsTip{mainSection, u"sbt(11).tip", u"Chooses any other color."};

// What the window tells of the recipients while they are typed.
inline constexpr char16_t recipientsSection[] = u"Recipients";
inline constexpr quillon::OwnText seenByOthers{recipientsSection, u"SEEN_BY_OTHERS",
                                               u"%1 people will see each other's addresses."};
inline constexpr quillon::OwnText oneRecipient{recipientsSection, u"ONE_RECIPIENT", u"1 recipient."};
inline constexpr quillon::OwnText manyRecipients{recipientsSection, u"RECIPIENTS", u"%1 recipients."};

} // namespace corvane
