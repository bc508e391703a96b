#include "composer/recipientcounts.h"

#include "composer/composertexts.h"
#include "core/recipiententry.h"

#include <QAction>
#include <QLabel>
#include <QPlainTextEdit>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace corvane {

namespace {

constexpr auto rest = 150ms;

qsizetype recipientsIn(const QPlainTextEdit *box)
{
    const QStringList entries = splitRecipients(box->toPlainText());
    return entries.size() - entries.count(QString());
}

} // namespace

RecipientCounts::RecipientCounts(const Controls &controls) : QObject(controls.line), m_controls(controls)
{
    m_rest.setSingleShot(true);
    m_rest.setInterval(rest);
    connect(&m_rest, &QTimer::timeout, this, &RecipientCounts::count);
    for (const QPlainTextEdit *box : m_controls.boxes) {
        connect(box, &QPlainTextEdit::textChanged, &m_rest, qOverload<>(&QTimer::start));
    }
    connect(m_controls.oneByOne, &QAction::toggled, this, &RecipientCounts::showLine);
    adoptTips();
}

void RecipientCounts::adoptTips()
{
    for (std::size_t i = 0; i < m_tips.size(); ++i) {
        m_tips.at(i) = m_controls.boxes.at(i)->toolTip();
    }
    count();
}

void RecipientCounts::count()
{
    for (std::size_t i = 0; i < m_counts.size(); ++i) {
        const qsizetype number = recipientsIn(m_controls.boxes.at(i));
        m_counts.at(i) = number;
        QString tip = m_tips.at(i);
        if (number > 0) {
            const QString told =
                number == 1 ? quillon::say(oneRecipient) : quillon::say(manyRecipients, QString::number(number));
            tip = tip.isEmpty() ? told : tip + u' ' + told;
        }
        m_controls.boxes.at(i)->setToolTip(tip);
    }
    showLine();
}

void RecipientCounts::showLine()
{
    // Nobody sees who is in BCC.
    const qsizetype seen = m_counts[0] + m_counts[1];
    const bool shown = seen > 1 && !m_controls.oneByOne->isChecked();
    if (shown) {
        m_controls.line->setText(quillon::say(seenByOthers, QString::number(seen)));
    }
    m_controls.line->setVisible(shown);
    m_controls.instead->setVisible(shown);
}

} // namespace corvane
