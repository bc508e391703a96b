#include "records/forms/frmpubproxy.h"

#include "quillon/forms/arraynames.h"
#include "quillon/system/prompts.h"
#include "records/forms/fieldboxes.h"
#include "records/recordfields.h"
#include "records/recordtexts.h"
#include "ui_frmpubproxy.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

constexpr char16_t usualPort[] = u"1080";
constexpr char16_t onlyProtocol[] = u"Socks5";

/// The protocol by its entry; one that is not offered leaves the choice as it is.
RecordFieldView protocolField(QComboBox *box)
{
    return {[box] { return box->currentText(); }, [box](const QString &value) { box->setCurrentText(value); }};
}

} // namespace

frmPubProxy::frmPubProxy(std::function<void()> help) : m_ui(std::make_unique<Ui::frmPubProxy>())
{
    m_ui->setupUi(this);
    quillon::adoptArrayNames(this);
    const auto txt = quillon::controlArray<QLineEdit, 4>(this, u"txt"_s);
    const auto lbl = quillon::controlArray<QLabel, 9>(this, u"lbl"_s);
    m_ui->cbb->addItem(QString::fromUtf16(onlyProtocol));

    Form form;
    form.buttons = {m_ui->sbtSA, Qt::Key_A, m_ui->sbtSC, Qt::Key_C, m_ui->sbtClose, m_ui->sbtHelp};
    form.what = QString::fromUtf16(proxyCaption);
    form.nameOf = [](const QString &line) {
        return recordField(line, ProxyAddress) + u':' + recordField(line, ProxyPort);
    };
    form.newRecord = recordLine({QString::fromUtf16(onlyProtocol), QString(), QString::fromUtf16(usualPort)});
    form.fields = {protocolField(m_ui->cbb), textField(txt[0]), textField(txt[1]),      tickField(m_ui->cbx),
                   textField(txt[2]),        textField(txt[3]), fixedField(u"/PSEND"_s)};
    form.checks = {needs(txt[0], u"NEED_ADDR"), needs(txt[1], u"NEED_PORT"), needsUser(txt[2], m_ui->cbx)};
    form.duplicate = {u"PROXY_EXISTS", quillon::InformationBox, txt[0]};
    form.first = txt[0];
    setUp(std::move(form), std::move(help));

    limitPort(txt[1], QString::fromUtf16(usualPort));
    enableWith(m_ui->cbx, {lbl[7], lbl[8], txt[2], txt[3]});
}

frmPubProxy::~frmPubProxy() = default;

} // namespace corvane
