#pragma once

#include <QCheckBox>

namespace corvane {

/// A tick box whose caption goes on in further lines where one line has no room for it, so that a long caption does not
/// make a form wider than a small screen.
class WrappingCheckBox : public QCheckBox {
    Q_OBJECT

public:
    explicit WrappingCheckBox(QWidget *parent = nullptr);

    [[nodiscard]] QSize minimumSizeHint() const override;
    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void showEvent(QShowEvent *event) override;
    [[nodiscard]] bool hitButton(const QPoint &position) const override { return rect().contains(position); }

private:
    /// What the mark and the space behind it take of the width.
    [[nodiscard]] int markWidth() const;
    void needLines();

    int m_needed = 0; ///< height of the caption's lines as it was shown last
};

} // namespace corvane
