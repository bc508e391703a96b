#include "composer/mainwindowview.h"

#include "composer/contentlayout.h"
#include "composer/controltext.h"

#include <QComboBox>
#include <QLabel>
#include <QMainWindow>

namespace corvane {

MainWindowView::MainWindowView(const MainControls &controls, ContentLayout &layout)
    : m_controls(controls), m_layout(layout)
{
}

void MainWindowView::setFocus(Message::Field field)
{
    const bool inContent = field == Message::Field::PlainContent || field == Message::Field::RichContent ||
                           field == Message::Field::Source;
    if (!inContent) {
        m_layout.setExpanded(false);
    }
    m_controls.holderOf(field)->setFocus();
}

QStringList MainWindowView::list(Message::Field field) const
{
    QStringList entries;
    if (const auto *combo = qobject_cast<QComboBox *>(m_controls.holderOf(field))) {
        for (int i = 0; i < combo->count(); ++i) {
            entries.append(combo->itemText(i));
        }
    }
    return entries;
}

void MainWindowView::setList(Message::Field field, const QStringList &entries)
{
    if (auto *combo = qobject_cast<QComboBox *>(m_controls.holderOf(field))) {
        setComboList(combo, entries);
    }
}

QString MainWindowView::title() const
{
    return m_controls.form->windowTitle();
}

void MainWindowView::setTitle(const QString &title)
{
    m_controls.form->setWindowTitle(title);
}

QString MainWindowView::statusText() const
{
    return m_controls.panel[1]->text();
}

void MainWindowView::setStatusText(const QString &text)
{
    m_controls.panel[1]->setText(text);
}

} // namespace corvane
