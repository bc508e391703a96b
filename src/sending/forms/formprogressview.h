#pragma once

#include "sending/progressview.h"

namespace quillon {
class FormRegistry;
}

namespace corvane {

class frmPubProgress;

/// The progress view over the form frmPubProgress of a registry: whatever touches it loads it.
class FormProgressView : public ProgressView {
public:
    /// @p forms must outlive this object and know "frmPubProgress".
    explicit FormProgressView(quillon::FormRegistry &forms) : m_forms(forms) {}

    [[nodiscard]] bool isVisible() const override;
    void makeVisible() override;
    void hide() override;
    [[nodiscard]] QString activity() const override;
    void setActivity(const QString &text) override;
    [[nodiscard]] QString counter() const override;
    void setCounter(const QString &text) override;
    void setProgress(int i, int total) override;

private:
    [[nodiscard]] frmPubProgress *form() const;

    quillon::FormRegistry &m_forms;
};

} // namespace corvane
