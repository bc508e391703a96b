#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <functional>

namespace quillon {

/// The lines of a text file in memory, for operations that look at many of them. Lines that are not changed keep
/// their octets.
class LineFile {
public:
    explicit LineFile(const QString &path);

    [[nodiscard]] bool readable() const { return m_readable; }
    [[nodiscard]] qsizetype count() const { return m_lines.size(); }
    [[nodiscard]] QString at(qsizetype index) const;

    /// Removes every line that @p matches accepts and tells how many there were.
    qsizetype removeIf(const std::function<bool(const QString &line)> &matches);
    void replace(qsizetype index, const QString &line);
    /// Adds a line at the end; without line breaks.
    void append(const QString &line);

    /// Writes all lines, whole or not at all; false with a fault when that failed or the file was not readable().
    bool save() const;
    /// The same, but a file that holds just these octets already is left as it is, and that is true.
    bool saveIfChanged() const;

private:
    QString m_path;
    QByteArray m_present; ///< the file's octets as they were read
    QList<QByteArray> m_lines;
    bool m_readable = true;
};

} // namespace quillon
