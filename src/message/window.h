#pragma once

#include "message/message.h"

#include <QString>
#include <QStringList>

namespace corvane {

/// What the other rooms ask of the window around a message, beyond the message itself.
class Window {
public:
    virtual ~Window() = default;

    /// Puts the focus on a field's control.
    virtual void setFocus(Message::Field field) = 0;

    /// What the boxes Account, Sender and ReplyReceiver offer. Setting a list leaves the box's text as it is.
    [[nodiscard]] virtual QStringList list(Message::Field field) const = 0;
    virtual void setList(Message::Field field, const QStringList &entries) = 0;

    [[nodiscard]] virtual QString title() const = 0;
    virtual void setTitle(const QString &title) = 0;
    [[nodiscard]] virtual QString statusText() const = 0; ///< panel 1 of the status bar
    virtual void setStatusText(const QString &text) = 0;

    bool mblnReady = false; ///< false while a new message is being laid out or a template dialog is open
};

} // namespace corvane
