#pragma once

#include "quillon/text/textorder.h"
#include "records/recordkind.h"

#include <QAbstractTableModel>
#include <QStringList>
#include <QVariant>

#include <vector>

namespace corvane {

/// The rows of one kind's list. At most one row is marked as the default; it shows in the default's font.
class RecordModel : public QAbstractTableModel {
    Q_OBJECT

public:
    enum Role {
        LineRole = Qt::UserRole, ///< what the row keeps of its record's line
        DefaultRole,             ///< whether the row is marked as the default
    };

    /// @p headers name the columns.
    RecordModel(const RecordKind &kind, const QStringList &headers, QObject *parent = nullptr);

    /// The font of the marked row, a QFont.
    void setDefaultFont(const QVariant &font) { m_defaultFont = font; }
    /// Lets a view open an editor on the first column; what it makes of the text is the view's.
    void setEditable(bool editable) { m_editable = editable; }

    void setLines(const QStringList &lines);
    /// Adds a row, at its place in a sorted list and at the end otherwise; gives its index.
    int add(const QString &line);
    /// Puts another record into a row, which keeps its place and its mark.
    void replace(int row, const QString &line);
    /// Takes out the rows of these indices.
    void remove(const QList<int> &rows);
    /// What a row keeps of its line; empty for an index that is not there.
    [[nodiscard]] QString line(int row) const;
    [[nodiscard]] QStringList lines() const;

    [[nodiscard]] bool isMarked(int row) const;
    [[nodiscard]] bool anyMarked() const;
    /// Marks this row and no other; -1 marks none.
    void mark(int row);

    /// Whether a column shows short numbers, as ports are.
    [[nodiscard]] bool holdsNumbers(int column) const;

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex &index) const override;
    /// Sorts by the text of a column as the locale does, without regard to case, and ports by their value; rows that
    /// are equal by that keep their order.
    void sort(int column, Qt::SortOrder order) override;

private:
    struct Row {
        QString line;
        bool marked = false;
    };

    [[nodiscard]] QString cell(const Row &row, int column) const;
    [[nodiscard]] bool before(const Row &left, const Row &right) const;
    [[nodiscard]] bool exists(int row) const { return row >= 0 && row < static_cast<int>(m_rows.size()); }

    const RecordKind &m_kind;
    quillon::TextOrder m_order;
    QStringList m_headers;
    QVariant m_defaultFont;
    bool m_editable = false;
    std::vector<Row> m_rows;
    int m_sortColumn = -1;
    Qt::SortOrder m_sortOrder = Qt::AscendingOrder;
};

} // namespace corvane
