#pragma once

#include <QObject>
#include <QTimer>

#include <functional>
#include <memory>

class QAction;
class QMenu;
class QSystemTrayIcon;
class QWidget;

namespace corvane {

/// The tray icon into which the main window minimises, and its menu.
class TrayIcon : public QObject {
    Q_OBJECT

public:
    /// Every one is required.
    struct Hooks {
        /// The main window's menu item of that object name; nullptr when there is none.
        std::function<QAction *(const QString &)> mainItem;
        /// Told true before the window is shown again and false after.
        std::function<void(bool)> setRestoring;
        /// Whether the desktop has a tray.
        std::function<bool()> trayAvailable;
    };

    /// @p window must outlive this object. The captions of the menu come from the section "frmPubSender" of
    /// @p menusFile; keys that are not there leave the English ones.
    TrayIcon(QWidget *window, Hooks hooks, const QString &menusFile);
    ~TrayIcon() override;

    /// To be called when the window has become minimised. With a tray the icon appears and the window is hidden;
    /// without one nothing happens. True when the window is in the tray.
    bool minimised();
    /// Shows the window again, with what is open beside and above it, and removes the icon; nothing happens when the
    /// window is not in the tray.
    void restore();
    /// Removes the icon for good, whether or not it is there.
    void takeDown();

    [[nodiscard]] bool inTray() const;
    [[nodiscard]] QMenu *menu() const { return m_menu.get(); }
    [[nodiscard]] QSystemTrayIcon *icon() const { return m_icon.get(); }

protected:
    /// While in the tray: a modal form blocks every window that is not its own, that of the icon too where the tray
    /// takes in windows. It becomes the form's own, since the icon is the only way back.
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void buildMenu();
    /// An entry can be chosen when the command behind it can.
    void updateEntries();
    /// What was minimised along with the main window comes back with it, and what waits for the user comes in front.
    void bringBackOthers() const;
    void setWatching(bool on);

    QWidget *m_window;
    Hooks m_hooks;
    std::unique_ptr<QMenu> m_menu; ///< ment
    std::unique_ptr<QSystemTrayIcon> m_icon;
    QTimer m_watch{this}; ///< while in the tray: whether the tray is still there
};

} // namespace corvane
