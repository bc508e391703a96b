#pragma once

#include <QString>

namespace corvane {

/// The progress dialog as a send run sees it. A dialog that the user closed is made anew, hidden and with its design
/// texts, by the next call.
class ProgressView {
public:
    virtual ~ProgressView() = default;

    [[nodiscard]] virtual bool isVisible() const = 0;
    virtual void makeVisible() = 0;
    virtual void hide() = 0;

    [[nodiscard]] virtual QString activity() const = 0; ///< the activity line, lblProg
    virtual void setActivity(const QString &text) = 0;
    [[nodiscard]] virtual QString counter() const = 0; ///< the counter line, lblQty
    virtual void setCounter(const QString &text) = 0;

    /// A run is under way, and the server has taken @p taken of @p total mails; a total of 0 or less means that there
    /// is nothing to count yet.
    virtual void setProgress(int taken, int total) = 0;
    /// The run is over, its outcome is told: the bar stands still where it is, and there is nothing to cancel. The next
    /// setProgress() ends this.
    virtual void setAtRest() = 0;
};

} // namespace corvane
