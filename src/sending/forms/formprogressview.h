#pragma once

#include "sending/progressview.h"

#include <functional>

class QWidget;

namespace quillon {
class FormRegistry;
}

namespace corvane {

class frmPubProgress;

/// The progress view over the form frmPubProgress of a registry: whatever touches it loads it.
class FormProgressView : public ProgressView {
public:
    /// @p forms must outlive this object and know "frmPubProgress". The dialog belongs to the window that @p owner
    /// gives at the moment of its showing, and stays above it; nullptr for none.
    FormProgressView(quillon::FormRegistry &forms, std::function<QWidget *()> owner);

    [[nodiscard]] bool isVisible() const override;
    void makeVisible() override;
    void hide() override;
    /// Shows the dialog, if need be, and gives it the keyboard, whatever lay over it.
    void bringToFront();
    /// To be called when the owner was hidden and is shown again: to the window manager it is another window then, and
    /// the dialog no longer belongs to it.
    void ownerShown();
    [[nodiscard]] QString activity() const override;
    void setActivity(const QString &text) override;
    [[nodiscard]] QString counter() const override;
    void setCounter(const QString &text) override;
    void setProgress(int taken, int total) override;
    void setAtRest() override;

private:
    [[nodiscard]] frmPubProgress *form() const;

    quillon::FormRegistry &m_forms;
    std::function<QWidget *()> m_owner;
};

} // namespace corvane
