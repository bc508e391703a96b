#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

namespace quillon {

/// A text file of sections in square brackets, each with lines of key=value. Names compare without regard to case.
/// A value without line breaks stands as it is; one with line breaks, and any name that could be mistaken for
/// something else, stands in an escaped form that begins with "\lines:". Comments and blank lines are kept.
class SettingsFile {
public:
    /// Reads a file; one that is missing acts as one with no keys. readable() tells whether it may be rewritten.
    explicit SettingsFile(const QString &path);
    /// Reads what a file would hold. There is none that could be rewritten, so readable() and save() are false.
    [[nodiscard]] static SettingsFile fromBytes(const QByteArray &bytes);

    /// The value of a key, or an empty text.
    [[nodiscard]] QString value(const QString &section, const QString &key) const;
    [[nodiscard]] bool contains(const QString &section, const QString &key) const;
    [[nodiscard]] QStringList keys(const QString &section) const;
    [[nodiscard]] QStringList sections() const;

    void setValue(const QString &section, const QString &key, const QString &value);
    void removeSection(const QString &section);

    /// Writes the file, whole or not at all; false with a fault when that failed or the file was not readable().
    bool save();
    /// What save() writes.
    [[nodiscard]] QByteArray toBytes() const;
    [[nodiscard]] bool readable() const { return m_readable; }

private:
    SettingsFile() = default;

    struct Line {
        enum Kind { Other, Section, Key } kind = Other;
        QByteArray bytes; ///< as it stood in the file, without its line end
        QString name;
        QString value;
    };

    [[nodiscard]] qsizetype find(const QString &section, const QString &key) const;
    void read(const QByteArray &bytes);
    static Line parse(const QByteArray &bytes);

    QString m_path;
    QList<Line> m_lines;
    bool m_readable = true;
};

} // namespace quillon
