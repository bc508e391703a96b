#pragma once

#include "core/globals.h"
#include "quillon/forms/formregistry.h"
#include "quillon/forms/qtopener.h"
#include "quillon/forms/qtprompts.h"
#include "recipients/inputprompts.h"
#include "sending/forms/formprogressview.h"
#include "sending/sendrun.h"

#include <QString>

#include <memory>

namespace corvane {

class frmPubMain;
class TrayIcon;

/// The program as a whole: it makes the rooms, hands each what it needs of the others, and takes them down again.
class Program {
public:
    Program(const QString &programFolder, bool stopOnFault);
    ~Program();
    Program(const Program &) = delete;
    Program &operator=(const Program &) = delete;

    /// Prepares the data and shows the splash, which hands over to the main window.
    void start();

private:
    void addForms();
    void makeMainWindow();
    void handOverFromSplash();
    void loadLists();
    void checkAccount() const;
    bool showProgress();
    void exit(bool stopScheduler);
    void closeHelp() const;

    ApplicationGlobals m_globals;
    bool m_stopOnFault;
    quillon::FormRegistry m_forms;
    quillon::QtPrompts m_asker;
    quillon::QtOpener m_opener;
    InputPrompts m_recipients;
    FormProgressView m_progress;
    std::unique_ptr<frmPubMain> m_main;
    std::unique_ptr<TrayIcon> m_tray;
    std::unique_ptr<SendRun> m_run;
};

} // namespace corvane
