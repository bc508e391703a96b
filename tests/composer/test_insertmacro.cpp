#include "mainfixture.h"

#include <QClipboard>
#include <QGuiApplication>

using namespace Qt::StringLiterals;
using namespace corvane;

class TestInsertMacro : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void macroGoesIntoTheBodyInPlaceOfTheSelection();
    void macroPickedWhileTheSubjectHasTheFocusLandsInTheBody();
    void macroPickedWhileOptionsAreOpenGoesToTheirSignature();
    void clipboardHoldsTheMacroAfterwards();
    void menuIsHiddenWithoutMacros();

private:
    static const QString macro;
    static void pick(const MainFixture &main)
    {
        main.window->setMacroMenu({u"{Long Date}"_s, macro});
        main.item(u"menimsa(2)"_s)->trigger();
    }
};

const QString TestInsertMacro::macro = u"{A & B}"_s;

void TestInsertMacro::macroGoesIntoTheBodyInPlaceOfTheSelection()
{
    MainFixture main;
    auto *body = main.get<QPlainTextEdit>(u"utbContent"_s);
    body->setPlainText(u"Dear name,"_s);
    QTextCursor cursor = body->textCursor();
    cursor.setPosition(5);
    cursor.setPosition(9, QTextCursor::KeepAnchor);
    body->setTextCursor(cursor);
    pick(main);
    QCOMPARE(body->toPlainText(), u"Dear {A & B},"_s);
    QTRY_VERIFY(body->hasFocus());
    QVERIFY(main.message().pblnChanged);
}

void TestInsertMacro::macroPickedWhileTheSubjectHasTheFocusLandsInTheBody()
{
    MainFixture main;
    main.get<QLineEdit>(u"utbSubject"_s)->setFocus();
    pick(main);
    QCOMPARE(main.message().text(MainFixture::Field::Subject), QString());
    QCOMPARE(main.message().text(MainFixture::Field::PlainContent), macro);
}

void TestInsertMacro::macroPickedWhileOptionsAreOpenGoesToTheirSignature()
{
    QStringList signature;
    MainFixture main([&](MainFixture &fixture) {
        fixture.hooks.insertIntoSignature = [&](const QString &text) {
            signature.append(text);
            return true;
        };
    });
    pick(main);
    QCOMPARE(signature, QStringList{macro});
    QCOMPARE(main.message().text(MainFixture::Field::PlainContent), QString());
}

void TestInsertMacro::clipboardHoldsTheMacroAfterwards()
{
    MainFixture main;
    pick(main);
    QCOMPARE(QGuiApplication::clipboard()->text(), macro);
}

void TestInsertMacro::menuIsHiddenWithoutMacros()
{
    MainFixture main;
    main.window->setMacroMenu({});
    QVERIFY(!main.get<QMenu>(u"menim"_s)->menuAction()->isVisible());
    main.window->setMacroMenu({macro});
    QVERIFY(main.get<QMenu>(u"menim"_s)->menuAction()->isVisible());
    QVERIFY(!main.item(u"menimsa(0)"_s)->isVisible());
}

QTEST_MAIN(TestInsertMacro)
#include "test_insertmacro.moc"
