#include "quillon/fault.h"
#include "quillon/system/quillonsystem.h"
#include "support/expectedprompts.h"

#include <QTest>

using namespace Qt::StringLiterals;
using quillon::BoxAnswer;
using quillon::prompts;

/// Tests lean on this queue to notice what a user would see, so it has to be seen to fail.
class TestExpectedPrompts : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_failures.clear(); }
    void expectedPromptsAreAnsweredInOrder();
    void aTextWithoutAKeyIsExpectedByItsText();
    void anUnexpectedPromptFails();
    void anotherKeyStyleValueOrKindFails();
    void promptsInAnotherOrderFail();
    void aLeftOverPromptFails();
    void anUnexpectedPromptGetsTheHarmlessAnswer();
    void aFormRunsWhatItsUserDoes();
    void thePromptsBeforeAreRestored();
    void everythingShownIsRecorded();

private:
    std::function<void(const QString &)> recorder()
    {
        return [this](const QString &what) { m_failures.append(what); };
    }

    QStringList m_failures;
};

void TestExpectedPrompts::expectedPromptsAreAnsweredInOrder()
{
    {
        ExpectedPrompts expected(recorder());
        expected.expectBox(u"ASK"_s, 36, BoxAnswer::Yes)
            .expectBox(u"BAD"_s, 48, BoxAnswer::Ok, u"x@y"_s)
            .expectInput(u"NAME"_s, u"old"_s, u"new"_s)
            .expectFiles({u"/a"_s, u"/b"_s})
            .expectSave(u"/c"_s, u"Specify File"_s)
            .expectFolder(u"/d"_s)
            .expectColor(0x123456)
            .expectForm(u"frmPubOptions"_s, 1);
        const quillon::QuillonSystem system;
        QCOMPARE(prompts().box({u"ASK"_s, u"Really?"_s, QString(), 36}), BoxAnswer::Yes);
        QCOMPARE(prompts().box({u"BAD"_s, u"'x@y' is bad."_s, u"x@y"_s, 48}), BoxAnswer::Ok);
        QCOMPARE(prompts().input({u"NAME"_s, u"Name?"_s, u"old"_s}), u"new"_s);
        QCOMPARE(system.OpenFileDialog(u"Open"_s, {}), (QStringList{u"/a"_s, u"/b"_s}));
        QCOMPARE(system.SaveFileDialog(u"Specify File"_s, {}, u"txt"_s), u"/c"_s);
        QCOMPARE(system.SelectFolderDialog(u"Folder"_s), u"/d"_s);
        QCOMPARE(system.ChooseColor(), 0x123456L);
        prompts().showModalForm(u"frmPubOptions"_s, 1);
        QCOMPARE(expected.leftOver(), QStringList());
    }
    QCOMPARE(m_failures, QStringList());
}

void TestExpectedPrompts::aTextWithoutAKeyIsExpectedByItsText()
{
    {
        ExpectedPrompts expected(recorder());
        expected.expectBox(u"550 no such user"_s, 16);
        prompts().box({QString(), u"550 no such user"_s, QString(), 16});
    }
    QCOMPARE(m_failures, QStringList());
}

void TestExpectedPrompts::anUnexpectedPromptFails()
{
    ExpectedPrompts expected(recorder());
    prompts().box({u"ASK"_s, u"Really?"_s, QString(), 36});
    prompts().input({u"NAME"_s, u"Name?"_s, QString()});
    prompts().openFiles({});
    prompts().saveFile({});
    prompts().selectFolder(u"Folder"_s);
    prompts().chooseColor();
    prompts().showModalForm(u"frmPubOptions"_s, 1);
    QCOMPARE(m_failures.size(), 7);
}

void TestExpectedPrompts::anotherKeyStyleValueOrKindFails()
{
    const auto failuresOf = [this](const std::function<void(ExpectedPrompts &)> &play) {
        m_failures.clear();
        ExpectedPrompts expected(recorder());
        play(expected);
        return m_failures.size();
    };
    const quillon::BoxRequest shown{u"BAD"_s, u"'a' is bad."_s, u"a"_s, 48};
    const auto box = [&](const QString &key, int style, const std::optional<QString> &value) {
        return failuresOf([&](ExpectedPrompts &expected) {
            expected.expectBox(key, style, BoxAnswer::Ok, value);
            prompts().box(shown);
        });
    };
    QCOMPARE(box(u"BAD"_s, 48, u"a"_s), 0);
    QCOMPARE(box(u"BAD"_s, 48, std::nullopt), 0);
    QCOMPARE(box(u"GOOD"_s, 48, u"a"_s), 1);
    QCOMPARE(box(u"BAD"_s, 64, u"a"_s), 1);
    QCOMPARE(box(u"BAD"_s, 48, u"b"_s), 1);
    QCOMPARE(failuresOf([&](ExpectedPrompts &expected) {
                 expected.expectInput(u"BAD"_s, std::nullopt, u"a"_s);
                 prompts().box(shown);
             }),
             1);
    QCOMPARE(failuresOf([&](ExpectedPrompts &expected) {
                 expected.expectForm(u"frmPubOptions"_s, 1);
                 prompts().showModalForm(u"frmPubOptions"_s, 0);
             }),
             1);
    QCOMPARE(failuresOf([&](ExpectedPrompts &expected) {
                 expected.expectSave(u"/a"_s, u"Specify File"_s);
                 prompts().saveFile({u"Other"_s, {}, {}, false});
             }),
             1);
}

void TestExpectedPrompts::promptsInAnotherOrderFail()
{
    ExpectedPrompts expected(recorder());
    expected.expectBox(u"A"_s, 64).expectBox(u"B"_s, 64);
    prompts().box({u"B"_s, {}, {}, 64});
    QCOMPARE(m_failures.size(), 1);
    QCOMPARE(expected.leftOver(), (QStringList{u"box A style 64"_s, u"box B style 64"_s}));
}

void TestExpectedPrompts::aLeftOverPromptFails()
{
    {
        ExpectedPrompts expected(recorder());
        expected.expectBox(u"NEVER"_s, 64);
    }
    QCOMPARE(m_failures.size(), 1);
    QVERIFY(m_failures.constFirst().contains(u"NEVER"));
}

void TestExpectedPrompts::anUnexpectedPromptGetsTheHarmlessAnswer()
{
    ExpectedPrompts expected(recorder());
    QCOMPARE(prompts().box({u"A"_s, {}, {}, 36}), BoxAnswer::No);
    QCOMPARE(prompts().box({u"A"_s, {}, {}, 35}), BoxAnswer::Cancel);
    QCOMPARE(prompts().box({u"A"_s, {}, {}, 33}), BoxAnswer::Cancel);
    QCOMPARE(prompts().box({u"A"_s, {}, {}, 65}), BoxAnswer::Cancel);
    QCOMPARE(prompts().box({u"A"_s, {}, {}, 64}), BoxAnswer::Ok);
    QCOMPARE(prompts().input({u"A"_s, {}, u"x"_s}), QString());
    QCOMPARE(prompts().chooseColor(), -1L);
}

void TestExpectedPrompts::aFormRunsWhatItsUserDoes()
{
    ExpectedPrompts expected(recorder());
    QString name;
    expected
        .expectForm(u"frmPubTemplates"_s, -1,
                    [&name] {
                        name = u"chosen"_s;
                        prompts().box({u"INSIDE"_s, {}, {}, 64});
                    })
        .expectBox(u"INSIDE"_s, 64);
    prompts().showModalForm(u"frmPubTemplates"_s, -1);
    QCOMPARE(name, u"chosen"_s);
    QCOMPARE(m_failures, QStringList());
}

void TestExpectedPrompts::thePromptsBeforeAreRestored()
{
    ExpectedPrompts outer(recorder());
    {
        const ExpectedPrompts inner(recorder());
        QCOMPARE(&prompts(), &inner);
    }
    QCOMPARE(&prompts(), &outer);
}

void TestExpectedPrompts::everythingShownIsRecorded()
{
    ExpectedPrompts expected(recorder());
    expected.expectBox(u"ASK"_s, 36).expectForm(u"frmPubOptions"_s, 1);
    prompts().box({u"ASK"_s, u"Really?"_s, {}, 36});
    prompts().showModalForm(u"frmPubOptions"_s, 1);
    QCOMPARE(expected.log(), (QStringList{u"box ASK style 36: Really?"_s, u"form frmPubOptions tab 1"_s}));
}

QTEST_GUILESS_MAIN(TestExpectedPrompts)
#include "test_expectedprompts.moc"
