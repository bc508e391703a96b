#pragma once

#include <QScrollArea>

namespace quillon {

/// What scrolls where a window is too small for it: it asks for the room that its content would like, gets along with
/// little, and brings what the keyboard goes to into sight. It scrolls up and down rather than aside.
class ContentArea : public QScrollArea {
    Q_OBJECT

public:
    /// Without @p content there is an empty one to be filled.
    explicit ContentArea(QWidget *parent, QWidget *content = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    /// Little height, and the width that the content needs, up to @p widest pixels.
    [[nodiscard]] QSize minimumSizeHint() const override;
    void setWidest(int widest);

protected:
    bool event(QEvent *event) override;
    /// What the content needs at least.
    [[nodiscard]] QSize needed() const;
    /// What the bar at the side takes of the width.
    [[nodiscard]] int barWidth() const;

private:
    int m_widest = 0;
};

} // namespace quillon
