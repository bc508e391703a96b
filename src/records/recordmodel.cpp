#include "records/recordmodel.h"

#include "core/recordline.h"

#include <algorithm>
#include <numeric>

namespace corvane {

RecordModel::RecordModel(const RecordKind &kind, const QStringList &headers, QObject *parent)
    : QAbstractTableModel(parent), m_kind(kind), m_headers(headers)
{
}

void RecordModel::setLines(const QStringList &lines)
{
    beginResetModel();
    m_rows.clear();
    m_rows.reserve(static_cast<std::size_t>(lines.size()));
    for (const QString &line : lines) {
        m_rows.push_back({m_kind.rowOf(line)});
    }
    if (m_sortColumn >= 0) {
        std::stable_sort(m_rows.begin(), m_rows.end(),
                         [this](const Row &left, const Row &right) { return before(left, right); });
    }
    endResetModel();
}

int RecordModel::add(const QString &line)
{
    const Row added = {m_kind.rowOf(line)};
    auto place = m_rows.end();
    if (m_sortColumn >= 0) {
        place = std::upper_bound(m_rows.begin(), m_rows.end(), added,
                                 [this](const Row &left, const Row &right) { return before(left, right); });
    }
    const int row = static_cast<int>(place - m_rows.begin());
    beginInsertRows({}, row, row);
    m_rows.insert(place, added);
    endInsertRows();
    return row;
}

void RecordModel::replace(int row, const QString &line)
{
    if (exists(row)) {
        m_rows[static_cast<std::size_t>(row)].line = m_kind.rowOf(line);
        Q_EMIT dataChanged(index(row, 0), index(row, columnCount() - 1));
    }
}

void RecordModel::remove(const QList<int> &rows)
{
    QList<int> doomed = rows;
    std::sort(doomed.begin(), doomed.end());
    if (doomed.size() == 1 && exists(doomed.first())) {
        beginRemoveRows({}, doomed.first(), doomed.first());
        m_rows.erase(m_rows.begin() + doomed.first());
        endRemoveRows();
        return;
    }
    // One by one would be slow where thousands go.
    std::vector<Row> kept;
    for (int row = 0; row < rowCount(); ++row) {
        if (!std::binary_search(doomed.cbegin(), doomed.cend(), row)) {
            kept.push_back(m_rows[static_cast<std::size_t>(row)]);
        }
    }
    beginResetModel();
    m_rows = std::move(kept);
    endResetModel();
}

QString RecordModel::line(int row) const
{
    return exists(row) ? m_rows[static_cast<std::size_t>(row)].line : QString();
}

QStringList RecordModel::lines() const
{
    QStringList all;
    for (const Row &row : m_rows) {
        all.append(row.line);
    }
    return all;
}

bool RecordModel::isMarked(int row) const
{
    return exists(row) && m_rows[static_cast<std::size_t>(row)].marked;
}

bool RecordModel::anyMarked() const
{
    return std::any_of(m_rows.cbegin(), m_rows.cend(), [](const Row &row) { return row.marked; });
}

void RecordModel::mark(int row)
{
    for (Row &other : m_rows) {
        other.marked = false;
    }
    if (exists(row)) {
        m_rows[static_cast<std::size_t>(row)].marked = true;
    }
    if (!m_rows.empty()) {
        Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1), {Qt::FontRole, DefaultRole});
    }
}

bool RecordModel::holdsNumbers(int column) const
{
    return column >= 0 && column < columnCount() &&
           m_kind.columns[static_cast<std::size_t>(column)] == m_kind.numberField;
}

int RecordModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int RecordModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_kind.columns.size());
}

QVariant RecordModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || !exists(index.row())) {
        return {};
    }
    const Row &row = m_rows[static_cast<std::size_t>(index.row())];
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return cell(row, index.column());
    case Qt::FontRole:
        return row.marked ? m_defaultFont : QVariant();
    case LineRole:
        return row.line;
    case DefaultRole:
        return row.marked;
    default:
        return {};
    }
}

QVariant RecordModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    return orientation == Qt::Horizontal && role == Qt::DisplayRole ? QVariant(m_headers.value(section)) : QVariant();
}

Qt::ItemFlags RecordModel::flags(const QModelIndex &index) const
{
    const Qt::ItemFlags flags = QAbstractTableModel::flags(index);
    return m_editable && index.column() == 0 ? flags | Qt::ItemIsEditable : flags;
}

void RecordModel::sort(int column, Qt::SortOrder order)
{
    m_sortColumn = column;
    m_sortOrder = order;
    if (column < 0) {
        return;
    }
    std::vector<int> places(m_rows.size()); // the row that comes to each place
    std::iota(places.begin(), places.end(), 0);
    std::stable_sort(places.begin(), places.end(), [this](int left, int right) {
        return before(m_rows[static_cast<std::size_t>(left)], m_rows[static_cast<std::size_t>(right)]);
    });
    Q_EMIT layoutAboutToBeChanged({}, VerticalSortHint);
    std::vector<Row> sorted;
    std::vector<int> newPlaces(m_rows.size());
    for (const int row : places) {
        newPlaces[static_cast<std::size_t>(row)] = static_cast<int>(sorted.size());
        sorted.push_back(m_rows[static_cast<std::size_t>(row)]);
    }
    m_rows = std::move(sorted);
    const QModelIndexList before = persistentIndexList();
    QModelIndexList after;
    for (const QModelIndex &old : before) {
        after.append(index(newPlaces[static_cast<std::size_t>(old.row())], old.column()));
    }
    changePersistentIndexList(before, after);
    Q_EMIT layoutChanged({}, VerticalSortHint);
}

QString RecordModel::cell(const Row &row, int column) const
{
    return column >= 0 && column < columnCount()
               ? recordField(row.line, m_kind.columns[static_cast<std::size_t>(column)])
               : QString();
}

bool RecordModel::before(const Row &left, const Row &right) const
{
    const QString one = cell(left, m_sortColumn);
    const QString other = cell(right, m_sortColumn);
    const int order = holdsNumbers(m_sortColumn) ? m_order.compareNumbers(one, other) : m_order.compare(one, other);
    return m_sortOrder == Qt::AscendingOrder ? order < 0 : order > 0;
}

} // namespace corvane
