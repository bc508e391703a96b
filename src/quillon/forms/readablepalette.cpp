#include "quillon/forms/readablepalette.h"

#include <QApplication>
#include <QEvent>

#include <algorithm>
#include <cmath>

namespace quillon {

namespace {

// Styles shade their buttons: percent of the colour's own lightness at the lightest place that was measured.
constexpr int shadeOfButtons = 140;

/// Relative luminance of an opaque sRGB colour (WCAG 2.1).
double luminance(const QColor &color)
{
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

/// @p share of @p one over the rest of @p other, opaque.
QColor mixed(const QColor &one, const QColor &other, double share)
{
    const auto mix = [share](float a, float b) { return static_cast<float>(share * a + (1 - share) * b); };
    return QColor::fromRgbF(mix(one.redF(), other.redF()), mix(one.greenF(), other.greenF()),
                            mix(one.blueF(), other.blueF()));
}

double leastContrast(const QColor &text, const QList<QColor> &grounds)
{
    double least = 21;
    for (const QColor &ground : grounds) {
        least = std::min(least, contrastRatio(text, ground));
    }
    return least;
}

/// @p text itself, or as little nearer to @p end as makes it readable; @p end where nothing does.
QColor moved(const QColor &text, const QColor &end, const QList<QColor> &grounds)
{
    constexpr int steps = 64;
    for (int step = 0; step < steps; ++step) {
        const QColor color = mixed(end, text, static_cast<double>(step) / steps);
        if (leastContrast(color, grounds) >= readableContrast) {
            return color;
        }
    }
    return end;
}

QColor readable(const QColor &text, const QList<QColor> &grounds)
{
    const QColor opaque = mixed(text, grounds.first(), text.alphaF());
    const QColor dark = moved(opaque, Qt::black, grounds);
    const QColor light = moved(opaque, Qt::white, grounds);
    const double darkest = leastContrast(dark, grounds);
    const double lightest = leastContrast(light, grounds);
    // Only one of the two ways leads to a readable text, but for the colour that needs none.
    return darkest >= lightest ? dark : light;
}

} // namespace

double contrastRatio(const QColor &one, const QColor &other)
{
    const double a = luminance(one);
    const double b = luminance(other);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

QPalette withReadableTexts(const QPalette &palette)
{
    QPalette result = palette;
    const auto mend = [&](QPalette::ColorGroup group, QPalette::ColorRole text, const QList<QPalette::ColorRole> &on) {
        QList<QColor> grounds;
        for (const QPalette::ColorRole role : on) {
            grounds.append(palette.color(group, role));
            if (role == QPalette::Button) {
                grounds.append(palette.color(group, role).lighter(shadeOfButtons));
            }
        }
        result.setColor(group, text, readable(palette.color(group, text), grounds));
    };
    using P = QPalette;
    // A disabled field is drawn on its own ground by one style, on the window's by another.
    mend(P::Disabled, P::Text, {P::Base, P::Window, P::Button});
    mend(P::Disabled, P::WindowText, {P::Window, P::Base, P::Button});
    mend(P::Disabled, P::ButtonText, {P::Button, P::Window});
    mend(P::Disabled, P::HighlightedText, {P::Highlight});
    for (const auto group : {P::Active, P::Inactive, P::Disabled}) {
        mend(group, P::PlaceholderText, {P::Base});
        mend(group, P::Link, {P::Window});
    }
    return result;
}

ReadablePalette::ReadablePalette(QObject *parent) : QObject(parent)
{
    qApp->installEventFilter(this);
    apply();
}

bool ReadablePalette::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == qApp && event->type() == QEvent::ApplicationPaletteChange) {
        // Not from within the change, which has yet to reach the windows and would undo it there.
        QMetaObject::invokeMethod(this, &ReadablePalette::apply, Qt::QueuedConnection);
    }
    return QObject::eventFilter(watched, event);
}

void ReadablePalette::apply()
{
    const QPalette now = QApplication::palette();
    const QPalette better = withReadableTexts(now);
    if (better != now) {
        QApplication::setPalette(better); // only the roles that were set go on to be ours, all else is the desktop's
    }
}

} // namespace quillon
