#pragma once

#include <QString>

namespace corvane {

/// The progress dialog, as a run sees it.
class ProgressView {
public:
    virtual ~ProgressView() = default;

    [[nodiscard]] virtual bool isVisible() const = 0;
    /// Shows the dialog, not modal, if it is not visible; makes it anew if it was unloaded.
    virtual void makeVisible() = 0;
    virtual void hide() = 0;

    [[nodiscard]] virtual QString activity() const = 0;
    virtual void setActivity(const QString &text) = 0; ///< lblProg
    [[nodiscard]] virtual QString counter() const = 0;
    virtual void setCounter(const QString &text) = 0; ///< lblQty

    /// The mail under way, from 1, and how many there are; a total of 0 is at rest.
    virtual void setProgress(int current, int total) = 0;
};

} // namespace corvane
