#include "mainfixture.h"
#include "records/windowlists.h"

using namespace Qt::StringLiterals;
using namespace corvane;
using Field = Message::Field;

class TestAccountFields : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void pickingAnAccountFillsSenderAndReplyReceiver();
    void anAccountWithoutANameShowsTheBareAddress();
    void pickingAnAccountWhileCustomIsOnChangesNeitherBox();
    void anUnknownAccountEmptiesTheTagAndTheBoxes();
    void actualDisablesTheBoxAndCustomEnablesIt();
    void customShowsTheDefaultSender();
    void customShowsTheFirstEntryWithoutADefaultSender();
    void customShowsTheAccountsSenderWithAnEmptyList();
    void aSenderThatBeginsWithABlankGivesWayToTheAccountsAddress();
    void settingAListKeepsTheText();
    void refillingAnEmptyAccountBoxPicksNoAccount();
    void refillingFollowsAnAccountThatWasEdited();
    void pickingTheSameAccountAgainLooksItUpAfresh();
    void typingAnAccountIsAPick();
    void eachFollowerHasItsOwnChoice();
    void customShowsWhatThereIsOfTheDefaultSender_data();
    void customShowsWhatThereIsOfTheDefaultSender();
    void aBlankAtTheNamesBeginIsKeptByActualAndGivesWayInCustom_data();
    void aBlankAtTheNamesBeginIsKeptByActualAndGivesWayInCustom();
    void withoutAccountsTheBoxesStayEmpty();
    void aTextThatIsSetPicksItsExactEntry();
};

void TestAccountFields::pickingAnAccountFillsSenderAndReplyReceiver()
{
    MainFixture main([](MainFixture &m) { m.addAccounts(); });
    main.view().setList(Field::Account, {u"ann@example.com"_s, u"office@example.com"_s});
    main.combo(6)->setCurrentIndex(1);
    Q_EMIT main.combo(6)->activated(1);
    QCOMPARE(main.message().text(Field::Sender), u"office@example.com"_s);
    main.message().setText(Field::Account, u"ANN@example.COM"_s);
    QCOMPARE(main.message().text(Field::Sender), u"Ann Lee <ann@example.com>"_s);
    QCOMPARE(main.message().text(Field::ReplyReceiver), u"Ann Lee <ann@example.com>"_s);
    QCOMPARE(main.combo(0)->lineEdit()->cursorPosition(), 0); // in a narrow box the name is seen
    QCOMPARE(main.combo(1)->lineEdit()->cursorPosition(), 0);
    QVERIFY(main.combo(6)->property("Tag").toString().startsWith(u"smtp.example.com\t25"_s));
}

void TestAccountFields::anAccountWithoutANameShowsTheBareAddress()
{
    MainFixture main([](MainFixture &m) { m.addAccounts(); });
    main.message().setText(Field::Account, u"office@example.com"_s);
    QCOMPARE(main.message().text(Field::Sender), u"office@example.com"_s);
}

void TestAccountFields::pickingAnAccountWhileCustomIsOnChangesNeitherBox()
{
    MainFixture main([](MainFixture &m) { m.addAccounts(); });
    main.button(u"opt(1)"_s)->click();
    main.button(u"opt(3)"_s)->click();
    main.message().setText(Field::Sender, u"Me <me@example.com>"_s);
    main.message().setText(Field::ReplyReceiver, u"you@example.com"_s);
    main.message().setText(Field::Account, u"office@example.com"_s);
    QCOMPARE(main.message().text(Field::Sender), u"Me <me@example.com>"_s);
    QCOMPARE(main.message().text(Field::ReplyReceiver), u"you@example.com"_s);
    main.button(u"opt(0)"_s)->click();
    QCOMPARE(main.message().text(Field::Sender), u"office@example.com"_s);
}

void TestAccountFields::anUnknownAccountEmptiesTheTagAndTheBoxes()
{
    MainFixture main([](MainFixture &m) { m.addAccounts(); });
    main.message().setText(Field::Account, u"gone@example.com"_s);
    QCOMPARE(main.combo(6)->property("Tag").toString(), QString());
    QCOMPARE(main.message().text(Field::Sender), QString());
}

void TestAccountFields::actualDisablesTheBoxAndCustomEnablesIt()
{
    MainFixture main([](MainFixture &m) { m.addAccounts(); });
    QVERIFY(!main.combo(0)->isEnabled());
    QVERIFY(!main.combo(1)->isEnabled());
    main.button(u"opt(1)"_s)->click();
    QVERIFY(main.combo(0)->isEnabled());
    QVERIFY(!main.combo(1)->isEnabled());
    main.button(u"opt(3)"_s)->click();
    QVERIFY(main.combo(1)->isEnabled());
    main.button(u"opt(0)"_s)->click();
    QVERIFY(!main.combo(0)->isEnabled());
    QCOMPARE(main.message().text(Field::Sender), u"Ann Lee <ann@example.com>"_s);
}

void TestAccountFields::customShowsTheDefaultSender()
{
    MainFixture main([](MainFixture &m) {
        m.addAccounts();
        m.globals().settings.set(Setting::DefaultSenderName, u"The News"_s);
        m.globals().settings.set(Setting::DefaultSenderAddress, u"news@example.com"_s);
    });
    main.button(u"opt(1)"_s)->click();
    QCOMPARE(main.message().text(Field::Sender), u"The News <news@example.com>"_s);
    main.globals().settings.set(Setting::DefaultSenderName, QString());
    main.button(u"opt(3)"_s)->click();
    QCOMPARE(main.message().text(Field::ReplyReceiver), u"news@example.com"_s);
}

void TestAccountFields::customShowsTheFirstEntryWithoutADefaultSender()
{
    MainFixture main([](MainFixture &m) { m.addAccounts(); });
    main.view().setList(Field::Sender, {u"First <first@example.com>"_s, u"second@example.com"_s});
    main.button(u"opt(1)"_s)->click();
    QCOMPARE(main.message().text(Field::Sender), u"First <first@example.com>"_s);
}

void TestAccountFields::customShowsTheAccountsSenderWithAnEmptyList()
{
    MainFixture main([](MainFixture &m) { m.addAccounts(); });
    main.button(u"opt(1)"_s)->click();
    QCOMPARE(main.message().text(Field::Sender), u"Ann Lee <ann@example.com>"_s);
}

void TestAccountFields::aSenderThatBeginsWithABlankGivesWayToTheAccountsAddress()
{
    MainFixture main([](MainFixture &m) { m.addAccounts(); });
    main.view().setList(Field::Sender, {u" <first@example.com>"_s});
    main.button(u"opt(1)"_s)->click();
    QCOMPARE(main.message().text(Field::Sender), u"ann@example.com"_s);
}

void TestAccountFields::settingAListKeepsTheText()
{
    MainFixture main([](MainFixture &m) { m.addAccounts(); });
    main.button(u"opt(1)"_s)->click();
    main.message().setText(Field::Sender, u"typed@example.com"_s);
    main.message().pblnChanged = false;
    main.view().setList(Field::Sender, {u"a@example.com"_s, u"b@example.com"_s});
    QCOMPARE(main.message().text(Field::Sender), u"typed@example.com"_s);
    QCOMPARE(main.view().list(Field::Sender), QStringList({u"a@example.com"_s, u"b@example.com"_s}));
    QVERIFY(!main.message().pblnChanged);
}

void TestAccountFields::refillingAnEmptyAccountBoxPicksNoAccount()
{
    MainFixture main;
    // An account without login has empty fields, which an empty text would be found in.
    writeFile(main.globals().paths.smtpFile, "smtp.example.com\t25\tN\tN\t\t\tAnn\tann@example.com\t\t\t/SAEND\r\n");
    LoadSmtpLists(main.globals(), main.message(), main.view());
    QCOMPARE(main.view().list(Field::Account), QStringList{u"ann@example.com"_s});
    QCOMPARE(main.message().text(Field::Account), QString());
    QCOMPARE(main.message().text(Field::Sender), QString());
    QCOMPARE(main.combo(6)->property("Tag").toString(), QString());
}

void TestAccountFields::refillingFollowsAnAccountThatWasEdited()
{
    MainFixture main([](MainFixture &m) { m.addAccounts(); });
    main.message().setText(Field::Account, u"ann@example.com"_s);
    QCOMPARE(main.message().text(Field::Sender), u"Ann Lee <ann@example.com>"_s);
    writeFile(main.globals().paths.smtpFile, "smtp.example.com\t25\tN\tN\t\t\tAnna\tann@example.com\t\t\t/SAEND\r\n");
    LoadSmtpLists(main.globals(), main.message(), main.view());
    QCOMPARE(main.message().text(Field::Sender), u"Anna <ann@example.com>"_s);
}

void TestAccountFields::pickingTheSameAccountAgainLooksItUpAfresh()
{
    MainFixture main([](MainFixture &m) { m.addAccounts(); });
    main.view().setList(Field::Account, {u"ann@example.com"_s});
    writeFile(main.globals().paths.smtpFile, "smtp.example.com\t25\tN\tN\t\t\tAnna\tann@example.com\t\t\t/SAEND\r\n");
    QCOMPARE(main.message().text(Field::Sender), u"Ann Lee <ann@example.com>"_s);
    Q_EMIT main.combo(6)->activated(0);
    QCOMPARE(main.message().text(Field::Sender), u"Anna <ann@example.com>"_s);
    QCOMPARE(main.message().text(Field::ReplyReceiver), u"Anna <ann@example.com>"_s);
    QVERIFY(main.combo(6)->property("Tag").toString().contains(u"\tAnna\t"_s));
}

void TestAccountFields::typingAnAccountIsAPick()
{
    MainFixture main([](MainFixture &m) { m.addAccounts(); });
    QLineEdit *line = main.combo(6)->lineEdit();
    line->selectAll();
    QTest::keyClicks(line, u"office@example.co"_s);
    QCOMPARE(main.message().text(Field::Sender), QString());
    QCOMPARE(main.combo(6)->property("Tag").toString(), QString());
    QTest::keyClicks(line, u"m"_s);
    QCOMPARE(main.message().text(Field::Sender), u"office@example.com"_s);
    QCOMPARE(main.message().text(Field::ReplyReceiver), u"office@example.com"_s);
}

void TestAccountFields::eachFollowerHasItsOwnChoice()
{
    for (const auto &[custom, other, box, actualBox] :
         {std::tuple(u"opt(1)"_s, u"opt(0)"_s, 0, 1), std::tuple(u"opt(3)"_s, u"opt(2)"_s, 1, 0)}) {
        MainFixture main([](MainFixture &m) {
            m.addAccounts();
            m.globals().settings.set(Setting::DefaultSenderAddress, u"news@example.com"_s);
        });
        main.button(custom)->click();
        QCOMPARE(main.combo(box)->currentText(), u"news@example.com"_s);
        QVERIFY(main.combo(box)->isEnabled() && !main.combo(actualBox)->isEnabled());
        main.message().setText(Field::Account, u"office@example.com"_s);
        QCOMPARE(main.combo(box)->currentText(), u"news@example.com"_s);
        QCOMPARE(main.combo(actualBox)->currentText(), u"office@example.com"_s);
        main.button(other)->click();
        QCOMPARE(main.combo(box)->currentText(), u"office@example.com"_s);
        QVERIFY(!main.combo(box)->isEnabled());
    }
}

void TestAccountFields::customShowsWhatThereIsOfTheDefaultSender_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("shown");
    QTest::newRow("both") << u"The News"_s << u"news@example.com"_s << u"The News <news@example.com>"_s;
    QTest::newRow("an address") << u""_s << u"news@example.com"_s << u"news@example.com"_s;
    QTest::newRow("a name") << u"The News"_s << u""_s << u"The News <>"_s;
    QTest::newRow("neither") << u""_s << u""_s << u"First <first@example.com>"_s;
    QTest::newRow("a blank name") << u" "_s << u"news@example.com"_s << u"ann@example.com"_s;
    QTest::newRow("a blank first") << u" The News"_s << u"news@example.com"_s << u"ann@example.com"_s;
    QTest::newRow("a blank last") << u"The News "_s << u"news@example.com"_s << u"The News  <news@example.com>"_s;
}

void TestAccountFields::customShowsWhatThereIsOfTheDefaultSender()
{
    QFETCH(const QString, name);
    QFETCH(const QString, address);
    MainFixture main([&](MainFixture &m) {
        m.addAccounts();
        m.globals().settings.set(Setting::DefaultSenderName, name);
        m.globals().settings.set(Setting::DefaultSenderAddress, address);
    });
    main.view().setList(Field::Sender, {u"First <first@example.com>"_s});
    main.button(u"opt(1)"_s)->click();
    QTEST(main.message().text(Field::Sender), "shown");
}

void TestAccountFields::aBlankAtTheNamesBeginIsKeptByActualAndGivesWayInCustom_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QString>("actual");
    QTest::addColumn<QString>("custom");
    QTest::newRow("none") << QByteArray() << u"ann@example.com"_s << u"ann@example.com"_s;
    QTest::newRow("blanks only") << QByteArray("  ") << u"ann@example.com"_s << u"ann@example.com"_s;
    QTest::newRow("a blank first") << QByteArray(" Ann") << u" Ann <ann@example.com>"_s << u"ann@example.com"_s;
    QTest::newRow("a blank last") << QByteArray("Ann ") << u"Ann  <ann@example.com>"_s << u"Ann  <ann@example.com>"_s;
}

void TestAccountFields::aBlankAtTheNamesBeginIsKeptByActualAndGivesWayInCustom()
{
    QFETCH(const QByteArray, name);
    MainFixture main;
    writeFile(main.globals().paths.smtpFile,
              "smtp.example.com\t25\tN\tN\tx\ty\t" + name + "\tann@example.com\t\t\t/SAEND\r\n");
    main.message().setText(Field::Account, u"ann@example.com"_s);
    QTEST(main.message().text(Field::Sender), "actual");
    QTEST(main.message().text(Field::ReplyReceiver), "actual");
    main.button(u"opt(1)"_s)->click(); // the list is empty, and so is the default sender
    main.button(u"opt(3)"_s)->click();
    QTEST(main.message().text(Field::Sender), "custom");
    QTEST(main.message().text(Field::ReplyReceiver), "custom");
}

void TestAccountFields::withoutAccountsTheBoxesStayEmpty()
{
    MainFixture main([](MainFixture &m) {
        m.addAccounts();
        m.hooks.findSmtpRecord = [](const QString &) { return QString(); };
    });
    main.message().setText(Field::Account, u"office@example.com"_s);
    QCOMPARE(main.message().text(Field::Sender), QString());
    main.button(u"opt(1)"_s)->click();
    QCOMPARE(main.message().text(Field::Sender), QString());
}

void TestAccountFields::aTextThatIsSetPicksItsExactEntry()
{
    MainFixture main;
    main.button(u"opt(1)"_s)->click();
    main.view().setList(Field::Sender, {u"a@example.com"_s, u"Bea <b@example.com>"_s, u"b@example.com"_s});
    const QList<QPair<QString, int>> texts = {{u"b@example.com"_s, 2},
                                              {u"B@example.com"_s, -1},
                                              {u"Bea <b@example.com>"_s, 1},
                                              {u"b@example"_s, -1},
                                              {QString(), -1}};
    for (const auto &[text, index] : texts) {
        main.message().setText(Field::Sender, text);
        QCOMPARE(main.combo(0)->currentIndex(), index);
        QCOMPARE(main.combo(0)->currentText(), text);
        main.message().pblnChanged = false;
        main.message().setText(Field::Sender, text);
        QVERIFY(!main.message().pblnChanged);
    }
}

QTEST_MAIN(TestAccountFields)
#include "test_accountfields.moc"
