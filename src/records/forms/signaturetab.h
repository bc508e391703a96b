#pragma once

#include "core/globals.h"
#include "records/recordlist.h"

#include <QObject>

#include <array>
#include <functional>

class QAbstractButton;
class QAction;
class QLineEdit;
class QPlainTextEdit;
class QRadioButton;
class QTreeView;

namespace corvane {

class RenameDelegate;

/// The editor of signatures beside their list. What is typed or chosen is kept at once, in the files of the present
/// row's signature; nothing waits for a Save button.
class SignatureTab : public QObject {
    Q_OBJECT

public:
    /// Items that insert a macro; they belong to somebody else.
    using MacroItems = std::function<QList<QAction *>()>;

    /// Finds its controls on @p form, to which it belongs; @p list outlives it.
    SignatureTab(QWidget *form, RecordList &list, ApplicationGlobals &globals, MacroItems macroItems);

    /// Begins to edit the name of the present row in place.
    void rename();
    /// Takes the name that is being edited, if one is, since the form closes.
    void finishRename();
    /// Whether a name is being edited in place.
    [[nodiscard]] bool isRenaming() const;
    /// Selects all of the text box.
    void selectAllText();

private:
    enum Kind { Text, File };

    void connectControls();
    /// Shows the present row's signature.
    void show();
    void choose(Kind kind);
    void enableKind();
    void kindChosen();
    void textChanged();
    void pathChanged(const QString &path);

    void add();
    void renamed(const QPersistentModelIndex &index, const QString &typed);
    void refuseName(const QPersistentModelIndex &index, const char16_t *key, const std::optional<QString> &value);
    void emptied();
    void browse();
    void open() const;
    void macro();

    [[nodiscard]] QString name() const { return m_list.presentLine(); }
    [[nodiscard]] Kind kind() const;

    RecordList &m_list;
    ApplicationGlobals &m_globals;
    MacroItems m_macroItems;
    std::array<QRadioButton *, 2> m_opt;
    std::array<QAbstractButton *, 8> m_buttons;
    QTreeView *m_view;
    RenameDelegate *m_delegate;
    QPlainTextEdit *m_text;
    QLineEdit *m_path;
    bool m_showing = false;   ///< a row is being shown: what changes in the boxes is not kept
    bool m_finishing = false; ///< no name is edited again
    bool m_writable = false;  ///< there is a row, and what its text box shows is its text
};

} // namespace corvane
