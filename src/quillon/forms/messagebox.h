#pragma once

#include "quillon/system/prompts.h"

#include <QMessageBox>

namespace quillon {

/// A message box by the program's style numbers: icon, buttons, the first button as the default, the text as it is
/// written. Escape and the window's close button press Cancel, or a box's only button, and do nothing where only Yes
/// and No are offered. A text too long for the screen is shown in a part that scrolls.
class MessageBox : public QMessageBox {
    Q_OBJECT

public:
    MessageBox(const QString &text, int style, QWidget *parent);

    /// Says more below the text; words without end are cut.
    void setDetails(const QString &details);

    /// The answer that @p button, a StandardButton, stands for.
    [[nodiscard]] static BoxAnswer answerOf(int button);
    /// How large a text can get, in pixels, on a screen with this room before it scrolls: half of the screen, and no
    /// wider than a line is comfortably read.
    [[nodiscard]] static QSize textLimit(const QSize &room);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    [[nodiscard]] bool escapes() const;
    void scrollLongText();
};

} // namespace quillon
