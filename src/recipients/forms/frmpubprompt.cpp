#include "recipients/forms/frmpubprompt.h"

#include "core/recipiententry.h"
#include "core/texts.h"
#include "quillon/forms/formkeys.h"
#include "quillon/forms/formtexts.h"
#include "quillon/forms/listlooks.h"
#include "quillon/hook.h"
#include "recipients/promptmodel.h"
#include "ui_frmpubprompt.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace corvane {

frmPubPrompt::frmPubPrompt(const ApplicationGlobals &globals, const QStringList &entries, std::function<void()> help)
    : m_model(new PromptModel(globals, entries, LookupText(u"NO_PROMPT"_s), this)),
      m_ui(std::make_unique<Ui::frmPubPrompt>())
{
    quillon::requireHook(help, u"frmPubPrompt::help"_s);
    m_ui->setupUi(this);
    quillon::QuillonFormTexts().ApplyControlTexts(this, languageFolder() + u"/tips.dll"_s);
    connect(m_ui->sbtHelp, &QPushButton::clicked, this, [open = std::move(help)] { open(); });
    m_ui->lstRecips->setModel(m_model);
    new quillon::CellTips(m_ui->lstRecips);
    goToRow(0);
    connectControls();
}

frmPubPrompt::~frmPubPrompt() = default;

void frmPubPrompt::connectControls()
{
    connect(m_ui->lstRecips, &QListView::doubleClicked, this, &frmPubPrompt::edit);
    connect(m_ui->sbtAdd, &QPushButton::clicked, this, &frmPubPrompt::add);
    connect(m_ui->sbtEdit, &QPushButton::clicked, this, &frmPubPrompt::edit);
    connect(m_ui->sbtDel, &QPushButton::clicked, this, &frmPubPrompt::deleteSelected);
    connect(m_ui->sbtFind, &QPushButton::clicked, this, &frmPubPrompt::find);
    connect(m_ui->sbtClose, &QPushButton::clicked, this, &QWidget::close);

    auto *keys = new quillon::FormKeys(this);
    keys->on(Qt::Key_F1, [this] { m_ui->sbtHelp->click(); });
    keys->on(Qt::ALT | Qt::Key_A, [this] { add(); });
    keys->on(Qt::ALT | Qt::Key_E, [this] { edit(); });
    keys->on(Qt::Key_Delete, [this] { deleteSelected(); });
    keys->on(Qt::Key_F3, [this] { find(); });
}

QString frmPubPrompt::askRecipient(const QString &present) const
{
    const QString key = u"INPUT_RECIP"_s;
    for (;;) {
        const QString answer = quillon::prompts().input({key, LookupText(key), present}).trimmed();
        if (answer.isEmpty() || answer == present) {
            return {};
        }
        if (IsRecipientEntry(answer)) {
            return answer;
        }
        showMessage(key, quillon::InformationBox);
    }
}

void frmPubPrompt::add()
{
    const int current = m_ui->lstRecips->currentIndex().row();
    const QString entry = askRecipient(QString());
    if (entry.isEmpty()) {
        return;
    }
    if (m_model->contains(entry)) {
        showMessage(u"ITEM_EXIST"_s, quillon::InformationBox);
        return;
    }
    const bool added = m_model->add(entry);
    goToRow(added ? m_model->rowCount() - 1 : qMin(current, m_model->rowCount() - 1));
}

void frmPubPrompt::edit()
{
    if (m_model->isPlaceholder()) {
        showMessage(u"NO_RECI_EDIT"_s, quillon::InformationBox);
        return;
    }
    const QModelIndex current = m_ui->lstRecips->currentIndex();
    if (!current.isValid()) {
        return;
    }
    const QString entry = askRecipient(m_model->entry(current.row()));
    if (entry.isEmpty()) {
        return;
    }
    if (m_model->contains(entry)) {
        showMessage(u"ITEM EXIST"_s, quillon::InformationBox);
        return;
    }
    const int row = current.row();
    const bool replaced = m_model->replace(row, entry);
    goToRow(replaced ? m_model->rowCount() - 1 : qMin(row, m_model->rowCount() - 1));
}

void frmPubPrompt::deleteSelected()
{
    if (m_model->isPlaceholder()) {
        showMessage(u"NO_RECI_DEL"_s, quillon::InformationBox);
        return;
    }
    if (showMessage(u"DEL_RECI_PROMPT"_s, quillon::YesNoBox) != quillon::BoxAnswer::Yes) {
        return;
    }
    QList<int> rows;
    const QItemSelection selection = m_ui->lstRecips->selectionModel()->selection();
    for (const QItemSelectionRange &range : selection) {
        for (int row = range.top(); row <= range.bottom(); ++row) {
            rows.append(row);
        }
    }
    if (rows.isEmpty()) {
        return;
    }
    const int first = *std::min_element(rows.cbegin(), rows.cend());
    m_model->remove(rows);
    goToRow(qMin(first, m_model->rowCount() - 1));
}

void frmPubPrompt::find()
{
    const QString key = u"FIND_RECI"_s;
    const QString wanted = quillon::prompts().input({key, LookupText(key), QString()}).trimmed();
    if (wanted.isEmpty()) {
        return;
    }
    QItemSelection selection;
    const QList<PromptModel::Range> found = m_model->find(wanted);
    for (const auto &[first, last] : found) {
        selection.append(QItemSelectionRange(m_model->index(first), m_model->index(last)));
    }
    QItemSelectionModel *selected = m_ui->lstRecips->selectionModel();
    const int current = m_ui->lstRecips->currentIndex().row();
    // What was selected is forgotten, and the view, which is painted anew below, is not told what changed: with tens of
    // thousands of rows, working that out takes longer than everything else.
    {
        const QSignalBlocker untold(selected);
        selected->reset();
        selected->select(selection, QItemSelectionModel::Select);
    }
    goToRow(found.isEmpty() ? current : found.constFirst().first);
    m_ui->lstRecips->viewport()->update();
}

void frmPubPrompt::goToRow(int row)
{
    const QModelIndex index = m_model->index(row);
    m_ui->lstRecips->selectionModel()->setCurrentIndex(index, QItemSelectionModel::NoUpdate);
    m_ui->lstRecips->scrollTo(index);
}

} // namespace corvane
