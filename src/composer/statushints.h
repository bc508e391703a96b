#pragma once

#include <QObject>
#include <QString>

#include <functional>

class QLabel;
class QMainWindow;
class QMenu;
class QStatusBar;

namespace corvane {

/// The help line in panel 1 of the status bar: what the mouse is over, and what a menu item does. While the panel shows
/// the sending text, nothing here changes it.
class StatusHints : public QObject {
    Q_OBJECT

public:
    /// @p onPanelClick is called with the number of the clicked panel, 1 or 2, or 0 for the bar between them.
    StatusHints(QMainWindow *form, QStatusBar *bar, QLabel *panel1, QLabel *panel2,
                std::function<void(int)> onPanelClick);

    /// Shows @p text unless a send is under way.
    void show(const QString &text);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void watchMenu(QMenu *menu);
    [[nodiscard]] QString hintFor(const QWidget *widget) const;

    QMainWindow *m_form;
    QStatusBar *m_bar;
    QLabel *m_panel1;
    QLabel *m_panel2;
    std::function<void(int)> m_onPanelClick;
};

} // namespace corvane
