#include "composer/contentlayout.h"

#include "composer/artwork.h"

#include <QAction>

using namespace Qt::StringLiterals;

namespace corvane {

ContentLayout::ContentLayout(QWidget *header, QWidget *content, QAction *item, QAction *tool)
    : QObject(content), m_header(header), m_content(content), m_item(item), m_tool(tool)
{
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
    m_item->setText(on ? u"&Restore"_s : u"&Expand"_s);
    m_tool->setText(on ? u"Restore"_s : u"Expand"_s);
    m_tool->setToolTip(on ? u"Restores the email content area <F6>."_s : u"Expands the email content area <F6>."_s);
    m_tool->setIcon(themeIcon(on ? u"restore"_s : u"expand"_s));
}

} // namespace corvane
