#pragma once

#include "core/globals.h"

#include <QDialog>

#include <array>
#include <functional>
#include <memory>

class QListWidget;
class QListWidgetItem;

namespace Ui {
class frmPubTemplates;
}

namespace corvane {

class DocumentFlow;

/// The dialog of the stored templates: one is chosen, or they are renamed and deleted. A click on one shows it in the
/// window behind; closing brings back what stood there before the first click.
class frmPubTemplates : public QDialog {
    Q_OBJECT

public:
    /// What it is for is asked of @p flow, which outlives the dialog. @p help opens the manual.
    frmPubTemplates(const ApplicationGlobals &globals, DocumentFlow &flow, std::function<void()> help);
    ~frmPubTemplates() override;

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void closeEvent(QCloseEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void connectControls();
    void addKeys();
    void loadNames();
    void preview(const QListWidgetItem *item);
    /// After a key, which began at that row.
    void previewIfMoved(int before);
    void choose();
    void deleteSelected();
    void renameSelected();
    /// The name of what the list shows; the line of an empty list is none.
    [[nodiscard]] QStringList names() const;

    const ApplicationGlobals &m_globals;
    DocumentFlow &m_flow;
    std::function<void()> m_help;
    std::unique_ptr<::Ui::frmPubTemplates> m_ui;
    std::array<QListWidget *, 2> lst{}; ///< to choose, to manage; one of them is shown
    QListWidget *m_shown = nullptr;
    QString mstrRestoreName; ///< what the window held before the first preview
    bool m_chosen = false;   ///< what is previewed stays
};

} // namespace corvane
