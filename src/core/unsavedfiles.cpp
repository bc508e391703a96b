#include "core/unsavedfiles.h"

#include "core/unsavedtexts.h"
#include "quillon/system/platform.h"

#include <QFileInfo>
#include <QLocale>
#include <QStringList>

#include <utility>

namespace corvane {

UnsavedFiles::UnsavedFiles()
    : m_before(quillon::setWriteListener([this](const QString &path, const QString &reason) { written(path, reason); }))
{
}

UnsavedFiles::~UnsavedFiles()
{
    quillon::setWriteListener(std::move(m_before));
}

void UnsavedFiles::written(const QString &path, const QString &reason)
{
    const QString folder = path + u'/';
    const bool known = m_files.removeIf([&](const File &file) {
        return file.path == path || (reason.isEmpty() && file.path.startsWith(folder));
    }) > 0;
    if (!reason.isEmpty()) {
        m_files.append({path, reason, quillon::systemClock().now()});
    }
    if (known || !reason.isEmpty()) {
        Q_EMIT changed();
    }
}

QString UnsavedFiles::text() const
{
    if (m_files.isEmpty()) {
        return {};
    }
    const File &last = m_files.constLast();
    const QString name = QFileInfo(last.path).fileName();
    if (m_files.size() == 1) {
        return quillon::say(notSaved, name, last.reason);
    }
    return quillon::say(notSavedAndMore, name, last.reason, QString::number(m_files.size() - 1));
}

QString UnsavedFiles::details() const
{
    QStringList lines;
    for (const File &file : m_files) {
        const QString moment = QLocale::system().toString(file.moment, QLocale::ShortFormat);
        lines.prepend(quillon::say(notSavedLine, file.path, file.reason, moment));
    }
    return lines.join(u'\n');
}

} // namespace corvane
