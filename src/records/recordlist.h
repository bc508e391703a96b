#pragma once

#include "records/recordmodel.h"

#include <QItemSelectionModel>
#include <QObject>

#include <optional>

namespace corvane {

/// The list of one kind of records with its commands. Every command changes the file at once; the marked row is the
/// default. The present row is the selection's current one.
class RecordList : public QObject {
    Q_OBJECT

public:
    /// @p globals must outlive the list.
    RecordList(const RecordKind &kind, const QStringList &headers, ApplicationGlobals &globals,
               QObject *parent = nullptr);

    [[nodiscard]] RecordModel &model() { return m_model; }
    [[nodiscard]] QItemSelectionModel &selection() { return m_selection; }

    /// Fills the list from its file, a row for each line, and marks the default's first row.
    void load();

    // A command whose change could not be written leaves the list as the file is then.

    /// Keeps a new record: in the file, as a row, and as the default when it is the only one.
    /// Gives the row's index; -1 when it could not be written.
    int add(const QString &line);
    /// The record to edit or to copy, whose row is then the only one selected; nothing, with a message, without one.
    [[nodiscard]] std::optional<QString> toEdit() { return presentRecord(m_kind.messages.needForEdit); }
    [[nodiscard]] std::optional<QString> toCopy() { return presentRecord(m_kind.messages.needForCopy); }
    /// Puts another record in the present row's place; a default stays the default. False
    /// when it could not be written.
    bool change(const QString &line);
    void deleteSelected();
    void clear();
    void makeDefault();

    /// Whether a row is the same record as @p line; with @p editing the present row does not count.
    [[nodiscard]] bool taken(const QString &line, bool editing) const;

    [[nodiscard]] bool isEmpty() const { return m_model.rowCount() == 0; }
    /// Index of the row that is acted on where one must be selected: the present one, or else the first selected one;
    /// -1 without a selection.
    [[nodiscard]] int selected() const;
    [[nodiscard]] QString selectedLine() const { return m_model.line(selected()); }
    /// Index of the present row, or -1.
    [[nodiscard]] int present() const { return m_selection.currentIndex().row(); }
    [[nodiscard]] QString presentLine() const { return m_model.line(present()); }
    /// Makes a row the present one and the only one selected; an index that is not there leaves none.
    void select(int row);

Q_SIGNALS:
    /// The list has been emptied by a command.
    void emptied();

private:
    [[nodiscard]] std::optional<QString> presentRecord(const char16_t *needKey);
    [[nodiscard]] bool asked(const char16_t *key) const;
    [[nodiscard]] bool hasDefault() const;
    [[nodiscard]] int rowOfDefault() const;
    void storeAsDefault(int row);
    /// Shows what the file holds. The present row stays: that of @p entered, or of the record that it was.
    void reload(const QString &entered = {});

    const RecordKind &m_kind;
    ApplicationGlobals &m_globals;
    RecordModel m_model;
    QItemSelectionModel m_selection;
};

} // namespace corvane
