#pragma once

#include <QLineEdit>
#include <QObject>

#include <functional>

namespace quillon {
class LeaveChecks;
}

namespace corvane {

/// The number boxes of a form. They take digits and nothing else; when the focus leaves one that is not empty, its
/// limit is checked, and on a fault the message is shown and the focus goes back, the value being left as it is.
class NumberFields : public QObject {
    Q_OBJECT

public:
    /// Boxes of @p form, to which this object belongs.
    explicit NumberFields(QWidget *form);

    /// @p isFault tells of the value of the box whether it is beyond its limit, which the text of @p message names.
    void add(QLineEdit *box, const char16_t *message, std::function<bool(double value)> isFault);

    /// The number in a box; 0 for an empty one.
    [[nodiscard]] static double valueOf(const QLineEdit *box) { return box->text().toDouble(); }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    quillon::LeaveChecks *m_checks;
};

} // namespace corvane
