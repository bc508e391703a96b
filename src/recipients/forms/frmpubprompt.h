#pragma once

#include "core/globals.h"

#include <QDialog>
#include <QStringList>

#include <functional>
#include <memory>

namespace Ui {
class frmPubPrompt;
}

namespace corvane {

class PromptModel;

/// The manager of the input prompts. It shows the list that was last read; its changes go to the file at once and
/// reach that list when it is read again.
class frmPubPrompt : public QDialog {
    Q_OBJECT

public:
    /// @p entries is the list in memory. @p help opens the manual; without it the help button is disabled.
    frmPubPrompt(const ApplicationGlobals &globals, const QStringList &entries, std::function<void()> help);
    ~frmPubPrompt() override;

private:
    void connectControls();
    void add();
    void edit();
    void deleteSelected();
    void find();
    /// Asks until the answer is a recipient, is empty, or equals @p present; empty where the command ends.
    [[nodiscard]] QString askRecipient(const QString &present) const;
    /// Makes a row the current one, without selecting it, and brings it into view.
    void goToRow(int row);

    PromptModel *m_model;
    std::unique_ptr<::Ui::frmPubPrompt> m_ui;
};

} // namespace corvane
