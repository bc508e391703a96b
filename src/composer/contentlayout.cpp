#include "composer/contentlayout.h"

#include "composer/composertexts.h"
#include "core/forms/artwork.h"

#include <QAction>

using namespace Qt::StringLiterals;

namespace corvane {

ContentLayout::ContentLayout(QWidget *header, QWidget *content, QAction *item, QAction *tool)
    : QObject(content), m_header(header), m_content(content), m_item(item), m_tool(tool)
{
    showState();
}

void ContentLayout::setExpanded(bool on)
{
    if (on == m_expanded) {
        return;
    }
    m_expanded = on;
    m_header->setVisible(!on);
    if (on && !m_content->isAncestorOf(m_header->window()->focusWidget())) {
        m_content->setFocus();
    }
    showState();
}

void ContentLayout::showState()
{
    const ExpansionTexts &texts = m_expanded ? restoreTexts : expandTexts;
    m_item->setText(QString::fromUtf16(texts.itemCaption));
    m_tool->setText(QString::fromUtf16(texts.toolCaption));
    m_tool->setToolTip(QString::fromUtf16(texts.toolTip));
    m_tool->setIcon(themeIcon(m_expanded ? u"restore"_s : u"expand"_s));
}

} // namespace corvane
