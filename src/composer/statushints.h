#pragma once

#include <QObject>
#include <QString>

#include <functional>

class QLabel;
class QMainWindow;
class QMenu;
class QStatusBar;

namespace corvane {

/// The help line in panel 1 of the status bar: what the mouse is over, and what a menu item does. It changes when the
/// mouse moves, not when something else goes away under it. While the panel tells of a send run, nothing here changes
/// it.
class StatusHints : public QObject {
    Q_OBJECT

public:
    struct Bar {
        QStatusBar *bar;
        QLabel *panel1;
        QLabel *panel2;
    };
    struct Hooks {
        std::function<bool()> sending;          ///< the panel tells of a send run
        std::function<void(int panel)> clicked; ///< with the number of the panel, or 0 for the bar between them
    };

    StatusHints(QMainWindow *form, const Bar &bar, Hooks hooks);

    /// Shows @p text unless a send is under way.
    void show(const QString &text);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void watchMenu(QMenu *menu);
    [[nodiscard]] QString hintFor(const QWidget *widget) const;

    QMainWindow *m_form;
    Bar m_bar;
    Hooks m_hooks;
};

} // namespace corvane
