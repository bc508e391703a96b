#pragma once

#include <QPixmap>
#include <QTimer>
#include <QWidget>

#include <functional>

namespace corvane {

/// The picture that the program starts with. It only shows; three seconds after it first appeared it hands over, once.
class frmPubSplash : public QWidget {
    Q_OBJECT

public:
    /// @p handOver brings up the program and unloads this form. A null @p picture is replaced by a drawn one.
    explicit frmPubSplash(std::function<void()> handOver, const QPixmap &picture = QPixmap());

protected:
    void showEvent(QShowEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void fire();

    std::function<void()> m_handOver;
    QPixmap m_picture;
    QTimer *m_timer; ///< tim
    bool m_started = false;
    bool m_fired = false;
};

} // namespace corvane
