#include "quillon/files/linefile.h"

#include "quillon/files/safefile.h"
#include "quillon/files/textcoding.h"

namespace quillon {

LineFile::LineFile(const QString &path) : m_path(path)
{
    const auto bytes = readWholeFile(path);
    m_readable = bytes.has_value();
    m_lines = splitLines(bytes.value_or(QByteArray()));
}

QString LineFile::at(qsizetype index) const
{
    return decodeLine(m_lines.at(index));
}

qsizetype LineFile::removeIf(const std::function<bool(const QString &line)> &matches)
{
    return m_lines.removeIf([&](const QByteArray &bytes) { return matches(decodeLine(bytes)); });
}

void LineFile::replace(qsizetype index, const QString &line)
{
    m_lines[index] = encodeText(line);
}

bool LineFile::save() const
{
    return m_readable && writeWholeFile(m_path, joinLines(m_lines));
}

} // namespace quillon
