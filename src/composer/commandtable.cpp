#include "composer/commandtable.h"

#include <QAbstractButton>
#include <QAction>
#include <QMainWindow>

#include <algorithm>

namespace corvane {

CommandTable::CommandTable(QMainWindow *form, std::vector<Command> commands)
    : QObject(form), m_form(form), m_commands(std::move(commands))
{
    for (const Command &command : m_commands) {
        bind(command);
        enable(command);
    }
}

const Command *CommandTable::command(const QString &item) const
{
    const auto found =
        std::find_if(m_commands.begin(), m_commands.end(), [&item](const Command &c) { return c.item == item; });
    return found == m_commands.end() ? nullptr : &*found;
}

void CommandTable::setEnabled(Command::Where where, bool enabled)
{
    if (enabled) {
        m_places.insert(where);
    } else {
        m_places.remove(where);
    }
    for (const Command &command : m_commands) {
        if (command.where == where) {
            enable(command);
        }
    }
}

QAction *CommandTable::action(const QString &name) const
{
    return name.isEmpty() ? nullptr : m_form->findChild<QAction *>(name); // an empty name would find any
}

void CommandTable::bind(const Command &command)
{
    QAction *item = action(command.item);
    QAction *tool = action(command.tool);
    // The toolbar and the buttons press the menu item, so that a check mark turns with each of them.
    if (item && command.run) {
        connect(item, &QAction::triggered, this, command.run);
    }
    if (item && tool) {
        connect(tool, &QAction::triggered, item, &QAction::trigger);
        connect(item, &QAction::toggled, tool, &QAction::setChecked);
    }
    for (const QString &name : command.buttons) {
        auto *button = m_form->findChild<QAbstractButton *>(name);
        if (item) {
            connect(button, &QAbstractButton::clicked, item, &QAction::trigger);
        } else if (command.run) {
            connect(button, &QAbstractButton::clicked, this, command.run);
        }
    }
}

void CommandTable::enable(const Command &command)
{
    const bool enabled = command.run && m_places.contains(command.where);
    for (const QString &name : QStringList{command.item, command.tool}) {
        if (QAction *reaching = action(name)) {
            reaching->setEnabled(enabled);
        }
    }
    for (const QString &name : command.buttons + command.follow) {
        if (auto *control = m_form->findChild<QWidget *>(name)) {
            control->setEnabled(enabled);
        }
    }
}

} // namespace corvane
