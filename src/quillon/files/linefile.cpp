#include "quillon/files/linefile.h"

#include "quillon/files/safefile.h"
#include "quillon/files/textcoding.h"
#include "quillon/files/writeoutcome.h"

namespace quillon {

LineFile::LineFile(const QString &path) : m_path(path)
{
    const auto bytes = readWholeFile(path);
    m_readable = bytes.has_value();
    m_present = bytes.value_or(QByteArray());
    m_lines = splitLines(m_present);
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

void LineFile::append(const QString &line)
{
    m_lines.append(encodeText(line));
}

bool LineFile::save() const
{
    if (!m_readable) {
        tellNotRewritten(m_path);
        return false;
    }
    return writeWholeFile(m_path, joinLines(m_lines));
}

bool LineFile::saveIfChanged() const
{
    if (m_readable && joinLines(m_lines) == m_present) {
        tellWritten(m_path);
        return true;
    }
    return save();
}

} // namespace quillon
