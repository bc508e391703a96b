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

QTEST_MAIN(TestAccountFields)
#include "test_accountfields.moc"
