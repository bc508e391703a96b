#pragma once

#include <QKeyCombination>
#include <QObject>

#include <functional>
#include <vector>

class QKeyEvent;
class QWidget;

namespace quillon {

/// The keys of a form. Keys that are listed here are seen before the focused control and before mnemonics; Enter and
/// Escape that nobody listed press no button and close nothing. Make one per form after its controls exist; it belongs
/// to the form.
class FormKeys : public QObject {
public:
    explicit FormKeys(QWidget *form);
    ~FormKeys() override;

    /// Runs @p action for that key while @p when holds (always, without one); where several lines list the same key,
    /// the first whose condition holds is taken. A key whose condition fails goes to the control as any other.
    void on(QKeyCombination key, std::function<void()> action, std::function<bool()> when = {});

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    struct Line {
        QKeyCombination key;
        std::function<void()> action;
        std::function<bool()> when;
    };

    [[nodiscard]] const Line *find(const QKeyEvent *event) const;

    QWidget *m_form;
    std::vector<Line> m_lines;
};

/// Makes a text box (QLineEdit, QTextEdit, QPlainTextEdit) select all its text whenever it gets the focus, by key or
/// by mouse.
void selectAllOnFocus(QWidget *edit);

} // namespace quillon
