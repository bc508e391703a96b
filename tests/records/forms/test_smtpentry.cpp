#include "records/recordfields.h"
#include "smtpfixture.h"

using namespace Qt::StringLiterals;
using namespace corvane;
using Mode = RecordDialog::Mode;

class TestSmtpEntry : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { d = std::make_unique<SmtpFixture>(); }
    void cleanup() { d.reset(); }

    // Validation
    void anEmptyServerIsTold();
    void anEmptyPortIsTold();
    void anEmptyUserIsToldWhileAuthenticationIsOn();
    void anEmptyUserPassesWithoutAuthentication();
    void anEmptySenderAddressIsTold();
    void anInvalidSenderAddressIsToldAndSelected();
    void anInvalidReceiptAddressIsToldAndSelected();
    void anEmptyReceiptAddressPasses();
    void aTakenSenderAddressIsToldAndSelected();
    void blanksCountAsEmpty();
    void theFirstFaultInOrderIsTold();
    void theListIsAskedOnlyWhenAllElseIsRight();
    void anUnchangedCopyIsStopped();
    void anEditOfThePasswordAloneIsSaved();
    // Live filling
    void aZeroTypedAsTheFirstDigitOfThePortIsToldAtOnce();
    void aPortThatGrowsTooLargeIsToldAtThatDigit();
    void aPortOutOfRangeIsPutBack_data();
    void aPortOutOfRangeIsPutBack();
    void aPortWithinRangeStays_data();
    void aPortWithinRangeStays();
    void anEmptiedPortIsNotToldBeforeSaving();
    void aDigitAfterThePutBackPortReplacesIt();
    void aUserWithAnAtSignGivesNameAndAddress();
    void onlyTheFirstAtSignEndsTheName();
    void aUserWithoutAnAtSignTakesTheServersDomain_data();
    void aUserWithoutAnAtSignTakesTheServersDomain();
    void anEmptiedUserLeavesTheAtSignAndTheDomain();
    void theSenderNameGoesToTheReceiptName();
    void theSenderAddressGoesToTheReceiptAddress();
    void theUserReachesTheReceiptFields();
    void theReceiptFieldsFillNothing();
    void theServerAloneFillsNothing();
    void liveFillingGoesOnAfterARecordWasShown();

private:
    std::unique_ptr<SmtpFixture> d;
};

void TestSmtpEntry::anEmptyServerIsTold()
{
    d->fillNew();
    d->txt(0)->clear();
    d->verifyFault(u"NEED_SMTP"_s, 64, u"txt(0)"_s, false);
}

void TestSmtpEntry::anEmptyPortIsTold()
{
    d->fillNew();
    d->txt(1)->clear();
    d->verifyFault(u"NEED_PORT"_s, 64, u"txt(1)"_s, false);
}

void TestSmtpEntry::anEmptyUserIsToldWhileAuthenticationIsOn()
{
    d->fillNew();
    d->txt(2)->clear();
    d->verifyFault(u"NEED_USER"_s, 64, u"txt(2)"_s, false);
}

void TestSmtpEntry::anEmptyUserPassesWithoutAuthentication()
{
    d->fillNew();
    d->txt(2)->clear();
    d->txt(5)->setText(u"ann@example.com"_s);
    d->tick(u"cbx(1)"_s)->setChecked(false);
    d->click(u"sbtSA"_s);
    QCOMPARE(d->saved, QStringList{u"smtp.example.com\t25\tN\tN\t\t\t\tann@example.com\t\tann@example.com\t/SAEND"_s});
}

void TestSmtpEntry::anEmptySenderAddressIsTold()
{
    d->fillNew();
    d->txt(5)->clear();
    d->verifyFault(u"NEED_MAIL"_s, 64, u"txt(5)"_s, false);
}

void TestSmtpEntry::anInvalidSenderAddressIsToldAndSelected()
{
    d->fillNew();
    d->txt(5)->setText(u"ann at example"_s);
    d->verifyFault(u"VALID_ADDRESS"_s, 64, u"txt(5)"_s, true);
}

void TestSmtpEntry::anInvalidReceiptAddressIsToldAndSelected()
{
    d->fillNew();
    d->txt(7)->setText(u"bob@"_s);
    d->verifyFault(u"VALID_ADDRESS"_s, 64, u"txt(7)"_s, true);
}

void TestSmtpEntry::anEmptyReceiptAddressPasses()
{
    d->fillNew();
    d->txt(7)->setText(u"  "_s);
    d->click(u"sbtSA"_s);
    QCOMPARE(d->saved, QStringList{u"smtp.example.com\t25\tN\tY\tann\t\tann\tann@example.com\tann\t\t/SAEND"_s});
}

void TestSmtpEntry::aTakenSenderAddressIsToldAndSelected()
{
    d->taken = [](const QString &line) { return recordField(line, AccountSenderAddress) == "ann@example.com"_L1; };
    d->fillNew();
    d->verifyFault(u"SMTP_EXISTS"_s, 64, u"txt(5)"_s, true);
}

void TestSmtpEntry::blanksCountAsEmpty()
{
    d->fillNew();
    d->txt(0)->setText(u"   "_s);
    d->verifyFault(u"NEED_SMTP"_s, 64, u"txt(0)"_s, false);
    d->txt(0)->setText(u"smtp.example.com"_s);
    d->txt(2)->setText(u"   "_s);
    d->verifyFault(u"NEED_USER"_s, 64, u"txt(2)"_s, false);
    d->txt(2)->setText(u"ann"_s);
    d->txt(5)->setText(u"   "_s);
    d->verifyFault(u"NEED_MAIL"_s, 64, u"txt(5)"_s, false);
}

void TestSmtpEntry::theFirstFaultInOrderIsTold()
{
    d->taken = [](const QString &) { return true; };
    d->begin();
    for (int i = 0; i < 7; ++i) {
        d->txt(i)->clear();
    }
    d->txt(7)->setText(u"wrong"_s);
    d->verifyFault(u"NEED_SMTP"_s, 64, u"txt(0)"_s, false);
    d->txt(0)->setText(u"mail"_s);
    d->verifyFault(u"NEED_PORT"_s, 64, u"txt(1)"_s, false);
    d->txt(1)->setText(u"25"_s);
    d->verifyFault(u"NEED_USER"_s, 64, u"txt(2)"_s, false);
    d->txt(2)->setText(u"u"_s);
    d->txt(5)->clear();
    d->txt(7)->setText(u"wrong"_s);
    d->verifyFault(u"NEED_MAIL"_s, 64, u"txt(5)"_s, false);
    d->txt(5)->setText(u"wrong, too"_s);
    d->txt(7)->setText(u"wrong"_s);
    d->verifyFault(u"VALID_ADDRESS"_s, 64, u"txt(5)"_s, true);
    d->txt(5)->setText(u"ann@example.com"_s);
    d->txt(7)->setText(u"wrong"_s);
    d->verifyFault(u"VALID_ADDRESS"_s, 64, u"txt(7)"_s, true);
    d->txt(7)->clear();
    d->verifyFault(u"SMTP_EXISTS"_s, 64, u"txt(5)"_s, true);
}

void TestSmtpEntry::theListIsAskedOnlyWhenAllElseIsRight()
{
    d->fillNew();
    d->txt(7)->setText(u"wrong"_s);
    d->verifyFault(u"VALID_ADDRESS"_s, 64, u"txt(7)"_s, true);
    QCOMPARE(d->asked, QStringList());
    d->txt(7)->clear();
    d->click(u"sbtSA"_s);
    QCOMPARE(d->asked, d->saved);
}

void TestSmtpEntry::anUnchangedCopyIsStopped()
{
    const auto address = [](const QString &line) { return recordField(line, AccountSenderAddress).toLower(); };
    d->taken = [&](const QString &line) { return address(line) == address(annsAccount); };
    d->begin(Mode::Add, annsAccount);
    d->verifyFault(u"SMTP_EXISTS"_s, 64, u"txt(5)"_s, true);
    d->txt(5)->setText(u"ann.two@example.com"_s);
    d->click(u"sbtSC"_s);
    QCOMPARE(d->saved.size(), 1);
}

void TestSmtpEntry::anEditOfThePasswordAloneIsSaved()
{
    d->begin(Mode::Edit, annsAccount);
    d->txt(3)->setText(u"another"_s);
    const ExpectedPrompts prompts; // nothing is asked
    d->click(u"sbtSC"_s);
    QCOMPARE(d->saved, QStringList{QString(annsAccount).replace(u"secret"_s, u"another"_s)});
}

void TestSmtpEntry::aZeroTypedAsTheFirstDigitOfThePortIsToldAtOnce()
{
    d->begin();
    d->show();
    d->focus(d->txt(1));
    ExpectedPrompts prompts;
    prompts.expectBox(u"PORT_LIMIT"_s, 64, quillon::BoxAnswer::Ok, std::nullopt,
                      [this] { QCOMPARE(d->txt(1)->text(), u"0"_s); });
    QTest::keyClick(d->txt(1), Qt::Key_0); // the box selects its text on focus, so the zero is its first digit
    QCOMPARE(d->txt(1)->text(), u"25"_s);
}

void TestSmtpEntry::aPortThatGrowsTooLargeIsToldAtThatDigit()
{
    d->begin();
    d->txt(1)->clear();
    ExpectedPrompts prompts;
    QTest::keyClicks(d->txt(1), u"6553"_s);
    QCOMPARE(prompts.log(), QStringList());
    prompts.expectBox(u"PORT_LIMIT"_s, 64);
    QTest::keyClicks(d->txt(1), u"6"_s);
    QCOMPARE(d->txt(1)->text(), u"25"_s);
}

void TestSmtpEntry::aPortOutOfRangeIsPutBack_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("zero") << u"0"_s;
    QTest::newRow("above the limit") << u"65536"_s;
    QTest::newRow("negative") << u"-1"_s;
    QTest::newRow("letters") << u"smtp"_s;
    QTest::newRow("digits and letters") << u"25a"_s;
    QTest::newRow("a blank") << u" "_s;
    QTest::newRow("two numbers") << u"25 26"_s;
    QTest::newRow("a fraction") << u"25.5"_s;
    QTest::newRow("a sign") << u"+25"_s;
    QTest::newRow("hexadecimal") << u"0x19"_s;
    QTest::newRow("beyond 32 bits") << u"4294967321"_s;
    QTest::newRow("beyond 64 bits") << u"18446744073709551641"_s;
    QTest::newRow("a thousand digits") << u"9"_s.repeated(1000);
    QTest::newRow("a tab") << u"\t"_s;
    QTest::newRow("full-width digits") << u"２５"_s;
}

void TestSmtpEntry::aPortOutOfRangeIsPutBack()
{
    QFETCH(QString, text);
    d->begin();
    d->txt(1)->setText(u"587"_s);
    d->txt(1)->selectAll();
    ExpectedPrompts prompts;
    prompts.expectBox(u"PORT_LIMIT"_s, 64); // once
    paste(d->txt(1), text);
    QCOMPARE(d->txt(1)->text(), u"25"_s);
}

void TestSmtpEntry::aPortWithinRangeStays_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("stored");
    QTest::newRow("lowest") << u"1"_s << u"1"_s;
    QTest::newRow("highest") << u"65535"_s << u"65535"_s;
    QTest::newRow("blanks around it") << u" 587 "_s << u"587"_s;
    QTest::newRow("pasted with its line end") << u"587\r\n"_s << u"587"_s;
}

void TestSmtpEntry::aPortWithinRangeStays()
{
    QFETCH(QString, text);
    QFETCH(QString, stored);
    d->fillNew();
    d->txt(1)->selectAll();
    const ExpectedPrompts prompts;
    paste(d->txt(1), text);
    d->click(u"sbtSC"_s);
    QCOMPARE(recordField(d->saved.value(0), AccountPort), stored);
}

void TestSmtpEntry::anEmptiedPortIsNotToldBeforeSaving()
{
    d->begin();
    const ExpectedPrompts prompts;
    d->txt(1)->selectAll();
    QTest::keyClick(d->txt(1), Qt::Key_Delete);
    QCOMPARE(d->txt(1)->text(), QString());
}

void TestSmtpEntry::aDigitAfterThePutBackPortReplacesIt()
{
    d->begin();
    d->txt(1)->clear();
    ExpectedPrompts prompts;
    prompts.expectBox(u"PORT_LIMIT"_s, 64);
    QTest::keyClicks(d->txt(1), u"0587"_s);
    QCOMPARE(d->txt(1)->text(), u"587"_s);
}

void TestSmtpEntry::aUserWithAnAtSignGivesNameAndAddress()
{
    d->begin();
    d->txt(0)->setText(u"smtp.example.com"_s);
    QTest::keyClicks(d->txt(2), u"ann@example.net"_s);
    QCOMPARE(d->txt(4)->text(), u"ann"_s);
    QCOMPARE(d->txt(5)->text(), u"ann@example.net"_s);
}

void TestSmtpEntry::onlyTheFirstAtSignEndsTheName()
{
    d->begin();
    d->txt(2)->setText(u"a@b@c"_s);
    QCOMPARE(d->txt(4)->text(), u"a"_s);
    QCOMPARE(d->txt(5)->text(), u"a@b@c"_s);
}

void TestSmtpEntry::aUserWithoutAnAtSignTakesTheServersDomain_data()
{
    QTest::addColumn<QString>("server");
    QTest::addColumn<QString>("address");
    QTest::newRow("server name without its first label") << u"smtp.example.com"_s << u"ann@example.com"_s;
    QTest::newRow("only the first label goes") << u"a.b.c.example"_s << u"ann@b.c.example"_s;
    QTest::newRow("a server without a dot, whole") << u"mailhost"_s << u"ann@mailhost"_s;
    QTest::newRow("no server") << QString() << u"ann@"_s;
    QTest::newRow("a dot at the end") << u"mailhost."_s << u"ann@"_s;
}

void TestSmtpEntry::aUserWithoutAnAtSignTakesTheServersDomain()
{
    QFETCH(QString, server);
    QFETCH(QString, address);
    d->begin();
    d->txt(0)->setText(server);
    QTest::keyClicks(d->txt(2), u"ann"_s);
    QCOMPARE(d->txt(4)->text(), u"ann"_s);
    QCOMPARE(d->txt(5)->text(), address);
}

void TestSmtpEntry::anEmptiedUserLeavesTheAtSignAndTheDomain()
{
    d->fillNew();
    d->txt(2)->clear();
    QCOMPARE(d->txt(4)->text(), QString());
    QCOMPARE(d->txt(5)->text(), u"@example.com"_s);
}

void TestSmtpEntry::theSenderNameGoesToTheReceiptName()
{
    d->begin();
    QTest::keyClicks(d->txt(4), u"Ann Lee"_s);
    QCOMPARE(d->txt(6)->text(), u"Ann Lee"_s);
    QCOMPARE(d->txt(7)->text(), QString());
}

void TestSmtpEntry::theSenderAddressGoesToTheReceiptAddress()
{
    d->begin();
    QTest::keyClicks(d->txt(5), u"ann@example.com"_s);
    QCOMPARE(d->txt(7)->text(), u"ann@example.com"_s);
    QCOMPARE(d->txt(6)->text(), QString());
}

void TestSmtpEntry::theUserReachesTheReceiptFields()
{
    d->begin();
    QTest::keyClicks(d->txt(2), u"ann@example.net"_s);
    QCOMPARE(d->texts().mid(4), (QStringList{u"ann"_s, u"ann@example.net"_s, u"ann"_s, u"ann@example.net"_s}));
}

void TestSmtpEntry::theReceiptFieldsFillNothing()
{
    d->begin();
    d->txt(6)->setText(u"Bob"_s);
    d->txt(7)->setText(u"bob@example.org"_s);
    d->txt(3)->setText(u"secret"_s);
    QCOMPARE(d->texts(), (QStringList{QString(), u"25"_s, QString(), u"secret"_s, QString(), QString(), u"Bob"_s,
                                      u"bob@example.org"_s}));
}

void TestSmtpEntry::theServerAloneFillsNothing()
{
    d->fillNew();
    d->txt(0)->setText(u"smtp.example.org"_s);
    QCOMPARE(d->txt(5)->text(), u"ann@example.com"_s);
}

void TestSmtpEntry::liveFillingGoesOnAfterARecordWasShown()
{
    d->begin(Mode::Edit, annsAccount);
    QTest::keyClicks(d->txt(2), u"a"_s);
    QCOMPARE(d->texts().mid(4), (QStringList{u"anna"_s, u"anna@example.com"_s, u"anna"_s, u"anna@example.com"_s}));
}

QTEST_MAIN(TestSmtpEntry)
#include "test_smtpentry.moc"
