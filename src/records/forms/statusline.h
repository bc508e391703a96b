#pragma once

#include <QLabel>

namespace corvane {

/// A line of text that takes no room while it says nothing.
class StatusLine : public QLabel {
    Q_OBJECT

public:
    using QLabel::QLabel;

    [[nodiscard]] QSize sizeHint() const override { return text().isEmpty() ? QSize(0, 0) : QLabel::sizeHint(); }
    [[nodiscard]] QSize minimumSizeHint() const override
    {
        return text().isEmpty() ? QSize(0, 0) : QLabel::minimumSizeHint();
    }
    [[nodiscard]] int heightForWidth(int width) const override
    {
        return text().isEmpty() ? 0 : QLabel::heightForWidth(width);
    }
};

} // namespace corvane
