#include "composer/unsavedlabel.h"

#include "core/unsavedfiles.h"

#include <QAccessible>
#include <QPainter>
#include <QStatusBar>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

constexpr int leastLetters = 16;

} // namespace

UnsavedLabel::UnsavedLabel(QStatusBar *bar, const UnsavedFiles &files) : m_files(files)
{
    setObjectName(u"lblUnsaved"_s);
    setTextFormat(Qt::PlainText);
    setContentsMargins(4, 0, 4, 0);
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Preferred);
    QFont bold = font();
    bold.setBold(true);
    setFont(bold);
    bar->insertPermanentWidget(1, this);
    connect(&files, &UnsavedFiles::changed, this, &UnsavedLabel::follow);
    follow();
}

void UnsavedLabel::follow()
{
    setText(m_files.text());
    // As text, whatever a path holds.
    setToolTip(m_files.details().isEmpty() ? QString() : Qt::convertFromPlainText(m_files.details()));
    setVisible(m_files.count() > 0);
    if (isVisible()) {
        QAccessibleEvent alert(this, QAccessible::Alert);
        QAccessible::updateAccessibility(&alert);
    }
}

QSize UnsavedLabel::minimumSizeHint() const
{
    const QSize whole = QLabel::minimumSizeHint();
    return {qMin(whole.width(), fontMetrics().averageCharWidth() * leastLetters), whole.height()};
}

void UnsavedLabel::paintEvent(QPaintEvent *event)
{
    Q_UNUSED(event)
    QPainter painter(this);
    const QRect room = contentsRect();
    painter.drawText(room, Qt::AlignVCenter | Qt::TextSingleLine,
                     fontMetrics().elidedText(text(), Qt::ElideRight, room.width()));
}

} // namespace corvane
