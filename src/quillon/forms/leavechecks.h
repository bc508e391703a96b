#pragma once

#include <QObject>

#include <functional>
#include <vector>

class QWidget;

namespace quillon {

/// What a form checks when its user leaves a box. A box is left when the focus goes elsewhere in the form, and when a
/// button is pressed by its mnemonic or a key of the form does something, either of which leaves the focus where it is.
/// After a fault the focus goes back, and what the key or the button would have done is not done. Make one per form
/// after its buttons exist; it belongs to the form.
class LeaveChecks : public QObject {
    Q_OBJECT

public:
    explicit LeaveChecks(QWidget *form);

    /// @p passes is asked when @p box is left; it gives false for a fault that it has told.
    void add(QWidget *box, std::function<bool()> passes);

    /// Whether the user may do something else on @p form now: checks the box that is being left by that.
    [[nodiscard]] static bool allow(const QWidget *form);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    struct Check {
        QWidget *box;
        std::function<bool()> passes;
    };

    bool leave();
    /// Checks the boxes that the focus has gone from.
    bool checkLeft();
    bool run(const Check &check);
    [[nodiscard]] const Check *checkOf(const QObject *box) const;

    QWidget *m_form;
    std::vector<Check> m_checks;
    std::vector<QWidget *> m_left; ///< the focus has gone from them, and they are still to be checked
    bool m_checking = false;
};

} // namespace quillon
