#include "composer/frmpubmain.h"

#include "composer/accountfields.h"
#include "composer/attachmentlist.h"
#include "composer/centralarea.h"
#include "composer/commandtable.h"
#include "composer/composertexts.h"
#include "composer/contentlayout.h"
#include "composer/contentviews.h"
#include "composer/controltext.h"
#include "composer/editcommands.h"
#include "composer/encodingchoice.h"
#include "composer/growingboxes.h"
#include "composer/maincommands.h"
#include "composer/mainicons.h"
#include "composer/mainpreparation.h"
#include "composer/menuitemarray.h"
#include "composer/popups.h"
#include "composer/recipientcompletion.h"
#include "composer/recipientcounts.h"
#include "composer/signatureinsertion.h"
#include "composer/statushints.h"
#include "composer/ui_frmpubmain.h"
#include "composer/windowplacement.h"
#include "core/formnames.h"
#include "core/texts.h"
#include "message/documentflow.h"
#include "quillon/forms/arraynames.h"
#include "quillon/forms/formtexts.h"
#include "quillon/forms/windowservices.h"
#include "quillon/mail/htmltext.h"
#include "quillon/system/platform.h"
#include "records/recordfields.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QScopedValueRollback>
#include <QToolButton>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

constexpr double toolbarFontScale = 0.9; // lets all captions fit on a screen of 1024 pixels

} // namespace

frmPubMain::frmPubMain(ApplicationGlobals &globals, MainHooks hooks)
    : m_globals(globals), m_hooks(requireAll(std::move(hooks))), m_ui(std::make_unique<Ui::frmPubMain>())
{
    m_ui->setupUi(this);
    quillon::adoptArrayNames(this);
    prepareMainControls(this);
    m_controls = std::make_unique<MainControls>(this);
    makeConcerns();
    watchDateChoice();
    watchChanges();
    setMainIcons(this);
    QFont captions = m_ui->tlb->font();
    captions.setPointSizeF(captions.pointSizeF() * toolbarFontScale);
    m_ui->tlb->setFont(captions);
    setMacroMenu({});
    setSignatureMenu({}, {});
    m_controls->txt[0]->setFocus();
}

frmPubMain::~frmPubMain() = default;

void frmPubMain::makeConcerns()
{
    MainControls &c = *m_controls;
    m_account = new AccountFields(c.cbb[6], {{{c.cbb[0], c.opt[0]}, {c.cbb[1], c.opt[2]}}}, m_hooks.findSmtpRecord,
                                  m_globals.settings.sender());
    m_encodings =
        new EncodingChoice(c.cbb[2], c.cbb[3], findChild<QMenu *>(u"menoes"_s), findChild<QAction *>(u"menoesa(0)"_s));
    m_edit = new EditCommands(this);
    m_layout = new ContentLayout(c.header, c.utbContent, c.menve, c.tlbExpand);
    m_views = new ContentViews({c.opt[8], c.opt[9], c.menor, c.menop, c.sst, c.formattingBar, c.utbContent},
                               [this](bool rich) {
                                   if (m_commands) {
                                       m_commands->setEnabled(Command::RichOnly, rich);
                                   }
                               });
    m_popUps = new PopUps(this, {c.colorPopUp, c.lstFilter});
    m_attachments = std::make_unique<AttachmentList>(
        c.attachments, m_globals.system,
        AttachmentList::Hooks{[this] { m_message->pblnChanged = true; }, [this] { m_popUps->hide(); }});
    m_message = std::make_unique<MainWindowMessage>(c, MainWindowMessage::Rules{*m_account, *m_views, *m_attachments});
    m_view = std::make_unique<MainWindowView>(c, *m_layout);
    m_signatures = new SignatureInsertion(findChild<QMenu *>(u"menis"_s), findChild<QAction *>(u"menissa(0)"_s),
                                          *m_message, *m_view, *m_edit, m_hooks.findSignature);
    m_placement = new WindowPlacement(this, m_globals);
    for (QPlainTextEdit *box : c.txt) {
        new RecipientCompletion(box, c.lstFilter, {m_hooks.prompts, [this] { return m_view->mblnReady; }});
    }
    new GrowingBoxes(c.txt, c.attachments, c.header, findChild<QWidget *>(u"central"_s));
    m_flow = std::make_unique<DocumentFlow>(
        m_globals, *m_message, *m_view,
        DocumentFlow::Hooks{
            [this] { layOutNew(); },
            [this] { return quillon::textOfHtml(m_controls->dhe->documentHtml(), quillon::HtmlExtras::LeftOut); },
            [this] { m_hooks.showForm(templatesForm, noTab); }, m_hooks.rememberRecipients});
    m_counts =
        new RecipientCounts({c.txt, findChild<QLabel *>(u"lblSeen"_s), findChild<QWidget *>(u"sbtSeen"_s), c.menfb});
    m_commands = new CommandTable(this, mainCommands({m_hooks, m_globals, *m_message, *m_view, *m_flow, *m_edit,
                                                      *m_layout, *m_views, *m_attachments}));
    connect(c.attachments, &QListWidget::itemSelectionChanged, m_commands, [this] {
        m_commands->setEnabled(Command::OnAttachment, !m_controls->attachments->selectedItems().isEmpty());
    });
    new StatusHints(this, {statusBar(), c.panel[1], c.panel[2]},
                    {[this] { return m_hooks.sending(); }, [this](int panel) { clickPanel(panel); }});
}

void frmPubMain::watchDateChoice()
{
    const auto follow = [this](bool actual) {
        m_controls->date->setEnabled(!actual);
        m_controls->time->setEnabled(!actual);
        if (!actual) {
            const QDateTime now = quillon::systemClock().now();
            m_message->setCustomDateTime(now.date(), now.time());
        }
    };
    connect(m_controls->opt[4], &QAbstractButton::toggled, this, follow);
    follow(false); // the present moment stands there from the start
    follow(m_controls->opt[4]->isChecked());
    m_controls->date->setDisplayFormat(QLocale::system().dateFormat(QLocale::ShortFormat));
    m_controls->time->setDisplayFormat(u"HH:mm:ss"_s);
}

void frmPubMain::watchChanges()
{
    const auto changed = [this] {
        // That dialog refills the boxes of this window, which is nothing that the user did to the message.
        if (!m_hooks.optionsOpen()) {
            m_message->pblnChanged = true;
        }
    };
    for (const std::size_t box : {0U, 1U, 2U, 4U, 5U, 6U}) {
        connect(m_controls->cbb[box], &QComboBox::editTextChanged, this, changed);
    }
    for (const QPlainTextEdit *box : m_controls->txt) {
        connect(box, &QPlainTextEdit::textChanged, this, changed);
    }
    connect(m_controls->utbSubject, &QLineEdit::textChanged, this, changed);
    connect(m_controls->utbContent, &QPlainTextEdit::textChanged, this, changed);
    connect(m_controls->utbSource, &QPlainTextEdit::textChanged, this, changed);
}

void frmPubMain::load()
{
    applyTexts();
    fillNewMessage();
    m_hooks.checkAccount();
    m_message->pblnChanged = false;
    applyStartup();
    m_hooks.readPrompts();
}

void frmPubMain::applyTexts()
{
    quillon::QuillonFormTexts().ApplyControlTexts(this, languageFolder() + u"/tips.dll"_s);
    m_counts->adoptTips();
    quillon::QuillonFormTexts().ApplyMenuTexts(this, languageFolder() + u"/menus.dll"_s);
}

void frmPubMain::fillNewMessage()
{
    m_view->mblnReady = false;
    m_encodings->fill(m_globals.text.GetEncodingList());
    m_hooks.loadLists();
    fillChoices();
    fillFonts();
    m_signatures->addAutomatic(m_globals.settings, true, true); // the format is decided later
    m_message->setFormat(formatOfNewMessages());
    m_view->mblnReady = true;
}

void frmPubMain::layOutNew()
{
    fillChoices();
    const Message::Format format = formatOfNewMessages();
    m_message->setFormat(format);
    fillFonts();
    for (const auto field : {Message::Field::To, Message::Field::CC, Message::Field::BCC, Message::Field::PlainContent,
                             Message::Field::RichContent, Message::Field::Subject, Message::Field::Source}) {
        m_message->setText(field, QString());
    }
    m_message->setAttachmentPaths({});
    const bool rich = m_message->format() == Message::Format::Rich;
    m_signatures->addAutomatic(m_globals.settings, !rich, rich);
}

void frmPubMain::fillChoices()
{
    ResetMessageOptions();
    m_message->setText(Message::Field::Encoding, EncodingDisplayName());
    if (const QString &account = m_globals.settings.text(Setting::DefaultAccount); !account.isEmpty()) {
        m_message->setText(Message::Field::Account, recordField(account, AccountSenderAddress));
    }
    for (const auto choice : {Message::Choice::Sender, Message::Choice::ReplyReceiver, Message::Choice::Date}) {
        m_message->setActual(choice, true);
    }
}

Message::Format frmPubMain::formatOfNewMessages() const
{
    return m_globals.settings.is(Setting::Format, formatRich) ? Message::Format::Rich : Message::Format::Plain;
}

void frmPubMain::fillFonts()
{
    const QString name = m_globals.settings.textOrStandard(Setting::FontName);
    setComboText(m_controls->cbb[4], name);
    setComboText(m_controls->cbb[5], m_globals.settings.textOrStandard(Setting::FontSize));
    QFont font(name);
    font.setStyleHint(QFont::Monospace); // what takes the place of a Courier that is not there
    const double points = m_globals.settings.number(Setting::FontSize).value_or(0);
    font.setPointSizeF(points > 0 ? points : SettingsMemory::standardNumber(Setting::FontSize));
    m_controls->utbContent->setFont(font);
}

QString frmPubMain::EncodingDisplayName()
{
    return m_encodings->displayName(m_globals.settings.text(Setting::Encoding));
}

void frmPubMain::ResetMessageOptions()
{
    m_controls->menop->setChecked(true);
    m_message->setPriority(Message::Priority::Normal);
    m_message->setReceipt(false);
    m_message->setOneByOne(false);
}

void frmPubMain::setMacroMenu(const QStringList &captions)
{
    auto *menu = findChild<QMenu *>(u"menim"_s);
    auto *base = findChild<QAction *>(u"menimsa(0)"_s);
    rebuildItemArray(menu, base, captions);
    const QList<QAction *> items = itemArray(menu, base);
    for (const QAction *item : items) {
        connect(item, &QAction::triggered, this, [this, item] { insertMacro(itemCaption(item)); });
    }
    menu->menuAction()->setVisible(!captions.isEmpty());
}

void frmPubMain::insertMacro(const QString &macro)
{
    quillon::QuillonWindows().SetClipboardText(macro);
    if (m_hooks.insertIntoSignature(macro)) {
        return;
    }
    m_controls->utbContent->insertPlainText(macro);
    m_controls->utbContent->setFocus();
}

void frmPubMain::setSignatureMenu(const QStringList &names, const QString &defaultName)
{
    m_signatures->setMenu(names, defaultName);
}

void frmPubMain::applyStartup()
{
    const SettingsMemory &settings = m_globals.settings;
    if (settings.is(Setting::Startup, startupMaximised)) {
        setWindowState(windowState() | Qt::WindowMaximized);
    } else if (settings.is(Setting::Startup, startupTray)) {
        setWindowState(windowState() | Qt::WindowMinimized);
    }
}

void frmPubMain::clickPanel(int panel)
{
    if (m_hooks.showProgress()) {
        return;
    }
    if (const Command *about = m_commands->command(u"menha"_s); panel == 2 && about && about->run) {
        about->run();
    }
}

void frmPubMain::tellMinimised()
{
    if (isVisible() && isMinimized() && !m_toldMinimised) {
        m_placement->leaving();
        m_hooks.minimised();
    }
}

void frmPubMain::changeEvent(QEvent *event)
{
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange && m_placement) {
        m_placement->resized();
        tellMinimised();
    }
}

void frmPubMain::resizeEvent(QResizeEvent *event)
{
    QMainWindow::resizeEvent(event);
    if (m_placement) {
        m_placement->resized();
    }
}

void frmPubMain::setVisible(bool visible)
{
    if (visible && !findChild<CentralArea *>()) {
        // Not before: layouts that are asked for their sizes too early keep those.
        QWidget *focused = focusWidget();
        new CentralArea(this);
        if (focused) {
            focused->setFocus();
        }
    }
    if (visible && m_globals.RestoringFromLast) {
        m_placement->resized();
    }
    QMainWindow::setVisible(visible);
}

void frmPubMain::showEvent(QShowEvent *event)
{
    QMainWindow::showEvent(event);
    if (event->spontaneous()) {
        return;
    }
    // A window that is first shown minimised is told when the showing is over: it may be hidden then.
    QMetaObject::invokeMethod(this, &frmPubMain::tellMinimised, Qt::QueuedConnection);
}

void frmPubMain::closeEvent(QCloseEvent *event)
{
    if (Tag == u"EXITWITHMENU" || qGuiApp->isSavingSession()) {
        Tag.clear();
        event->accept();
        m_hooks.closed();
        return;
    }
    event->ignore();
    // Straight into the tray where there is one: a window that was minimised by the program itself asks to be shown
    // minimised, and the window manager may read that when the window comes back, and minimise it again.
    if (isVisible()) {
        m_placement->leaving();
        m_hooks.minimised();
    }
    if (isVisible()) {
        const QScopedValueRollback told(m_toldMinimised, true);
        setWindowState(windowState() | Qt::WindowMinimized);
    }
}

} // namespace corvane
