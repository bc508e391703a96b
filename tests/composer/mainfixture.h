#pragma once

#include "composer/frmpubmain.h"
#include "core/texts.h"
#include "records/accountrecords.h"
#include "records/signaturerecords.h"
#include "support/expectedprompts.h"
#include "support/temporarytree.h"
#include "support/testclock.h"

#include <QAbstractButton>
#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPlainTextEdit>
#include <QTest>

/// The real main window over a data tree of its own, with the language files of the program; loaded, and shown unless
/// told otherwise.
class MainFixture {
public:
    using Field = corvane::Message::Field;

    /// @p prepare may change the data and the hooks before the window is made.
    explicit MainFixture(const std::function<void(MainFixture &)> &prepare = {}, bool show = true)
    {
        tree.prepare();
        corvane::setLanguageFolder(QStringLiteral(PROGRAM_FOLDER));
        hooks.send = [this] { ++sends; };
        hooks.exitProgram = [this](bool stopScheduler) { exits.append(stopScheduler); };
        hooks.findSmtpRecord = [this](const QString &text) { return corvane::FindSmtpRecord(globals(), text); };
        hooks.insertIntoSignature = [](const QString &) { return false; };
        hooks.findSignature = [this](const QString &name) { return corvane::signatureText(globals(), name); };
        hooks.showForm = [this](const QString &form, int tab) {
            shown.append(form + QStringLiteral(" tab ") + QString::number(tab));
            if (whenShown) {
                whenShown(form);
            }
        };
        hooks.optionsOpen = [this] { return optionsOpen; };
        hooks.sending = [this] { return sending; };
        hooks.showProgress = [] { return false; };
        hooks.loadLists = [] {};
        hooks.checkAccount = [] {};
        hooks.readPrompts = [] {};
        hooks.prompts = [this] { return prompted; };
        hooks.rememberRecipients = [this] { ++remembered; };
        hooks.minimised = [this] { ++minimised; };
        hooks.closed = [this] { ++closed; };
        if (prepare) {
            prepare(*this);
        }
        window = std::make_unique<corvane::frmPubMain>(globals(), hooks);
        window->load();
        if (show) {
            window->show();
            window->activateWindow();
        }
    }

    corvane::ApplicationGlobals &globals() { return tree.globals; }
    corvane::Message &message() { return window->message(); }
    corvane::Window &view() { return window->view(); }

    /// The control of that name; the test fails hard if there is none.
    template <typename Control = QWidget> Control *get(const QString &name) const
    {
        auto *found = window->findChild<Control *>(name);
        if (!found) {
            qFatal("no control %s", qPrintable(name));
        }
        return found;
    }
    QAction *item(const QString &name) const { return get<QAction>(name); }
    QAbstractButton *button(const QString &name) const { return get<QAbstractButton>(name); }
    QComboBox *combo(int index) const { return get<QComboBox>(QStringLiteral("cbb(%1)").arg(index)); }
    QPlainTextEdit *recipients(int index) const { return get<QPlainTextEdit>(QStringLiteral("txt(%1)").arg(index)); }
    QString panel() const { return get<QLabel>(QStringLiteral("stb(1)"))->text(); }

    /// Writes smtp.dll with one account of Ann and one without a name, and makes the first the default.
    void addAccounts()
    {
        const QByteArray ann = "smtp.example.com\t25\tN\tN\t\t\tAnn Lee\tann@example.com\t\t\t/SAEND";
        const QByteArray office = "mail.example.com\t465\tS\tN\t\t\t\toffice@example.com\t\t\t/SAEND";
        writeFile(globals().paths.smtpFile, ann + "\r\n" + office + "\r\n");
        globals().settings.set(corvane::Setting::DefaultAccount, QString::fromLatin1(ann));
    }

    TemporaryTree tree;
    TestClock clock{QDateTime(QDate(2026, 3, 9), QTime(14, 5, 9))};
    ExpectedPrompts prompts;
    corvane::MainHooks hooks;
    int sends = 0;
    QList<bool> exits;
    QStringList shown; ///< forms, each as "frmPubOptions tab 1"
    std::function<void(const QString &form)> whenShown;
    bool optionsOpen = false;
    bool sending = false;
    QStringList prompted; ///< the earlier recipients
    int remembered = 0;
    int minimised = 0;
    int closed = 0;
    std::unique_ptr<corvane::frmPubMain> window;
};
