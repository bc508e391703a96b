#include "records/forms/wrappingcheckbox.h"

#include <QStyleOptionButton>
#include <QStylePainter>

namespace corvane {

namespace {
constexpr int leastLetters = 24; // of a line
}

WrappingCheckBox::WrappingCheckBox(QWidget *parent) : QCheckBox(parent)
{
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Minimum, QSizePolicy::CheckBox);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

QSize WrappingCheckBox::minimumSizeHint() const
{
    const int narrow = markWidth() + leastLetters * fontMetrics().averageCharWidth();
    return {qMin(narrow, sizeHint().width()), qMax(sizeHint().height(), m_needed)};
}

int WrappingCheckBox::heightForWidth(int width) const
{
    const QSize line = sizeHint();
    if (width >= line.width()) {
        return line.height();
    }
    const QRect room(0, 0, width - markWidth(), QWIDGETSIZE_MAX);
    return qMax(line.height(), style()->itemTextRect(fontMetrics(), room, Qt::TextWordWrap, true, text()).height());
}

void WrappingCheckBox::paintEvent(QPaintEvent *event)
{
    if (width() >= sizeHint().width()) {
        QCheckBox::paintEvent(event);
        return;
    }
    QStylePainter painter(this);
    QStyleOptionButton option;
    initStyleOption(&option);
    const QRect words = style()->subElementRect(QStyle::SE_CheckBoxContents, &option, this);
    const bool underlined = style()->styleHint(QStyle::SH_UnderlineShortcut, &option, this) != 0;
    const int mnemonic = underlined ? Qt::TextShowMnemonic : Qt::TextHideMnemonic;
    const Qt::Alignment side = QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft);
    painter.drawItemText(words, static_cast<int>(side | Qt::AlignVCenter) | Qt::TextWordWrap | mnemonic, palette(),
                         isEnabled(), text(), QPalette::WindowText);
    if (option.state & QStyle::State_HasFocus) {
        QStyleOptionFocusRect focus;
        focus.QStyleOption::operator=(option);
        focus.rect = words;
        painter.drawPrimitive(QStyle::PE_FrameFocusRect, focus);
    }
    option.rect = style()->subElementRect(QStyle::SE_CheckBoxIndicator, &option, this);
    painter.drawPrimitive(QStyle::PE_IndicatorCheckBox, option);
}

void WrappingCheckBox::resizeEvent(QResizeEvent *event)
{
    QCheckBox::resizeEvent(event);
    needLines();
}

void WrappingCheckBox::showEvent(QShowEvent *event)
{
    QCheckBox::showEvent(event);
    needLines();
}

int WrappingCheckBox::markWidth() const
{
    return style()->pixelMetric(QStyle::PM_IndicatorWidth, nullptr, this) +
           style()->pixelMetric(QStyle::PM_CheckBoxLabelSpacing, nullptr, this);
}

void WrappingCheckBox::needLines()
{
    // A width from before the form is laid out tells nothing.
    if (isVisible() && m_needed != heightForWidth(width())) {
        m_needed = heightForWidth(width());
        updateGeometry();
    }
}

} // namespace corvane
