#include "macros/placeholders.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace corvane;

class TestPlaceholders : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void firstAndLastNameAreTheEndsOfTheFullName_data();
    void firstAndLastNameAreTheEndsOfTheFullName();
    void onlyTheFourKeysOfARecipientHaveItsValues();
};

void TestPlaceholders::firstAndLastNameAreTheEndsOfTheFullName_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("last");
    QTest::newRow("three words") << u"Ada King Lovelace"_s << u"Ada"_s << u"Lovelace"_s;
    QTest::newRow("one word") << u"Ada"_s << u"Ada"_s << u"Ada"_s;
    QTest::newRow("none") << QString() << QString() << QString();
    QTest::newRow("blanks at the ends cut off empty pieces") << u" Ada "_s << QString() << QString();
    QTest::newRow("two blanks within") << u"Ada  Lovelace"_s << u"Ada"_s << u"Lovelace"_s;
}

void TestPlaceholders::firstAndLastNameAreTheEndsOfTheFullName()
{
    QFETCH(QString, name);
    const RecipientValues values(name, u"ada@x.org"_s);
    QCOMPARE(values.fullName, name);
    QCOMPARE(values.address, u"ada@x.org"_s);
    QTEST(values.firstName, "first");
    QTEST(values.lastName, "last");
}

void TestPlaceholders::onlyTheFourKeysOfARecipientHaveItsValues()
{
    const RecipientValues values(u"Ada King"_s, u"ada@x.org"_s);
    QCOMPARE(recipientText(u"{First Name of The Recipient}", values), u"Ada"_s);
    QCOMPARE(recipientText(u"{Last Name of The Recipient}", values), u"King"_s);
    QCOMPARE(recipientText(u"{Full Name of The Recipient}", values), u"Ada King"_s);
    QCOMPARE(recipientText(u"{Email Address of The Recipient}", values), u"ada@x.org"_s);
    QCOMPARE(recipientText(u"{Last Name of The Recipient}", RecipientValues()), std::optional(QString()));
    for (const QString &other : {u"{first name of the recipient}"_s, u"First Name of The Recipient"_s, u"{Long Date}"_s,
                                 u"{My First Name}"_s, QString()}) {
        QVERIFY2(!recipientText(other, values), qPrintable(other));
    }
}

QTEST_GUILESS_MAIN(TestPlaceholders)
#include "test_placeholders.moc"
