#include "app/program.h"

#include "composer/frmpubmain.h"
#include "composer/unsavedlabel.h"
#include "core/formnames.h"
#include "core/forms/frmpubsplash.h"
#include "core/site.h"
#include "core/texts.h"
#include "macros/forms/frmpubmacro.h"
#include "macros/forms/frmpubmacrodetail.h"
#include "macros/macrocatalogue.h"
#include "message/documentflow.h"
#include "message/forms/frmpubtemplates.h"
#include "quillon/forms/windowservices.h"
#include "quillon/hook.h"
#include "recipients/forms/frmpubprompt.h"
#include "records/accountrecords.h"
#include "records/forms/frmpubproxy.h"
#include "records/forms/frmpubsender.h"
#include "records/forms/frmpubsmtp.h"
#include "records/signaturerecords.h"
#include "records/windowlists.h"
#include "sending/forms/frmpubprogress.h"
#include "shell/trayicon.h"

#include <QAction>
#include <QApplication>
#include <QEvent>
#include <QMenu>
#include <QPixmap>
#include <QPlainTextEdit>
#include <QScopedValueRollback>
#include <QTimer>

#include <utility>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

constexpr int closeMessage = 16;
constexpr int maximised = 3;

} // namespace

Program::Program(const QString &programFolder, bool stopOnFault, ProgramServices services)
    : m_companion(m_globals, stopOnFault), m_services(std::move(services)), m_asker(m_forms),
      m_before(quillon::setPrompts(m_services.prompts ? m_services.prompts : &m_asker)), m_recipients(m_globals),
      m_progress(m_forms, [this] { return m_main.get(); })
{
    quillon::requireHook(m_services.trayAvailable, u"ProgramServices::trayAvailable"_s);
    quillon::requireHook(m_services.quit, u"ProgramServices::quit"_s);
    m_globals.programFolder = programFolder;
    qApp->installEventFilter(this);
}

Program::~Program()
{
    quillon::setPrompts(m_before);
}

void Program::start()
{
    prepareProgram(m_globals);
    addForms();
    m_forms.form(splashForm)->show();
}

void Program::addForms()
{
    m_forms.add(splashForm,
                [this] { return new frmPubSplash([this] { handOverFromSplash(); }, QPixmap(u":/splash.svg"_s)); });
    m_forms.add(progressForm, [this] {
        return new frmPubProgress({[this] { m_run->requestStop(); }, [this] { m_forms.unload(progressForm); },
                                   helpOn(u"sending-progress.htm"_s)});
    });
    m_forms.add(optionsForm,
                [this] { return new frmPubOptions(m_globals, m_main->message(), m_forms, optionsHooks()); });
    m_forms.add(accountForm, [this] { return new frmPubSMTP(helpOn(u"smtp-editor.htm"_s)); });
    m_forms.add(proxyForm, [this] { return new frmPubProxy(helpOn(u"proxy-editor.htm"_s)); });
    m_forms.add(senderForm, [this] { return new frmPubSender(helpOn(u"sender-editor.htm"_s)); });
    m_forms.add(macrosForm, [this] {
        return new frmPubMacro(m_globals, m_forms, {[this] { loadMacroMenu(); }, helpOn(u"macros-manager.htm"_s)});
    });
    m_forms.add(macroDetailForm, [this] { return new frmPubMacroDetail(helpOn(u"macro-editor.htm"_s)); });
    m_forms.add(templatesForm,
                [this] { return new frmPubTemplates(m_globals, m_main->flow(), helpOn(u"templates-manager.htm"_s)); });
    m_forms.add(promptsForm, [this] {
        return new frmPubPrompt(m_globals, m_recipients.entries(), helpOn(u"prompts-manager.htm"_s));
    });
}

void Program::makeMainWindow()
{
    MainHooks hooks;
    hooks.send = [this] { m_run->run(); };
    hooks.exitProgram = [this](bool stopScheduler) { exit(stopScheduler); };
    hooks.findSmtpRecord = [this](const QString &text) { return FindSmtpRecord(m_globals, text); };
    hooks.showForm = [this](const QString &form, int tab) { showForm(form, tab); };
    hooks.findSignature = [this](const QString &name) { return signatureText(m_globals, name); };
    hooks.insertIntoSignature = [this](const QString &macro) { return insertIntoSignature(macro); };
    hooks.optionsOpen = [this] { return m_refilling || m_forms.isLoaded(optionsForm); };
    hooks.sending = [this] { return m_run && m_run->state().isTold(); };
    hooks.showProgress = [this] { return showProgress(); };
    hooks.loadLists = [this] { loadLists(); };
    hooks.checkAccount = [this] { checkAccount(); };
    hooks.prompts = [this] { return m_recipients.entries(); };
    hooks.rememberRecipients = [this] { rememberRecipients(); };
    hooks.readPrompts = [this] { m_recipients.upsReadPrompts(); };
    hooks.minimised = [this] { m_tray->minimised(); };
    hooks.closed = m_services.quit;
    m_main = std::make_unique<frmPubMain>(m_globals, std::move(hooks));
    new UnsavedLabel(m_main->statusBar(), m_unsaved);
    m_run = std::make_unique<SendRun>(
        SendRun::Rooms{m_globals, m_main->message(), m_main->view(), m_progress, m_recipients});
    m_tray = std::make_unique<TrayIcon>(
        m_main.get(),
        TrayIcon::Hooks{[this](const QString &name) { return m_main->findChild<QAction *>(name); },
                        [this](bool restoring) {
                            m_globals.RestoringFromLast = restoring;
                            if (!restoring) {
                                m_progress.ownerShown();
                            }
                        },
                        m_services.trayAvailable},
        languageFolder() + u"/menus.dll"_s);
}

void Program::handOverFromSplash()
{
    if (m_leaving) {
        return;
    }
    makeMainWindow();
    handOver(m_globals, m_companion,
             {[this] {
                  m_main->load();
                  // Not shown at all where it starts in the tray: a window that was first shown minimised may be
                  // minimised again by the window manager when it comes from there.
                  if (!m_leaving && (!m_main->isMinimized() || !m_tray->minimised())) {
                      m_main->show();
                  }
              },
              [this] {
                  m_progress.makeVisible();
                  m_progress.hide();
              },
              [this](int milliseconds) { m_main->findChild<QTimer *>(u"timPos"_s)->start(milliseconds); },
              [this] { m_forms.unload(splashForm); }, [this] { return m_leaving; }});
}

void Program::loadLists()
{
    refillMainWindow();
    loadMacroMenu();
}

void Program::refillMainWindow()
{
    m_refilling = true;
    LoadSenderLists(m_globals, m_main->message(), m_main->view());
    m_main->setSignatureMenu(signatureNames(m_globals), m_globals.settings.text(Setting::DefaultSignature));
    LoadSmtpLists(m_globals, m_main->message(), m_main->view());
    m_refilling = false;
}

OptionsHooks Program::optionsHooks()
{
    OptionsHooks hooks;
    hooks.refillMainWindow = [this] { refillMainWindow(); };
    hooks.encodingName = [this] { return m_main->EncodingDisplayName(); };
    hooks.macroItems = [this] { return m_main->findChild<QMenu *>(u"menim"_s)->actions(); };
    hooks.help = helpOn(u"options.htm"_s);
    return hooks;
}

std::function<void()> Program::helpOn(const QString &page) const
{
    return [this, page] {
        const Site site = readSite(m_globals.programFolder);
        m_globals.system.OpenTarget(site.address + u"help/manual/"_s + page, maximised);
    };
}

void Program::loadMacroMenu()
{
    seedMacros(m_globals);
    m_main->setMacroMenu(macroMenuCaptions(m_globals));
}

void Program::checkAccount() const
{
    if (!DefaultSmtpUsable(m_globals) && showMessage(u"SMTP_NOT_OK"_s, quillon::YesNoBox) == quillon::BoxAnswer::Yes) {
        quillon::prompts().showModalForm(optionsForm, AccountTab);
    }
}

void Program::showForm(const QString &form, int tab)
{
    quillon::prompts().showModalForm(form, tab);
    if (form == promptsForm) {
        m_recipients.upsReadPrompts();
    }
}

void Program::rememberRecipients()
{
    const Message &message = m_main->message();
    m_recipients.upsSavePrompts(message.text(Message::Field::To), message.text(Message::Field::CC),
                                message.text(Message::Field::BCC));
    m_recipients.upsReadPrompts();
}

bool Program::insertIntoSignature(const QString &macro)
{
    QWidget *options = m_forms.isLoaded(optionsForm) ? m_forms.form(optionsForm) : nullptr;
    auto *signature = options && options->isVisible() ? options->findChild<QPlainTextEdit *>(u"utbSign"_s) : nullptr;
    if (signature) {
        if (!signature->isReadOnly()) {
            signature->insertPlainText(macro);
        }
        signature->setFocus();
    }
    return signature != nullptr;
}

bool Program::showProgress()
{
    const bool counting = m_run->state().isCounting();
    if (counting) {
        m_progress.bringToFront();
    }
    return counting;
}

void Program::exit(bool stopScheduler)
{
    if (m_asked || m_leaving) {
        return; // the question stands already, or has had its answer
    }
    const QScopedValueRollback asked(m_asked, true);
    if (!m_main->flow().ConfirmSave()) {
        leave(stopScheduler);
    }
}

void Program::leave(bool stopScheduler)
{
    if (m_leaving) {
        return; // the event loop goes on while the companion ends
    }
    m_leaving = true;
    fallSilent();
    m_exit.start(
        carryOutLeave(stopScheduler, {[] { return false; }, // whoever is to be asked was asked before
                                      [this](const QString &form) { m_forms.unload(form); }, [this] { closeHelp(); },
                                      [this] {
                                          if (m_tray) {
                                              m_tray->takeDown();
                                          }
                                      },
                                      [this] { end(); }}));
}

quillon::Task<> Program::carryOutLeave(bool stopScheduler, ExitSteps steps)
{
    co_await exitProgram(m_companion, stopScheduler, std::move(steps));
}

void Program::endBySystem()
{
    leave(false);
}

void Program::fallSilent()
{
    quillon::setPrompts(&m_silence);
    if (m_main) {
        m_run->end();
        m_main->setEnabled(false);
    }
}

void Program::end()
{
    if (!m_main) {
        m_services.quit();
        return;
    }
    m_main->Tag = u"EXITWITHMENU"_s;
    m_main->close();
}

bool Program::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::Quit || watched != qApp) {
        return QObject::eventFilter(watched, event);
    }
    endBySystem(); // the close box's way into the tray would stand in the session's way
    return true;
}

void Program::closeHelp() const
{
    if (QWidget *help = quillon::QuillonWindows().FindWindowByTitle(QString::fromUtf16(helpTitle))) {
        quillon::QuillonWindows().SendWindowMessage(help, closeMessage, 0, 0);
    }
}

} // namespace corvane
