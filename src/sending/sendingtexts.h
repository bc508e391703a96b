#pragma once

/// The fixed texts of sending, the same in every language: the log's headings and values, which people and scripts look
/// for, and the lines of the progress dialog.
namespace corvane {

/// The counter line of the progress dialog while nothing is being counted.
inline constexpr char16_t progressRestText[] = u"Sending emails...";
inline constexpr char16_t progressOneText[] = u"Sending 1/1 email...";
inline constexpr char16_t progressCountText[] = u"Sending %1/%2 emails...";
inline constexpr char16_t intervalText[] = u"Making OBO sending interval: "; ///< the number follows
inline constexpr char16_t intervalEnd[] = u" seconds...";

namespace logtexts {

inline constexpr char16_t begin[] = u"Begin";
inline constexpr char16_t end[] = u"End";
inline constexpr char16_t monthFormat[] = u"MMM";
inline constexpr char16_t momentFormat[] = u"dd yyyy HH:mm:ss"; ///< behind the month
inline constexpr char16_t error[] = u"Error";
inline constexpr char16_t account[] = u"Account";
inline constexpr char16_t sender[] = u"Sender";
inline constexpr char16_t replyTo[] = u"ReplyTo";
inline constexpr char16_t to[] = u"To";
inline constexpr char16_t cc[] = u"CC";
inline constexpr char16_t bcc[] = u"BCC";
inline constexpr char16_t dateAndTime[] = u"Date & Time";
inline constexpr char16_t messageType[] = u"Message Type";
inline constexpr char16_t plainText[] = u"Plain Text";
inline constexpr char16_t richText[] = u"Rich Text (HTML)";
inline constexpr char16_t encoding[] = u"Encoding";
inline constexpr char16_t priority[] = u"Priority";
inline constexpr char16_t high[] = u"High";
inline constexpr char16_t normal[] = u"Normal";
inline constexpr char16_t low[] = u"Low";
inline constexpr char16_t requestReceipt[] = u"Request Read Receipt";
inline constexpr char16_t receiptReceiver[] = u"Receipt Receiver";
inline constexpr char16_t oneByOne[] = u"One By One";
inline constexpr char16_t sendingMethod[] = u"Sending Method";
inline constexpr char16_t manual[] = u"Manual";
inline constexpr char16_t automatic[] = u"Automatic";
inline constexpr char16_t attachments[] = u"Attachments";
/// Behind a folder's path: what of it is not in its archive, and why.
inline constexpr char16_t leftOut[] = u" (left out: %1)";
inline constexpr char16_t andMore[] = u"%1 more";
inline constexpr char16_t linkToFolder[] = u"link to a folder";
inline constexpr char16_t linkToNothing[] = u"link to nothing";
inline constexpr char16_t pipe[] = u"pipe";
inline constexpr char16_t socket[] = u"socket";
inline constexpr char16_t device[] = u"device";
inline constexpr char16_t unreadable[] = u"cannot be read";
inline constexpr char16_t subject[] = u"Subject";
inline constexpr char16_t content[] = u"Content: \r\n";
inline constexpr char16_t yes[] = u"Yes";
inline constexpr char16_t no[] = u"No";

} // namespace logtexts

} // namespace corvane
