#pragma once

#include <QDialog>
#include <QTimer>

#include <functional>
#include <memory>

namespace Ui {
class frmPubProgress;
}

namespace corvane {

/// The dialog that shows how a send run gets on. It is not modal: the main window can be used beside it.
class frmPubProgress : public QDialog {
    Q_OBJECT

public:
    /// Every one is required.
    struct Hooks {
        std::function<void()> requestStop; ///< tells the run to stop before its next mail
        std::function<void()> unload;      ///< unloads this form
        std::function<void()> help;        ///< opens the manual
    };

    explicit frmPubProgress(Hooks hooks);
    ~frmPubProgress() override;

    [[nodiscard]] QString activity() const;
    void setActivity(const QString &text);
    [[nodiscard]] QString counter() const;
    void setCounter(const QString &text);
    /// Shows @p taken of @p total in the bar; a total of 0 or less shows that work is under way, of unknown length.
    void setProgress(int taken, int total);
    /// Nothing is under way: the bar stands still, and Cancel has nothing to stop.
    void setAtRest();

protected:
    void resizeEvent(QResizeEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    void cancel();
    /// Texts change at once, but are drawn no faster than they can be read: at a good pace the drawing would cost a run
    /// a quarter of its time.
    void restFromDrawing();
    void drawTexts(bool drawn);
    /// Lays the controls out at their natural size, whatever size the form was given, and fits the form to them.
    void layOutAnew();
    /// The size that the contents ask for: up to the right of the activity line and the foot of Cancel, and a margin.
    void fitToContents();

    Hooks m_hooks;
    QTimer m_drawn; ///< while it runs, the texts are not drawn anew
    bool m_layingOut = false;
    std::unique_ptr<::Ui::frmPubProgress> m_ui;
};

} // namespace corvane
