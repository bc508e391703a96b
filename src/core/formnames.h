#pragma once

#include <QString>

namespace corvane {

// As char16_t where a fixed text of the program names its section.
inline constexpr char16_t mainSection[] = u"frmPubMain";
inline constexpr char16_t optionsSection[] = u"frmPubOptions";

// The forms by the names under which they are registered and opened, and have their sections in the language files.
inline const QString splashForm = QStringLiteral("frmPubSplash");
inline const QString mainForm = QString::fromUtf16(mainSection);
inline const QString progressForm = QStringLiteral("frmPubProgress");
inline const QString optionsForm = QString::fromUtf16(optionsSection);
inline const QString accountForm = QStringLiteral("frmPubSMTP");
inline const QString proxyForm = QStringLiteral("frmPubProxy");
inline const QString senderForm = QStringLiteral("frmPubSender");
inline const QString macrosForm = QStringLiteral("frmPubMacro");
inline const QString macroDetailForm = QStringLiteral("frmPubMacroDetail");
inline const QString promptsForm = QStringLiteral("frmPubPrompt");
inline const QString contactsForm = QStringLiteral("frmPubSelCts");
inline const QString templatesForm = QStringLiteral("frmPubTemplates");
inline const QString aboutForm = QStringLiteral("frmPubAbout");
inline const QString scheduleForm = QStringLiteral("frmPubSchedule");

inline constexpr int noTab = -1; ///< for a form that is to show the tab with which it begins

/// The tabs of the options form, by their indexes.
enum OptionsTab { ProxyTab, AccountTab, SenderTab, SignaturesTab, OtherTab };

} // namespace corvane
