#include "core/forms/frmpubsplash.h"

#include "core/formnames.h"
#include "quillon/hook.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QLinearGradient>
#include <QPainter>
#include <QScreen>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

constexpr int splashMilliseconds = 3000;

QSize ownPictureSize(const QFontMetrics &metrics)
{
    return {metrics.averageCharWidth() * 64, metrics.height() * 16};
}

} // namespace

frmPubSplash::frmPubSplash(std::function<void()> handOver, const QPixmap &picture)
    : QWidget(nullptr, Qt::SplashScreen | Qt::FramelessWindowHint), m_handOver(std::move(handOver)), m_picture(picture),
      m_timer(new QTimer(this))
{
    quillon::requireHook(m_handOver, u"frmPubSplash::handOver"_s);
    setObjectName(splashForm);
    setWindowTitle(QGuiApplication::applicationDisplayName());
    m_timer->setObjectName(u"tim"_s);
    m_timer->setInterval(splashMilliseconds);
    m_timer->setSingleShot(true);
    connect(m_timer, &QTimer::timeout, this, &frmPubSplash::fire);
    setFixedSize(m_picture.isNull() ? ownPictureSize(fontMetrics()) : m_picture.deviceIndependentSize().toSize());
    const QRect room = screen()->availableGeometry();
    move(room.center() - rect().center());
}

void frmPubSplash::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (!m_started) {
        m_started = true;
        m_timer->start();
    }
}

void frmPubSplash::closeEvent(QCloseEvent *event)
{
    // Closed by the user before its time, it would leave a program without any window behind.
    event->setAccepted(m_fired || !event->spontaneous());
}

void frmPubSplash::fire()
{
    // What is handed over to waits in event loops of its own, in which this timer must not start it a second time.
    if (m_fired) {
        return;
    }
    m_fired = true;
    m_timer->stop();
    m_handOver();
}

void frmPubSplash::paintEvent(QPaintEvent *event)
{
    Q_UNUSED(event)
    QPainter painter(this);
    if (!m_picture.isNull()) {
        painter.drawPixmap(rect(), m_picture);
        return;
    }
    QLinearGradient calm(rect().topLeft(), rect().bottomRight());
    calm.setColorAt(0, QColor(0x1f, 0x3a, 0x4d));
    calm.setColorAt(1, QColor(0x3f, 0x7c, 0x85));
    painter.fillRect(rect(), calm);

    painter.setPen(Qt::white);
    QFont large = font();
    large.setPointSizeF(large.pointSizeF() * 3);
    painter.setFont(large);
    painter.drawText(rect(), Qt::AlignCenter, QGuiApplication::applicationDisplayName());

    painter.setFont(font());
    const int gap = fontMetrics().height();
    painter.drawText(rect().adjusted(gap, gap, -gap, -gap), Qt::AlignRight | Qt::AlignBottom,
                     QCoreApplication::applicationVersion());
}

} // namespace corvane
