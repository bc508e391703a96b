#pragma once

/// The fixed texts of a message and of stored templates, the same in every language: what the title tells is read back
/// from it, and the keys and words of a template's head are a form of file.
namespace corvane {

inline constexpr char16_t newMessageTitleText[] = u"Corvane - New Message";
inline constexpr char16_t titleStart[] = u"Corvane - ";
inline constexpr char16_t editTitleWord[] = u"Edit";
inline constexpr char16_t previewTitleWord[] = u"Preview";
inline constexpr char16_t managingTitle[] = u"Templates Manager"; ///< of the dialog, which says by it what it is for
inline constexpr char16_t noTemplateMarkText[] = u"NT_NT_NNTT";   ///< a name that nobody gives by accident
inline constexpr char16_t nameOfNamelessTemplate[] = u"New Template";

namespace headkeys {

inline constexpr char16_t section[] = u"Head";
inline constexpr char16_t account[] = u"SMTP Account";
inline constexpr char16_t senderType[] = u"Sender Type";
inline constexpr char16_t sender[] = u"Sender";
inline constexpr char16_t replyReceiverType[] = u"Reply Receiver Type";
inline constexpr char16_t replyReceiver[] = u"Reply Receiver";
inline constexpr char16_t to[] = u"To";
inline constexpr char16_t cc[] = u"CC";
inline constexpr char16_t bcc[] = u"BCC";
inline constexpr char16_t subject[] = u"Subject";
inline constexpr char16_t attachments[] = u"Attachments";
inline constexpr char16_t dateAndTime[] = u"Date & Time";
inline constexpr char16_t type[] = u"Type";
inline constexpr char16_t encoding[] = u"Encoding";
inline constexpr char16_t priority[] = u"Priority";
inline constexpr char16_t oneByOne[] = u"One By One";
inline constexpr char16_t receipt[] = u"Receipt";

} // namespace headkeys

namespace headwords {

inline constexpr char16_t actual[] = u"Actual";
inline constexpr char16_t custom[] = u"Custom";
inline constexpr char16_t plain[] = u"Plain";
inline constexpr char16_t html[] = u"HTML";
inline constexpr char16_t high[] = u"High";
inline constexpr char16_t normal[] = u"Normal";
inline constexpr char16_t low[] = u"Low";
inline constexpr char16_t yes[] = u"True";
inline constexpr char16_t no[] = u"False";

} // namespace headwords

} // namespace corvane
