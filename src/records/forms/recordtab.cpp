#include "records/forms/recordtab.h"

#include "quillon/forms/columnsort.h"
#include "quillon/forms/listlooks.h"

#include <QAbstractButton>
#include <QHeaderView>
#include <QTreeView>

#include <utility>

namespace corvane {

namespace {

template <typename Action> void onClick(QAbstractButton *button, QObject *context, Action action)
{
    if (button) {
        QObject::connect(button, &QAbstractButton::clicked, context, action);
    }
}

} // namespace

RecordTab::RecordTab(RecordList &list, QTreeView *view, const RecordButtons &buttons, ShowDialog showDialog)
    : QObject(view), m_list(list), m_view(view), m_showDialog(std::move(showDialog))
{
    prepareView(buttons.emptyText);
    if (m_showDialog) {
        onClick(buttons.add, this, [this] { add(); });
        onClick(buttons.edit, this, [this] { edit(); });
        onClick(buttons.copy, this, [this] { copy(); });
        connect(view, &QTreeView::doubleClicked, this, [this] { edit(); });
    }
    onClick(buttons.remove, this, [this] { m_list.deleteSelected(); });
    onClick(buttons.clear, this, [this] { m_list.clear(); });
    onClick(buttons.makeDefault, this, [this] { m_list.makeDefault(); });
}

void RecordTab::prepareView(const QString &emptyText)
{
    QFont bold = m_view->font();
    bold.setBold(true);
    m_list.model().setDefaultFont(bold);
    m_view->setModel(&m_list.model());
    m_view->setSelectionModel(&m_list.selection());
    new quillon::ColumnSort(m_view);
    m_view->header()->setStretchLastSection(true);
    m_view->header()->setSectionsMovable(false);
    m_view->setTextElideMode(Qt::ElideRight);
    new quillon::FittedColumns(m_view);
    new quillon::CellTips(m_view);
    new quillon::EmptyListText(m_view, emptyText);
    // A row that is chosen by a command is to be seen.
    connect(&m_list.selection(), &QItemSelectionModel::currentRowChanged, m_view,
            [this](const QModelIndex &row) { m_view->scrollTo(row); });
}

void RecordTab::add(const QString &line)
{
    show(RecordDialog::Mode::Add, line, !line.isEmpty());
}

void RecordTab::edit()
{
    if (const auto line = m_list.toEdit()) {
        show(RecordDialog::Mode::Edit, *line);
    }
}

void RecordTab::copy()
{
    if (const auto line = m_list.toCopy()) {
        show(RecordDialog::Mode::Add, *line);
    }
}

void RecordTab::show(RecordDialog::Mode mode, const QString &line, bool preset)
{
    const bool editing = mode == RecordDialog::Mode::Edit;
    RecordDialog::Task task;
    task.mode = mode;
    task.line = line;
    task.completes = mode == RecordDialog::Mode::Add && preset;
    task.exists = [this, editing](const QString &entered) { return m_list.taken(entered, editing); };
    task.save = [this, editing](const QString &entered) {
        return editing ? m_list.change(entered) : m_list.add(entered) >= 0;
    };
    m_showDialog(std::move(task));
}

} // namespace corvane
