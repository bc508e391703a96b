#pragma once

#include "app/program.h"
#include "composer/frmpubmain.h"
#include "core/formnames.h"
#include "support/expectedprompts.h"
#include "support/temporarytree.h"
#include "support/testclock.h"
#include "support/testopener.h"
#include "support/testprocesses.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QMenu>
#include <QTest>
#include <QTimer>

#include <algorithm>

/// The program over a data tree of its own, with nothing of the desktop behind it. What becomes of the processes, the
/// event loop and the prompts is kept in steps().
class ProgramFixture {
public:
    /// An account that can be used.
    static constexpr char account[] = "smtp.example.com\t25\tN\tN\t\t\tAnn Lee\tann@example.com\t\t\t/SAEND";

    ProgramFixture()
    {
        tree.prepare();
        const QString companion = programFolder() + QStringLiteral("/CorvaneS.exe");
        writeFile(companion, "#!/bin/sh\n");
        QFile::setPermissions(companion, QFileDevice::ReadOwner | QFileDevice::ExeOwner);
        processes.told = [this](const QString &step) { note(step); };
    }
    ~ProgramFixture() { program.reset(); }
    ProgramFixture(const ProgramFixture &) = delete;
    ProgramFixture &operator=(const ProgramFixture &) = delete;

    [[nodiscard]] const QString &programFolder() const { return tree.globals.programFolder; }
    void set(const char *section, const char *key, const QString &value)
    {
        tree.globals.system.WriteSetting(tree.globals.paths.optionsFile, QString::fromLatin1(section),
                                         QString::fromLatin1(key), value);
    }
    /// Makes the account the default, so that nobody asks for one.
    void addAccount(const QByteArray &line = account)
    {
        writeFile(tree.globals.paths.smtpFile, line + "\r\n");
        set("SMTP Account", "Default", QString::fromLatin1(line));
    }

    void start(bool stopOnFault = false)
    {
        corvane::ProgramServices services;
        services.trayAvailable = [this] { return tray; };
        services.quit = [this] { note(QStringLiteral("quit")); };
        services.prompts = onScreen ? nullptr : &prompts;
        program = std::make_unique<corvane::Program>(programFolder(), stopOnFault, services);
        program->start();
    }
    /// Lets the splash's time come, and waits until it has handed over.
    void handOver()
    {
        auto *tim = form(corvane::splashForm)->findChild<QTimer *>(QStringLiteral("tim"));
        tim->setInterval(0);
        QTRY_VERIFY(!isLoaded(corvane::splashForm));
    }
    /// The program with its main window, as a user with one account has it.
    void run()
    {
        addAccount();
        start();
        handOver();
    }

    quillon::FormRegistry &forms() { return program->forms(); }
    QWidget *form(const QString &name) { return forms().form(name); }
    [[nodiscard]] bool isLoaded(const QString &name) { return forms().isLoaded(name); }
    corvane::frmPubMain *main() { return program->mainWindow(); }
    template <typename Control = QWidget> Control *get(QWidget *owner, const QString &name)
    {
        auto *found = owner->findChild<Control *>(name);
        if (!found) {
            qFatal("no control %s", qPrintable(name));
        }
        return found;
    }
    QAction *item(const QString &name) { return get<QAction>(main(), name); }
    QAbstractButton *button(const QString &form_, const QString &name)
    {
        return get<QAbstractButton>(form(form_), name);
    }
    /// An entry of the menu in the tray.
    static QAction *trayItem(const QString &name)
    {
        const QWidgetList windows = QApplication::topLevelWidgets();
        for (const QWidget *window : windows) {
            // The main window has a menu of this name too.
            if (window->objectName() == QStringLiteral("ment") && !window->parent()) {
                return window->findChild<QAction *>(name);
            }
        }
        qFatal("there is no menu of the tray");
    }
    [[nodiscard]] bool mainIsVisible() { return main() && main()->isVisible(); }

    /// What has happened, in order, each step with the state in which it found the windows.
    [[nodiscard]] QStringList steps() const { return m_steps; }
    /// The steps that begin so.
    [[nodiscard]] qsizetype count(const QString &beginning) const
    {
        return std::count_if(m_steps.cbegin(), m_steps.cend(),
                             [&](const QString &step) { return step.startsWith(beginning); });
    }
    [[nodiscard]] QString endOfCompanion() const
    {
        return QStringLiteral("end CorvaneS.exe on ") + tree.globals.paths.root;
    }
    [[nodiscard]] QString startOfCompanion() const
    {
        return QStringLiteral("start ") + programFolder() + QStringLiteral("/CorvaneS.exe");
    }

    TemporaryTree tree;
    TestClock clock{QDateTime(QDate(2026, 11, 21), QTime(14, 5, 9))};
    TestOpener opener;
    TestProcesses processes;
    ExpectedPrompts prompts;
    bool tray = true;      ///< the desktop has one
    bool onScreen = false; ///< prompts are real boxes and dialogs
    std::function<void()> atStep;
    std::unique_ptr<corvane::Program> program;

private:
    void note(const QString &step)
    {
        m_steps.append(step);
        if (atStep) {
            atStep();
        }
    }

    QStringList m_steps;
};
