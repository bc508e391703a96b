#pragma once

#include <QObject>
#include <QStringList>

class QLineEdit;
class QPlainTextEdit;
class QWidget;

namespace corvane {

/// The edit commands, routed to the active control: they apply to the controls named `txt`, `cbb`, `utbSource`,
/// `utbContent` and `utbSubject` and to nothing else.
class EditCommands : public QObject {
    Q_OBJECT

public:
    explicit EditCommands(QWidget *form);

    void undo();
    /// In a text control this is the same as undo(): it undoes once more.
    void redo() { undo(); }
    void cut();
    void copy();
    void paste();
    /// Clears the selected text, if any, and gives the focus back to the control.
    void clearSelection();
    void selectAll();
    /// Asks for a text and selects where it first occurs, exactly as written, counted from the first character.
    void find();

private:
    /// The active control as a text box of one line or of several; both are nullptr where the commands do not apply.
    struct Target {
        QLineEdit *line = nullptr;
        QPlainTextEdit *box = nullptr;
    };
    [[nodiscard]] Target target() const;
    /// The same, but nothing for a box that can only be read.
    [[nodiscard]] Target changeable() const;

    QWidget *m_form;
};

} // namespace corvane
