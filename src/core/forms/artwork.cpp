#include "core/forms/artwork.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmap>

// Outside of any namespace, as the macro asks for.
static void initResourceFile()
{
    Q_INIT_RESOURCE(resources);
}

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

constexpr float disabledShare = 0.35F;

/// Paints a drawing in the palette's text colour at the moment of painting, so that a change of theme shows at once.
class TintedEngine : public QIconEngine {
public:
    explicit TintedEngine(const QIcon &drawing) : m_drawing(drawing) {}

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State state) override
    {
        const qreal ratio = painter->device()->devicePixelRatioF();
        QPixmap picture = pixmap((QSizeF(rect.size()) * ratio).toSize(), mode, state);
        picture.setDevicePixelRatio(ratio);
        painter->drawPixmap(rect.topLeft(), picture);
    }

    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State /*state*/) override
    {
        QPixmap picture = m_drawing.pixmap(size, 1.0);
        if (picture.isNull()) {
            return picture;
        }
        const auto role = mode == QIcon::Selected ? QPalette::HighlightedText : QPalette::ButtonText;
        QColor color = QGuiApplication::palette().color(QPalette::Active, role);
        if (mode == QIcon::Disabled) {
            color.setAlphaF(disabledShare); // fainter than a disabled text, which is to be read
        }
        QPainter painter(&picture);
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(picture.rect(), color);
        return picture;
    }

    [[nodiscard]] QIconEngine *clone() const override { return new TintedEngine(m_drawing); }

private:
    QIcon m_drawing;
};

} // namespace

void initResources()
{
    initResourceFile();
}

QIcon themeIcon(const QString &name)
{
    initResources();
    return QIcon(new TintedEngine(QIcon(u":/icons/"_s + name + u".svg"_s)));
}

} // namespace corvane
