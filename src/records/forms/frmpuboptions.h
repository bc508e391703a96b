#pragma once

#include "core/globals.h"
#include "quillon/forms/tabbedform.h"

#include <QDialog>

class QTabWidget;

namespace corvane {

/// The options. For now each tab says which file holds its entries, so that they can be edited there.
class frmPubOptions : public QDialog, public quillon::TabbedForm {
    Q_OBJECT

public:
    explicit frmPubOptions(const DataPaths &paths);

    void showTab(int tab) override;

private:
    QTabWidget *m_tabs; ///< sst
};

} // namespace corvane
