#include "quillon/forms/accessiblenames.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QTest>
#include <QToolButton>

using namespace Qt::StringLiterals;

class TestAccessibleNames : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aLabelsCaptionIsItsFieldsName_data();
    void aLabelsCaptionIsItsFieldsName();
    void aButtonsNameIsItsCaptionAndItsTip();
    void withoutALabelTheTipIsTheName();
    void whatHasNoTipOrHasANameIsLeftAlone();
};

void TestAccessibleNames::aLabelsCaptionIsItsFieldsName_data()
{
    QTest::addColumn<QString>("caption");
    QTest::addColumn<QString>("name");
    QTest::newRow("as it is") << u"Subject"_s << u"Subject"_s;
    QTest::newRow("a mnemonic first") << u"&To"_s << u"To"_s;
    QTest::newRow("a mnemonic within") << u"Reply rec&eiver"_s << u"Reply receiver"_s;
    QTest::newRow("the sign itself") << u"D&ate && time"_s << u"Date & time"_s;
    QTest::newRow("a colon") << u"To:"_s << u"To"_s;
    QTest::newRow("dots and blanks") << u"More ... "_s << u"More"_s;
    QTest::newRow("a dot within") << u"No. of: it"_s << u"No. of: it"_s;
}

void TestAccessibleNames::aLabelsCaptionIsItsFieldsName()
{
    QFETCH(const QString, caption);
    QWidget form;
    QLineEdit field(&form);
    field.setToolTip(u"A tip."_s);
    QLabel without(u"No buddy"_s, &form);
    QLabel label(caption, &form);
    label.setBuddy(&field);
    quillon::setAccessibleNames(&form);
    QTEST(field.accessibleName(), "name");
}

void TestAccessibleNames::aButtonsNameIsItsCaptionAndItsTip()
{
    QWidget form;
    QCheckBox actual(u"&Actual"_s, &form);
    actual.setToolTip(u"Takes the account's sender."_s);
    QCheckBox labelled(u"&Custom"_s, &form);
    labelled.setToolTip(u"A tip."_s);
    QLabel label(u"&Date:"_s, &form);
    label.setBuddy(&labelled);
    QToolButton picture(&form);
    picture.setToolTip(u"Removes the && marked file."_s);
    quillon::setAccessibleNames(&form);
    QCOMPARE(actual.accessibleName(), u"Actual: Takes the account's sender"_s);
    QCOMPARE(labelled.accessibleName(), u"Date"_s);
    QCOMPARE(picture.accessibleName(), u"Removes the & marked file"_s);
}

void TestAccessibleNames::withoutALabelTheTipIsTheName()
{
    QWidget form;
    QWidget group(&form);
    QLineEdit deep(&group);
    deep.setToolTip(u"The source of the content. "_s);
    quillon::setAccessibleNames(&form);
    QCOMPARE(deep.accessibleName(), u"The source of the content"_s);
}

void TestAccessibleNames::whatHasNoTipOrHasANameIsLeftAlone()
{
    QWidget form;
    QLineEdit bare(&form);
    QLabel label(u"&Bare"_s, &form);
    label.setBuddy(&bare);
    QLineEdit named(&form);
    named.setToolTip(u"A tip."_s);
    named.setAccessibleName(u"Own name"_s);
    quillon::setAccessibleNames(&form);
    QCOMPARE(bare.accessibleName(), QString());
    QCOMPARE(named.accessibleName(), u"Own name"_s);
}

QTEST_MAIN(TestAccessibleNames)
#include "test_accessiblenames.moc"
