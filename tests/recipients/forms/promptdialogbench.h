#pragma once

#include "quillon/forms/formregistry.h"
#include "recipients/forms/frmpubprompt.h"
#include "recipients/inputprompts.h"
#include "support/expectedprompts.h"
#include "support/treefixture.h"

#include <QListView>
#include <QPushButton>
#include <QTest>

#include <functional>
#include <memory>

/// The dialog of the input prompts over a data tree of its own.
class PromptDialogBench : protected TreeFixture {
protected:
    void begin()
    {
        using namespace Qt::StringLiterals;
        makeTree();
        corvane::setLanguageFolder(QStringLiteral(TEST_SOURCE_DIR) + u"/../../../language/en"_s);
        m_memory = std::make_unique<corvane::InputPrompts>(m_tree->globals);
        m_forms = std::make_unique<quillon::FormRegistry>();
        m_forms->add(u"frmPubPrompt"_s,
                     [this] { return new corvane::frmPubPrompt(m_tree->globals, m_memory->entries(), m_help); });
    }

    void end()
    {
        m_help = [] {};
        m_forms.reset();
        m_memory.reset();
        dropTree();
    }

    corvane::frmPubPrompt *form() { return m_forms->as<corvane::frmPubPrompt>(QStringLiteral("frmPubPrompt")); }
    QListView *list() { return form()->findChild<QListView *>(QStringLiteral("lstRecips")); }
    QPushButton *button(const QString &name) { return form()->findChild<QPushButton *>(name); }
    void prompts(const QStringList &entries)
    {
        using namespace Qt::StringLiterals;
        writeFile(file(), (entries.join(u"\r\n"_s) + u"\r\n"_s).toUtf8());
        m_memory->upsReadPrompts();
    }

    void show()
    {
        form()->show();
        QVERIFY(QTest::qWaitForWindowActive(form()));
    }

    void selectRows(const QList<int> &rows)
    {
        for (const int row : rows) {
            list()->selectionModel()->select(list()->model()->index(row, 0), QItemSelectionModel::Select);
        }
    }

    QStringList rows()
    {
        QStringList texts;
        for (int row = 0; row < list()->model()->rowCount(); ++row) {
            texts.append(list()->model()->index(row, 0).data().toString());
        }
        return texts;
    }

    QStringList selected()
    {
        QStringList texts;
        for (int row = 0; row < list()->model()->rowCount(); ++row) {
            if (list()->selectionModel()->isRowSelected(row)) {
                texts.append(list()->model()->index(row, 0).data().toString());
            }
        }
        return texts;
    }

    [[nodiscard]] QStringList lines() const { return m_tree->globals.lines.ReadLines(file()); }
    [[nodiscard]] const QString &file() const { return m_tree->globals.paths.promptsFile; }

    std::unique_ptr<corvane::InputPrompts> m_memory;
    std::unique_ptr<quillon::FormRegistry> m_forms;
    std::function<void()> m_help = [] {};
};
