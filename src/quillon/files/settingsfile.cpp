#include "quillon/files/settingsfile.h"

#include "quillon/fault.h"
#include "quillon/files/safefile.h"
#include "quillon/files/textcoding.h"
#include "quillon/files/writeoutcome.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace quillon {

namespace {

const QString escapeMark = u"\\lines:"_s;

bool hasLoneSurrogate(const QString &text)
{
    return !text.isValidUtf16();
}

bool needsEscape(const QString &text)
{
    return text.contains(u'\n') || text.contains(u'\r') || text.contains(QChar::Null) || text.startsWith(escapeMark) ||
           hasLoneSurrogate(text);
}

QString codeUnit(QChar character)
{
    return u"\\u%1"_s.arg(static_cast<uint>(character.unicode()), 4, 16, QLatin1Char('0'));
}

/// The escaped form; characters in @p also are written by their number.
QString escaped(const QString &text, const QString &also)
{
    QString result = escapeMark;
    const bool loneSurrogate = hasLoneSurrogate(text);
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar character = text.at(i);
        const bool edge = i == 0 || i == text.size() - 1;
        if (character == u'\\') {
            result += u"\\\\"_s;
        } else if (character == u'\r') {
            result += u"\\r"_s;
        } else if (character == u'\n') {
            result += u"\\n"_s;
        } else if (character.isNull() || also.contains(character) || (edge && character.isSpace()) ||
                   (loneSurrogate && character.isSurrogate())) {
            result += codeUnit(character);
        } else {
            result += character;
        }
    }
    return result;
}

QString unescaped(const QString &stored)
{
    if (!stored.startsWith(escapeMark)) {
        return stored;
    }
    QString text;
    for (qsizetype i = escapeMark.size(); i < stored.size(); ++i) {
        const QChar character = stored.at(i);
        const QChar next = i + 1 < stored.size() ? stored.at(i + 1) : QChar();
        if (character != u'\\' || next.isNull()) {
            text += character;
            continue;
        }
        bool isNumber = false;
        const ushort number = next == u'u' ? stored.mid(i + 2, 4).toUShort(&isNumber, 16) : ushort(0);
        if (isNumber && i + 5 < stored.size()) {
            text += QChar(number);
            i += 5;
        } else {
            text += next == u'r' ? u'\r' : next == u'n' ? u'\n' : next;
            ++i;
        }
    }
    return text;
}

QString storedKey(const QString &key)
{
    const bool ambiguous =
        key.isEmpty() || key.contains(u'=') || key.startsWith(u'[') || key.startsWith(u';') || key != key.trimmed();
    return ambiguous || needsEscape(key) ? escaped(key, u"=[;"_s) : key;
}

QString storedText(const QString &text)
{
    return needsEscape(text) ? escaped(text, QString()) : text;
}

bool sameName(const QString &left, const QString &right)
{
    return left.compare(right, Qt::CaseInsensitive) == 0;
}

} // namespace

SettingsFile::SettingsFile(const QString &path) : m_path(path)
{
    const auto bytes = readWholeFile(path);
    m_readable = bytes.has_value();
    read(bytes.value_or(QByteArray()));
}

SettingsFile SettingsFile::fromBytes(const QByteArray &bytes)
{
    SettingsFile file;
    file.m_readable = false;
    file.read(bytes);
    return file;
}

void SettingsFile::read(const QByteArray &bytes)
{
    const QList<QByteArray> lines = splitLines(bytes);
    m_lines.reserve(lines.size());
    for (const QByteArray &line : lines) {
        m_lines.append(parse(line));
    }
}

SettingsFile::Line SettingsFile::parse(const QByteArray &bytes)
{
    Line line{Line::Other, bytes, {}, {}};
    const QString text = decodeLine(bytes);
    const QString bare = text.trimmed();
    if (bare.startsWith(u'[') && bare.contains(u']')) {
        line.kind = Line::Section;
        line.name = unescaped(bare.sliced(1, bare.lastIndexOf(u']') - 1));
        return line;
    }
    const qsizetype equals = text.indexOf(u'=');
    if (equals >= 0 && !bare.startsWith(u';')) {
        line.kind = Line::Key;
        line.name = unescaped(text.first(equals).trimmed());
        line.value = unescaped(text.sliced(equals + 1));
    }
    return line;
}

qsizetype SettingsFile::find(const QString &section, const QString &key) const
{
    bool inside = false;
    for (qsizetype i = 0; i < m_lines.size(); ++i) {
        const Line &line = m_lines.at(i);
        if (line.kind == Line::Section) {
            inside = sameName(line.name, section);
        } else if (inside && line.kind == Line::Key && sameName(line.name, key)) {
            return i;
        }
    }
    return -1;
}

QString SettingsFile::value(const QString &section, const QString &key) const
{
    const qsizetype index = find(section, key);
    return index < 0 ? QString() : m_lines.at(index).value;
}

bool SettingsFile::contains(const QString &section, const QString &key) const
{
    return find(section, key) >= 0;
}

QStringList SettingsFile::sections() const
{
    QStringList names;
    for (const Line &line : m_lines) {
        if (line.kind == Line::Section && !names.contains(line.name, Qt::CaseInsensitive)) {
            names.append(line.name);
        }
    }
    return names;
}

QStringList SettingsFile::keys(const QString &section) const
{
    QStringList names;
    bool inside = false;
    for (const Line &line : m_lines) {
        if (line.kind == Line::Section) {
            inside = sameName(line.name, section);
        } else if (inside && line.kind == Line::Key) {
            names.append(line.name);
        }
    }
    return names;
}

void SettingsFile::setValue(const QString &section, const QString &key, const QString &value)
{
    const QByteArray bytes = encodeText(storedKey(key) + u'=' + storedText(value));
    const qsizetype present = find(section, key);
    if (present >= 0) {
        m_lines[present].bytes = bytes;
        m_lines[present].value = value;
        return;
    }
    const Line line{Line::Key, bytes, key, value};
    // Behind the last key of the first section of that name, so that blank lines between sections stay where they are.
    qsizetype place = -1;
    for (qsizetype i = 0; i < m_lines.size(); ++i) {
        if (m_lines.at(i).kind == Line::Section) {
            if (place >= 0) {
                break;
            }
            place = sameName(m_lines.at(i).name, section) ? i + 1 : -1;
        } else if (place >= 0 && m_lines.at(i).kind == Line::Key) {
            place = i + 1;
        }
    }
    if (place < 0) {
        m_lines.append({Line::Section, encodeText(u'[' + storedText(section) + u']'), section, {}});
        place = m_lines.size();
    }
    m_lines.insert(place, line);
}

void SettingsFile::removeSection(const QString &section)
{
    bool inside = false;
    m_lines.removeIf([&](const Line &line) {
        if (line.kind == Line::Section) {
            inside = sameName(line.name, section);
        }
        return inside;
    });
}

bool SettingsFile::save()
{
    if (!m_readable) {
        reportFault(u"a settings file that could not be read is not rewritten: '"_s + m_path + u'\'');
        tellNotRewritten(m_path);
        return false;
    }
    return writeWholeFile(m_path, toBytes());
}

QByteArray SettingsFile::toBytes() const
{
    QList<QByteArray> lines;
    lines.reserve(m_lines.size());
    for (const Line &line : m_lines) {
        lines.append(line.bytes);
    }
    return joinLines(lines);
}

} // namespace quillon
