#include "recipients/inputprompts.h"

#include "core/recipiententry.h"
#include "quillon/files/linefile.h"
#include "quillon/files/writeoutcome.h"

#include <QSet>

namespace corvane {

void InputPrompts::upsReadPrompts()
{
    m_entries.clear();
    const QStringList lines = m_globals.lines.ReadLines(m_globals.paths.promptsFile);
    for (const QString &line : lines) {
        if (!line.trimmed().isEmpty()) {
            m_entries.append(line);
        }
    }
}

void InputPrompts::upsSavePrompts(const QString &to, const QString &cc, const QString &bcc) const
{
    // The file is read once for all pieces; the outcome is as if each piece were looked up and added by itself.
    const quillon::LineFile file(m_globals.paths.promptsFile);
    if (!file.readable()) {
        quillon::tellNotRewritten(m_globals.paths.promptsFile);
        return; // who is known there cannot be told, and would be added once more
    }
    QSet<QString> known;
    known.reserve(file.count());
    for (qsizetype i = 0; i < file.count(); ++i) {
        known.insert(file.at(i));
    }
    QStringList added;
    const QStringList pieces = (to + u',' + cc + u',' + bcc).split(u',');
    for (const QString &piece : pieces) {
        const QString entry = trimmedEntry(piece);
        if (!entry.isEmpty() && !known.contains(entry)) {
            known.insert(entry);
            added.append(entry);
        }
    }
    m_globals.lines.AppendLines(m_globals.paths.promptsFile, added);
}

} // namespace corvane
