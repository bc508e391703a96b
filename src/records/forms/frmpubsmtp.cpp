#include "records/forms/frmpubsmtp.h"

#include "quillon/forms/arraynames.h"
#include "quillon/system/prompts.h"
#include "records/forms/fieldboxes.h"
#include "records/recordfields.h"
#include "records/recordtexts.h"
#include "ui_frmpubsmtp.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

constexpr char16_t usualPort[] = u"25";

/// The choice of none, SSL and TLS. "Y" is how old accounts have SSL; it is written as "S" from then on.
RecordFieldView securityField(QRadioButton *none, QRadioButton *ssl, QRadioButton *tls)
{
    return {[ssl, tls] { return ssl->isChecked()   ? u"S"_s
                                : tls->isChecked() ? u"T"_s
                                                   : u"N"_s; },
            [none, ssl, tls](const QString &value) {
                const bool isSsl = value == "S"_L1 || value == "Y"_L1;
                (isSsl ? ssl : value == "T"_L1 ? tls : none)->setChecked(true);
            }};
}

/// The domain of a server's users, as far as its name tells: what follows its first label, or all of a single label.
QString proposedDomain(const QString &server)
{
    return server.mid(server.indexOf(u'.') + 1);
}

} // namespace

frmPubSMTP::frmPubSMTP(std::function<void()> help) : m_ui(std::make_unique<Ui::frmPubSMTP>())
{
    m_ui->setupUi(this);
    quillon::adoptArrayNames(this);
    m_txt = quillon::controlArray<QLineEdit, 8>(this, u"txt"_s);
    const auto opt = quillon::controlArray<QRadioButton, 3>(this, u"opt"_s);
    const auto lbl = quillon::controlArray<QLabel, 9>(this, u"lbl"_s);
    auto *cbx = findChild<QCheckBox *>(u"cbx(1)"_s);

    Form form;
    form.buttons = {m_ui->sbtSA, Qt::Key_A, m_ui->sbtSC, Qt::Key_C, m_ui->sbtClose, m_ui->sbtHelp};
    form.what = QString::fromUtf16(accountCaption);
    form.nameOf = [](const QString &line) { return recordField(line, AccountSenderAddress); };
    form.newRecord = recordLine({QString(), QString::fromUtf16(usualPort), u"N"_s, u"Y"_s});
    form.fields = {textField(m_txt[0]), textField(m_txt[1]),    securityField(opt[0], opt[1], opt[2]),
                   tickField(cbx),      textField(m_txt[2]),    textField(m_txt[3]),
                   textField(m_txt[4]), textField(m_txt[5]),    textField(m_txt[6]),
                   textField(m_txt[7]), fixedField(u"/SAEND"_s)};
    form.checks = {needs(m_txt[0], u"NEED_SMTP"),
                   needs(m_txt[1], u"NEED_PORT"),
                   needsUser(m_txt[2], cbx),
                   needs(m_txt[5], u"NEED_MAIL"),
                   needsAddress(m_txt[5], quillon::InformationBox),
                   needsAddress(m_txt[7], quillon::InformationBox)};
    form.duplicate = {u"SMTP_EXISTS", quillon::InformationBox, m_txt[5], true};
    form.first = m_txt[0];
    setUp(std::move(form), std::move(help));

    limitPort(m_txt[1], QString::fromUtf16(usualPort));
    enableWith(cbx, {lbl[7], lbl[8], m_txt[2], m_txt[3]});
    connectProposals();
}

frmPubSMTP::~frmPubSMTP() = default;

void frmPubSMTP::connectProposals()
{
    connect(m_txt[2], &QLineEdit::textChanged, this, &frmPubSMTP::userChanged);
    connect(m_txt[4], &QLineEdit::textChanged, this, [this] { m_txt[6]->setText(m_txt[4]->text()); });
    connect(m_txt[5], &QLineEdit::textChanged, this, [this] { m_txt[7]->setText(m_txt[5]->text()); });
}

void frmPubSMTP::userChanged()
{
    const QString user = m_txt[2]->text();
    const qsizetype at = user.indexOf(u'@');
    m_txt[4]->setText(at < 0 ? user : user.left(at));
    m_txt[5]->setText(at < 0 ? user + u'@' + proposedDomain(m_txt[0]->text()) : user);
}

} // namespace corvane
