#pragma once

#include "records/forms/recorddialog.h"
#include "records/recordlist.h"

#include <QObject>

#include <functional>

class QAbstractButton;
class QTreeView;

namespace quillon {
class ColumnSort;
}

namespace corvane {

/// The buttons of a list, whatever their indexes are; one that a list does not have is nullptr. And what the list says
/// while it is empty.
struct RecordButtons {
    QAbstractButton *add;
    QAbstractButton *edit;
    QAbstractButton *copy;
    QAbstractButton *remove;
    QAbstractButton *clear;
    QAbstractButton *makeDefault;
    QString emptyText = {};
};

/// A list of records on a tab: the view of it, its buttons, and the dialog in which a record is added or edited.
class RecordTab : public QObject {
    Q_OBJECT

public:
    /// Shows the dialog of the kind for a task, and returns when it is closed; empty where the tab edits in place.
    using ShowDialog = std::function<void(RecordDialog::Task task)>;

    /// The tab belongs to @p view; @p list outlives it.
    RecordTab(RecordList &list, QTreeView *view, const RecordButtons &buttons, ShowDialog showDialog);

    /// Adds a record in the dialog, which begins with the fields of @p line, or as a new record without one.
    void add(const QString &line = {});

private:
    void edit();
    void copy();
    void show(RecordDialog::Mode mode, const QString &line, bool preset = false);
    void prepareView(const QString &emptyText);

    RecordList &m_list;
    QTreeView *m_view;
    ShowDialog m_showDialog;
};

} // namespace corvane
