#pragma once

/// The fixed texts of the macros: macros.dll holds them and messages are written with them, so that they are the same
/// in every language, and exact in case.
namespace corvane {

inline constexpr char16_t recipientFirstName[] = u"{First Name of The Recipient}";
inline constexpr char16_t recipientLastName[] = u"{Last Name of The Recipient}";
inline constexpr char16_t recipientFullName[] = u"{Full Name of The Recipient}";
inline constexpr char16_t recipientAddress[] = u"{Email Address of The Recipient}";
inline constexpr char16_t longDate[] = u"{Long Date}";
inline constexpr char16_t shortDate[] = u"{Short Date}";
inline constexpr char16_t longTime[] = u"{Long Time}";
inline constexpr char16_t shortTime[] = u"{Short Time}";
inline constexpr char16_t longDateAndTime[] = u"{Long Date and Time}";
inline constexpr char16_t shortDateAndTime[] = u"{Short Date and Time}";
inline constexpr char16_t myFirstName[] = u"{My First Name}";
inline constexpr char16_t myLastName[] = u"{My Last Name}";
inline constexpr char16_t myFullName[] = u"{My Full Name}";
inline constexpr char16_t myAddress[] = u"{My Email Address}";
inline constexpr char16_t myWebsite[] = u"{My Website}";
inline constexpr char16_t myCompany[] = u"{My Company Name}";
inline constexpr char16_t myTelephone[] = u"{My Tel No.}";
inline constexpr char16_t myMobilePhone[] = u"{My Mobile Phone}";
inline constexpr char16_t myFax[] = u"{My Fax No.}";
inline constexpr char16_t myBankAccount[] = u"{My Bank Account}";
inline constexpr char16_t emptyMacro[] = u"{}";

// Categories.
inline constexpr char16_t recipientInformation[] = u"Recipient Information";
inline constexpr char16_t sendingMoment[] = u"Sending Date and Time";
inline constexpr char16_t myInformation[] = u"My Information";
inline constexpr char16_t otherInformation[] = u"Other Information";

// The recipient for whom the macro manager shows what comes of each.
inline constexpr char16_t sampleRecipient[] = u"Jack Smith";
inline constexpr char16_t sampleAddress[] = u"jack.smith@example.com";

// The captions of the detail dialog tell whether it adds or edits.
inline constexpr char16_t addMacroCaption[] = u"Add Macro";
inline constexpr char16_t editMacroCaption[] = u"Edit Macro - ";

} // namespace corvane
