#include "records/forms/frmpubsender.h"

#include "quillon/forms/arraynames.h"
#include "quillon/system/prompts.h"
#include "records/recordfields.h"
#include "records/recordtexts.h"
#include "ui_frmpubsender.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace corvane {

frmPubSender::frmPubSender(std::function<void()> help) : m_ui(std::make_unique<Ui::frmPubSender>())
{
    m_ui->setupUi(this);
    quillon::adoptArrayNames(this);
    const auto sbt = quillon::controlArray<QPushButton, 4>(this, u"sbt"_s);

    Form form;
    form.buttons = {sbt[0], Qt::Key_S, sbt[1], Qt::Key_C, sbt[2], sbt[3]};
    form.what = QString::fromUtf16(senderCaption);
    form.nameOf = [](const QString &line) { return u'<' + recordField(line, SenderAddress) + u'>'; };
    form.fields = {textField(m_ui->txtDisp), textField(m_ui->txtEmail), textField(m_ui->txtRemark)};
    form.checks = {needs(m_ui->txtEmail, u"CHECK_ADDRESS"), needsAddress(m_ui->txtEmail, quillon::WarningBox)};
    form.duplicate = {u"SEND_EXISTS", quillon::InformationBox, m_ui->txtDisp, true};
    form.first = m_ui->txtDisp;
    setUp(std::move(form), std::move(help));
}

frmPubSender::~frmPubSender() = default;

} // namespace corvane
