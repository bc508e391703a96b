#pragma once

namespace corvane {

// What stands on the tray menu, which is made in the code, as the design texts of a form do, until menus.dll is read.
inline constexpr char16_t showItem[] = u"&Show Corvane";
inline constexpr char16_t helpItem[] = u"&Help";
inline constexpr char16_t flowchartItem[] = u"&Operational Flowchart";
inline constexpr char16_t questionsItem[] = u"&Frequently Asked Questions";
inline constexpr char16_t pageItem[] = u"&Web Page of the Product";
inline constexpr char16_t blogItem[] = u"&Blog";
inline constexpr char16_t feedItem[] = u"&RSS Feed of the Blog";
inline constexpr char16_t contactItem[] = u"&Contact Support";
inline constexpr char16_t versionItem[] = u"Check for a &New Version";
inline constexpr char16_t supportItem[] = u"Suppor&t Page";
inline constexpr char16_t recommendItem[] = u"R&ecommend to a Friend";
inline constexpr char16_t aboutItem[] = u"&About Corvane";
inline constexpr char16_t exitItem[] = u"E&xit";
inline constexpr char16_t exitKeepingItem[] = u"Exit, B&ut Keep the Scheduler";

} // namespace corvane
