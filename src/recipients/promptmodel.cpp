#include "recipients/promptmodel.h"

#include "quillon/files/linefile.h"

#include <QSet>

#include <algorithm>

namespace corvane {

namespace {

/// The text in lower case, in @p buffer. Nearly all entries are ASCII, for which this takes a tenth of the time of
/// QString's own function; a search through a hundred thousand of them is felt.
void lowerInto(QString &buffer, const QString &text)
{
    const QStringView source = text;
    char16_t all = 0;
    for (const QChar character : source) {
        all |= character.unicode();
    }
    if (all >= 0x80) {
        buffer = text.toLower();
        return;
    }
    buffer.resize(text.size());
    QChar *target = buffer.data();
    for (qsizetype i = 0; i < source.size(); ++i) {
        const char16_t unit = source[i].unicode();
        target[i] = unit >= u'A' && unit <= u'Z' ? QChar(static_cast<char16_t>(unit + (u'a' - u'A'))) : QChar(unit);
    }
}

} // namespace

PromptModel::PromptModel(const ApplicationGlobals &globals, const QStringList &entries, QString placeholder,
                         QObject *parent)
    : QAbstractListModel(parent), m_globals(globals), m_placeholder(std::move(placeholder)), m_rows(entries)
{
    m_rows.removeIf([](const QString &entry) { return entry.trimmed().isEmpty(); });
}

int PromptModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(std::max<qsizetype>(m_rows.size(), 1));
}

QVariant PromptModel::data(const QModelIndex &index, int role) const
{
    if (role != Qt::DisplayRole || !checkIndex(index, CheckIndexOption::IndexIsValid)) {
        return {};
    }
    return isPlaceholder() ? m_placeholder : m_rows.at(index.row());
}

bool PromptModel::contains(const QString &entry) const
{
    const QString wanted = entry.trimmed().toLower();
    return std::any_of(m_rows.cbegin(), m_rows.cend(),
                       [&](const QString &row) { return row.trimmed().toLower() == wanted; });
}

bool PromptModel::add(const QString &entry)
{
    if (!m_globals.lines.AppendLine(m_globals.paths.promptsFile, entry)) {
        reload();
        return false;
    }
    if (isPlaceholder()) {
        beginResetModel();
        m_rows.append(entry);
        endResetModel();
    } else {
        const int row = static_cast<int>(m_rows.size());
        beginInsertRows({}, row, row);
        m_rows.append(entry);
        endInsertRows();
    }
    return true;
}

bool PromptModel::replace(int row, const QString &entry)
{
    if (row < 0 || row >= m_rows.size()) {
        return true;
    }
    if (!m_globals.lines.ReplaceLine(m_globals.paths.promptsFile, m_rows.at(row), entry, QString(), 0)) {
        reload();
        return false;
    }
    const int last = static_cast<int>(m_rows.size()) - 1;
    if (row != last) {
        beginMoveRows({}, row, row, {}, last + 1);
        m_rows.move(row, last);
        endMoveRows();
    }
    m_rows[last] = entry;
    Q_EMIT dataChanged(index(last), index(last));
    return true;
}

bool PromptModel::remove(const QList<int> &rows)
{
    const QSet<int> doomed(rows.begin(), rows.end());
    QSet<QString> lines;
    QStringList left;
    for (int row = 0; row < m_rows.size(); ++row) {
        if (doomed.contains(row)) {
            lines.insert(m_rows.at(row));
        } else {
            left.append(m_rows.at(row));
        }
    }
    if (lines.isEmpty()) {
        return true;
    }
    quillon::LineFile file(m_globals.paths.promptsFile);
    const qsizetype removed = file.removeIf([&](const QString &line) { return lines.contains(line); });
    if ((removed > 0 || !file.readable()) && !file.save()) {
        reload();
        return false;
    }
    beginResetModel();
    m_rows = left;
    endResetModel();
    return true;
}

void PromptModel::reload()
{
    const quillon::LineFile file(m_globals.paths.promptsFile);
    if (!file.readable()) {
        return; // it tells nothing
    }
    beginResetModel();
    m_rows.clear();
    for (qsizetype i = 0; i < file.count(); ++i) {
        if (const QString line = file.at(i); !line.trimmed().isEmpty()) {
            m_rows.append(line);
        }
    }
    endResetModel();
}

QList<PromptModel::Range> PromptModel::find(const QString &text) const
{
    QList<Range> found;
    const QString wanted = text.toLower();
    if (wanted.isEmpty()) {
        return found;
    }
    QString lowered;
    for (int row = 0; row < m_rows.size(); ++row) {
        lowerInto(lowered, m_rows.at(row));
        if (!lowered.contains(wanted)) {
            continue;
        }
        if (!found.isEmpty() && found.constLast().second == row - 1) {
            found.last().second = row;
        } else {
            found.append({row, row});
        }
    }
    return found;
}

} // namespace corvane
