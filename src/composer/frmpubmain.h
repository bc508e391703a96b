#pragma once

#include "composer/mainhooks.h"
#include "composer/mainwindowmessage.h"
#include "composer/mainwindowview.h"
#include "core/globals.h"

#include <QMainWindow>

#include <memory>

namespace corvane {

namespace Ui {
class frmPubMain;
}

class AccountFields;
class AttachmentList;
class CommandTable;
class ContentLayout;
class ContentViews;
class DocumentFlow;
class EditCommands;
class EncodingChoice;
class PopUps;
class RecipientCounts;
class SignatureInsertion;
class WindowPlacement;

/// The main window. It owns the controls that are the message, and wires the classes that each look after some of
/// them.
class frmPubMain : public QMainWindow {
    Q_OBJECT

public:
    /// @p globals outlives the window.
    frmPubMain(ApplicationGlobals &globals, MainHooks hooks);
    ~frmPubMain() override;

    /// Fills the window once, before it is shown for the first time: texts, the new message, the question for an
    /// account, the state of the window, the input prompts. The timer `timPos` is left standing.
    void load();

    /// Before a window is shown at its remembered place it is put there: later the window manager has its say.
    void setVisible(bool visible) override;

    [[nodiscard]] Message &message() { return *m_message; }
    [[nodiscard]] Window &view() { return *m_view; }
    /// New, Open, Save and the question before a change is lost.
    [[nodiscard]] DocumentFlow &flow() { return *m_flow; }
    [[nodiscard]] const CommandTable &commands() const { return *m_commands; }
    /// The display name of the encoding that is set as the default; see EncodingChoice::displayName().
    QString EncodingDisplayName();
    /// Priority Normal, format mark Plain, no receipt, not one by one.
    void ResetMessageOptions();
    /// Make the items of the menus of macros and of signatures, in this order of indexes: 1, 2 … The default
    /// signature's caption says so.
    void setMacroMenu(const QStringList &captions);
    void setSignatureMenu(const QStringList &names, const QString &defaultName);

    QString Tag; ///< "EXITWITHMENU" lets the window close; otherwise its close box leads to the tray

protected:
    void changeEvent(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    void makeConcerns();
    void watchChanges();
    void watchDateChoice();
    /// A macro goes into the body, whichever field has the focus, or into the signature that is being edited.
    void insertMacro(const QString &macro);
    void applyTexts();
    void fillNewMessage();
    /// What New puts into the window that is in use; the flow looks after title and marks.
    void layOutNew();
    void fillChoices();
    [[nodiscard]] Message::Format formatOfNewMessages() const;
    void fillFonts();
    void applyStartup();
    void clickPanel(int panel);
    void tellMinimised();

    ApplicationGlobals &m_globals;
    MainHooks m_hooks;
    std::unique_ptr<Ui::frmPubMain> m_ui;
    std::unique_ptr<MainControls> m_controls;
    AccountFields *m_account = nullptr;
    std::unique_ptr<AttachmentList> m_attachments;
    PopUps *m_popUps = nullptr;
    EncodingChoice *m_encodings = nullptr;
    EditCommands *m_edit = nullptr;
    ContentLayout *m_layout = nullptr;
    ContentViews *m_views = nullptr;
    WindowPlacement *m_placement = nullptr;
    SignatureInsertion *m_signatures = nullptr;
    std::unique_ptr<MainWindowMessage> m_message;
    std::unique_ptr<MainWindowView> m_view;
    RecipientCounts *m_counts = nullptr;
    std::unique_ptr<DocumentFlow> m_flow;
    CommandTable *m_commands = nullptr;
    bool m_toldMinimised = false; ///< the hook knows already that the window is being minimised
};

} // namespace corvane
