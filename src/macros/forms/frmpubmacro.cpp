#include "macros/forms/frmpubmacro.h"

#include "core/formnames.h"
#include "core/texts.h"
#include "macros/forms/macroitem.h"
#include "macros/placeholders.h"
#include "quillon/files/linefile.h"
#include "quillon/forms/columnsort.h"
#include "quillon/forms/formkeys.h"
#include "quillon/forms/formregistry.h"
#include "quillon/forms/formtexts.h"
#include "quillon/forms/listlooks.h"
#include "quillon/hook.h"
#include "ui_frmpubmacro.h"

#include <QCloseEvent>
#include <QHeaderView>
#include <QSet>
#include <QTimer>

#include <utility>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

constexpr int refreshMilliseconds = 1600;

MacroItem *macroItem(QTreeWidgetItem *item)
{
    return item && item->type() == MacroItem::rowType ? static_cast<MacroItem *>(item) : nullptr;
}

} // namespace

frmPubMacro::frmPubMacro(const ApplicationGlobals &globals, quillon::FormRegistry &forms, Hooks hooks)
    : m_globals(globals), m_forms(forms), m_hooks(std::move(hooks)), m_ui(std::make_unique<Ui::frmPubMacro>())
{
    quillon::requireHook(m_hooks.loadMacroMenu, u"frmPubMacro::loadMacroMenu"_s);
    quillon::requireHook(m_hooks.help, u"frmPubMacro::help"_s);
    m_ui->setupUi(this);
    quillon::QuillonFormTexts().ApplyControlTexts(this, languageFolder() + u"/tips.dll"_s);
    m_ui->lblSample->setText(u"%1 %2 <%3>"_s.arg(m_ui->lblSample->text(), QString::fromUtf16(sampleRecipient),
                                                 QString::fromUtf16(sampleAddress)));
    connectControls();
    loadRows();
    m_ui->lsv->installEventFilter(this);

    auto *tim = new QTimer(this);
    tim->setObjectName(u"tim"_s);
    tim->setInterval(refreshMilliseconds);
    connect(tim, &QTimer::timeout, this, &frmPubMacro::refreshSamples);
    tim->start();
}

frmPubMacro::~frmPubMacro() = default;

void frmPubMacro::connectControls()
{
    QHeaderView *header = m_ui->lsv->header();
    header->setStretchLastSection(true);
    m_sort = new quillon::ColumnSort(m_ui->lsv, Qt::DescendingOrder);
    new quillon::FittedColumns(m_ui->lsv);
    new quillon::CellTips(m_ui->lsv);
    connect(m_ui->lsv, &QTreeWidget::currentItemChanged, this,
            [this](const QTreeWidgetItem *current) { rowChosen(current); });
    connect(m_ui->lsv, &QTreeWidget::itemClicked, this, [this](const QTreeWidgetItem *item) { rowChosen(item); });
    connect(m_ui->lsv, &QTreeWidget::itemDoubleClicked, this, [this] { m_ui->sbtEdit->click(); });
    connect(m_ui->sbtAdd, &QPushButton::clicked, this, &frmPubMacro::add);
    connect(m_ui->sbtEdit, &QPushButton::clicked, this, &frmPubMacro::edit);
    connect(m_ui->sbtDel, &QPushButton::clicked, this, &frmPubMacro::deleteSelected);
    connect(m_ui->sbtClose, &QPushButton::clicked, this, &QWidget::close);
    connect(m_ui->sbtHelp, &QPushButton::clicked, this, [this] { m_hooks.help(); });

    auto *keys = new quillon::FormKeys(this);
    keys->on(Qt::Key_F1, [this] { m_ui->sbtHelp->click(); });
    keys->on(Qt::ALT | Qt::Key_A, [this] { m_ui->sbtAdd->click(); });
    // A disabled button takes no click, so these two do nothing on a predefined row.
    keys->on(Qt::ALT | Qt::Key_E, [this] { m_ui->sbtEdit->click(); });
    keys->on(Qt::Key_Delete, [this] { m_ui->sbtDel->click(); });
}

void frmPubMacro::loadRows()
{
    m_ui->lsv->clear();
    const QList<MacroRow> rows = macroRows(m_globals);
    QList<QTreeWidgetItem *> items;
    items.reserve(rows.size());
    for (const MacroRow &row : rows) {
        items.append(new MacroItem(row));
    }
    m_ui->lsv->addTopLevelItems(items);
    colorRows();
    selectFirstRow();
}

void frmPubMacro::reloadRows()
{
    if (!quillon::LineFile(m_globals.paths.macrosFile).readable()) {
        return; // it tells nothing
    }
    const MacroItem *present = currentRow();
    const QString macro = present ? present->row().macro : QString();
    loadRows();
    m_sort->again();
    for (int i = 0; i < m_ui->lsv->topLevelItemCount(); ++i) {
        if (QTreeWidgetItem *item = m_ui->lsv->topLevelItem(i); macroItem(item)->row().macro == macro) {
            m_ui->lsv->setCurrentItem(item);
            return;
        }
    }
}

void frmPubMacro::colorRows()
{
    const QColor grey = m_ui->lsv->palette().color(QPalette::Disabled, QPalette::Text);
    for (int i = 0; i < m_ui->lsv->topLevelItemCount(); ++i) {
        macroItem(m_ui->lsv->topLevelItem(i))->setPredefinedColor(grey);
    }
}

void frmPubMacro::refreshSamples()
{
    for (int i = 0; i < m_ui->lsv->topLevelItemCount(); ++i) {
        macroItem(m_ui->lsv->topLevelItem(i))->refreshSample();
    }
}

void frmPubMacro::rowChosen(const QTreeWidgetItem *item)
{
    const bool users = item && !item->data(MacroNameColumn, MacroItem::predefinedRole).toBool();
    m_ui->sbtEdit->setEnabled(users);
    m_ui->sbtDel->setEnabled(users);
}

void frmPubMacro::selectFirstRow()
{
    QTreeWidgetItem *first = m_ui->lsv->topLevelItem(0);
    m_ui->lsv->setCurrentItem(first);
    rowChosen(first);
}

void frmPubMacro::add()
{
    showDetail({frmPubMacroDetail::Mode::Add, {}, [this](const MacroRow &entered) { return saveAdded(entered); }});
}

void frmPubMacro::edit()
{
    MacroItem *row = currentRow();
    if (!row) {
        return;
    }
    m_ui->lsv->setCurrentItem(row, MacroNameColumn, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    showDetail(
        {frmPubMacroDetail::Mode::Edit, row->row(), [this](const MacroRow &entered) { return saveEdited(entered); }});
}

void frmPubMacro::showDetail(frmPubMacroDetail::Task task)
{
    if (auto *form = m_forms.as<frmPubMacroDetail>(macroDetailForm)) {
        form->begin(std::move(task));
        quillon::prompts().showModalForm(macroDetailForm, noTab);
    }
}

MacroFault frmPubMacro::saveAdded(const MacroRow &entered)
{
    const MacroFault fault = checkMacro(entered, macros(), -1);
    if (fault == MacroFault::None) {
        if (!addMacro(m_globals, entered)) {
            reloadRows();
            return MacroFault::NotWritten;
        }
        m_ui->lsv->addTopLevelItem(new MacroItem(entered));
        m_sort->again();
    }
    return fault;
}

MacroFault frmPubMacro::saveEdited(const MacroRow &entered)
{
    MacroItem *row = currentRow();
    const MacroFault fault = checkMacro(entered, macros(), m_ui->lsv->indexOfTopLevelItem(row));
    if (fault == MacroFault::None && row) {
        if (!replaceMacro(m_globals, row->row(), entered)) {
            reloadRows();
            return MacroFault::NotWritten;
        }
        row->setRow(entered);
    }
    return fault;
}

void frmPubMacro::deleteSelected()
{
    if (showMessage(u"DEL_MACRO_PROMPT"_s, quillon::YesNoBox) != quillon::BoxAnswer::Yes) {
        return;
    }
    QSet<QTreeWidgetItem *> doomed;
    QStringList keys;
    const QList<QTreeWidgetItem *> selected = m_ui->lsv->selectedItems();
    for (QTreeWidgetItem *item : selected) {
        if (!macroItem(item)->predefined()) {
            doomed.insert(item);
            keys.append(macroItem(item)->row().macro);
        }
    }
    if (!deleteMacros(m_globals, keys)) {
        reloadRows();
        return;
    }
    // All rows leave the list and those that stay come back, since taking many one by one is slow.
    QList<QTreeWidgetItem *> rows = m_ui->lsv->invisibleRootItem()->takeChildren();
    rows.removeIf([&](QTreeWidgetItem *item) { return doomed.contains(item); });
    m_ui->lsv->addTopLevelItems(rows);
    qDeleteAll(doomed);
    selectFirstRow();
}

QStringList frmPubMacro::macros() const
{
    QStringList names;
    names.reserve(m_ui->lsv->topLevelItemCount());
    for (int i = 0; i < m_ui->lsv->topLevelItemCount(); ++i) {
        names.append(macroItem(m_ui->lsv->topLevelItem(i))->row().macro);
    }
    return names;
}

MacroItem *frmPubMacro::currentRow() const
{
    return macroItem(m_ui->lsv->currentItem());
}

void frmPubMacro::closeEvent(QCloseEvent *event)
{
    QDialog::closeEvent(event);
    if (event->isAccepted()) {
        std::exchange(m_hooks.loadMacroMenu, [] {})(); // once, however often the form is closed
    }
}

bool frmPubMacro::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_ui->lsv && event->type() == QEvent::PaletteChange) {
        colorRows(); // the grey is the theme's
    }
    return QDialog::eventFilter(watched, event);
}

} // namespace corvane
