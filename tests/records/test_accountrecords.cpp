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
    void firstAndLastFieldAreNeverFound();
    void defaultAccountIsUsable();
    void defaultAccountIsUsable_data();
    void emptyAddressFindsTheFirstAccountWithAnEmptyField();
};

void TestAccountRecords::accountIsFoundBetweenTabsWithoutRegardToCase()
{
    accounts({ada, bea, bea});
    QCOMPARE(FindSmtpRecord(m_tree->globals, u"ADA@x.org"_s), ada);
    QCOMPARE(FindSmtpRecord(m_tree->globals, u"bea@y.org"_s), bea);
    QCOMPARE(FindSmtpRecord(m_tree->globals, u"da@x.org"_s), QString());
    QCOMPARE(FindSmtpRecord(m_tree->globals, u"nobody@x.org"_s), QString());
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

void TestAccountRecords::emptyAddressFindsTheFirstAccountWithAnEmptyField()
{
    const QString full = u"mail.z.org\t25\tN\tY\tu\tp\tZoe\tzoe@z.org\tZoe\tzoe@z.org\t/SAEND"_s;
    accounts({full, ada});
    QCOMPARE(FindSmtpRecord(m_tree->globals, QString()), ada);
    accounts({full});
    QCOMPARE(FindSmtpRecord(m_tree->globals, QString()), QString());
}

QTEST_GUILESS_MAIN(TestAccountRecords)
#include "test_accountrecords.moc"
