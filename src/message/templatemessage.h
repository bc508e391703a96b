#pragma once

#include "core/globals.h"
#include "message/plainmessage.h"

namespace corvane {

/// A stored template as a message: its files, read when it is made and written by save(). What a window adds to a
/// message, such as fields that follow others, it does not know; so a program without one can send it.
class TemplateMessage : public PlainMessage {
public:
    /// The template of that name; one that is not there is a blank message. @p globals outlives this object.
    TemplateMessage(const ApplicationGlobals &globals, const QString &name);

    [[nodiscard]] const QString &name() const { return m_name; }
    /// Writes head and content; the name joins the list when it is not in it yet.
    void save();

private:
    const ApplicationGlobals &m_globals;
    QString m_name;
};

} // namespace corvane
