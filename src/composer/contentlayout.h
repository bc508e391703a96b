#pragma once

#include <QObject>
#include <QWidget>

class QAction;

namespace corvane {

/// Expand and Restore: the content area takes the place of the header fields, and gives it back.
class ContentLayout : public QObject {
    Q_OBJECT

public:
    /// The captions of the menu item and of the toolbar button tell the state.
    ContentLayout(QWidget *header, QWidget *content, QAction *item, QAction *tool);

    void toggle() { setExpanded(!m_expanded); }
    void setExpanded(bool on);

private:
    void showState();

    QWidget *m_header;
    QWidget *m_content;
    QAction *m_item;
    QAction *m_tool;
    bool m_expanded = false;
};

} // namespace corvane
