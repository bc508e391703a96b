#include "accountfixture.h"
#include "records/windowlists.h"
#include "support/fakewindow.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace corvane;
using Field = Message::Field;

class TestWindowLists : public QObject, protected AccountFixture {
    Q_OBJECT

private Q_SLOTS:
    void init() { makeTree(); }
    void cleanup() { dropTree(); }

    void accountBoxGetsTheAddressesAndKeepsItsText();
    void withoutADefaultTheAccountBoxStaysEmpty();
    void emptyAccountBoxGetsTheDefault();
    void shortLinesGiveNoAddressAndAreKept();
    void senderBoxesGetEntriesAndKeepTypedText();
    void senderWithoutANameShowsItsBareAddress();
    void shortSenderLinesGiveNoEntry();
    void anAccountBoxThatKeepsItsTextMarksNoChange();
    void anAccountsAddressIsOfferedOnceForEachLine();
    void thousandsOfAccountsAreOffered();
    void senderWithoutARemarkIsOffered();
    void addressesInAnyScriptAreOffered();
    void filesThatCannotBeReadGiveEmptyListsAndStay();
    void sendersBoxesThatKeepTheirTextMarkNoChange();
    void anAccountBoxThatKeepsItsTextLooksUpItsRecordAfresh();
    void withoutATextOrADefaultNothingIsPicked();
};

namespace {

/// Notes what is put into its boxes.
class PickedWindow : public FakeWindow {
public:
    void setText(Field field, const QString &text) override
    {
        picked.append(text);
        FakeWindow::setText(field, text);
    }
    QStringList picked;
};

} // namespace

void TestWindowLists::accountBoxGetsTheAddressesAndKeepsItsText()
{
    accounts({ada, bea});
    FakeWindow window;
    window.setText(Field::Account, u"typed@z.org"_s);
    window.setList(Field::Account, {u"old@z.org"_s});
    LoadSmtpLists(m_tree->globals, window, window);
    QCOMPARE(window.list(Field::Account), (QStringList{u"ada@x.org"_s, u"Bea@Y.org"_s}));
    QCOMPARE(window.text(Field::Account), u"typed@z.org"_s);
}

void TestWindowLists::withoutADefaultTheAccountBoxStaysEmpty()
{
    accounts({ada});
    FakeWindow window;
    LoadSmtpLists(m_tree->globals, window, window);
    QCOMPARE(window.text(Field::Account), QString());
}

void TestWindowLists::emptyAccountBoxGetsTheDefault()
{
    accounts({ada, bea});
    m_tree->globals.settings.set(Setting::DefaultAccount, bea);
    FakeWindow window;
    LoadSmtpLists(m_tree->globals, window, window);
    QCOMPARE(window.text(Field::Account), u"Bea@Y.org"_s);
}

void TestWindowLists::shortLinesGiveNoAddressAndAreKept()
{
    const QStringList lines = {u"broken"_s, QString(), ada, u"a\tb"_s};
    accounts(lines);
    FakeWindow window;
    LoadSmtpLists(m_tree->globals, window, window);
    QCOMPARE(window.list(Field::Account), QStringList{u"ada@x.org"_s});
    QCOMPARE(m_tree->globals.lines.ReadLines(m_tree->globals.paths.smtpFile), lines);
}

void TestWindowLists::senderBoxesGetEntriesAndKeepTypedText()
{
    writeFile(m_tree->globals.paths.sendersFile, "Club\tclub@x.org\tremark\r\nShop\tshop@x.org\t\r\n");
    FakeWindow window;
    window.setText(Field::Sender, u"Typed <typed@x.org>"_s);
    LoadSenderLists(m_tree->globals, window, window);
    const QStringList expected = {u"Club <club@x.org>"_s, u"Shop <shop@x.org>"_s};
    QCOMPARE(window.list(Field::Sender), expected);
    QCOMPARE(window.list(Field::ReplyReceiver), expected);
    QCOMPARE(window.text(Field::Sender), u"Typed <typed@x.org>"_s);
    QCOMPARE(window.text(Field::ReplyReceiver), QString());
}

void TestWindowLists::senderWithoutANameShowsItsBareAddress()
{
    writeFile(m_tree->globals.paths.sendersFile, " \tclub@x.org\t\r\n");
    FakeWindow window;
    LoadSenderLists(m_tree->globals, window, window);
    QCOMPARE(window.list(Field::Sender), QStringList{u"club@x.org"_s});
}

void TestWindowLists::shortSenderLinesGiveNoEntry()
{
    writeFile(m_tree->globals.paths.sendersFile, "\r\nBob\r\nClub\tclub@x.org\t\r\n");
    FakeWindow window;
    LoadSenderLists(m_tree->globals, window, window);
    QCOMPARE(window.list(Field::Sender), QStringList{u"Club <club@x.org>"_s});
}

void TestWindowLists::anAccountBoxThatKeepsItsTextMarksNoChange()
{
    accounts({ada});
    FakeWindow window;
    window.setText(Field::Account, u"ada@x.org"_s);
    window.pblnChanged = false;
    m_tree->globals.settings.set(Setting::DefaultAccount, bea);
    LoadSmtpLists(m_tree->globals, window, window);
    QCOMPARE(window.text(Field::Account), u"ada@x.org"_s);
    QVERIFY(!window.pblnChanged);
}

void TestWindowLists::anAccountsAddressIsOfferedOnceForEachLine()
{
    const QString eightFields = ada.section(u'\t', 0, 7);
    accounts({ada, ada, eightFields, ada + u"\tmore"_s});
    FakeWindow window;
    LoadSmtpLists(m_tree->globals, window, window);
    QCOMPARE(window.list(Field::Account), QStringList(QList<QString>(4, u"ada@x.org"_s)));
}

void TestWindowLists::thousandsOfAccountsAreOffered()
{
    QStringList lines;
    for (int i = 0; i < 5000; ++i) {
        lines.append(QString(ada).replace(u"ada@"_s, u"ada%1@"_s.arg(i)));
    }
    accounts(lines);
    FakeWindow window;
    LoadSmtpLists(m_tree->globals, window, window);
    QCOMPARE(window.list(Field::Account).size(), 5000);
    QCOMPARE(window.list(Field::Account).last(), u"ada4999@x.org"_s);
}

void TestWindowLists::senderWithoutARemarkIsOffered()
{
    writeFile(m_tree->globals.paths.sendersFile, "Club\tclub@x.org\r\nShop\tshop@x.org\ta\tb\r\n\tbare@x.org\r\n");
    FakeWindow window;
    LoadSenderLists(m_tree->globals, window, window);
    QCOMPARE(window.list(Field::ReplyReceiver),
             (QStringList{u"Club <club@x.org>"_s, u"Shop <shop@x.org>"_s, u"bare@x.org"_s}));
}

void TestWindowLists::addressesInAnyScriptAreOffered()
{
    const QString long300(300, u'x');
    accounts({QString(ada).replace(u"ada@x.org"_s, u"почта@пример.рф"_s)});
    writeFile(m_tree->globals.paths.sendersFile,
              (u"王小明\twang@例え.jp\t\r\n"_s + long300 + u"\tλ@παράδειγμα.gr\t\r\n"_s).toUtf8());
    FakeWindow window;
    LoadSmtpLists(m_tree->globals, window, window);
    LoadSenderLists(m_tree->globals, window, window);
    QCOMPARE(window.list(Field::Account), QStringList{u"почта@пример.рф"_s});
    QCOMPARE(window.list(Field::Sender), (QStringList{u"王小明 <wang@例え.jp>"_s, long300 + u" <λ@παράδειγμα.gr>"_s}));
}

void TestWindowLists::filesThatCannotBeReadGiveEmptyListsAndStay()
{
    const DataPaths &paths = m_tree->globals.paths;
    for (const QString &path : {paths.smtpFile, paths.sendersFile}) {
        QVERIFY(QFile::remove(path));
        QVERIFY(QDir().mkpath(path + u"/kept"_s));
    }
    FakeWindow window;
    window.setList(Field::Account, {u"old@x.org"_s});
    window.setList(Field::Sender, {u"old@x.org"_s});
    LoadSmtpLists(m_tree->globals, window, window);
    LoadSenderLists(m_tree->globals, window, window);
    QCOMPARE(window.list(Field::Account), QStringList());
    QCOMPARE(window.list(Field::Sender), QStringList());
    QVERIFY(QFileInfo(paths.smtpFile + u"/kept"_s).isDir());
    QVERIFY(QFileInfo(paths.sendersFile + u"/kept"_s).isDir());
}

void TestWindowLists::sendersBoxesThatKeepTheirTextMarkNoChange()
{
    writeFile(m_tree->globals.paths.sendersFile, "Club\tclub@x.org\t\r\n");
    m_tree->globals.settings.set(Setting::DefaultSenderAddress, u"club@x.org"_s);
    FakeWindow window;
    window.setText(Field::ReplyReceiver, u"typed"_s);
    window.pblnChanged = false;
    LoadSenderLists(m_tree->globals, window, window);
    QCOMPARE(window.text(Field::Sender), QString()); // the default sender is not put in here
    QVERIFY(!window.pblnChanged);
}

void TestWindowLists::anAccountBoxThatKeepsItsTextLooksUpItsRecordAfresh()
{
    accounts({ada});
    PickedWindow window;
    window.FakeWindow::setText(Field::Account, u"ada@x.org"_s);
    LoadSmtpLists(m_tree->globals, window, window);
    QCOMPARE(window.picked, QStringList{u"ada@x.org"_s});
}

void TestWindowLists::withoutATextOrADefaultNothingIsPicked()
{
    accounts({ada});
    PickedWindow window;
    LoadSmtpLists(m_tree->globals, window, window);
    LoadSenderLists(m_tree->globals, window, window);
    QCOMPARE(window.picked, QStringList());
    m_tree->globals.settings.set(Setting::DefaultAccount, bea);
    LoadSmtpLists(m_tree->globals, window, window);
    QCOMPARE(window.picked, QStringList{u"Bea@Y.org"_s});
}

QTEST_GUILESS_MAIN(TestWindowLists)
#include "test_windowlists.moc"
