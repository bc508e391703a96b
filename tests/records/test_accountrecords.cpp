#include "accountfixture.h"
#include "records/accountrecords.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace corvane;

class TestAccountRecords : public QObject, protected AccountFixture {
    Q_OBJECT

private Q_SLOTS:
    void init() { makeTree(); }
    void cleanup() { dropTree(); }

    void accountIsFoundBetweenTabsWithoutRegardToCase();
    void capitalsMatterNeitherInTheFileNorInTheAddress();
    void capitalsMatterNeitherInTheFileNorInTheAddress_data();
    void firstAndLastFieldAreNeverFound();
    void defaultAccountIsUsable();
    void defaultAccountIsUsable_data();
    void anEmptyAddressFindsNothing();
    void senderWithoutANameIsTheBareAddress();
};

void TestAccountRecords::accountIsFoundBetweenTabsWithoutRegardToCase()
{
    accounts({ada, bea, bea});
    QCOMPARE(FindSmtpRecord(m_tree->globals, u"ADA@x.org"_s), ada);
    QCOMPARE(FindSmtpRecord(m_tree->globals, u"bea@y.org"_s), bea);
    QCOMPARE(FindSmtpRecord(m_tree->globals, u"da@x.org"_s), QString());
    QCOMPARE(FindSmtpRecord(m_tree->globals, u"nobody@x.org"_s), QString());
}

void TestAccountRecords::capitalsMatterNeitherInTheFileNorInTheAddress_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("address");
    QTest::addColumn<bool>("found");
    QTest::newRow("stored with capitals") << u"Ann.Lee@Example.ORG"_s << u"ann.lee@example.org"_s << true;
    QTest::newRow("looked for with capitals") << u"ann.lee@example.org"_s << u"Ann.Lee@Example.ORG"_s << true;
    QTest::newRow("capitals in both") << u"ANN.Lee@example.org"_s << u"ann.LEE@Example.org"_s << true;
    QTest::newRow("letters beyond ASCII") << u"Øre@example.org"_s << u"øRE@example.org"_s << true;
    QTest::newRow("the beginning is missing") << u"ann@example.org"_s << u"nn@example.org"_s << false;
    QTest::newRow("the end is missing") << u"ann@example.org"_s << u"ann@example.or"_s << false;
    QTest::newRow("a blank in front") << u"ann@example.org"_s << u" ann@example.org"_s << false;
}

void TestAccountRecords::capitalsMatterNeitherInTheFileNorInTheAddress()
{
    QFETCH(const QString, stored);
    QFETCH(const QString, address);
    QFETCH(const bool, found);
    const QString line = QString(ada).replace(u"ada@x.org"_s, stored); // the address is in no other field
    accounts({bea, line});
    QCOMPARE(FindSmtpRecord(m_tree->globals, address), found ? line : QString());
}

void TestAccountRecords::firstAndLastFieldAreNeverFound()
{
    accounts({ada});
    QCOMPARE(FindSmtpRecord(m_tree->globals, u"mail.x.org"_s), QString());
    QCOMPARE(FindSmtpRecord(m_tree->globals, u"/SAEND"_s), QString());
    QCOMPARE(FindSmtpRecord(m_tree->globals, u"25"_s), ada); // any field in between will do
}

void TestAccountRecords::defaultAccountIsUsable_data()
{
    QTest::addColumn<QString>("record");
    QTest::addColumn<bool>("usable");
    QTest::newRow("whole") << bea << true;
    QTest::newRow("none") << QString() << false;
    QTest::newRow("blanks") << u" \t "_s << false;
    QTest::newRow("no server") << QString(ada).replace(u"mail.x.org"_s, QString()) << false;
    QTest::newRow("no port") << QString(ada).replace(u"\t25\t"_s, u"\t\t"_s) << false;
    QTest::newRow("authentication without a user") << QString(bea).replace(u"\tbea\t"_s, u"\t\t"_s) << false;
    QTest::newRow("no authentication, no user") << ada << true;
    QTest::newRow("no address") << QString(ada).replace(u"ada@x.org"_s, QString()) << false;
    QTest::newRow("bad address") << QString(ada).replace(u"ada@x.org"_s, u"ada"_s) << false;
    QTest::newRow("bad receipt address") << QString(bea).replace(u"bea@y.org"_s, u"bea"_s) << false;
    QTest::newRow("short") << u"mail.x.org\t25"_s << false;
    QTest::newRow("without its end mark") << u"mail.x.org\t25\tN\tN\t\t\tAda\tada@x.org"_s << true;
}

void TestAccountRecords::defaultAccountIsUsable()
{
    QFETCH(const QString, record);
    QFETCH(const bool, usable);
    m_tree->globals.settings.set(Setting::DefaultAccount, record);
    QCOMPARE(DefaultSmtpUsable(m_tree->globals), usable);
}

void TestAccountRecords::anEmptyAddressFindsNothing()
{
    const QString full = u"mail.z.org\t25\tN\tY\tu\tp\tZoe\tzoe@z.org\tZoe\tzoe@z.org\t/SAEND"_s;
    const QString blank = QString(ada).replace(u"\tAda\t"_s, u"\t \t"_s);
    accounts({full, ada, blank}); // both others have a field that such an address equals
    for (const QString &address : {QString(), u""_s, u" "_s, u"\t"_s, u" \t \r\n"_s}) {
        QCOMPARE(FindSmtpRecord(m_tree->globals, address), QString());
    }
}

void TestAccountRecords::senderWithoutANameIsTheBareAddress()
{
    QCOMPARE(accountSender(ada), u"Ada <ada@x.org>"_s);
    QCOMPARE(accountSender(bea), u"Bea@Y.org"_s);
    QCOMPARE(accountSender(QString(ada).replace(u"\tAda\t"_s, u"\t  \t"_s)), u"ada@x.org"_s);
}

QTEST_GUILESS_MAIN(TestAccountRecords)
#include "test_accountrecords.moc"
