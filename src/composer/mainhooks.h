#pragma once

#include "records/signaturerecords.h"

#include <QString>
#include <QStringList>

#include <functional>

namespace corvane {

/// What the main window asks of the rooms that it does not know; every one is required.
struct MainHooks {
    std::function<void()> send;                             ///< the send run, `menfs`
    std::function<void(bool stopScheduler)> exitProgram;    ///< `menfx` with true, `menfu` with false
    std::function<QString(const QString &)> findSmtpRecord; ///< the account's line for a text of the account box
    /// Puts a macro into the signature that the options dialog shows; false when that dialog is not open.
    std::function<bool(const QString &macro)> insertIntoSignature;
    /// A signature as it goes into the content.
    std::function<SignatureText(const QString &name)> findSignature;
    /// Shows a modal form, on the tab of that index when it is 0 or more.
    std::function<void(const QString &form, int tab)> showForm;
    std::function<bool()> optionsOpen;  ///< frmPubOptions is open: its refills mark no change
    std::function<bool()> sending;      ///< the status line tells of a run: no hint takes its place
    std::function<bool()> showProgress; ///< a click on the status bar; true: it was used

    std::function<QStringList()> prompts; ///< the earlier recipients that are offered while typing
    /// Adds the recipients of To, CC and BCC to the input prompts, and reads those again.
    std::function<void()> rememberRecipients;

    // Steps of the loading, in this order.
    std::function<void()> loadLists;    ///< accounts, senders, signatures, macros
    std::function<void()> checkAccount; ///< the question whether to set up an account
    std::function<void()> readPrompts;

    std::function<void()> minimised; ///< the visible window was minimised, or is to be: it may go to the tray
    std::function<void()> closed;    ///< the window has let itself be closed
};

/// The hooks with each one set; one that is missing is a fault and does nothing.
[[nodiscard]] MainHooks requireAll(MainHooks hooks);

} // namespace corvane
