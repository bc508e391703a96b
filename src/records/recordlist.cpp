#include "records/recordlist.h"

#include "core/texts.h"
#include "quillon/files/linefile.h"

namespace corvane {

RecordList::RecordList(const RecordKind &kind, const QStringList &headers, ApplicationGlobals &globals, QObject *parent)
    : QObject(parent), m_kind(kind), m_globals(globals), m_model(kind, headers), m_selection(&m_model)
{
}

void RecordList::load()
{
    m_model.setLines(m_globals.lines.ReadLines(m_globals.paths.*m_kind.file));
    m_model.mark(rowOfDefault());
    select(0);
}

int RecordList::add(const QString &line)
{
    if (!m_kind.append(m_globals, line)) {
        reload();
        return -1;
    }
    const int row = m_model.add(line);
    if (m_model.rowCount() == 1) {
        storeAsDefault(row);
        select(row);
    }
    return row;
}

bool RecordList::change(const QString &line)
{
    const int row = present();
    const RecordEdit edit = {presentLine(), line};
    if (!m_kind.save(m_globals, m_model.isMarked(row) ? RecordChange::EditDefault : RecordChange::Edit, {}, edit)) {
        reload(line);
        return false;
    }
    m_model.replace(row, line);
    return true;
}

void RecordList::deleteSelected()
{
    if ((isEmpty() && m_kind.messages.needForClear) || !asked(m_kind.messages.askDelete)) {
        return;
    }
    QList<int> rows;
    QStringList keys;
    const QModelIndexList selected = m_selection.selectedRows();
    for (const QModelIndex &index : selected) {
        rows.append(index.row());
        keys.append(m_kind.key(m_model.line(index.row())));
    }
    if (!rows.isEmpty()) {
        if (!m_kind.save(m_globals, RecordChange::Delete, keys, {})) {
            reload();
            return;
        }
        m_model.remove(rows);
    }
    if (isEmpty()) {
        m_kind.storeDefault(m_globals, QString());
        Q_EMIT emptied();
        return;
    }
    select(0);
    if (!hasDefault()) {
        storeAsDefault(0);
    }
}

void RecordList::clear()
{
    if (isEmpty() && m_kind.messages.needForClear) {
        showMessage(QString::fromUtf16(m_kind.messages.needForClear), quillon::InformationBox);
        return;
    }
    if (!asked(m_kind.messages.askClear)) {
        return;
    }
    if (!m_kind.clear(m_globals)) {
        reload();
        return;
    }
    m_model.setLines({});
    m_kind.storeDefault(m_globals, QString());
    Q_EMIT emptied();
}

void RecordList::makeDefault()
{
    if (const int row = selected(); row >= 0 && !m_model.isMarked(row)) {
        storeAsDefault(row);
    }
}

bool RecordList::taken(const QString &line, bool editing) const
{
    for (int row = 0; row < m_model.rowCount(); ++row) {
        if (m_kind.same(m_model.line(row), line) && !(editing && row == present())) {
            return true;
        }
    }
    return false;
}

int RecordList::selected() const
{
    if (m_selection.isRowSelected(present())) {
        return present();
    }
    int first = -1;
    const QModelIndexList rows = m_selection.selectedRows();
    for (const QModelIndex &index : rows) {
        first = first < 0 ? index.row() : qMin(first, index.row());
    }
    return first;
}

void RecordList::select(int row)
{
    m_selection.setCurrentIndex(m_model.index(row, 0), QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

std::optional<QString> RecordList::presentRecord(const char16_t *needKey)
{
    if (present() < 0) {
        showMessage(QString::fromUtf16(needKey), quillon::InformationBox);
        return std::nullopt;
    }
    select(present());
    return presentLine();
}

bool RecordList::asked(const char16_t *key) const
{
    return showMessage(QString::fromUtf16(key), quillon::YesNoBox) == quillon::BoxAnswer::Yes;
}

bool RecordList::hasDefault() const
{
    return m_kind.marker == DefaultMarker::BoldRow ? m_model.anyMarked() : rowOfDefault() >= 0;
}

int RecordList::rowOfDefault() const
{
    for (int row = 0; row < m_model.rowCount(); ++row) {
        if (m_kind.isDefault(m_globals, m_model.line(row))) {
            return row;
        }
    }
    return -1;
}

void RecordList::storeAsDefault(int row)
{
    if (!m_kind.storeDefault(m_globals, m_model.line(row))) {
        m_model.mark(rowOfDefault());
        return;
    }
    m_model.mark(row);
    if (m_kind.becameDefault) {
        m_kind.becameDefault(m_globals);
    }
}

void RecordList::reload(const QString &entered)
{
    const quillon::LineFile file(m_globals.paths.*m_kind.file);
    if (!file.readable()) {
        return; // it tells nothing
    }
    QStringList lines;
    for (qsizetype i = 0; i < file.count(); ++i) {
        lines.append(file.at(i));
    }
    const int before = present();
    const QString record = presentLine();
    m_model.setLines(lines);
    m_model.mark(rowOfDefault());
    const QStringList rows = m_model.lines();
    qsizetype row = entered.isEmpty() ? -1 : rows.indexOf(m_kind.rowOf(entered));
    if (row < 0) {
        row = rows.value(before) == record ? before : rows.indexOf(record);
    }
    select(static_cast<int>(row));
}

} // namespace corvane
