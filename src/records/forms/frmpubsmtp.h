#pragma once

#include "records/forms/recorddialog.h"

#include <array>
#include <memory>

namespace Ui {
class frmPubSMTP;
}

namespace corvane {

/// The dialog for one SMTP account, with the sender and the receiver of read receipts that go with it. What is typed
/// for the user proposes the sender, and the sender proposes the receiver.
class frmPubSMTP final : public RecordDialog {
    Q_OBJECT

public:
    /// @p help opens the manual; without it the help button is disabled.
    explicit frmPubSMTP(std::function<void()> help);
    ~frmPubSMTP() override;

private:
    void connectProposals();
    void userChanged();

    std::unique_ptr<::Ui::frmPubSMTP> m_ui;
    std::array<QLineEdit *, 8> m_txt{};
};

} // namespace corvane
