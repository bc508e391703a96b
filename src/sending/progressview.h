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

    /// Mail @p i of @p total, from 1; a total of 0 or less means that there is nothing to count.
    virtual void setProgress(int i, int total) = 0;
};

} // namespace corvane
