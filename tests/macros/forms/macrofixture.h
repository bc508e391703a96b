#pragma once

#include "macros/forms/frmpubmacro.h"
#include "macros/forms/frmpubmacrodetail.h"
#include "macros/forms/macroitem.h"
#include "macros/macrocatalogue.h"
#include "quillon/forms/formregistry.h"
#include "support/expectedprompts.h"
#include "support/temporarytree.h"
#include "support/testclock.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>

/// The two macro dialogs over a data tree of their own, driven by the names of their controls.
class MacroFixture {
public:
    MacroFixture()
    {
        tree.prepare();
        corvane::seedMacros(tree.globals);
        forms.add(QStringLiteral("frmPubMacro"), [this] {
            return new corvane::frmPubMacro(tree.globals, forms, {[this] { ++menuLoads; }, help});
        });
        forms.add(QStringLiteral("frmPubMacroDetail"), [this] { return new corvane::frmPubMacroDetail(help); });
    }

    corvane::frmPubMacro *manager() { return forms.as<corvane::frmPubMacro>(QStringLiteral("frmPubMacro")); }
    corvane::frmPubMacroDetail *detail()
    {
        return forms.as<corvane::frmPubMacroDetail>(QStringLiteral("frmPubMacroDetail"));
    }
    template <typename Control> static Control *get(QWidget *form, const QString &name)
    {
        auto *control = form->findChild<Control *>(name);
        if (!control) {
            qFatal("there is no %s", qPrintable(name));
        }
        return control;
    }
    QTreeWidget *list() { return get<QTreeWidget>(manager(), QStringLiteral("lsv")); }
    QPushButton *button(const QString &name) { return get<QPushButton>(manager(), name); }
    QPushButton *detailButton(const QString &name) { return get<QPushButton>(detail(), name); }
    QLineEdit *txtMacro() { return get<QLineEdit>(detail(), QStringLiteral("txtMacro")); }
    QLineEdit *txtString() { return get<QLineEdit>(detail(), QStringLiteral("txtString")); }
    QComboBox *cbbCate() { return get<QComboBox>(detail(), QStringLiteral("cbbCate")); }

    /// The row of that macro.
    QTreeWidgetItem *row(const QString &macro)
    {
        const auto found = list()->findItems(macro, Qt::MatchExactly | Qt::MatchCaseSensitive);
        if (found.isEmpty()) {
            qFatal("there is no row %s", qPrintable(macro));
        }
        return found.constFirst();
    }
    /// Clicks a row as the mouse does.
    void click(const QString &macro, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTreeWidgetItem *item = row(macro);
        list()->scrollToItem(item);
        QTest::mouseClick(list()->viewport(), Qt::LeftButton, modifiers, list()->visualItemRect(item).center());
    }
    /// The texts of one column, top to bottom.
    QStringList column(int index)
    {
        QStringList texts;
        for (int i = 0; i < list()->topLevelItemCount(); ++i) {
            texts.append(list()->topLevelItem(i)->text(index));
        }
        return texts;
    }
    void enter(const QString &macro, const QString &text, const QString &category = QStringLiteral("My Information"))
    {
        txtMacro()->setText(macro);
        txtString()->setText(text);
        cbbCate()->setCurrentText(category);
    }
    void show()
    {
        manager()->show();
        QVERIFY(QTest::qWaitForWindowActive(manager()));
    }
    void showDetail()
    {
        detail()->show();
        QVERIFY(QTest::qWaitForWindowActive(detail()));
    }

    [[nodiscard]] const QString &file() const { return tree.globals.paths.macrosFile; }
    [[nodiscard]] QStringList lines() const { return tree.globals.lines.ReadLines(file()); }

    TemporaryTree tree;
    TestClock clock{QDateTime(QDate(2026, 11, 21), QTime(14, 5, 9))};
    quillon::FormRegistry forms;
    std::function<void()> help = [] {};
    int menuLoads = 0;
};
