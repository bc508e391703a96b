#pragma once

#include "core/globals.h"
#include "macros/forms/frmpubmacrodetail.h"

#include <QDialog>

#include <functional>
#include <memory>

class QTreeWidgetItem;

namespace Ui {
class frmPubMacro;
}

namespace quillon {
class ColumnSort;
class FormRegistry;
} // namespace quillon

namespace corvane {

class MacroItem;

/// The manager of the macros: all lines of macros.dll in a list, the predefined ones in grey. Every change goes to the
/// file at once.
class frmPubMacro : public QDialog {
    Q_OBJECT

public:
    struct Hooks {
        std::function<void()> loadMacroMenu; ///< called once, when the dialog unloads
        std::function<void()> help;          ///< opens the manual
    };

    /// @p forms must know "frmPubMacroDetail"; both outlive the dialog.
    frmPubMacro(const ApplicationGlobals &globals, quillon::FormRegistry &forms, Hooks hooks);
    ~frmPubMacro() override;

protected:
    void closeEvent(QCloseEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void connectControls();
    void loadRows();
    /// Shows what the file holds after a change that could not be written; the present row stays.
    void reloadRows();
    void colorRows();
    void refreshSamples();
    /// What follows a click on a row: a predefined one can be neither edited nor deleted.
    void rowChosen(const QTreeWidgetItem *item);
    void selectFirstRow();

    void add();
    void edit();
    void deleteSelected();
    void showDetail(frmPubMacroDetail::Task task);
    MacroFault saveAdded(const MacroRow &entered);
    MacroFault saveEdited(const MacroRow &entered);
    /// Placeholders of all rows, in the order of the list.
    [[nodiscard]] QStringList macros() const;
    [[nodiscard]] MacroItem *currentRow() const;

    const ApplicationGlobals &m_globals;
    quillon::FormRegistry &m_forms;
    Hooks m_hooks;
    quillon::ColumnSort *m_sort = nullptr;
    std::unique_ptr<::Ui::frmPubMacro> m_ui;
};

} // namespace corvane
