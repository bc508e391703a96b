#pragma once

#include <QObject>
#include <QSet>
#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

class QAction;
class QMainWindow;

namespace corvane {

/// One command of the window with everything that reaches it.
struct Command {
    enum Where {
        Anywhere,
        RichOnly,     ///< only while the rich editor's design view is shown
        OnAttachment, ///< only while a row of the attachments is marked
    };

    QString item;              ///< menu item, or empty
    QString tool;              ///< toolbar button, or empty
    QStringList buttons;       ///< command buttons
    std::function<void()> run; ///< empty while the command is not there yet: all that reach it are disabled
    Where where = Anywhere;
    QStringList follow = {}; ///< other controls that are disabled with it
};

/// The table of commands over the controls of the window: menu items, toolbar and buttons run the same handlers and
/// are enabled alike.
class CommandTable : public QObject {
    Q_OBJECT

public:
    CommandTable(QMainWindow *form, std::vector<Command> commands);

    [[nodiscard]] const std::vector<Command> &commands() const { return m_commands; }
    /// The command of that menu item, or nullptr.
    [[nodiscard]] const Command *command(const QString &item) const;
    /// Enables or disables the commands that are for @p where only.
    void setEnabled(Command::Where where, bool enabled);

private:
    [[nodiscard]] QAction *action(const QString &name) const;
    void bind(const Command &command);
    void enable(const Command &command);

    QMainWindow *m_form;
    std::vector<Command> m_commands;
    QSet<int> m_places{Command::Anywhere}; ///< whose commands can be run now
};

} // namespace corvane
