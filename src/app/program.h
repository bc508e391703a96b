#pragma once

#include "app/programservices.h"
#include "core/companion.h"
#include "core/globals.h"
#include "core/launcher.h"
#include "core/unsavedfiles.h"
#include "quillon/forms/formregistry.h"
#include "quillon/forms/qtprompts.h"
#include "quillon/forms/readablepalette.h"
#include "quillon/sequence/sequence.h"
#include "recipients/inputprompts.h"
#include "records/forms/frmpuboptions.h"
#include "sending/forms/formprogressview.h"
#include "sending/sendrun.h"

#include <QObject>
#include <QString>

#include <functional>
#include <memory>

namespace corvane {

class frmPubMain;
class TrayIcon;

/// The program as a whole: it makes the rooms, hands each what it needs of the others, and takes them down again.
class Program : public QObject {
    Q_OBJECT

public:
    Program(const QString &programFolder, bool stopOnFault, ProgramServices services);
    ~Program() override;

    /// Prepares the data and shows the splash, which hands over to the main window.
    void start();

    /// Ends the program as a session's end does: nobody is asked, and the companion runs on. While it ends already,
    /// nothing more comes of it.
    void endBySystem();
    /// Whether it is ending, or has ended; an event loop that was not there yet to be ended is then not to be begun.
    [[nodiscard]] bool isEnding() const { return m_leaving; }

    /// All forms but the main window.
    [[nodiscard]] quillon::FormRegistry &forms() { return m_forms; }
    /// The main window; nullptr until the splash hands over.
    [[nodiscard]] frmPubMain *mainWindow() { return m_main.get(); }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void addForms();
    void makeMainWindow();
    void handOverFromSplash();
    void loadLists();
    void loadMacroMenu();
    void checkAccount() const;
    /// The main window's boxes and menus of accounts, senders and signatures, without marking a change.
    void refillMainWindow();
    [[nodiscard]] OptionsHooks optionsHooks();
    /// Opens a page of the manual on the site.
    [[nodiscard]] std::function<void()> helpOn(const QString &page) const;
    void showForm(const QString &form, int tab);
    void rememberRecipients();
    bool insertIntoSignature(const QString &macro);
    bool showProgress();
    /// The user's way out, who is asked for an unsaved message and may stay.
    void exit(bool stopScheduler);
    void leave(bool stopScheduler);
    quillon::Task<> carryOutLeave(bool stopScheduler, ExitSteps steps);
    /// From here on nothing begins any more, and nobody is asked: a run under way unwinds.
    void fallSilent();
    /// Lets the main window go, and the process end.
    void end();
    void closeHelp() const;

    UnsavedFiles m_unsaved; ///< before all that writes
    ApplicationGlobals m_globals;
    Companion m_companion;
    ProgramServices m_services;
    quillon::FormRegistry m_forms;
    quillon::QtPrompts m_asker;
    quillon::ReadablePalette m_palette;
    quillon::HarmlessPrompts m_silence; ///< in force once the program ends
    quillon::Prompts *m_before;         ///< in force again when this object is gone
    InputPrompts m_recipients;
    FormProgressView m_progress;
    std::unique_ptr<frmPubMain> m_main;
    std::unique_ptr<TrayIcon> m_tray;
    std::unique_ptr<SendRun> m_run;
    bool m_refilling = false; ///< what changes in the main window is no doing of the user's
    bool m_asked = false;     ///< whether to leave an unsaved message
    bool m_leaving = false;
    quillon::Sequence m_exit; // last, since what it ends with uses the others
};

} // namespace corvane
