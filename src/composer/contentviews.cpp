#include "composer/contentviews.h"

#include <QAbstractButton>
#include <QAction>
#include <QActionGroup>

namespace corvane {

ContentViews::ContentViews(const Views &views, std::function<void(bool)> onRich)
    : QObject(views.tabs), m_views(views), m_onRich(std::move(onRich))
{
    auto *group = new QActionGroup(this);
    group->addAction(m_views.menop);
    group->addAction(m_views.menor);
    connect(m_views.rich, &QAbstractButton::toggled, this, &ContentViews::show);
    show();
}

Message::Format ContentViews::format() const
{
    return m_views.rich->isChecked() ? Message::Format::Rich : Message::Format::Plain;
}

void ContentViews::setFormat(Message::Format format)
{
    // Without the rich editor there is plain text only, and a message that wants more is shown as plain text.
    const bool rich = format == Message::Format::Rich && m_views.rich->isEnabled();
    (rich ? m_views.rich : m_views.plain)->setChecked(true);
    show();
}

void ContentViews::show()
{
    const bool rich = m_views.rich->isChecked();
    if (rich && !m_views.rich->isEnabled()) {
        m_views.plain->setChecked(true); // comes back here
        return;
    }
    m_views.tabs->setVisible(rich);
    m_views.formattingBar->setVisible(rich);
    m_views.plainBox->setVisible(!rich);
    (rich ? m_views.menor : m_views.menop)->setChecked(true);
    m_onRich(rich);
}

} // namespace corvane
