#include "composer/promptfilter.h"
#include "composer/recipientbox.h"
#include "composer/recipientcompletion.h"

#include <QApplication>
#include <QLineEdit>
#include <QListView>
#include <QTest>
#include <QVBoxLayout>

#include <array>

using namespace Qt::StringLiterals;
using namespace corvane;

namespace {

/// Two boxes over a shared list.
struct Sample {
    Sample()
    {
        auto *column = new QVBoxLayout(&ground);
        for (RecipientBox *&box : boxes) {
            box = new RecipientBox(&ground);
            box->setFixedHeight(24);
            column->addWidget(box);
        }
        other = new QLineEdit(&ground);
        column->addWidget(other);
        column->addStretch(1);
        list = new QListView(&ground);
        list->hide();
        for (RecipientBox *box : boxes) {
            new RecipientCompletion(box, list, {[this] { return prompts; }, [this] { return ready; }});
        }
        ground.resize(700, 400);
        ground.show();
        ground.activateWindow();
        boxes[0]->setFocus();
        if (!QTest::qWaitForWindowActive(&ground)) {
            qFatal("the window does not become active");
        }
    }

    [[nodiscard]] QStringList offered() const
    {
        QStringList rows;
        for (int i = 0; list->isVisible() && i < list->model()->rowCount(); ++i) {
            rows.append(list->model()->index(i, 0).data().toString());
        }
        return rows;
    }
    [[nodiscard]] QString chosen() const { return list->currentIndex().data().toString(); }
    void type(const QString &text) { QTest::keyClicks(boxes[0], text); }
    void key(Qt::Key key) { QTest::keyClick(boxes[0], key); }

    QWidget ground;
    std::array<RecipientBox *, 2> boxes{};
    QLineEdit *other;
    QListView *list;
    QStringList prompts{u"Ann <ann@example.com>"_s, u"bob@example.com"_s, u"Anna <a@example.org>"_s,
                        u"carl@Ann.example"_s};
    bool ready = true;
};

} // namespace

class TestRecipientCompletion : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theTokenIsCutAtSeparators_data();
    void theTokenIsCutAtSeparators();
    void typingOffersWhatContainsTheToken();
    void withoutPromptsThereIsNoList();
    void anEmptyTokenOffersAll();
    void onlyTypingInAReadyWindowOffers();
    void upAndDownGoRound();
    void upAndDownMoveTheCaretAsWell();
    void enterReplacesTheToken_data();
    void enterReplacesTheToken();
    void aClickReplacesTheTokenToo();
    void enterWithoutAListIsANewLine();
    void escHidesTheList();
    void leavingTheBoxHidesTheList();
    void theListServesTheBoxThatIsTypedIn();
    void theListStandsBelowTheCaretWithinTheBox();
    void aReplacementCanBeUndone();
    void aLongListIsFoundAsFarAsItIsAskedFor();
    void upFromTheFirstRowGoesToTheLastOfALongList();
};

void TestRecipientCompletion::theTokenIsCutAtSeparators_data()
{
    QTest::addColumn<QString>("text"); // the caret stands at the bar
    QTest::addColumn<int>("start");
    QTest::addColumn<QString>("token");
    QTest::newRow("nothing") << u"|"_s << 0 << QString();
    QTest::newRow("at the end") << u"ann|"_s << 0 << u"ann"_s;
    QTest::newRow("amid") << u"a|nn"_s << 0 << u"ann"_s;
    QTest::newRow("at the start") << u"|ann"_s << 0 << u"ann"_s;
    QTest::newRow("behind a comma and a blank") << u"ann, |"_s << 5 << QString();
    QTest::newRow("behind a comma") << u"ann,|bob"_s << 4 << u"bob"_s;
    QTest::newRow("before a comma") << u"ann|,bob"_s << 0 << u"ann"_s;
    QTest::newRow("behind a blank") << u"Ann Lee|"_s << 4 << u"Lee"_s;
    QTest::newRow("behind a line end") << u"ann\nbo|b, c"_s << 4 << u"bob"_s;
    QTest::newRow("before a line end") << u"an|n\nbob"_s << 0 << u"ann"_s;
    QTest::newRow("the last of several") << u"a, b\nc d,e|f g"_s << 9 << u"ef"_s;
    QTest::newRow("a separator at the caret") << u"a |, b"_s << 2 << QString();
}

void TestRecipientCompletion::theTokenIsCutAtSeparators()
{
    QFETCH(QString, text);
    const qsizetype caret = text.indexOf(u'|');
    const Token token = tokenAt(text.remove(u'|'), caret);
    QTEST(static_cast<int>(token.start), "start");
    QTEST(token.text, "token");
}

void TestRecipientCompletion::typingOffersWhatContainsTheToken()
{
    Sample s;
    s.type(u"n"_s);
    QCOMPARE(s.offered(), (QStringList{s.prompts.at(0), s.prompts.at(2), s.prompts.at(3)}).filter(u"n"_s));
    s.type(u"n"_s);
    QCOMPARE(s.offered(), (QStringList{s.prompts.at(0), s.prompts.at(2), s.prompts.at(3)}));
    QCOMPARE(s.chosen(), s.prompts.at(0));
    s.boxes[0]->clear();
    s.type(u"Ann"_s); // case counts
    QCOMPARE(s.offered(), (QStringList{s.prompts.at(0), s.prompts.at(2), s.prompts.at(3)}));
    s.boxes[0]->clear();
    s.type(u"ann"_s);
    QCOMPARE(s.offered(), QStringList{s.prompts.at(0)});
    s.type(u"x"_s);
    QCOMPARE(s.offered(), QStringList());
    s.key(Qt::Key_Backspace);
    QCOMPARE(s.offered(), QStringList{s.prompts.at(0)});
}

void TestRecipientCompletion::withoutPromptsThereIsNoList()
{
    Sample s;
    s.prompts.clear();
    s.type(u"a"_s);
    QVERIFY(!s.list->isVisible());
    s.key(Qt::Key_Down);
    s.key(Qt::Key_Up);
    QCOMPARE(s.boxes[0]->toPlainText(), u"a"_s);
}

void TestRecipientCompletion::anEmptyTokenOffersAll()
{
    Sample s;
    s.type(u"#"_s);
    QVERIFY(!s.list->isVisible());
    s.key(Qt::Key_Backspace);
    QCOMPARE(s.offered(), s.prompts);
    s.type(u"bob@example.com, "_s);
    QCOMPARE(s.offered(), s.prompts);
}

void TestRecipientCompletion::onlyTypingInAReadyWindowOffers()
{
    Sample s;
    s.ready = false;
    s.type(u"a"_s);
    QVERIFY(!s.list->isVisible());
    s.ready = true;
    s.other->setFocus();
    s.boxes[0]->setPlainText(u"ann"_s);
    QVERIFY(!s.list->isVisible());
}

void TestRecipientCompletion::upAndDownGoRound()
{
    Sample s;
    s.type(u"nn"_s);
    QStringList chosen;
    for (const Qt::Key key : {Qt::Key_Down, Qt::Key_Down, Qt::Key_Down, Qt::Key_Up, Qt::Key_Up}) {
        s.key(key);
        chosen.append(s.chosen());
    }
    QCOMPARE(chosen,
             (QStringList{s.prompts.at(2), s.prompts.at(3), s.prompts.at(0), s.prompts.at(3), s.prompts.at(2)}));
    // Hidden, the list goes on to follow them.
    s.key(Qt::Key_Escape);
    s.key(Qt::Key_Down);
    QCOMPARE(s.chosen(), s.prompts.at(3));
    QVERIFY(!s.list->isVisible());
}

void TestRecipientCompletion::upAndDownMoveTheCaretAsWell()
{
    Sample s;
    s.boxes[0]->setFixedHeight(80);
    s.boxes[0]->setPlainText(u"one\ntwo"_s);
    s.boxes[0]->moveCursor(QTextCursor::End);
    s.key(Qt::Key_Up);
    QCOMPARE(s.boxes[0]->textCursor().blockNumber(), 0);
    s.key(Qt::Key_Down);
    QCOMPARE(s.boxes[0]->textCursor().blockNumber(), 1);
}

void TestRecipientCompletion::enterReplacesTheToken_data()
{
    QTest::addColumn<QString>("before"); // the caret stands at the bar
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("after");
    QTest::newRow("alone") << u"|"_s << u"bo"_s << u"bob@example.com|"_s;
    QTest::newRow("behind others") << u"x@y.z, |"_s << u"bo"_s << u"x@y.z, bob@example.com|"_s;
    QTest::newRow("before others") << u"|, x@y.z"_s << u"bo"_s << u"bob@example.com|, x@y.z"_s;
    QTest::newRow("amid its token") << u"b|b, x"_s << u"o"_s << u"bob@example.com|, x"_s;
    QTest::newRow("on the second line") << u"x\n|\ny"_s << u"bo"_s << u"x\nbob@example.com|\ny"_s;
    QTest::newRow("the same text before") << u"bo, |"_s << u"bo"_s << u"bo, bob@example.com|"_s;
}

void TestRecipientCompletion::enterReplacesTheToken()
{
    QFETCH(QString, before);
    QFETCH(const QString, typed);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
        Sample s;
        const auto caret = static_cast<int>(before.indexOf(u'|'));
        s.boxes[0]->setPlainText(QString(before).remove(u'|'));
        QTextCursor cursor = s.boxes[0]->textCursor();
        cursor.setPosition(caret);
        s.boxes[0]->setTextCursor(cursor);
        s.type(typed);
        QCOMPARE(s.offered(), QStringList{u"bob@example.com"_s});
        s.key(key);
        QTEST(s.boxes[0]->toPlainText().insert(s.boxes[0]->textCursor().position(), u'|'), "after");
        QVERIFY(!s.list->isVisible());
    }
    // An empty token is replaced where the caret is.
    Sample s;
    s.type(u"x, "_s);
    s.key(Qt::Key_Down);
    s.key(Qt::Key_Return);
    QCOMPARE(s.boxes[0]->toPlainText(), u"x, bob@example.com"_s);
}

void TestRecipientCompletion::aClickReplacesTheTokenToo()
{
    Sample s;
    s.type(u"example"_s);
    const QRect row = s.list->visualRect(s.list->model()->index(1, 0));
    QTest::mouseClick(s.list->viewport(), Qt::LeftButton, {}, row.center());
    QCOMPARE(s.boxes[0]->toPlainText(), u"bob@example.com"_s);
    QVERIFY(!s.list->isVisible());
    QVERIFY(s.boxes[0]->hasFocus());
}

void TestRecipientCompletion::enterWithoutAListIsANewLine()
{
    Sample s;
    s.type(u"zz"_s);
    s.key(Qt::Key_Return);
    QCOMPARE(s.boxes[0]->toPlainText(), u"zz\n"_s);
    s.key(Qt::Key_Escape); // the empty token of the new line offered all
    s.key(Qt::Key_Return);
    QCOMPARE(s.boxes[0]->toPlainText(), u"zz\n\n"_s);
    QVERIFY(s.list->isVisible());
    s.list->setCurrentIndex({});
    s.key(Qt::Key_Return);
    QCOMPARE(s.boxes[0]->toPlainText(), u"zz\n\n\n"_s);
}

void TestRecipientCompletion::escHidesTheList()
{
    Sample s;
    s.type(u"a"_s);
    QVERIFY(s.list->isVisible());
    s.key(Qt::Key_Escape);
    QVERIFY(!s.list->isVisible());
    QCOMPARE(s.boxes[0]->toPlainText(), u"a"_s);
    s.type(u"n"_s);
    QVERIFY(s.list->isVisible());
}

void TestRecipientCompletion::leavingTheBoxHidesTheList()
{
    Sample s;
    s.type(u"a"_s);
    s.key(Qt::Key_Tab);
    QVERIFY(!s.list->isVisible());
}

void TestRecipientCompletion::theListServesTheBoxThatIsTypedIn()
{
    Sample s;
    s.boxes[1]->setFocus();
    QTest::keyClicks(s.boxes[1], u"bo"_s);
    QCOMPARE(s.list->y(), s.boxes[1]->geometry().bottom() + 1);
    const QRect row = s.list->visualRect(s.list->model()->index(0, 0));
    QTest::mouseClick(s.list->viewport(), Qt::LeftButton, {}, row.center());
    QCOMPARE(s.boxes[1]->toPlainText(), u"bob@example.com"_s);
    QCOMPARE(s.boxes[0]->toPlainText(), QString());
}

void TestRecipientCompletion::theListStandsBelowTheCaretWithinTheBox()
{
    Sample s;
    const QRect box = s.boxes[0]->geometry();
    s.type(u"a"_s);
    QCOMPARE(s.list->y(), box.bottom() + 1);
    const int first = s.list->x();
    QVERIFY(first >= box.left());
    s.type(u", x, y, z, a"_s);
    QVERIFY(s.list->x() > first);
    s.type(QString(60, u' ') + u'a');
    QVERIFY(s.list->geometry().right() <= box.right());
    QVERIFY(s.list->geometry().left() >= box.left());
    // Only what stands on the caret's line counts.
    s.boxes[0]->setPlainText(QString(40, u'm') + u'\n');
    s.boxes[0]->moveCursor(QTextCursor::End);
    s.type(u"a"_s);
    QCOMPARE(s.list->x(), first);
    s.ground.resize(200, 400);
    QCoreApplication::processEvents();
    s.type(u"n"_s);
    QCOMPARE(s.list->width(), s.boxes[0]->width());
    QCOMPARE(s.list->x(), s.boxes[0]->x());
}

void TestRecipientCompletion::aReplacementCanBeUndone()
{
    Sample s;
    s.type(u"bo"_s);
    s.key(Qt::Key_Return);
    s.boxes[0]->undo();
    QCOMPARE(s.boxes[0]->toPlainText(), u"bo"_s);
}

void TestRecipientCompletion::aLongListIsFoundAsFarAsItIsAskedFor()
{
    QStringList prompts;
    for (int i = 0; i < 10000; ++i) {
        prompts.append(u"p%1@example.com"_s.arg(i));
    }
    PromptFilter filter;
    filter.setToken(prompts, u"p"_s);
    QVERIFY(filter.rowCount() < 1000);
    QVERIFY(filter.canFetchMore({}));
    const int before = filter.rowCount();
    filter.fetchMore({});
    QVERIFY(filter.rowCount() > before);
    filter.findAll();
    QCOMPARE(filter.rowCount(), 10000);
    QVERIFY(!filter.canFetchMore({}));
    QCOMPARE(filter.row(9999), prompts.last());
    QCOMPARE(filter.row(10000), QString());
    QCOMPARE(filter.row(-1), QString());
    filter.setToken(prompts, u"p9999"_s);
    QCOMPARE(filter.rowCount(), 1);
    QCOMPARE(filter.index(0).data().toString(), u"p9999@example.com"_s);
    filter.setToken({}, QString());
    QCOMPARE(filter.rowCount(), 0);
}

void TestRecipientCompletion::upFromTheFirstRowGoesToTheLastOfALongList()
{
    Sample s;
    for (int i = 0; i < 1000; ++i) {
        s.prompts.append(u"p%1@example.com"_s.arg(i));
    }
    s.type(u"@"_s);
    s.key(Qt::Key_Up);
    QCOMPARE(s.chosen(), u"p999@example.com"_s);
    s.key(Qt::Key_Down);
    QCOMPARE(s.chosen(), s.prompts.at(0));
    s.type(u"e"_s); // found anew, and only as far as it is needed
    for (int i = 0; i < 300; ++i) {
        s.key(Qt::Key_Down);
    }
    QCOMPARE(s.chosen(), s.prompts.at(300 + 1)); // "carl@Ann.example" has no "@e"
}

QTEST_MAIN(TestRecipientCompletion)
#include "test_recipientcompletion.moc"
