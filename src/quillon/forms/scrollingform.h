#pragma once

#include <QObject>
#include <QSize>

class QBoxLayout;
class QWidget;

namespace quillon {

class ContentArea;

/// Keeps a form usable on a screen that is too small for it. A form whose content needs more room than the screen has
/// gets it into a scroll area, while its last row, the buttons, stays below; what the keyboard goes to is scrolled into
/// sight. No form is left larger than the screen. A form that fits stays as it was designed.
class ScrollingForm : public QObject {
    Q_OBJECT

public:
    /// @p form owns this object. Only a form whose layout is a column of at least two rows can scroll.
    explicit ScrollingForm(QWidget *form);

    [[nodiscard]] bool scrolls() const { return m_area != nullptr; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void adapt();
    /// What the form's inside may take of the screen that it is on.
    [[nodiscard]] QSize room() const;
    [[nodiscard]] bool needsMoreThan(const QSize &room) const;
    void putIntoArea(QBoxLayout *column);

    QWidget *m_form;
    ContentArea *m_area = nullptr;
    bool m_adapting = false;
};

} // namespace quillon
