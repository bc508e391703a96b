#pragma once

#include "macros/macrorow.h"

#include <QDialog>

#include <functional>
#include <memory>

namespace Ui {
class frmPubMacroDetail;
}

namespace corvane {

/// The dialog for one macro of the user's. Its caption tells whether a macro is added or edited.
class frmPubMacroDetail : public QDialog {
    Q_OBJECT

public:
    enum class Mode { Add, Edit };

    /// What the dialog is opened for.
    struct Task {
        Mode mode = Mode::Add;
        MacroRow row; ///< the macro that is edited; not looked at when one is added
        /// Tests and stores what was entered, a cleaned row; tells what is wrong with it when it is not stored.
        std::function<MacroFault(const MacroRow &entered)> save;
    };

    /// @p help opens the manual; without it the help button is disabled.
    explicit frmPubMacroDetail(std::function<void()> help);
    ~frmPubMacroDetail() override;

    /// Prepares the dialog before it is shown.
    void begin(Task task);
    [[nodiscard]] Mode mode() const { return m_task.mode; }

private:
    void saveAndAdd();
    void saveAndClose();
    /// Saves what the fields hold; on a fault the fault is shown and the field to correct gets the focus.
    bool save();
    void clearFields();

    Task m_task;
    std::unique_ptr<::Ui::frmPubMacroDetail> m_ui;
};

} // namespace corvane
