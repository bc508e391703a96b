#pragma once

#include "core/formnames.h"
#include "core/globals.h"
#include "message/message.h"
#include "quillon/forms/tabbedform.h"
#include "quillon/sequence/sequence.h"
#include "records/connectiontest.h"
#include "records/recordlist.h"

#include <QDialog>

#include <array>
#include <functional>
#include <memory>

class QAction;

namespace Ui {
class frmPubOptions;
}

namespace quillon {
class FormRegistry;
}

namespace corvane {

class RecordTab;
class SettingsTab;
class SignatureTab;

/// What the options dialog asks of the rooms that it does not know; every one is required.
struct OptionsHooks {
    std::function<void()> refillMainWindow;       ///< accounts, senders and signatures, without marking a change
    std::function<QString()> encodingName;        ///< display name of the encoding in the settings
    std::function<QList<QAction *>()> macroItems; ///< the items that insert a macro
    std::function<void()> help;                   ///< opens the manual
};

/// The options: four lists of records, whose changes are kept at once, and the settings, which wait for Save.
class frmPubOptions : public QDialog, public quillon::TabbedForm {
    Q_OBJECT

public:
    /// @p forms knows the dialogs of the lists. All of the arguments outlive the dialog.
    /// @p message is asked for its list of encodings.
    frmPubOptions(ApplicationGlobals &globals, Message &message, quillon::FormRegistry &forms, OptionsHooks hooks);
    ~frmPubOptions() override;

    void showTab(int tab) override;

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    /// Fits buttons and mnemonics to a tab.
    void ShowOptionsTab(int tab);
    /// Shows the settings as they are in memory.
    void LoadOptionsForm();
    void loadLists();

    void makeTabs();
    void makePresetMenu(RecordTab *accounts);
    void connectButtons();
    void addKeys();

    void save();
    void restore();
    void test();
    /// Shows that a test is under way while it takes its steps, and then how it ended.
    quillon::Task<> showTest(QString key, quillon::Task<ConnectionTestResult> test);

    ApplicationGlobals &m_globals;
    Message &m_message;
    quillon::FormRegistry &m_forms;
    OptionsHooks m_hooks;
    RecordList m_senders;
    RecordList m_signatures;
    RecordList m_proxies;
    RecordList m_accounts;
    std::unique_ptr<::Ui::frmPubOptions> m_ui;
    SettingsTab *m_settings = nullptr;
    SignatureTab *m_signatureTab = nullptr;
    bool m_testing = false;
    quillon::Sequence m_test; // last, since what it ends with uses the others
};

} // namespace corvane
