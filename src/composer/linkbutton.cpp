#include "composer/linkbutton.h"

#include <QStyleOptionToolButton>
#include <QStylePainter>

namespace corvane {

LinkButton::LinkButton(QWidget *parent) : QToolButton(parent)
{
    setAutoRaise(true);
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::StrongFocus);
    QFont underlined = font();
    underlined.setUnderline(true);
    setFont(underlined);
}

void LinkButton::paintEvent(QPaintEvent * /*event*/)
{
    QStyleOptionToolButton option;
    initStyleOption(&option);
    option.palette.setColor(QPalette::ButtonText, palette().color(QPalette::Link));
    QStylePainter(this).drawComplexControl(QStyle::CC_ToolButton, option);
}

} // namespace corvane
