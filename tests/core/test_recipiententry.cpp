#include "core/recipiententry.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace corvane;

class TestRecipientEntry : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void entryIsANameABlankAndAnAddressInBrackets();
    void entryIsANameABlankAndAnAddressInBrackets_data();
    void nameEndsTwoCharactersBeforeTheBracket();
    void trailingCommaIsCutOnceAndEmptyEntriesStay();
    void lineEndWithinAnEntryIsABlank();
    void anEntryTurnsIntoItsNameAndAddress_data();
    void anEntryTurnsIntoItsNameAndAddress();
};

void TestRecipientEntry::entryIsANameABlankAndAnAddressInBrackets_data()
{
    QTest::addColumn<QString>("entry");
    QTest::addColumn<bool>("valid");
    QTest::newRow("name and address") << u"Ada Lovelace <ada@x.org>"_s << true;
    QTest::newRow("bare address") << u"ada@x.org"_s << true;
    QTest::newRow("no blank before the bracket") << u"Ada<ada@x.org>"_s << false;
    QTest::newRow("bracket at position 1") << u"<ada@x.org>"_s << false;
    QTest::newRow("bracket at position 2") << u" <ada@x.org>"_s << false;
    QTest::newRow("bracket at position 3") << u"A <ada@x.org>"_s << true;
    QTest::newRow("something behind the bracket") << u"Ada <ada@x.org> "_s << false;
    QTest::newRow("no closing bracket") << u"Ada <ada@x.org"_s << false;
    QTest::newRow("bad address") << u"Ada <ada>"_s << false;
    QTest::newRow("only an open bracket") << u"Ada <"_s << false;
    QTest::newRow("empty") << QString() << false;
    QTest::newRow("two brackets") << u"Ada <b> <ada@x.org>"_s << false;
    QTest::newRow("right-to-left name") << u"\u05D0\u05D3\u05D4 <ada@x.org>"_s << true;
}

void TestRecipientEntry::entryIsANameABlankAndAnAddressInBrackets()
{
    QFETCH(const QString, entry);
    QFETCH(const bool, valid);
    QCOMPARE(IsRecipientEntry(entry), valid);
}

void TestRecipientEntry::nameEndsTwoCharactersBeforeTheBracket()
{
    const quillon::MailAddress spaced = toMailAddress(u"Ada  <ada@x.org>"_s);
    QCOMPARE(spaced.Name, u"Ada "_s);
    QCOMPARE(spaced.Address, u"ada@x.org"_s);
    QCOMPARE(toMailAddress(u"ada@x.org"_s).Address, u"ada@x.org"_s);
    QCOMPARE(toMailAddress(u"ada@x.org"_s).Name, QString());
    QCOMPARE(toRecipientEntry(u"Ada"_s, u"ada@x.org"_s), u"Ada <ada@x.org>"_s);
    QCOMPARE(toRecipientEntry(QString(), u"ada@x.org"_s), u"ada@x.org"_s);
}

void TestRecipientEntry::trailingCommaIsCutOnceAndEmptyEntriesStay()
{
    QCOMPARE(splitRecipients(u" a@b.c, "_s), QStringList{u"a@b.c"_s});
    QCOMPARE(splitRecipients(u"a@b.c,,"_s), (QStringList{u"a@b.c"_s, QString()}));
    QCOMPARE(splitRecipients(u"a@b.c,\r\n d@e.f"_s), (QStringList{u"a@b.c"_s, u"d@e.f"_s}));
    QCOMPARE(splitRecipients(u","_s), QStringList());
    QCOMPARE(splitRecipients(u"  \r\n"_s), QStringList());
}

void TestRecipientEntry::lineEndWithinAnEntryIsABlank()
{
    QCOMPARE(splitRecipients(u"Bob\r\nLee <b@x.org>,\nCy\rD <c@x.org>"_s),
             (QStringList{u"Bob Lee <b@x.org>"_s, u"Cy D <c@x.org>"_s}));
    QCOMPARE(trimmedEntry(u"\u2029Bob\u2028Lee <b@x.org>\u2028"_s), u"Bob Lee <b@x.org>"_s);
    QCOMPARE(trimmedEntry(u"\tBob\tLee <b@x.org>\t"_s), u"Bob\tLee <b@x.org>"_s); // no line end: as it was typed
}

void TestRecipientEntry::anEntryTurnsIntoItsNameAndAddress_data()
{
    QTest::addColumn<QString>("entry");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("address");
    QTest::newRow("name and address") << u"Ada L <a@b.c>"_s << u"Ada L"_s << u"a@b.c"_s;
    QTest::newRow("shortest name") << u"A <a@b.c>"_s << u"A"_s << u"a@b.c"_s;
    QTest::newRow("bare address") << u"a@b.c"_s << QString() << u"a@b.c"_s;
    QTest::newRow("bracket too early") << u" <a@b.c>"_s << QString() << u" <a@b.c>"_s;
    QTest::newRow("nothing in the brackets") << u"A <"_s << u"A"_s << QString();
    QTest::newRow("empty") << QString() << QString() << QString();
}

void TestRecipientEntry::anEntryTurnsIntoItsNameAndAddress()
{
    QFETCH(QString, entry);
    QTEST(toMailAddress(entry).Name, "name");
    QTEST(toMailAddress(entry).Address, "address");
}

QTEST_GUILESS_MAIN(TestRecipientEntry)
#include "test_recipiententry.moc"
