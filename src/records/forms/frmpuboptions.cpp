#include "records/forms/frmpuboptions.h"

#include "core/forms/artwork.h"
#include "core/settings.h"
#include "core/site.h"
#include "core/texts.h"
#include "message/encodingsearch.h"
#include "quillon/forms/arraynames.h"
#include "quillon/forms/formkeys.h"
#include "quillon/forms/formregistry.h"
#include "quillon/forms/formtexts.h"
#include "quillon/hook.h"
#include "records/accountpresets.h"
#include "records/connectiontest.h"
#include "records/forms/recordtab.h"
#include "records/forms/settingstab.h"
#include "records/forms/signaturetab.h"
#include "records/forms/tabcaptions.h"
#include "records/recordtexts.h"
#include "ui_frmpuboptions.h"

#include <QAbstractButton>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QMenu>
#include <QPointer>

#include <utility>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

/// Which index of a row of buttons is which command.
struct ButtonOrder {
    int add, edit, copy, remove, clear, makeDefault;
};
constexpr int none = -1;
constexpr ButtonOrder usualOrder = {0, 1, 2, 3, 4, 5};
constexpr ButtonOrder proxyOrder = {0, 1, 5, 2, 3, 4};
constexpr ButtonOrder signatureOrder = {none, none, none, 2, 3, 4}; // its editor adds and renames

/// A key that presses a button.
struct ButtonKey {
    QKeyCombination key;
    QString button;
};

/// The keys of a list whose records are edited in a dialog.
std::array<ButtonKey, 6> keysOf(const QString &group, const ButtonOrder &order)
{
    const auto press = [&group](QKeyCombination key, int index) {
        return ButtonKey{key, u"%1(%2)"_s.arg(group).arg(index)};
    };
    return {press(Qt::ALT | Qt::Key_A, order.add),  press(Qt::ALT | Qt::Key_E, order.edit),
            press(Qt::ALT | Qt::Key_C, order.copy), press(Qt::ALT | Qt::Key_L, order.clear),
            press(Qt::Key_Delete, order.remove),    press(Qt::ALT | Qt::Key_D, order.makeDefault)};
}

/// The keys of the signatures.
std::array<ButtonKey, 6> signatureKeys()
{
    return {{{Qt::ALT | Qt::Key_E, u"sbtSign(2)"_s},
             {Qt::ALT | Qt::Key_L, u"sbtSign(3)"_s},
             {Qt::ALT | Qt::Key_D, u"sbtSign(0)"_s},
             {Qt::ALT | Qt::Key_R, u"sbtSign(1)"_s},
             {Qt::ALT | Qt::Key_U, u"sbtSign(4)"_s},
             {Qt::ALT | Qt::Key_M, u"sbtSign(7)"_s}}};
}

/// The hourglass, while it lives: a form's own cursor does not show while the form is disabled.
class WaitPointer {
public:
    WaitPointer() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitPointer() { QGuiApplication::restoreOverrideCursor(); }
    WaitPointer(const WaitPointer &) = delete;
    WaitPointer &operator=(const WaitPointer &) = delete;
};

/// The headings of a list, those of the language file if it has as many.
QStringList headingsOf(const quillon::OwnText &columns)
{
    const QStringList standard = QString::fromUtf16(columns.english).split(u'|');
    const QStringList headings =
        formText(QString::fromUtf16(columns.section), QString::fromUtf16(columns.key)).split(u'|');
    return headings.size() == standard.size() && !headings.first().isEmpty() ? headings : standard;
}

RecordButtons buttonsOf(const QWidget *form, const QString &group, const ButtonOrder &order,
                        const quillon::OwnText &emptyText)
{
    const auto button = [&](int index) {
        return index == none ? nullptr : form->findChild<QAbstractButton *>(u"%1(%2)"_s.arg(group).arg(index));
    };
    return {button(order.add),   button(order.edit),        button(order.copy),     button(order.remove),
            button(order.clear), button(order.makeDefault), quillon::say(emptyText)};
}

} // namespace

frmPubOptions::frmPubOptions(ApplicationGlobals &globals, Message &message, quillon::FormRegistry &forms,
                             OptionsHooks hooks)
    : m_globals(globals), m_message(message), m_forms(forms), m_hooks(std::move(hooks)),
      m_senders(senderKind(), headingsOf(senderColumns), globals),
      m_signatures(signatureKind(), headingsOf(signatureColumns), globals),
      m_proxies(proxyKind(), headingsOf(proxyColumns), globals),
      m_accounts(accountKind(), headingsOf(accountColumns), globals), m_ui(std::make_unique<::Ui::frmPubOptions>())
{
    quillon::requireHook(m_hooks.refillMainWindow, u"OptionsHooks::refillMainWindow"_s);
    quillon::requireHook(m_hooks.encodingName, u"OptionsHooks::encodingName"_s);
    quillon::requireHook(m_hooks.macroItems, u"OptionsHooks::macroItems"_s);
    quillon::requireHook(m_hooks.help, u"OptionsHooks::help"_s);
    m_ui->setupUi(this);
    quillon::adoptArrayNames(this);
    makeTabs();
    connectButtons();
    addKeys();
    quillon::QuillonFormTexts().ApplyControlTexts(this, languageFolder() + u"/tips.dll"_s);
    quillon::QuillonFormTexts().ApplyMenuTexts(this, languageFolder() + u"/menus.dll"_s);
    keepCaptions(this);
    connect(m_ui->sst, &QTabWidget::currentChanged, this, &frmPubOptions::ShowOptionsTab);
    m_ui->sst->setCurrentIndex(ProxyTab);
    ShowOptionsTab(ProxyTab);
    LoadOptionsForm();
    loadLists();
}

frmPubOptions::~frmPubOptions() = default;

void frmPubOptions::makeTabs()
{
    const auto dialog = [this](const QString &form) {
        return [this, form](RecordDialog::Task task) {
            if (auto *shown = m_forms.as<RecordDialog>(form)) {
                shown->begin(std::move(task));
                quillon::prompts().showModalForm(form, noTab);
            }
        };
    };
    const auto tab = [this](RecordList &list, const QString &view, const RecordButtons &buttons,
                            RecordTab::ShowDialog show) {
        return new RecordTab(list, findChild<QTreeView *>(view), buttons, std::move(show));
    };
    RecordButtons accountButtons = buttonsOf(this, u"sbtSMTP"_s, usualOrder, noAccounts);
    accountButtons.add = nullptr; // a menu adds
    makePresetMenu(tab(m_accounts, u"lsv(3)"_s, accountButtons, dialog(accountForm)));
    tab(m_proxies, u"lsv(2)"_s, buttonsOf(this, u"sbtProxy"_s, proxyOrder, noProxies), dialog(proxyForm));
    tab(m_senders, u"lsv(0)"_s, buttonsOf(this, u"sbtSender"_s, usualOrder, noSenders), dialog(senderForm));
    tab(m_signatures, u"lsv(1)"_s, buttonsOf(this, u"sbtSign"_s, signatureOrder, noSignatures), {});
    m_signatureTab = new SignatureTab(this, m_signatures, m_globals, m_hooks.macroItems);
    m_settings = new SettingsTab(this, {m_hooks.encodingName, [this](const QString &displayName) {
                                            return selectEncodingOfName(m_message, displayName);
                                        }});
}

void frmPubOptions::makePresetMenu(RecordTab *accounts)
{
    auto *mena = new QMenu(this);
    mena->setObjectName(u"mena"_s);
    const auto add = [&](const QString &name, const QString &caption, const QString &line) {
        QAction *item = mena->addAction(caption);
        item->setObjectName(name);
        connect(item, &QAction::triggered, accounts, [accounts, line] { accounts->add(line); });
    };
    add(u"menan"_s, QString::fromUtf16(newAccountItem), {});
    add(u"menag"_s, QString::fromUtf16(gmailAccountItem), presetLine(menagPreset));
    add(u"menah"_s, QString::fromUtf16(yahooAccountItem), presetLine(menahPreset));
    auto *button = findChild<QAbstractButton *>(u"sbtSMTP(0)"_s);
    connect(button, &QAbstractButton::clicked, mena,
            [mena, button] { mena->popup(button->mapToGlobal(QPoint(0, button->height()))); });
}

void frmPubOptions::connectButtons()
{
    const auto onClick = [this](int index, void (frmPubOptions::*action)()) {
        connect(findChild<QAbstractButton *>(u"sbt(%1)"_s.arg(index)), &QAbstractButton::clicked, this, action);
    };
    onClick(0, &frmPubOptions::save);
    onClick(1, &frmPubOptions::restore);
    onClick(15, &frmPubOptions::test);
    connect(findChild<QAbstractButton *>(u"sbt(2)"_s), &QAbstractButton::clicked, this, &QWidget::close);
    connect(findChild<QAbstractButton *>(u"sbt(3)"_s), &QAbstractButton::clicked, this, [this] { m_hooks.help(); });
    findChild<QAbstractButton *>(u"sbtSign(5)"_s)->setIcon(themeIcon(u"fileadd"_s));
    findChild<QAbstractButton *>(u"sbtSign(6)"_s)->setIcon(themeIcon(u"open"_s));
}

void frmPubOptions::addKeys()
{
    auto *keys = new quillon::FormKeys(this);
    const auto addTo = [this, keys](int tab, const std::array<ButtonKey, 6> &lines) {
        for (const ButtonKey &line : lines) {
            auto *button = findChild<QAbstractButton *>(line.button);
            const auto press = [this, button] {
                m_signatureTab->finishRename();
                button->click();
            };
            keys->on(line.key, press, [this, tab] { return m_ui->sst->currentIndex() == tab; });
        }
    };
    addTo(ProxyTab, keysOf(u"sbtProxy"_s, proxyOrder));
    addTo(AccountTab, keysOf(u"sbtSMTP"_s, usualOrder));
    addTo(SenderTab, keysOf(u"sbtSender"_s, usualOrder));
    addTo(SignaturesTab, signatureKeys());
    keys->on(
        Qt::CTRL | Qt::Key_A, [this] { m_signatureTab->selectAllText(); },
        [this] { return m_ui->sst->currentIndex() == SignaturesTab && !m_signatureTab->isRenaming(); });
    keys->on(
        Qt::Key_F2, [this] { m_signatureTab->rename(); },
        [this] { return findChild<QWidget *>(u"lsv(1)"_s)->hasFocus(); });
    keys->on(Qt::Key_F1, [this] { findChild<QAbstractButton *>(u"sbt(3)"_s)->click(); });
}

void frmPubOptions::showTab(int tab)
{
    m_ui->sst->setCurrentIndex(tab);
}

void frmPubOptions::ShowOptionsTab(int tab)
{
    const bool hasTest = tab == ProxyTab || tab == AccountTab;
    findChild<QWidget *>(u"sbt(15)"_s)->setVisible(hasTest);
    m_ui->lblReason->setVisible(hasTest); // the other tabs have better use for its lines
    showMnemonicsOfTab(m_ui->sst, tab);
    if (tab == OtherTab) {
        m_ui->lblFontSize->setText(QString::fromUtf16(fontSizeCaption));
        m_ui->lblObo->setText(QString::fromUtf16(oboCaption));
        findChild<QAbstractButton *>(u"cbx(1)"_s)->setText(QString::fromUtf16(emptyFolderCaption));
    }
}

void frmPubOptions::LoadOptionsForm()
{
    m_settings->load(m_globals);
}

void frmPubOptions::loadLists()
{
    for (RecordList *list : {&m_proxies, &m_accounts, &m_senders, &m_signatures}) {
        list->load();
    }
    m_hooks.refillMainWindow();
}

void frmPubOptions::save()
{
    if (m_settings->usesProxy() && m_proxies.isEmpty()) {
        showMessage(u"NEED_PROXY"_s, quillon::InformationBox);
        showTab(ProxyTab);
        return;
    }
    storeSettings(m_globals, m_settings->changes());
    LoadSettings(m_globals);
    showMessage(u"SAVE_SUCC"_s, quillon::InformationBox);
}

void frmPubOptions::restore()
{
    if (showMessage(u"RESTORE_SET"_s, quillon::YesNoCancelBox) == quillon::BoxAnswer::Yes) {
        WriteDefaultSettings(m_globals);
        LoadSettings(m_globals);
        LoadOptionsForm();
    }
}

void frmPubOptions::test()
{
    const bool ofAccount = m_ui->sst->currentIndex() == AccountTab;
    const RecordList &list = ofAccount ? m_accounts : m_proxies;
    if (list.selected() < 0) {
        showMessage(ofAccount ? u"NEED_SMTP_T"_s : u"NEED_PROXY_T"_s, quillon::InformationBox);
        return;
    }
    const QString line = list.selectedLine();
    if (!ofAccount) {
        m_test.start(showTest(u"CONN_PROXY"_s, TestProxyConnection(line, readSite(m_globals.programFolder))));
        return;
    }
    if (m_settings->usesProxy() && m_proxies.isEmpty()) {
        showMessage(u"NEED_PROXY_TEST"_s, quillon::InformationBox);
        showTab(ProxyTab);
        return;
    }
    const QString proxy = m_settings->usesProxy() ? m_globals.settings.text(Setting::DefaultProxy) : QString();
    m_test.start(showTest(u"CONN_SMTP"_s, TestSmtpConnection(line, proxy)));
}

quillon::Task<> frmPubOptions::showTest(QString key, quillon::Task<ConnectionTestResult> test)
{
    auto *status = findChild<QLabel *>(u"lbl(14)"_s);
    m_ui->lblReason->clear();
    m_ui->lblReason->setToolTip({});
    for (QLabel *label : {status, static_cast<QLabel *>(m_ui->lblReason)}) {
        QPalette readable = label->palette(); // also while the form is disabled
        readable.setColor(QPalette::Disabled, QPalette::WindowText,
                          palette().color(QPalette::Active, QPalette::WindowText));
        label->setPalette(readable);
    }
    status->setText(LookupText(key));
    setCursor(Qt::WaitCursor);
    const QPointer<QWidget> focus = focusWidget(); // a form that is disabled loses it
    setEnabled(false);
    m_testing = true;

    auto hourglass = std::make_unique<WaitPointer>();
    const ConnectionTestResult result = co_await test;
    hourglass.reset();
    m_testing = false;
    m_ui->lblReason->setText(result.reason);
    m_ui->lblReason->setToolTip(result.reason); // a long word is cut off at the end of the form
    if (!result.works) {
        status->clear(); // it is over, and the reason is what is to be read
    }
    co_await messageShownWith(result.reason, key + (result.works ? u"_SUCC"_s : u"_UNSU"_s),
                              result.works ? quillon::InformationBox : quillon::WarningBox);
    status->clear();
    unsetCursor();
    setEnabled(true);
    if (focus) {
        focus->setFocus();
    }
}

void frmPubOptions::closeEvent(QCloseEvent *event)
{
    if (m_testing && event->spontaneous()) {
        event->ignore(); // a disabled form cannot be closed by its user
        return;
    }
    m_signatureTab->finishRename();
    QDialog::closeEvent(event);
    if (event->isAccepted()) {
        m_test.end(); // the program's exit closes the form meanwhile
    }
    if (event->isAccepted() && m_hooks.refillMainWindow) {
        std::exchange(m_hooks.refillMainWindow, {})();
    }
}

} // namespace corvane
