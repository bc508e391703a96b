#pragma once

#include "core/formnames.h"
#include "quillon/text/owntexts.h"

namespace corvane {

// Fixed texts: the same in every language.
inline constexpr char16_t addCaption[] = u"Add ";
inline constexpr char16_t editCaption[] = u"Edit ";
inline constexpr char16_t accountCaption[] = u"SMTP Account";
inline constexpr char16_t proxyCaption[] = u"Proxy Server";
inline constexpr char16_t senderCaption[] = u"Custom Sender";
inline constexpr char16_t presetName[] = u"Your Name";
inline constexpr char16_t presetUser[] = u"Your Account@"; ///< the domain follows
inline constexpr char16_t numberedSignature[] = u"Signature #";
inline constexpr char16_t textFilesFilter[] = u"Text Files (*.txt)";
inline constexpr char16_t htmlFilesFilter[] = u"HTML Files (*.htm; *.html)";
inline constexpr char16_t htmlFilesPatterns[] = u"*.htm; *.html";

// The captions that the last tab of the options sets whenever it shows.
inline constexpr char16_t fontSizeCaption[] = u"F&ont Size";
inline constexpr char16_t oboCaption[] = u"Se&nding Interval (Seconds) for One-by-one Mode";
inline constexpr char16_t emptyFolderCaption[] =
    u"Empty Folder &After Sent This Folder Attachment Successfully (ONLY for Automatic Mode)";

// What stands on a menu that is made in the code, as the design texts of a form do, until menus.dll is read.
inline constexpr char16_t newAccountItem[] = u"&New Account...";
inline constexpr char16_t gmailAccountItem[] = u"&Gmail Account...";
inline constexpr char16_t yahooAccountItem[] = u"&Yahoo! Mail Account...";

// The headings of the lists.
inline constexpr quillon::OwnText senderColumns{optionsSection, u"lsv(0).columns",
                                                u"Display Name|Email Address|Remark"};
inline constexpr quillon::OwnText signatureColumns{optionsSection, u"lsv(1).columns", u"Signature"};
inline constexpr quillon::OwnText proxyColumns{optionsSection, u"lsv(2).columns", u"Address|Port|User"};
inline constexpr quillon::OwnText accountColumns{optionsSection, u"lsv(3).columns", u"Server|Port|Email Address"};

// What stands in a list that is empty, and what to press.
inline constexpr quillon::OwnText noSenders{optionsSection, u"lsv(0).empty",
                                            u"No custom senders yet. Press Add to enter one."};
inline constexpr quillon::OwnText noSignatures{optionsSection, u"lsv(1).empty",
                                               u"No signatures yet. Press Add to begin one."};
inline constexpr quillon::OwnText noProxies{optionsSection, u"lsv(2).empty",
                                            u"No proxy servers yet. Press Add to enter one."};
inline constexpr quillon::OwnText noAccounts{optionsSection, u"lsv(3).empty",
                                             u"No SMTP accounts yet. Press Add to enter one."};

// What the tests of a connection say before they connect.
inline constexpr char16_t testSection[] = u"Connection Test";
inline constexpr quillon::OwnText accountFields{testSection, u"ACCOUNT_FIELDS",
                                                u"The record of the account has %1 fields, not %2."};
inline constexpr quillon::OwnText proxyFields{testSection, u"PROXY_FIELDS",
                                              u"The record of the proxy server has %1 fields, not %2."};
inline constexpr quillon::OwnText proxyWithoutAddress{testSection, u"PROXY_WITHOUT_ADDRESS",
                                                      u"The record of the proxy server has no address."};
inline constexpr quillon::OwnText testUnderWay{testSection, u"TEST_UNDER_WAY", u"Another connection is being tested."};

} // namespace corvane
