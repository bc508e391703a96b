#include "composer/encodingchoice.h"
#include "composer/menuitemarray.h"

#include <QAbstractItemView>
#include <QAction>
#include <QComboBox>
#include <QLineEdit>
#include <QMenu>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace corvane;

namespace {

struct Sample {
    Sample()
    {
        shown.setEditable(true);
        base = menu.addAction(u"None"_s);
        base->setObjectName(u"menoesa(0)"_s);
        choice = new EncodingChoice(&shown, &hidden, &menu, base);
    }

    static QStringList entries(const QComboBox &box)
    {
        QStringList texts;
        for (int i = 0; i < box.count(); ++i) {
            texts.append(box.itemText(i));
        }
        return texts;
    }
    [[nodiscard]] QAction *item(int index) const { return menu.actions().at(index); }
    /// The captions in the menu, "*" before a marked one.
    [[nodiscard]] QStringList items() const
    {
        QStringList texts;
        for (const QAction *each : menu.actions()) {
            if (each->isVisible()) {
                texts.append((each->isChecked() ? u"*"_s : QString()) + itemCaption(each));
            }
        }
        return texts;
    }

    QComboBox shown;
    QComboBox hidden;
    QMenu menu;
    QAction *base;
    EncodingChoice *choice;
};

const QString three = u"big5 | Chinese || _user | User || koi8-r | Cyrillic & Co. || no entry || utf-8 | Unicode"_s;

} // namespace

/// The three places of the encodings, and the menu items that are made at run time.
class TestEncodingChoice : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void whatIsOfferedStandsInAllThreePlaces();
    void theMarkIsOnTheOneInUseAndOnNoOther();
    void fillingAgainKeepsTheChoice();
    void anEncodingIsPickedAndNotTyped();
    void aCodeIsLookedUpExactlyAndTheHiddenListStaysThere_data();
    void aCodeIsLookedUpExactlyAndTheHiddenListStaysThere();
    void anEmptyCodeIsTheStandardWhateverIsOffered();
    void anItemsCaptionIsWithoutMarksAndKeys_data();
    void anItemsCaptionIsWithoutMarksAndKeys();
    void itemsOfAnotherArrayStay();
};

void TestEncodingChoice::whatIsOfferedStandsInAllThreePlaces()
{
    const Sample sample;
    sample.choice->fill(three);
    QCOMPARE(Sample::entries(sample.shown), (QStringList{u"Chinese"_s, u"Cyrillic & Co."_s, u"Unicode"_s}));
    QCOMPARE(Sample::entries(sample.hidden),
             (QStringList{u"big5 | Chinese"_s, u"koi8-r | Cyrillic & Co."_s, u"utf-8 | Unicode"_s}));
    QCOMPARE(sample.items(), (QStringList{u"Chinese"_s, u"Cyrillic & Co."_s, u"Unicode"_s}));
    QCOMPARE(sample.item(2)->text(), u"Cyrillic && Co."_s);
    QCOMPARE(sample.item(3)->objectName(), u"menoesa(3)"_s);
    for (int i = 1; i <= 3; ++i) {
        QVERIFY(sample.item(i)->isEnabled() && sample.item(i)->isCheckable());
    }
    sample.choice->fill({});
    QCOMPARE(sample.items(), QStringList{u"None"_s});
    QCOMPARE(sample.shown.count() + sample.hidden.count(), 0);
}

void TestEncodingChoice::theMarkIsOnTheOneInUseAndOnNoOther()
{
    Sample sample;
    sample.choice->fill(three);
    const QStringList none = {u"Chinese"_s, u"Cyrillic & Co."_s, u"Unicode"_s};
    const QStringList second = {u"Chinese"_s, u"*Cyrillic & Co."_s, u"Unicode"_s};
    const QStringList third = {u"Chinese"_s, u"Cyrillic & Co."_s, u"*Unicode"_s};
    for (int twice = 0; twice < 2; ++twice) {
        Q_EMIT sample.menu.triggered(sample.item(2));
        QCOMPARE(sample.shown.currentText(), u"Cyrillic & Co."_s);
        QCOMPARE(sample.items(), second);
    }
    sample.shown.setCurrentIndex(2);
    QCOMPARE(sample.items(), third);
    sample.shown.setEditText(u"unicode"_s);
    QCOMPARE(sample.items(), none);
    sample.item(2)->trigger();
    sample.item(2)->trigger(); // which turns the mark of an item off
    QCOMPARE(sample.items(), second);
}

void TestEncodingChoice::fillingAgainKeepsTheChoice()
{
    Sample sample;
    sample.choice->fill(three);
    sample.shown.setCurrentIndex(2);
    const QSignalSpy changes(&sample.shown, &QComboBox::editTextChanged);
    sample.choice->fill(u"utf-8 | Unicode || x | Other"_s);
    QCOMPARE(sample.shown.currentText(), u"Unicode"_s);
    QCOMPARE(sample.shown.currentIndex(), 0);
    QCOMPARE(sample.items(), (QStringList{u"*Unicode"_s, u"Other"_s}));
    sample.choice->fill(u"x | Other"_s);
    QCOMPARE(sample.shown.currentText(), u"Unicode"_s);
    QCOMPARE(sample.shown.currentIndex(), -1);
    QCOMPARE(sample.items(), QStringList{u"Other"_s});
    QCOMPARE(changes.count(), 0);
}

void TestEncodingChoice::anEncodingIsPickedAndNotTyped()
{
    Sample sample;
    sample.choice->fill(three);
    sample.shown.setCurrentIndex(1);
    sample.shown.show();
    QTest::keyClicks(sample.shown.lineEdit(), u"x"_s);
    QCOMPARE(sample.shown.currentText(), u"Cyrillic & Co."_s);
    const auto popUp = [&sample] { return sample.shown.view()->isVisible(); };
    sample.shown.setEnabled(false);
    QTest::mouseClick(sample.shown.lineEdit(), Qt::LeftButton);
    QVERIFY(!popUp());
    sample.shown.setEnabled(true);
    QTest::mousePress(sample.shown.lineEdit(), Qt::LeftButton);
    QVERIFY(!popUp());
    QTest::mouseRelease(sample.shown.lineEdit(), Qt::LeftButton);
    QVERIFY(popUp());
    sample.shown.hidePopup();
}

void TestEncodingChoice::aCodeIsLookedUpExactlyAndTheHiddenListStaysThere_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("index");
    QTest::newRow("the first") << u"big5"_s << u"Chinese"_s << 0;
    QTest::newRow("one within") << u"koi8-r"_s << u"Cyrillic & Co."_s << 1;
    QTest::newRow("the last") << u"utf-8"_s << u"Unicode"_s << 2;
    QTest::newRow("another case") << u"UTF-8"_s << u""_s << 2;
    QTest::newRow("a display name") << u"Chinese"_s << u""_s << 2;
    QTest::newRow("a part") << u"koi8"_s << u""_s << 2;
    QTest::newRow("one that is not offered") << u"_user"_s << u""_s << 2;
}

void TestEncodingChoice::aCodeIsLookedUpExactlyAndTheHiddenListStaysThere()
{
    QFETCH(const QString, code);
    const Sample sample;
    sample.choice->fill(three);
    QTEST(sample.choice->displayName(code), "name");
    QTEST(sample.hidden.currentIndex(), "index");
}

void TestEncodingChoice::anEmptyCodeIsTheStandardWhateverIsOffered()
{
    Sample sample;
    QCOMPARE(sample.choice->displayName({}), u"Unicode (UTF-8)"_s);
    sample.choice->fill(three);
    sample.hidden.setCurrentIndex(1);
    QCOMPARE(sample.choice->displayName({}), u"Unicode (UTF-8)"_s);
    QCOMPARE(sample.hidden.currentIndex(), 1);
}

void TestEncodingChoice::anItemsCaptionIsWithoutMarksAndKeys_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("caption");
    QTest::newRow("as it is") << u"Send"_s << u"Send"_s;
    QTest::newRow("a mnemonic first") << u"&Send"_s << u"Send"_s;
    QTest::newRow("a mnemonic within") << u"Sa&ve as..."_s << u"Save as..."_s;
    QTest::newRow("a key") << u"&Send\tCtrl+Return"_s << u"Send"_s;
    QTest::newRow("the sign") << u"A && B"_s << u"A & B"_s;
    QTest::newRow("the sign and a mnemonic") << u"A &&& B"_s << u"A & B"_s;
    QTest::newRow("two signs") << u"&&&&"_s << u"&&"_s;
    QTest::newRow("a mark of nothing") << u"A&"_s << u"A"_s;
    QTest::newRow("nothing") << u""_s << u""_s;
}

void TestEncodingChoice::anItemsCaptionIsWithoutMarksAndKeys()
{
    QFETCH(const QString, text);
    QAction item(text);
    QTEST(itemCaption(&item), "caption");
    item.setData(u"&its\tdata"_s);
    QCOMPARE(itemCaption(&item), u"&its\tdata"_s);
}

void TestEncodingChoice::itemsOfAnotherArrayStay()
{
    QMenu menu;
    QAction *base = menu.addAction(u"None"_s);
    base->setObjectName(u"men(0)"_s);
    QAction *other = menu.addAction(u"Other"_s);
    other->setObjectName(u"mens(1)"_s);
    rebuildItemArray(&menu, base, {u"a"_s, u"b"_s});
    QCOMPARE(itemArray(&menu, base).size(), 2);
    QVERIFY(!base->isVisible());
    rebuildItemArray(&menu, base, {});
    QCOMPARE(menu.actions(), (QList<QAction *>{base, other}));
    QVERIFY(base->isVisible());
}

QTEST_MAIN(TestEncodingChoice)
#include "test_encodingchoice.moc"
