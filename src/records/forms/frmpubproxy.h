#pragma once

#include "records/forms/recorddialog.h"

#include <memory>

namespace Ui {
class frmPubProxy;
}

namespace corvane {

/// The dialog for one proxy server.
class frmPubProxy final : public RecordDialog {
    Q_OBJECT

public:
    /// @p help opens the manual; without it the help button is disabled.
    explicit frmPubProxy(std::function<void()> help);
    ~frmPubProxy() override;

private:
    std::unique_ptr<::Ui::frmPubProxy> m_ui;
};

} // namespace corvane
