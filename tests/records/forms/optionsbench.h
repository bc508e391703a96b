#pragma once

#include "quillon/forms/formregistry.h"
#include "records/forms/frmpuboptions.h"
#include "records/forms/frmpubproxy.h"
#include "records/forms/frmpubsmtp.h"
#include "support/expectedprompts.h"
#include "support/fakewindow.h"
#include "support/temporarytree.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTabWidget>
#include <QTest>
#include <QTreeView>

#include <memory>

/// The main window as the options see it, with a record of the encodings that were selected.
class EncodingWindow : public FakeWindow {
public:
    void selectEncoding(int index) override
    {
        FakeWindow::selectEncoding(index);
        selected.append(index);
    }
    QList<int> selected;
};

/// A line of each of the two files that a connection needs.
inline const QString oneAccount = QStringLiteral("mail.example\t25\tN\tN\t\t\tAnn\tann@a.example\t\t\t/SAEND");
inline const QString oneProxy = QStringLiteral("Socks5\tproxy.example\t1080\tN\t\t\t/PSEND");

/// The options dialog over a data tree of its own, driven by the names of its controls.
class OptionsBench {
public:
    using Tab = corvane::OptionsTab;

    OptionsBench()
    {
        tree.prepare();
        corvane::setLanguageFolder(QStringLiteral(TEST_SOURCE_DIR "/../../../language/en"));
        window.encodings = globals().text.GetEncodingList().split(QStringLiteral(" || "));
        forms.add(QStringLiteral("frmPubOptions"), [this] {
            return new corvane::frmPubOptions(
                globals(), window, forms,
                {[this] { refill(); }, [this] { return encodingName(); }, [this] { return macroItems; }, help});
        });
        forms.add(QStringLiteral("frmPubProxy"), [] { return new corvane::frmPubProxy([] {}); });
        forms.add(QStringLiteral("frmPubSMTP"), [] { return new corvane::frmPubSMTP([] {}); });
    }

    corvane::ApplicationGlobals &globals() { return tree.globals; }
    corvane::frmPubOptions *form() { return forms.as<corvane::frmPubOptions>(QStringLiteral("frmPubOptions")); }
    [[nodiscard]] bool isLoaded() const { return forms.isLoaded(QStringLiteral("frmPubOptions")); }
    template <typename Control> Control *get(const QString &name)
    {
        auto *control = form()->findChild<Control *>(name);
        if (!control) {
            qFatal("there is no %s", qPrintable(name));
        }
        return control;
    }
    QAbstractButton *button(const QString &name) { return get<QAbstractButton>(name); }
    QAbstractButton *sbt(int index) { return button(QStringLiteral("sbt(%1)").arg(index)); }
    /// Presses Test, and lets the event loop run until the test is over and the form, if it is still there, at rest.
    void clickTest()
    {
        sbt(15)->click();
        while (isLoaded() && !form()->isEnabled()) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
    }
    QAbstractButton *sign(int index) { return button(QStringLiteral("sbtSign(%1)").arg(index)); }
    QAbstractButton *cbx(int index) { return button(QStringLiteral("cbx(%1)").arg(index)); }
    QAbstractButton *opt(int index) { return button(QStringLiteral("opt(%1)").arg(index)); }
    QLineEdit *txt(int index) { return get<QLineEdit>(QStringLiteral("txt(%1)").arg(index)); }
    QComboBox *cbb(int index) { return get<QComboBox>(QStringLiteral("cbb(%1)").arg(index)); }
    QTreeView *lsv(int index) { return get<QTreeView>(QStringLiteral("lsv(%1)").arg(index)); }
    QTabWidget *sst() { return get<QTabWidget>(QStringLiteral("sst")); }
    QPlainTextEdit *utbSign() { return get<QPlainTextEdit>(QStringLiteral("utbSign")); }
    QLabel *status() { return get<QLabel>(QStringLiteral("lbl(14)")); }

    /// Shows the dialog on a tab, as the active window.
    void open(int tab)
    {
        form()->showTab(tab);
        form()->show();
        QVERIFY(QTest::qWaitForWindowActive(form()));
        QCoreApplication::processEvents();
    }
    void save()
    {
        prompts.expectBox(QStringLiteral("SAVE_SUCC"), quillon::InformationBox);
        sbt(0)->click();
    }
    void focus(QWidget *control)
    {
        control->setFocus();
        QCoreApplication::processEvents();
    }
    [[nodiscard]] QString focused()
    {
        const QWidget *widget = form()->focusWidget();
        return widget ? widget->objectName() : QString();
    }

    /// The texts of a list's first column, top to bottom.
    QStringList rows(int list)
    {
        const QAbstractItemModel *model = lsv(list)->model();
        QStringList texts;
        for (int row = 0; row < model->rowCount(); ++row) {
            texts.append(model->index(row, 0).data().toString());
        }
        return texts;
    }
    /// The texts of the rows shown bold.
    QStringList boldRows(int list)
    {
        const QAbstractItemModel *model = lsv(list)->model();
        QStringList texts;
        for (int row = 0; row < model->rowCount(); ++row) {
            if (model->index(row, 0).data(Qt::FontRole).value<QFont>().bold()) {
                texts.append(model->index(row, 0).data().toString());
            }
        }
        return texts;
    }
    QStringList selectedRows(int list)
    {
        QStringList texts;
        const QModelIndexList selected = lsv(list)->selectionModel()->selectedRows();
        for (const QModelIndex &row : selected) {
            texts.append(row.data().toString());
        }
        return texts;
    }
    /// Clicks a row as the mouse does.
    void click(int list, int row, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTreeView *view = lsv(list);
        const QModelIndex index = view->model()->index(row, 0);
        view->scrollTo(index);
        QTest::mouseClick(view->viewport(), Qt::LeftButton, modifiers, view->visualRect(index).center());
    }

    /// The editor of a signature's name in the list; nullptr while none is open.
    QLineEdit *nameEditor() { return lsv(1)->viewport()->findChild<QLineEdit *>(); }
    /// Waits until an editor that was closed is gone, and what was typed has been taken.
    static void settle()
    {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents();
    }

    [[nodiscard]] QByteArray options() const { return contentOf(tree.globals.paths.optionsFile); }
    /// One setting as it stands in the file.
    [[nodiscard]] QString stored(const QString &section, const QString &key) const
    {
        return tree.globals.system.ReadSetting(tree.globals.paths.optionsFile, section, key);
    }
    [[nodiscard]] QString other(const QString &key) const { return stored(QStringLiteral("Other"), key); }
    [[nodiscard]] QByteArray signs() const { return contentOf(tree.globals.paths.signsFile); }
    [[nodiscard]] QString signFile(const QString &name) const
    {
        return tree.globals.paths.signs + QStringLiteral("/sign_") + name + QStringLiteral(".dll");
    }
    [[nodiscard]] QByteArray signText(const QString &name) const { return contentOf(signFile(name)); }
    /// Puts signatures into the files; call it before the dialog is made.
    void putSignatures(const QByteArray &list, const QMap<QString, QByteArray> &texts = {})
    {
        writeFile(globals().paths.signsFile, list);
        for (auto text = texts.cbegin(); text != texts.cend(); ++text) {
            writeFile(signFile(text.key()), text.value());
        }
    }
    /// Enters another value for every setting that Save writes without asking for a proxy.
    void changeAll()
    {
        cbx(4)->setChecked(false);
        opt(2)->setChecked(true);
        cbb(1)->setCurrentText(QStringLiteral("Büro Grotesk"));
        cbb(2)->setCurrentText(QStringLiteral("13.5"));
        opt(6)->setChecked(true);
        txt(14)->setText(QStringLiteral("30"));
        txt(15)->setText(QStringLiteral("2"));
        txt(0)->setText(QStringLiteral("7"));
        cbx(1)->setChecked(true);
    }
    /// Puts a memory copy of a setting in place without writing it; call it before the dialog is made.
    void setOther(corvane::Setting key, const QString &value) { globals().settings.set(key, value); }

    TemporaryTree tree;
    ExpectedPrompts prompts;
    EncodingWindow window;
    std::function<void()> help = [] {};
    QList<QAction *> macroItems;
    int refills = 0;                ///< how often the main window's boxes were filled
    std::function<void()> refilled; ///< runs at each time
    quillon::FormRegistry forms;

private:
    void refill()
    {
        ++refills;
        if (refilled) {
            refilled();
        }
    }
    [[nodiscard]] QString encodingName() const
    {
        const QString code = tree.globals.settings.text(corvane::Setting::Encoding);
        for (const QString &entry : window.encodings) {
            if (entry.section(QStringLiteral(" | "), 0, 0) == code) {
                return entry.section(QStringLiteral(" | "), 1);
            }
        }
        return {};
    }
};
