#pragma once

#include "core/globals.h"

#include <QString>
#include <QStringList>

namespace corvane {

/// The memory of all recipients that were ever sent to or saved.
class InputPrompts {
public:
    explicit InputPrompts(const ApplicationGlobals &globals) : m_globals(globals) {}

    /// Replaces the list in memory by the lines of prompts.dll that are not blank, as they stand there.
    void upsReadPrompts();
    /// Adds each recipient of the three fields to prompts.dll that is not yet a line of it; no test of address or case.
    void upsSavePrompts(const QString &to, const QString &cc, const QString &bcc) const;

    [[nodiscard]] const QStringList &entries() const { return m_entries; }

private:
    const ApplicationGlobals &m_globals;
    QStringList m_entries;
};

} // namespace corvane
