#pragma once

#include "quillon/forms/formregistry.h"
#include "records/forms/frmpubproxy.h"
#include "records/forms/frmpubsender.h"
#include "records/forms/frmpubsmtp.h"
#include "support/expectedprompts.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

/// One of the dialogs for a record, opened as its list opens it, and driven by the names of its controls. What it
/// stores is kept here.
class RecordDialogFixture {
public:
    using Task = corvane::RecordDialog::Task;
    using Mode = corvane::RecordDialog::Mode;

    explicit RecordDialogFixture(const QString &name) : form(name)
    {
        forms.add(QStringLiteral("frmPubSMTP"), [this] { return new corvane::frmPubSMTP(help); });
        forms.add(QStringLiteral("frmPubProxy"), [this] { return new corvane::frmPubProxy(help); });
        forms.add(QStringLiteral("frmPubSender"), [this] { return new corvane::frmPubSender(help); });
    }

    corvane::RecordDialog *dialog() { return forms.as<corvane::RecordDialog>(form); }
    template <typename Control> Control *get(const QString &name)
    {
        auto *control = dialog()->findChild<Control *>(name);
        if (!control) {
            qFatal("there is no %s", qPrintable(name));
        }
        return control;
    }
    QLineEdit *box(const QString &name) { return get<QLineEdit>(name); }
    QLineEdit *txt(int index) { return box(QStringLiteral("txt(%1)").arg(index)); }
    QCheckBox *tick(const QString &name) { return get<QCheckBox>(name); }
    QPushButton *button(const QString &name) { return get<QPushButton>(name); }
    void click(const QString &name) { button(name)->click(); }

    /// Opens the dialog; what stands in the list besides the record under edit is told by @ref taken.
    void begin(Mode mode = Mode::Add, const QString &line = {})
    {
        dialog()->begin({mode, line,
                         [this](const QString &entered) {
                             asked.append(entered);
                             return taken && taken(entered);
                         },
                         [this](const QString &entered) {
                             saved.append(entered);
                             return stores;
                         }});
    }
    void show()
    {
        dialog()->show();
        QVERIFY(QTest::qWaitForWindowActive(dialog()));
        QCoreApplication::processEvents();
    }
    void focus(QWidget *control)
    {
        control->setFocus();
        QCoreApplication::processEvents();
    }
    [[nodiscard]] QString focused()
    {
        const QWidget *widget = dialog()->focusWidget();
        return widget ? widget->objectName() : QString();
    }

    /// Presses each of the buttons that save, and sees that message come: nothing is stored, the focus is in @p
    /// control, and all its text is selected if that belongs to the message.
    void verifyFault(const QString &key, int style, const QString &control, bool selected)
    {
        for (const QString &save : std::as_const(saves)) {
            // The focus comes from elsewhere, so that it has to move and brings no selection of its own at once.
            button(saves.constFirst())->setFocus();
            box(control)->deselect();
            ExpectedPrompts prompts;
            prompts.expectBox(key, style);
            click(save);
            QCOMPARE(prompts.leftOver(), QStringList());
            QCOMPARE(focused(), control);
            QCOMPARE(box(control)->selectedText(), selected ? box(control)->text() : QString());
            QVERIFY(saved.isEmpty());
            QVERIFY(forms.isLoaded(form));
        }
    }

    /// Where the Tab key leads from @p first on, until it comes back there.
    QStringList tabOrder(const QString &first)
    {
        get<QWidget>(first)->setFocus();
        QStringList order;
        do {
            order.append(focused());
            QTest::keyClick(dialog()->focusWidget(), Qt::Key_Tab);
        } while (focused() != first && order.size() < 30);
        return order;
    }

    const QString form;
    quillon::FormRegistry forms;
    std::function<void()> help = [] {};
    std::function<bool(const QString &line)> taken;
    QStringList saves;  ///< the buttons that save
    QStringList asked;  ///< lines that were looked for in the list
    bool stores = true; ///< what is entered can be written
    QStringList saved;  ///< lines that were stored
};

/// Puts a text into a box by way of the clipboard.
inline void paste(QLineEdit *box, const QString &text)
{
    QApplication::clipboard()->setText(text);
    box->paste();
}
