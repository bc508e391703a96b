#pragma once

#include "app/programservices.h"
#include "core/globals.h"
#include "core/unsavedfiles.h"
#include "quillon/forms/formregistry.h"
#include "quillon/forms/qtprompts.h"
#include "quillon/forms/readablepalette.h"
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
    void exit(bool stopScheduler);
    /// Lets the main window go and the process end; a run under way unwinds and nobody is asked anything more.
    void end();
    void closeHelp() const;

    UnsavedFiles m_unsaved; ///< before all that writes
    ApplicationGlobals m_globals;
    bool m_stopOnFault;
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
};

} // namespace corvane
