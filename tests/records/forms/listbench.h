#pragma once

#include "core/recordline.h"
#include "optionsbench.h"
#include "records/forms/frmpubsender.h"
#include "records/recordfixture.h"

#include <QCheckBox>
#include <QHeaderView>
#include <QMenu>
#include <QRadioButton>

/// How the tab of one kind of records looks from outside.
struct TabFacts {
    KindFacts kind;
    int tab;
    int list;                                        ///< index of lsv
    QString group;                                   ///< name of the row of buttons
    QString dialog;                                  ///< name of the form
    int add, edit, copy, remove, clear, makeDefault; ///< indexes in the row of buttons
    QString what;                                    ///< a record, as captions name it
    QStringList editNames;                           ///< by what the captions of edits name the three records
    QList<std::pair<QString, QString>> entry;        ///< boxes and texts of a new record
    QString entered;                                 ///< its line
    QString duplicate;                               ///< key of the message for a record that is there already
    QString saveAndAdd, saveAndClose, close;         ///< buttons of the dialog
};

inline QList<TabFacts> tabs()
{
    const auto text = [](const char *name) { return QString::fromLatin1(name); };
    return {{proxyFacts(),
             corvane::ProxyTab,
             2,
             text("sbtProxy"),
             text("frmPubProxy"),
             0,
             1,
             5,
             2,
             3,
             4,
             text("Proxy Server"),
             {text("zeta.example:1080"), text("alpha.example:1081"), text("mid.example:9050")},
             {{text("txt(0)"), text("new.example")},
              {text("txt(1)"), text("1090")},
              {text("txt(2)"), text("dora")},
              {text("txt(3)"), text("pass-of-dora")}},
             text("Socks5\tnew.example\t1090\tN\tdora\tpass-of-dora\t/PSEND"),
             text("PROXY_EXISTS"),
             text("sbtSA"),
             text("sbtSC"),
             text("sbtClose")},
            {accountFacts(),
             corvane::AccountTab,
             3,
             text("sbtSMTP"),
             text("frmPubSMTP"),
             0,
             1,
             2,
             3,
             4,
             5,
             text("SMTP Account"),
             {text("zann@one.example"), text("bob@two.example"), text("cy@three.example")},
             {{text("txt(0)"), text("new.example")},
              {text("txt(2)"), text("dora")},
              {text("txt(3)"), text("pass-of-dora")},
              {text("txt(5)"), text("dora@new.example")}},
             text("new.example\t25\tN\tY\tdora\tpass-of-dora\tdora\tdora@new.example\tdora\tdora@new.example\t/SAEND"),
             text("SMTP_EXISTS"),
             text("sbtSA"),
             text("sbtSC"),
             text("sbtClose")},
            {senderFacts(),
             corvane::SenderTab,
             0,
             text("sbtSender"),
             text("frmPubSender"),
             0,
             1,
             2,
             3,
             4,
             5,
             text("Custom Sender"),
             {text("<zoe@one.example>"), text("<ann@two.example>"), text("<mia@three.example>")},
             {{text("txtDisp"), text("Dora")}, {text("txtEmail"), text("dora@new.example")}},
             text("Dora\tdora@new.example\t"),
             text("SEND_EXISTS"),
             text("sbt(0)"),
             text("sbt(1)"),
             text("sbt(2)")}};
}

/// The options dialog with the dialogs of its lists, on the tab of one kind.
class ListBench : public OptionsBench {
public:
    explicit ListBench(const QString &kind)
    {
        for (const TabFacts &tab : tabs()) {
            if (tab.kind.name == kind) {
                facts = tab;
            }
        }
        forms.add(QStringLiteral("frmPubSender"), [] { return new corvane::frmPubSender([] {}); });
    }

    /// Puts lines into the file and a default into the settings, and shows the tab.
    void start(const QStringList &lines, const QString &standard = {})
    {
        writeFile(path(), octetsOf(lines));
        facts.kind.kind().storeDefault(globals(), standard);
        open(facts.tab);
    }
    /// The same with the three records; the first one is the default.
    void startAll() { start(facts.kind.records, facts.kind.records[0]); }

    [[nodiscard]] QString path() { return globals().paths.*facts.kind.file; }
    [[nodiscard]] QByteArray file() { return contentOf(path()); }
    QTreeView *view() { return lsv(facts.list); }
    /// What the rows keep of their lines, top to bottom.
    QStringList lines()
    {
        QStringList kept;
        for (int row = 0; row < view()->model()->rowCount(); ++row) {
            kept.append(view()->model()->index(row, 0).data(corvane::RecordModel::LineRole).toString());
        }
        return kept;
    }
    /// What stands in the first column of a record's row.
    [[nodiscard]] QString firstCell(const QString &line) const
    {
        return corvane::recordField(line, facts.kind.kind().columns[0]);
    }
    /// The first cells of the bold rows.
    QStringList bold() { return boldRows(facts.list); }
    void clickRow(int row, Qt::KeyboardModifiers modifiers = Qt::NoModifier) { click(facts.list, row, modifiers); }
    void clickHeader(int column)
    {
        QHeaderView *header = view()->header();
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
                          {header->sectionViewportPosition(column) + 20, header->height() / 2});
    }
    /// Presses the button of that index of the tab's row.
    void press(int index) { button(facts.group + QStringLiteral("(%1)").arg(index))->click(); }
    void pressWhileAsked(int index, const QString &key, quillon::BoxAnswer answer)
    {
        prompts.expectBox(key, quillon::YesNoBox, answer);
        press(index);
    }
    /// Adds by the tab's own way: accounts have a menu.
    void pressAdd()
    {
        if (facts.group == QStringLiteral("sbtSMTP")) {
            get<QAction>(QStringLiteral("menan"))->trigger();
        } else {
            press(facts.add);
        }
    }

    /// Says what is done in the tab's dialog the next time it is shown.
    void inDialog(const std::function<void()> &run)
    {
        prompts.expectForm(facts.dialog, -1, [this, run] {
            run();
            QVERIFY2(!forms.isLoaded(facts.dialog), "the dialog was left open");
        });
    }
    /// Expects the dialog under a caption, and closes it.
    void expectDialog(const QString &caption)
    {
        inDialog([this, caption] {
            QCOMPARE(dialog()->windowTitle(), caption);
            closeDialog();
        });
    }
    void expectAddDialog() { expectDialog(QStringLiteral("Add ") + facts.what); }
    void expectEditDialog(int row)
    {
        expectDialog(QStringLiteral("Edit %1 - %2").arg(facts.what, facts.editNames[row]));
    }
    /// Enters these texts in the tab's dialog, which a button opens, and saves.
    void enterWith(int buttonIndex, const QList<std::pair<QString, QString>> &texts)
    {
        inDialog([this, texts] {
            enter(texts);
            saveAndClose();
        });
        press(buttonIndex);
    }
    corvane::RecordDialog *dialog() { return forms.as<corvane::RecordDialog>(facts.dialog); }
    QLineEdit *box(const QString &name) { return dialog()->findChild<QLineEdit *>(name); }
    void enter(const QList<std::pair<QString, QString>> &texts)
    {
        for (const auto &[name, value] : texts) {
            box(name)->setText(value);
        }
    }
    void inDialogPress(const QString &name) { dialog()->findChild<QAbstractButton *>(name)->click(); }
    void saveAndClose() { inDialogPress(facts.saveAndClose); }
    void closeDialog() { inDialogPress(facts.close); }

    TabFacts facts;
};

/// A row of test data for each tab with a dialog.
inline void addTabs()
{
    addKinds();
}
