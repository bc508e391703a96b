#pragma once

#include "composer/maincontrols.h"
#include "message/window.h"

namespace corvane {

class ContentLayout;

/// The main window around the message, as the other rooms see it.
class MainWindowView : public Window {
public:
    MainWindowView(const MainControls &controls, ContentLayout &layout);

    /// A field that the expanded content covers is brought back first, so that the user sees where the focus went.
    void setFocus(Message::Field field) override;
    [[nodiscard]] QStringList list(Message::Field field) const override;
    void setList(Message::Field field, const QStringList &entries) override;
    [[nodiscard]] QString title() const override;
    void setTitle(const QString &title) override;
    [[nodiscard]] QString statusText() const override;
    void setStatusText(const QString &text) override;

private:
    MainControls m_controls;
    ContentLayout &m_layout;
};

} // namespace corvane
