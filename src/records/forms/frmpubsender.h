#pragma once

#include "records/forms/recorddialog.h"

#include <memory>

namespace Ui {
class frmPubSender;
}

namespace corvane {

/// The dialog for one custom sender, a name and address of its own.
class frmPubSender final : public RecordDialog {
    Q_OBJECT

public:
    /// @p help opens the manual; without it the help button is disabled.
    explicit frmPubSender(std::function<void()> help);
    ~frmPubSender() override;

private:
    std::unique_ptr<::Ui::frmPubSender> m_ui;
};

} // namespace corvane
