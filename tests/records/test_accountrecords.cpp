#include "records/accountrecords.h"
#include "records/windowlists.h"
#include "support/fakewindow.h"
#include "support/temporarytree.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace corvane;
using Field = MessageWindow::Field;

namespace {
const QString ada = u"mail.x.org\t25\tN\tN\t\t\tAda\tada@x.org\t\t\t/SAEND"_s;
const QString bea = u"mail.y.org\t465\tS\tY\tbea\tsecret\t\tBea@Y.org\tBea\tbea@y.org\t/SAEND"_s;
} // namespace

class TestAccountRecords : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_tree = std::make_unique<TemporaryTree>();
        m_tree->prepare();
    }
    void cleanup() { m_tree.reset(); }

    void accountIsFoundBetweenTabsWithoutRegardToCase();
    void firstAndLastFieldAreNeverFound();
    void defaultAccountIsUsable();
    void defaultAccountIsUsable_data();
    void accountBoxGetsTheAddressesAndKeepsItsText();
    void withoutADefaultTheAccountBoxStaysEmpty();
    void emptyAccountBoxGetsTheDefault();
    void shortLinesGiveNoAddressAndAreKept();
    void senderBoxesGetEntriesAndKeepTypedText();
    void senderWithoutANameShowsItsBareAddress();
    void shortSenderLinesGiveNoEntry();
    void emptyAddressFindsTheFirstAccountWithAnEmptyField();

private:
    void accounts(const QStringList &lines) const
    {
        writeFile(m_tree->globals.paths.smtpFile, (lines.join(u"\r\n"_s) + u"\r\n"_s).toUtf8());
    }

    std::unique_ptr<TemporaryTree> m_tree;
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
    m_tree->globals.settings.smtp[0] = record;
    QCOMPARE(DefaultSmtpUsable(m_tree->globals), usable);
}

void TestAccountRecords::accountBoxGetsTheAddressesAndKeepsItsText()
{
    accounts({ada, bea});
    FakeWindow window;
    window.setText(Field::Account, u"typed@z.org"_s);
    window.setList(Field::Account, {u"old@z.org"_s});
    LoadSmtpLists(m_tree->globals, window);
    QCOMPARE(window.list(Field::Account), (QStringList{u"ada@x.org"_s, u"Bea@Y.org"_s}));
    QCOMPARE(window.text(Field::Account), u"typed@z.org"_s);
}

void TestAccountRecords::withoutADefaultTheAccountBoxStaysEmpty()
{
    accounts({ada});
    FakeWindow window;
    LoadSmtpLists(m_tree->globals, window);
    QCOMPARE(window.text(Field::Account), QString());
}

void TestAccountRecords::emptyAccountBoxGetsTheDefault()
{
    accounts({ada, bea});
    m_tree->globals.settings.smtp[0] = bea;
    FakeWindow window;
    LoadSmtpLists(m_tree->globals, window);
    QCOMPARE(window.text(Field::Account), u"Bea@Y.org"_s);
}

void TestAccountRecords::shortLinesGiveNoAddressAndAreKept()
{
    const QStringList lines = {u"broken"_s, QString(), ada, u"a\tb"_s};
    accounts(lines);
    FakeWindow window;
    LoadSmtpLists(m_tree->globals, window);
    QCOMPARE(window.list(Field::Account), QStringList{u"ada@x.org"_s});
    QCOMPARE(m_tree->globals.lines.ReadLines(m_tree->globals.paths.smtpFile), lines);
}

void TestAccountRecords::senderBoxesGetEntriesAndKeepTypedText()
{
    writeFile(m_tree->globals.paths.sendersFile, "Club\tclub@x.org\tremark\r\nShop\tshop@x.org\t\r\n");
    FakeWindow window;
    window.setText(Field::Sender, u"Typed <typed@x.org>"_s);
    LoadSenderLists(MainWindowBoxes, m_tree->globals, window);
    const QStringList expected = {u"Club <club@x.org>"_s, u"Shop <shop@x.org>"_s};
    QCOMPARE(window.list(Field::Sender), expected);
    QCOMPARE(window.list(Field::ReplyReceiver), expected);
    QCOMPARE(window.text(Field::Sender), u"Typed <typed@x.org>"_s);
    QCOMPARE(window.text(Field::ReplyReceiver), QString());
}

void TestAccountRecords::senderWithoutANameShowsItsBareAddress()
{
    writeFile(m_tree->globals.paths.sendersFile, " \tclub@x.org\t\r\n");
    FakeWindow window;
    LoadSenderLists(MainWindowBoxes, m_tree->globals, window);
    QCOMPARE(window.list(Field::Sender), QStringList{u"club@x.org"_s});
}

void TestAccountRecords::shortSenderLinesGiveNoEntry()
{
    writeFile(m_tree->globals.paths.sendersFile, "\r\nBob\r\nClub\tclub@x.org\t\r\n");
    FakeWindow window;
    LoadSenderLists(MainWindowBoxes, m_tree->globals, window);
    QCOMPARE(window.list(Field::Sender), QStringList{u"Club <club@x.org>"_s});
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
