#pragma once

#include <QColor>
#include <QObject>
#include <QPalette>

namespace quillon {

/// What a text must have at least against its ground to be read without effort (WCAG 2.1, 1.4.3).
inline constexpr double readableContrast = 4.5;

/// The contrast of two opaque colours, 1 to 21 (WCAG 2.1, "contrast ratio"); the order makes no difference.
[[nodiscard]] double contrastRatio(const QColor &one, const QColor &other);

/// @p palette with the texts that styles make too faint, those of disabled controls, the hints in empty ones and links,
/// moved towards black or white until they have readableContrast on each ground that they may stand on. What is faint
/// enough to be told from other text already, and readable, stays as it is.
[[nodiscard]] QPalette withReadableTexts(const QPalette &palette);

/// Gives the application the palette of withReadableTexts(), and again whenever the desktop brings another one. One
/// object, which lives as long as the application shows windows.
class ReadablePalette : public QObject {
    Q_OBJECT

public:
    explicit ReadablePalette(QObject *parent = nullptr);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void apply();
};

} // namespace quillon
