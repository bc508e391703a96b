#include "message/forms/frmpubtemplates.h"

#include "core/texts.h"
#include "message/documentflow.h"
#include "message/messagetexts.h"
#include "message/templatefiles.h"
#include "quillon/forms/arraynames.h"
#include "quillon/forms/formkeys.h"
#include "quillon/forms/formtexts.h"
#include "quillon/hook.h"
#include "quillon/system/prompts.h"
#include "ui_frmpubtemplates.h"

#include <QCloseEvent>

#include <utility>

using namespace Qt::StringLiterals;

namespace corvane {

frmPubTemplates::frmPubTemplates(const ApplicationGlobals &globals, DocumentFlow &flow, std::function<void()> help)
    : m_globals(globals), m_flow(flow), m_help(std::move(help)), m_ui(std::make_unique<Ui::frmPubTemplates>())
{
    quillon::requireHook(m_help, u"frmPubTemplates::help"_s);
    m_ui->setupUi(this);
    quillon::adoptArrayNames(this);
    lst = quillon::controlArray<QListWidget, 2>(this, u"lst"_s);
    quillon::QuillonFormTexts().ApplyControlTexts(this, languageFolder() + u"/tips.dll"_s);
    const bool managing = m_flow.isManaging();
    if (managing) {
        setWindowTitle(QString::fromUtf16(managingTitle));
    }
    m_shown = lst.at(managing ? 1 : 0);
    lst.at(managing ? 0 : 1)->hide();
    m_ui->sbtOK->setVisible(!managing);
    m_ui->sbtDel->setVisible(managing);
    m_ui->sbtRename->setVisible(managing);
    loadNames();
    connectControls();
    addKeys();
    m_shown->setFocus();
}

frmPubTemplates::~frmPubTemplates() = default;

QSize frmPubTemplates::sizeHint() const
{
    // Names of usual length, and a dozen and a half of them.
    const QFontMetrics metrics = fontMetrics();
    return QDialog::sizeHint().expandedTo(QSize(metrics.averageCharWidth() * 44, metrics.lineSpacing() * 22));
}

void frmPubTemplates::loadNames()
{
    const QStringList stored = templateNames(m_globals);
    for (QListWidget *list : lst) {
        list->addItems(stored.isEmpty() ? QStringList{LookupText(u"NO_TEMP"_s)} : stored);
        list->setEnabled(!stored.isEmpty());
    }
    for (QPushButton *button : {m_ui->sbtOK, m_ui->sbtRename, m_ui->sbtDel}) {
        button->setEnabled(!stored.isEmpty());
    }
}

void frmPubTemplates::connectControls()
{
    for (QListWidget *list : lst) {
        connect(list, &QListWidget::itemClicked, this, &frmPubTemplates::preview);
        list->installEventFilter(this);
    }
    connect(lst[0], &QListWidget::itemDoubleClicked, m_ui->sbtOK, &QPushButton::click);
    connect(m_ui->sbtOK, &QPushButton::clicked, this, &frmPubTemplates::choose);
    connect(m_ui->sbtDel, &QPushButton::clicked, this, &frmPubTemplates::deleteSelected);
    connect(m_ui->sbtRename, &QPushButton::clicked, this, &frmPubTemplates::renameSelected);
    connect(m_ui->sbtClose, &QPushButton::clicked, this, &QWidget::close);
    connect(m_ui->sbtHelp, &QPushButton::clicked, this, [this] { m_help(); });
}

void frmPubTemplates::addKeys()
{
    auto *keys = new quillon::FormKeys(this);
    // A button that is hidden or disabled takes no click.
    const auto press = [](QPushButton *button) {
        if (button->isVisible()) {
            button->click();
        }
    };
    for (const auto enter : {Qt::Key_Return, Qt::Key_Enter}) {
        keys->on(enter, [this, press] { press(m_ui->sbtOK); });
    }
    keys->on(Qt::Key_Delete, [this, press] { press(m_ui->sbtDel); });
    keys->on(Qt::Key_F2, [this, press] { press(m_ui->sbtRename); });
    keys->on(Qt::Key_F1, [this, press] { press(m_ui->sbtHelp); });
}

void frmPubTemplates::preview(const QListWidgetItem *item)
{
    if (mstrRestoreName.isEmpty()) {
        mstrRestoreName = m_flow.openName();
    }
    m_flow.preview(item->text());
}

/// The arrow keys choose like a click does; from no choice they lead to the first name.
bool frmPubTemplates::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress && watched == m_shown) {
        const int key = static_cast<QKeyEvent *>(event)->key();
        const bool first = (key == Qt::Key_Down || key == Qt::Key_Up) && m_shown->selectedItems().isEmpty();
        const int before = first ? -1 : m_shown->currentRow();
        QMetaObject::invokeMethod(
            this, [this, before] { previewIfMoved(before); }, Qt::QueuedConnection);
        if (first) {
            m_shown->setCurrentRow(0, QItemSelectionModel::ClearAndSelect);
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

void frmPubTemplates::previewIfMoved(int before)
{
    const QListWidgetItem *item = m_shown->currentItem();
    if (item && m_shown->currentRow() != before && item->isSelected()) {
        preview(item);
    }
}

void frmPubTemplates::choose()
{
    const QListWidgetItem *item = lst[0]->currentItem();
    m_flow.psTempName = item && item->isSelected() ? item->text() : QString();
    m_chosen = true;
    close();
}

void frmPubTemplates::closeEvent(QCloseEvent *event)
{
    QDialog::closeEvent(event);
    if (!event->isAccepted() || std::exchange(m_chosen, true)) {
        return;
    }
    if (mstrRestoreName == DocumentFlow::noTemplateMark()) {
        m_flow.New();
    } else {
        m_flow.show(mstrRestoreName); // without a click that name is empty, and so is the window then
    }
}

QStringList frmPubTemplates::names() const
{
    QStringList found;
    for (int i = 0; lst[1]->isEnabled() && i < lst[1]->count(); ++i) {
        found.append(lst[1]->item(i)->text());
    }
    return found;
}

void frmPubTemplates::deleteSelected()
{
    if (names().isEmpty()) {
        showMessage(u"NEED_TEMP_D"_s, quillon::InformationBox);
        return;
    }
    if (lst[1]->selectedItems().isEmpty()) {
        showMessage(u"SELE_TEMP"_s, quillon::InformationBox);
        return;
    }
    if (showMessage(u"DEL_TEMP_PROMPT"_s, quillon::YesNoCancelBox) != quillon::BoxAnswer::Yes) {
        return;
    }
    for (int i = lst[1]->count() - 1; i >= 0; --i) {
        if (lst[1]->item(i)->isSelected()) {
            deleteTemplate(m_globals, lst[1]->item(i)->text());
            delete lst[1]->takeItem(i);
        }
    }
}

void frmPubTemplates::renameSelected()
{
    const QStringList listed = names();
    if (listed.isEmpty()) {
        showMessage(u"NEED_TEMP_R"_s, quillon::InformationBox);
        return;
    }
    const QList<QListWidgetItem *> selected = lst[1]->selectedItems();
    if (selected.isEmpty()) {
        showMessage(u"SELE_TEMP_R"_s, quillon::InformationBox);
        return;
    }
    // Of several the one that was clicked last.
    QListWidgetItem *item = selected.contains(lst[1]->currentItem()) ? lst[1]->currentItem() : selected.constFirst();
    const QString name = item->text();
    const QString key = u"INPUT_NEW_NAME"_s;
    const QString answer = quillon::prompts().input({key, LookupText(key) + u" '"_s + name + u"':"_s, name}).trimmed();
    if (answer.isEmpty()) {
        return;
    }
    if (name.trimmed() == answer) {
        showMessage(u"TEMP_NOT_CHANGE"_s, quillon::InformationBox);
        return;
    }
    if (listed.contains(answer)) {
        showMessage(u"SENDER_EXISTS"_s, quillon::InformationBox, answer);
        return;
    }
    renameTemplate(m_globals, name, answer);
    delete item;
    lst[1]->addItem(answer);
    lst[1]->clearSelection();
    lst[1]->setCurrentRow(lst[1]->count() - 1, QItemSelectionModel::ClearAndSelect);
}

} // namespace corvane
