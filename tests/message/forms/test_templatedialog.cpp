#include "core/texts.h"
#include "message/documentflow.h"
#include "message/forms/frmpubtemplates.h"
#include "message/templatefiles.h"
#include "message/templatename.h"
#include "support/expectedprompts.h"
#include "support/fakewindow.h"
#include "support/treefixture.h"

#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace corvane;
using quillon::BoxAnswer;
using Field = Message::Field;

/// The dialog of the templates over a window of plain values.
class TestTemplateDialog : public QObject, private TreeFixture {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        makeTree();
        setLanguageFolder(u"" PROGRAM_FOLDER ""_s);
        m_window = std::make_unique<FakeWindow>();
        m_window->windowTitle = editTitle(u"open"_s);
        m_prompts = std::make_unique<ExpectedPrompts>();
        m_news = 0;
        m_helps = 0;
        m_act = {};
        m_flow = std::make_unique<DocumentFlow>(
            m_tree->globals, *m_window, *m_window,
            DocumentFlow::Hooks{[this] { ++m_news; }, [] { return QString(); }, [this] { runDialog(); }, [] {}});
    }
    void cleanup()
    {
        m_dialog.reset();
        m_flow.reset();
        m_prompts.reset();
        m_window.reset();
        dropTree();
    }

    void choosingShowsItsListAndButtons();
    void managingShowsItsListAndButtons();
    void withoutTemplatesOnlyCloseAndHelpWork();
    void namesStandInTheirOrder();
    void aClickPreviews_data();
    void aClickPreviews();
    void theArrowKeysPreviewToo();
    void okHandsOverTheChoiceAndKeepsThePreview_data();
    void okHandsOverTheChoiceAndKeepsThePreview();
    void okWithoutAChoiceOpensNothing();
    void aDoubleClickWhileManagingDoesNothing();
    void closingAfterPreviewsBringsBackTheOpenTemplate();
    void closingAfterPreviewsOfANewMessageMakesANewOne();
    void closingWithoutAClickBlanksTheWindow();
    void theCloseBoxDoesWhatCloseDoes();
    void deletingAsksAndDeletesFromTheEnd();
    void deletingNeedsASelection();
    void deletingIsCancelledByNoAndCancel();
    void renamingMovesNameAndFiles();
    void renamingLeavesTheTitle();
    void renamingRefuses_data();
    void renamingRefuses();
    void aNameThatNoFileCanHaveStandsInTheList();
    void keysPressTheButtonsThatAreShown();

private:
    void store(const QStringList &names)
    {
        QByteArray list;
        for (const QString &name : names) {
            list += name.toUtf8() + "\r\n";
            writeFile(headPath(m_tree->globals, name), "[Head]\r\nTo=" + name.toUtf8() + "@x.org\r\nType=Plain\r\n");
            writeFile(contentPath(m_tree->globals, name), "Text of " + name.toUtf8());
        }
        writeFile(m_tree->globals.paths.templatesFile, list);
    }
    void runDialog()
    {
        m_dialog = std::make_unique<frmPubTemplates>(m_tree->globals, *m_flow, [this] { ++m_helps; });
        m_dialog->show();
        if (m_act) {
            m_act();
        }
        m_dialog->close();
    }
    void choose(const std::function<void()> &act)
    {
        m_act = act;
        m_flow->Open();
    }
    void manage(const std::function<void()> &act)
    {
        m_act = act;
        m_flow->manage();
    }
    [[nodiscard]] QListWidget *list(int index) const
    {
        return m_dialog->findChild<QListWidget *>(u"lst(%1)"_s.arg(index));
    }
    [[nodiscard]] QPushButton *button(const QString &name) const { return m_dialog->findChild<QPushButton *>(name); }
    void click(int index, int row, Qt::KeyboardModifiers keys = Qt::NoModifier) const
    {
        const QRect place = list(index)->visualItemRect(list(index)->item(row));
        QTest::mouseClick(list(index)->viewport(), Qt::LeftButton, keys, place.center());
    }
    void doubleClick(int index, int row) const
    {
        const QRect place = list(index)->visualItemRect(list(index)->item(row));
        click(index, row);
        QTest::mouseDClick(list(index)->viewport(), Qt::LeftButton, {}, place.center());
    }
    [[nodiscard]] QStringList shown(int index) const
    {
        QStringList all;
        for (int i = 0; i < list(index)->count(); ++i) {
            all.append(list(index)->item(i)->text());
        }
        return all;
    }
    [[nodiscard]] QStringList visibleButtons() const
    {
        QStringList all;
        for (const QString &name : {u"sbtOK"_s, u"sbtClose"_s, u"sbtDel"_s, u"sbtRename"_s, u"sbtHelp"_s}) {
            if (button(name)->isVisible()) {
                all.append(name);
            }
        }
        return all;
    }
    [[nodiscard]] QStringList files() const
    {
        return QDir(m_tree->globals.paths.templates).entryList(QDir::Files, QDir::Name);
    }
    [[nodiscard]] QStringList names() const { return templateNames(m_tree->globals); }

    std::unique_ptr<FakeWindow> m_window;
    std::unique_ptr<ExpectedPrompts> m_prompts;
    std::unique_ptr<DocumentFlow> m_flow;
    std::unique_ptr<frmPubTemplates> m_dialog;
    std::function<void()> m_act;
    int m_news = 0;
    int m_helps = 0;
};

void TestTemplateDialog::choosingShowsItsListAndButtons()
{
    store({u"a"_s});
    choose([&] {
        QCOMPARE(m_dialog->windowTitle(), u"Choose a Template"_s);
        QVERIFY(list(0)->isVisible() && !list(1)->isVisible());
        QCOMPARE(list(0)->selectionMode(), QAbstractItemView::SingleSelection);
        QCOMPARE(visibleButtons(), (QStringList{u"sbtOK"_s, u"sbtClose"_s, u"sbtHelp"_s}));
        QVERIFY(list(0)->hasFocus() || m_dialog->focusWidget() == list(0));
    });
}

void TestTemplateDialog::managingShowsItsListAndButtons()
{
    store({u"a"_s});
    manage([&] {
        QCOMPARE(m_dialog->windowTitle(), u"Templates Manager"_s);
        QVERIFY(!list(0)->isVisible() && list(1)->isVisible());
        QCOMPARE(list(1)->selectionMode(), QAbstractItemView::ExtendedSelection);
        QCOMPARE(visibleButtons(), (QStringList{u"sbtClose"_s, u"sbtDel"_s, u"sbtRename"_s, u"sbtHelp"_s}));
        QStringList order;
        QList<QPair<int, QString>> places;
        for (const QString &name : visibleButtons()) {
            places.append({button(name)->x(), name});
        }
        QVERIFY(std::is_sorted(places.begin(), places.end()));
    });
}

void TestTemplateDialog::withoutTemplatesOnlyCloseAndHelpWork()
{
    for (const bool managing : {false, true}) {
        m_act = [&] {
            for (const int index : {0, 1}) {
                QCOMPARE(shown(index), QStringList{u"<There are no templates yet.>"_s});
                QVERIFY(!list(index)->isEnabled());
            }
            for (const QString &name : {u"sbtOK"_s, u"sbtDel"_s, u"sbtRename"_s}) {
                QVERIFY(!button(name)->isEnabled());
            }
            button(u"sbtHelp"_s)->click();
            m_window->setText(Field::To, u"a@x.org"_s);
            button(u"sbtClose"_s)->click();
        };
        m_window->pblnChanged = false;
        managing ? m_flow->manage() : m_flow->Open();
        QCOMPARE(m_window->windowTitle, u"Corvane - Edit \"\""_s);
        QCOMPARE(m_window->text(Field::To), QString());
    }
    QCOMPARE(m_helps, 2);
}

void TestTemplateDialog::namesStandInTheirOrder()
{
    store({u"b"_s, u"a"_s, u"ü"_s});
    manage([&] {
        QCOMPARE(shown(0), (QStringList{u"b"_s, u"a"_s, u"ü"_s}));
        QCOMPARE(shown(1), shown(0));
        QCOMPARE(list(1)->selectedItems().size(), 0);
    });
}

void TestTemplateDialog::aClickPreviews_data()
{
    QTest::addColumn<int>("index");
    QTest::newRow("choosing") << 0;
    QTest::newRow("managing") << 1;
}

void TestTemplateDialog::aClickPreviews()
{
    QFETCH(const int, index);
    store({u"a"_s, u"b"_s});
    m_window->mblnReady = true;
    m_act = [&] {
        QVERIFY(!m_window->mblnReady);
        click(index, 1);
        QCOMPARE(m_window->windowTitle, u"Corvane - Preview \"b\""_s);
        QCOMPARE(m_window->text(Field::To), u"b@x.org"_s);
        QCOMPARE(m_window->text(Field::PlainContent), u"Text of b"_s);
        click(index, 0);
        QCOMPARE(m_window->windowTitle, u"Corvane - Preview \"a\""_s);
    };
    index == 1 ? m_flow->manage() : m_flow->Open();
    QVERIFY(m_window->mblnReady);
}

void TestTemplateDialog::theArrowKeysPreviewToo()
{
    store({u"a"_s, u"b"_s, u"c"_s});
    choose([&] {
        QTest::keyClick(list(0), Qt::Key_Down);
        QTRY_COMPARE(m_window->windowTitle, u"Corvane - Preview \"a\""_s);
        QTest::keyClick(list(0), Qt::Key_Down);
        QTRY_COMPARE(m_window->windowTitle, u"Corvane - Preview \"b\""_s);
        QTest::keyClick(list(0), Qt::Key_End);
        QTRY_COMPARE(m_window->windowTitle, u"Corvane - Preview \"c\""_s);
        QTest::keyClick(list(0), Qt::Key_Up);
        QTRY_COMPARE(m_window->windowTitle, u"Corvane - Preview \"b\""_s);
    });
    // Up leads from no choice to the first name as well, not to the last.
    choose([&] {
        QTest::keyClick(list(0), Qt::Key_Up);
        QTRY_COMPARE(m_window->windowTitle, u"Corvane - Preview \"a\""_s);
    });
}

void TestTemplateDialog::okHandsOverTheChoiceAndKeepsThePreview_data()
{
    QTest::addColumn<QString>("how");
    for (const char *how : {"button", "double click", "Return", "Enter"}) {
        QTest::newRow(how) << QString::fromLatin1(how);
    }
}

void TestTemplateDialog::okHandsOverTheChoiceAndKeepsThePreview()
{
    QFETCH(const QString, how);
    store({u"a"_s, u"b"_s});
    choose([&] {
        click(0, 1);
        if (how == u"button") {
            button(u"sbtOK"_s)->click();
        } else if (how == u"double click") {
            doubleClick(0, 1);
        } else {
            QTest::keyClick(list(0), how == u"Return" ? Qt::Key_Return : Qt::Key_Enter);
        }
        QVERIFY(!m_dialog->isVisible());
        QCOMPARE(m_window->windowTitle, u"Corvane - Preview \"b\""_s);
    });
    QCOMPARE(m_flow->psTempName, u"b"_s);
    QCOMPARE(m_window->windowTitle, u"Corvane - Edit \"b\""_s);
    QVERIFY(!m_window->pblnChanged);
    QCOMPARE(m_news, 0);
}

void TestTemplateDialog::okWithoutAChoiceOpensNothing()
{
    store({u"a"_s});
    choose([&] { button(u"sbtOK"_s)->click(); });
    QCOMPARE(m_flow->psTempName, QString());
    QCOMPARE(m_window->windowTitle, editTitle(u"open"_s));
}

void TestTemplateDialog::aDoubleClickWhileManagingDoesNothing()
{
    store({u"a"_s});
    manage([&] {
        doubleClick(1, 0);
        QVERIFY(m_dialog->isVisible());
        QTest::keyClick(list(1), Qt::Key_Return);
        QVERIFY(m_dialog->isVisible());
        QCOMPARE(m_flow->psTempName, QString());
    });
}

void TestTemplateDialog::closingAfterPreviewsBringsBackTheOpenTemplate()
{
    store({u"a"_s, u"b"_s, u"c"_s});
    m_window->windowTitle = editTitle(u"b"_s);
    choose([&] {
        click(0, 0);
        click(0, 2);
        button(u"sbtClose"_s)->click();
    });
    QCOMPARE(m_window->windowTitle, u"Corvane - Edit \"b\""_s);
    QCOMPARE(m_window->text(Field::To), u"b@x.org"_s);
    QCOMPARE(m_news, 0);
}

void TestTemplateDialog::closingAfterPreviewsOfANewMessageMakesANewOne()
{
    store({u"a"_s});
    m_window->windowTitle = newMessageTitle();
    choose([&] {
        click(0, 0);
        m_window->pblnChanged = true; // as the window's change rule does
        m_prompts->expectBox(u"SAVE_MAIL_PROMPT"_s, quillon::YesNoCancelBox, BoxAnswer::No);
        button(u"sbtClose"_s)->click();
    });
    QCOMPARE(m_news, 1);
    QCOMPARE(m_window->windowTitle, newMessageTitle());
}

void TestTemplateDialog::closingWithoutAClickBlanksTheWindow()
{
    store({u"a"_s});
    m_window->windowTitle = editTitle(u"a"_s);
    m_window->setText(Field::To, u"a@x.org"_s);
    m_window->pblnChanged = false;
    choose([&] { button(u"sbtClose"_s)->click(); });
    QCOMPARE(m_window->windowTitle, u"Corvane - Edit \"\""_s);
    QCOMPARE(m_window->text(Field::To), QString());
    QCOMPARE(m_news, 0);
}

void TestTemplateDialog::theCloseBoxDoesWhatCloseDoes()
{
    store({u"a"_s, u"b"_s});
    m_window->windowTitle = editTitle(u"b"_s);
    choose([&] {
        click(0, 0);
        m_dialog->close();
    });
    QCOMPARE(m_window->windowTitle, u"Corvane - Edit \"b\""_s);
    QCOMPARE(m_window->text(Field::To), u"b@x.org"_s);
}

void TestTemplateDialog::deletingAsksAndDeletesFromTheEnd()
{
    store({u"a"_s, u"b"_s, u"c"_s, u"d"_s});
    manage([&] {
        click(1, 0);
        click(1, 1, Qt::ControlModifier);
        click(1, 3, Qt::ControlModifier);
        m_prompts->expectBox(u"DEL_TEMP_PROMPT"_s, quillon::YesNoCancelBox, BoxAnswer::Yes);
        QTest::keyClick(list(1), Qt::Key_Delete);
        QCOMPARE(shown(1), QStringList{u"c"_s});
        QCOMPARE(names(), QStringList{u"c"_s});
        QCOMPARE(files(), (QStringList{u"content_c.dll"_s, u"head_c.dll"_s, u"templates.dll"_s}));
        click(1, 0);
        m_prompts->expectBox(u"DEL_TEMP_PROMPT"_s, quillon::YesNoCancelBox, BoxAnswer::Yes);
        button(u"sbtDel"_s)->click();
        QCOMPARE(files(), QStringList{u"templates.dll"_s});
        m_prompts->expectBox(u"NEED_TEMP_D"_s, quillon::InformationBox);
        button(u"sbtDel"_s)->click();
        m_prompts->expectBox(u"NEED_TEMP_R"_s, quillon::InformationBox);
        button(u"sbtRename"_s)->click();
    });
}

void TestTemplateDialog::deletingNeedsASelection()
{
    store({u"a"_s});
    manage([&] {
        m_prompts->expectBox(u"SELE_TEMP"_s, quillon::InformationBox);
        button(u"sbtDel"_s)->click();
        QCOMPARE(names(), QStringList{u"a"_s});
    });
}

void TestTemplateDialog::deletingIsCancelledByNoAndCancel()
{
    store({u"a"_s});
    manage([&] {
        click(1, 0);
        for (const BoxAnswer answer : {BoxAnswer::No, BoxAnswer::Cancel}) {
            m_prompts->expectBox(u"DEL_TEMP_PROMPT"_s, quillon::YesNoCancelBox, answer);
            button(u"sbtDel"_s)->click();
        }
        QCOMPARE(files().size(), 3);
        QCOMPARE(shown(1), QStringList{u"a"_s});
    });
}

void TestTemplateDialog::renamingMovesNameAndFiles()
{
    store({u"a"_s, u"b"_s});
    manage([&] {
        click(1, 0);
        m_prompts->expectInput(u"INPUT_NEW_NAME"_s, u"a"_s, u"  May news "_s);
        QTest::keyClick(list(1), Qt::Key_F2);
        QVERIFY(m_prompts->log().contains(u"input INPUT_NEW_NAME [a]: New name of the template: 'a':"_s));
        QCOMPARE(shown(1), (QStringList{u"b"_s, u"May news"_s}));
        QCOMPARE(names(), (QStringList{u"b"_s, u"May news"_s}));
        QCOMPARE(list(1)->selectedItems().size(), 1);
        QCOMPARE(list(1)->selectedItems().constFirst()->text(), u"May news"_s);
        QCOMPARE(files(), (QStringList{u"content_May news.dll"_s, u"content_b.dll"_s, u"head_May news.dll"_s,
                                       u"head_b.dll"_s, u"templates.dll"_s}));
        QCOMPARE(contentOf(contentPath(m_tree->globals, u"May news"_s)), QByteArray("Text of a"));
    });
}

void TestTemplateDialog::renamingLeavesTheTitle()
{
    store({u"a"_s});
    m_window->windowTitle = editTitle(u"a"_s);
    manage([&] {
        click(1, 0);
        m_prompts->expectInput(u"INPUT_NEW_NAME"_s, u"a"_s, u"b"_s);
        button(u"sbtRename"_s)->click();
        QCOMPARE(m_window->windowTitle, u"Corvane - Preview \"a\""_s);
    });
    // The template of that name is gone: the window is blank, and a later save makes a new one.
    QCOMPARE(m_window->windowTitle, u"Corvane - Edit \"a\""_s);
    QCOMPARE(m_window->text(Field::To), QString());
}

void TestTemplateDialog::renamingRefuses_data()
{
    QTest::addColumn<QString>("answer");
    QTest::addColumn<QString>("box");
    QTest::newRow("nothing") << QString() << QString();
    QTest::newRow("blanks") << u"  "_s << QString();
    QTest::newRow("the same name") << u"a"_s << u"TEMP_NOT_CHANGE"_s;
    QTest::newRow("the same name and blanks") << u" a "_s << u"TEMP_NOT_CHANGE"_s;
    QTest::newRow("another's name") << u"b"_s << u"SENDER_EXISTS"_s;
}

void TestTemplateDialog::renamingRefuses()
{
    QFETCH(const QString, answer);
    QFETCH(const QString, box);
    store({u"a"_s, u"b"_s});
    manage([&] {
        m_prompts->expectBox(u"SELE_TEMP_R"_s, quillon::InformationBox);
        button(u"sbtRename"_s)->click();
        click(1, 0);
        m_prompts->expectInput(u"INPUT_NEW_NAME"_s, u"a"_s, answer);
        if (box == u"SENDER_EXISTS") {
            m_prompts->expectBox(box, quillon::InformationBox, BoxAnswer::Ok, u"b"_s);
        } else if (!box.isEmpty()) {
            m_prompts->expectBox(box, quillon::InformationBox);
        }
        button(u"sbtRename"_s)->click();
        QCOMPARE(names(), (QStringList{u"a"_s, u"b"_s}));
        QCOMPARE(files().size(), 5);
        if (answer == u"a") { // in another case it is another name
            m_prompts->expectInput(u"INPUT_NEW_NAME"_s, u"a"_s, u"A"_s);
            button(u"sbtRename"_s)->click();
            QCOMPARE(names(), (QStringList{u"b"_s, u"A"_s}));
            QVERIFY(files().contains(u"head_A.dll"_s) && !files().contains(u"head_a.dll"_s));
        }
    });
}

void TestTemplateDialog::aNameThatNoFileCanHaveStandsInTheList()
{
    store({u"a"_s});
    const QString tooLong(300, u'x');
    for (const QString &answer : {u"b/c"_s, tooLong}) {
        m_window->pblnChanged = false;
        manage([&] {
            const QString present = shown(1).constLast();
            click(1, list(1)->count() - 1);
            m_prompts->expectInput(u"INPUT_NEW_NAME"_s, present, answer);
            button(u"sbtRename"_s)->click();
        });
        QCOMPARE(names(), QStringList{answer});
        QCOMPARE(files(), (QStringList{u"content_a.dll"_s, u"head_a.dll"_s, u"templates.dll"_s})); // nothing is lost
    }
}

void TestTemplateDialog::keysPressTheButtonsThatAreShown()
{
    store({u"a"_s});
    choose([&] {
        click(0, 0);
        QTest::keyClick(list(0), Qt::Key_Delete);
        QTest::keyClick(list(0), Qt::Key_F2);
        QTest::keyClick(list(0), Qt::Key_F1);
        QTest::keyClick(list(0), Qt::Key_Escape);
        QVERIFY(m_dialog->isVisible());
    });
    QCOMPARE(m_helps, 1);
    QCOMPARE(names(), QStringList{u"a"_s});
}

QTEST_MAIN(TestTemplateDialog)
#include "test_templatedialog.moc"
