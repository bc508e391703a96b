#pragma once

#include "core/globals.h"

#include <QAbstractListModel>
#include <QList>
#include <QString>
#include <QStringList>

#include <utility>

namespace corvane {

/// The input prompts as a list that can be changed; every change goes to prompts.dll at once. An empty list shows one
/// placeholder row.
class PromptModel : public QAbstractListModel {
    Q_OBJECT

public:
    /// Rows from @p first to @p last.
    using Range = std::pair<int, int>;

    /// @p entries that are blank are passed over. @p globals must outlive the model. @p placeholder is the text of the
    /// row that stands for an empty list.
    PromptModel(const ApplicationGlobals &globals, const QStringList &entries, QString placeholder,
                QObject *parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;

    /// True when the list is empty and row 0 is only the placeholder.
    [[nodiscard]] bool isPlaceholder() const { return m_rows.isEmpty(); }
    /// The entry of that row; empty for the placeholder and for a row that is not there.
    [[nodiscard]] QString entry(int row) const { return m_rows.value(row); }

    /// True if a row equals @p entry but for case and for blanks around it.
    [[nodiscard]] bool contains(const QString &entry) const;
    // A change that could not be written is none: false, and the list shows what the file holds.

    /// Adds an entry at the end.
    bool add(const QString &entry);
    /// Puts @p entry in place of the row's line in the file, and at the end of the list.
    bool replace(int row, const QString &entry);
    /// Removes those rows, and every line of the file that equals one of them, in one rewrite.
    bool remove(const QList<int> &rows);
    /// The rows that contain @p text anywhere, without regard to case, in order; neighbours are one range. An empty
    /// text finds nothing.
    [[nodiscard]] QList<Range> find(const QString &text) const;

private:
    void reload();

    const ApplicationGlobals &m_globals;
    QString m_placeholder;
    QStringList m_rows;
};

} // namespace corvane
