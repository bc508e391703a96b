#include "macros/forms/frmpubmacrodetail.h"

#include "core/recordline.h"
#include "core/texts.h"
#include "quillon/forms/formkeys.h"
#include "quillon/forms/formtexts.h"
#include "quillon/hook.h"
#include "ui_frmpubmacrodetail.h"

#include <limits>
#include <utility>

using namespace Qt::StringLiterals;

namespace corvane {

frmPubMacroDetail::frmPubMacroDetail(std::function<void()> help) : m_ui(std::make_unique<Ui::frmPubMacroDetail>())
{
    quillon::requireHook(help, u"frmPubMacroDetail::help"_s);
    m_ui->setupUi(this);
    // These two are stored as they stand here, so they are the same in every language.
    m_ui->cbbCate->addItems({QString::fromUtf16(myInformation), QString::fromUtf16(otherInformation)});
    quillon::QuillonFormTexts().ApplyControlTexts(this, languageFolder() + u"/tips.dll"_s);
    for (QLineEdit *edit : {m_ui->txtMacro, m_ui->txtString}) {
        edit->setMaxLength(std::numeric_limits<int>::max()); // a long text of the file is not cut
        quillon::selectAllOnFocus(edit);
    }
    clearFields();

    connect(m_ui->sbtSA, &QPushButton::clicked, this, &frmPubMacroDetail::saveAndAdd);
    connect(m_ui->sbtSC, &QPushButton::clicked, this, &frmPubMacroDetail::saveAndClose);
    connect(m_ui->sbtClose, &QPushButton::clicked, this, &QWidget::close);
    connect(m_ui->sbtHelp, &QPushButton::clicked, this, [open = std::move(help)] { open(); });
    auto *keys = new quillon::FormKeys(this);
    keys->on(Qt::Key_F1, [this] { m_ui->sbtHelp->click(); });
    keys->on(Qt::ALT | Qt::Key_A, [this] { saveAndAdd(); });
    keys->on(Qt::ALT | Qt::Key_C, [this] { saveAndClose(); });
}

frmPubMacroDetail::~frmPubMacroDetail() = default;

void frmPubMacroDetail::begin(Task task)
{
    m_task = std::move(task);
    clearFields();
    if (m_task.mode == Mode::Add) {
        setWindowTitle(QString::fromUtf16(addMacroCaption));
    } else {
        setWindowTitle(QString::fromUtf16(editMacroCaption) + m_task.row.macro);
        m_ui->txtMacro->setText(m_task.row.macro);
        m_ui->txtString->setText(m_task.row.text);
        m_ui->cbbCate->setCurrentText(m_task.row.category);
    }
    m_ui->txtMacro->setFocus();
}

void frmPubMacroDetail::saveAndAdd()
{
    if (save()) {
        clearFields();
        m_ui->txtMacro->setFocus();
    }
}

void frmPubMacroDetail::saveAndClose()
{
    if (save()) {
        close();
    }
}

bool frmPubMacroDetail::save()
{
    if (!m_task.save) {
        return false;
    }
    const MacroFault fault = m_task.save(
        {fieldText(m_ui->txtMacro->text()), fieldText(m_ui->txtString->text()), m_ui->cbbCate->currentText()});
    if (fault == MacroFault::None) {
        return true;
    }
    if (fault == MacroFault::NotWritten) {
        return false; // what was entered stays here
    }
    showMessage(messageKeyOf(fault), quillon::InformationBox);
    m_ui->txtMacro->setFocus();
    if (fault != MacroFault::NoMacro) {
        m_ui->txtMacro->selectAll();
    }
    return false;
}

void frmPubMacroDetail::clearFields()
{
    m_ui->txtMacro->setText(QString::fromUtf16(emptyMacro));
    m_ui->txtString->clear();
    m_ui->cbbCate->setCurrentText(QString::fromUtf16(myInformation));
}

} // namespace corvane
