#include "recorddialogfixture.h"
#include "records/accountpresets.h"
#include "records/accountrecords.h"

#include <QLabel>
#include <QRadioButton>

using namespace Qt::StringLiterals;
using namespace corvane;
using Mode = RecordDialog::Mode;

namespace {

const QStringList saves = {u"sbtSA"_s, u"sbtSC"_s};

const QString annsAccount =
    u"smtp.example.com\t587\tT\tY\tann\tsecret\tAnn Lee\tann@example.com\tBob\tbob@example.org\t/SAEND"_s;

} // namespace

class TestSmtpDialog : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { d = std::make_unique<RecordDialogFixture>(u"frmPubSMTP"_s); }
    void cleanup() { d.reset(); }

    // Captions and what is shown
    void aNewAccountHasItsStartValues();
    void addHasItsExactCaption();
    void editNamesTheSenderAddressInItsCaption();
    void copyHasTheCaptionOfAdd();
    void editShowsAllFieldsAsTheyAreStored();
    void copyShowsAllFieldsAsTheyAreStored();
    void securityIsShownAndStored_data();
    void securityIsShownAndStored();
    void oldYesInSecurityIsSslAndIsStoredAsS();
    void authenticationFollowsItsField();
    void aShortLineLeavesTheMissingBoxesEmpty();
    void aLineWithTooManyFieldsIsShownAsFarAsThereAreBoxes();
    void aStoredPortOutOfRangeIsToldAndPutBack();
    void beginningAnewForgetsTheFormerRecord();
    // Presets
    void thePresetsHaveTheirValues_data();
    void thePresetsHaveTheirValues();
    void aPresetsAddressCannotBeSavedAsItStands();
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
    // Saving
    void theLineHasAllFieldsInOrderAndTrimmed();
    void anAddressInAnotherScriptIsSaved();
    void saveAndCloseUnloadsTheDialog();
    void saveAndAddClearsTheBoxesAndStays();
    void saveAndAddInAnEditKeepsItsCaptionAndItsMode();
    void closeSavesNothing();
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
    // Controls
    void authenticationEnablesUserAndPassword();
    void altASavesAndAddsAndAltCSavesAndCloses();
    void theTabKeyGoesThroughTheFieldsInOrder();
    void thePasswordIsNotShown();

private:
    /// Fills a new account so that it could be saved.
    void fillNew();
    QRadioButton *opt(int index) { return d->get<QRadioButton>(u"opt(%1)"_s.arg(index)); }
    /// All text boxes, in order.
    QStringList texts();

    std::unique_ptr<RecordDialogFixture> d;
};

void TestSmtpDialog::fillNew()
{
    d->begin();
    d->txt(0)->setText(u"smtp.example.com"_s);
    d->txt(2)->setText(u"ann"_s);
}

QStringList TestSmtpDialog::texts()
{
    QStringList all;
    for (int i = 0; i < 8; ++i) {
        all.append(d->txt(i)->text());
    }
    return all;
}

void TestSmtpDialog::aNewAccountHasItsStartValues()
{
    const QStringList start = {QString(), u"25"_s, QString(), QString(), QString(), QString(), QString(), QString()};
    const auto verify = [&] {
        QCOMPARE(texts(), start);
        QVERIFY(opt(0)->isChecked());
        QVERIFY(d->tick(u"cbx(1)"_s)->isChecked());
    };
    verify(); // as it is made
    d->begin();
    verify();
    QCOMPARE(d->focused(), u"txt(0)"_s);
}

void TestSmtpDialog::addHasItsExactCaption()
{
    d->begin();
    QCOMPARE(d->dialog()->windowTitle(), u"Add SMTP Account"_s);
    QCOMPARE(d->dialog()->mode(), Mode::Add);
}

void TestSmtpDialog::editNamesTheSenderAddressInItsCaption()
{
    d->begin(Mode::Edit, annsAccount);
    QCOMPARE(d->dialog()->windowTitle(), u"Edit SMTP Account - ann@example.com"_s);
    QCOMPARE(d->dialog()->mode(), Mode::Edit);
}

void TestSmtpDialog::copyHasTheCaptionOfAdd()
{
    d->begin(Mode::Add, annsAccount);
    QCOMPARE(d->dialog()->windowTitle(), u"Add SMTP Account"_s);
}

void TestSmtpDialog::editShowsAllFieldsAsTheyAreStored()
{
    d->begin(Mode::Edit, annsAccount);
    QCOMPARE(texts(), (QStringList{u"smtp.example.com"_s, u"587"_s, u"ann"_s, u"secret"_s, u"Ann Lee"_s,
                                   u"ann@example.com"_s, u"Bob"_s, u"bob@example.org"_s}));
    QVERIFY(opt(2)->isChecked());
    QVERIFY(d->tick(u"cbx(1)"_s)->isChecked());
    d->click(u"sbtSC"_s);
    QCOMPARE(d->saved, QStringList{annsAccount});
}

void TestSmtpDialog::copyShowsAllFieldsAsTheyAreStored()
{
    // Sender and receipt fields that do not follow from each other stay as they are.
    const QString line = u"mail\t25\tN\tN\tx@y.example\t\t\tann@example.com\tBob\t\t/SAEND"_s;
    d->begin(Mode::Add, line);
    d->click(u"sbtSC"_s);
    QCOMPARE(d->saved, QStringList{line});
}

void TestSmtpDialog::securityIsShownAndStored_data()
{
    QTest::addColumn<QString>("field");
    QTest::addColumn<int>("option");
    QTest::newRow("none") << u"N"_s << 0;
    QTest::newRow("SSL") << u"S"_s << 1;
    QTest::newRow("TLS") << u"T"_s << 2;
}

void TestSmtpDialog::securityIsShownAndStored()
{
    QFETCH(QString, field);
    QFETCH(int, option);
    // From another choice, so that the record's own has to be set.
    d->begin(Mode::Edit, u"a\t25\t"_s + (field == "S"_L1 ? u"T"_s : u"S"_s));
    d->begin(Mode::Edit, u"a\t25\t%1\tN\t\t\t\tann@example.com\t\t\t/SAEND"_s.arg(field));
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(opt(i)->isChecked(), i == option);
    }
    d->click(u"sbtSA"_s);
    QCOMPARE(recordField(d->saved.constFirst(), AccountSecurity), field);
}

void TestSmtpDialog::oldYesInSecurityIsSslAndIsStoredAsS()
{
    d->begin(Mode::Edit, u"a\t465\tY\tN\t\t\t\tann@example.com\t\t\t/SAEND"_s);
    QVERIFY(opt(1)->isChecked());
    d->click(u"sbtSC"_s);
    QCOMPARE(d->saved, QStringList{u"a\t465\tS\tN\t\t\t\tann@example.com\t\t\t/SAEND"_s});
}

void TestSmtpDialog::authenticationFollowsItsField()
{
    d->begin(Mode::Edit, u"a\t25\tN\tN"_s);
    QVERIFY(!d->tick(u"cbx(1)"_s)->isChecked());
    QVERIFY(!d->txt(2)->isEnabled());
    d->begin(Mode::Edit, u"a\t25\tN\tY"_s);
    QVERIFY(d->tick(u"cbx(1)"_s)->isChecked());
    QVERIFY(d->txt(2)->isEnabled());
    d->begin(Mode::Edit, u"a\t25\tN\ty"_s);
    QVERIFY(!d->tick(u"cbx(1)"_s)->isChecked());
}

void TestSmtpDialog::aShortLineLeavesTheMissingBoxesEmpty()
{
    d->begin(Mode::Edit, u"smtp.example.com"_s);
    QCOMPARE(texts(), QStringList{u"smtp.example.com"_s} + QStringList(7, QString()));
    QVERIFY(opt(0)->isChecked());
    QVERIFY(!d->tick(u"cbx(1)"_s)->isChecked());
    QCOMPARE(d->dialog()->windowTitle(), u"Edit SMTP Account - "_s);
}

void TestSmtpDialog::aLineWithTooManyFieldsIsShownAsFarAsThereAreBoxes()
{
    d->begin(Mode::Edit, annsAccount + u"\tmore\tand more"_s);
    QCOMPARE(d->txt(7)->text(), u"bob@example.org"_s);
    d->click(u"sbtSC"_s);
    QCOMPARE(d->saved, QStringList{annsAccount});
}

void TestSmtpDialog::aStoredPortOutOfRangeIsToldAndPutBack()
{
    ExpectedPrompts prompts;
    prompts.expectBox(u"PORT_LIMIT"_s, 64);
    d->begin(Mode::Edit, u"a\t70000\tS\tY\tu\tp\tn\tann@example.com\t\t\t/SAEND"_s);
    QCOMPARE(texts(),
             (QStringList{u"a"_s, u"25"_s, u"u"_s, u"p"_s, u"n"_s, u"ann@example.com"_s, QString(), QString()}));
}

void TestSmtpDialog::beginningAnewForgetsTheFormerRecord()
{
    d->begin(Mode::Edit, annsAccount);
    d->begin();
    QCOMPARE(texts(), QStringList({QString(), u"25"_s}) + QStringList(6, QString()));
    QVERIFY(opt(0)->isChecked());
    QCOMPARE(d->dialog()->windowTitle(), u"Add SMTP Account"_s);
}

void TestSmtpDialog::thePresetsHaveTheirValues_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QStringList>("boxes");
    QTest::addColumn<int>("option");
    const auto boxes = [](const QString &server, const QString &port, const QString &address) {
        return QStringList{server, port, address, QString(), u"Your Name"_s, address, u"Your Name"_s, address};
    };
    QTest::newRow("menag") << presetLine(menagPreset)
                           << boxes(u"smtp.gmail.com"_s, u"465"_s, u"Your Account@gmail.com"_s) << 1;
    QTest::newRow("menah") << presetLine(menahPreset)
                           << boxes(u"smtp.mail.yahoo.com"_s, u"25"_s, u"Your Account@yahoo.com"_s) << 2;
}

void TestSmtpDialog::thePresetsHaveTheirValues()
{
    QFETCH(QString, line);
    QFETCH(QStringList, boxes);
    QFETCH(int, option);
    QCOMPARE(line.count(u'\t'), accountFieldCount - 1);
    d->begin(Mode::Add, line);
    QCOMPARE(texts(), boxes);
    QVERIFY(opt(option)->isChecked());
    QVERIFY(d->tick(u"cbx(1)"_s)->isChecked());
    QCOMPARE(d->dialog()->windowTitle(), u"Add SMTP Account"_s);
}

void TestSmtpDialog::aPresetsAddressCannotBeSavedAsItStands()
{
    for (const AccountPreset &preset : {menagPreset, menahPreset}) {
        d->begin(Mode::Add, presetLine(preset));
        d->verifyFault(saves, u"VALID_ADDRESS"_s, 64, u"txt(5)"_s, true);
    }
}

void TestSmtpDialog::anEmptyServerIsTold()
{
    fillNew();
    d->txt(0)->clear();
    d->verifyFault(saves, u"NEED_SMTP"_s, 64, u"txt(0)"_s, false);
}

void TestSmtpDialog::anEmptyPortIsTold()
{
    fillNew();
    d->txt(1)->clear();
    d->verifyFault(saves, u"NEED_PORT"_s, 64, u"txt(1)"_s, false);
}

void TestSmtpDialog::anEmptyUserIsToldWhileAuthenticationIsOn()
{
    fillNew();
    d->txt(2)->clear();
    d->verifyFault(saves, u"NEED_USER"_s, 64, u"txt(2)"_s, false);
}

void TestSmtpDialog::anEmptyUserPassesWithoutAuthentication()
{
    fillNew();
    d->txt(2)->clear();
    d->txt(5)->setText(u"ann@example.com"_s);
    d->tick(u"cbx(1)"_s)->setChecked(false);
    d->click(u"sbtSA"_s);
    QCOMPARE(d->saved, QStringList{u"smtp.example.com\t25\tN\tN\t\t\t\tann@example.com\t\tann@example.com\t/SAEND"_s});
}

void TestSmtpDialog::anEmptySenderAddressIsTold()
{
    fillNew();
    d->txt(5)->clear();
    d->verifyFault(saves, u"NEED_MAIL"_s, 64, u"txt(5)"_s, false);
}

void TestSmtpDialog::anInvalidSenderAddressIsToldAndSelected()
{
    fillNew();
    d->txt(5)->setText(u"ann at example"_s);
    d->verifyFault(saves, u"VALID_ADDRESS"_s, 64, u"txt(5)"_s, true);
}

void TestSmtpDialog::anInvalidReceiptAddressIsToldAndSelected()
{
    fillNew();
    d->txt(7)->setText(u"bob@"_s);
    d->verifyFault(saves, u"VALID_ADDRESS"_s, 64, u"txt(7)"_s, true);
}

void TestSmtpDialog::anEmptyReceiptAddressPasses()
{
    fillNew();
    d->txt(7)->setText(u"  "_s);
    d->click(u"sbtSA"_s);
    QCOMPARE(d->saved, QStringList{u"smtp.example.com\t25\tN\tY\tann\t\tann\tann@example.com\tann\t\t/SAEND"_s});
}

void TestSmtpDialog::aTakenSenderAddressIsToldAndSelected()
{
    d->taken = [](const QString &line) { return recordField(line, AccountSenderAddress) == "ann@example.com"_L1; };
    fillNew();
    d->verifyFault(saves, u"SMTP_EXISTS"_s, 64, u"txt(5)"_s, true);
}

void TestSmtpDialog::blanksCountAsEmpty()
{
    fillNew();
    d->txt(0)->setText(u"   "_s);
    d->verifyFault(saves, u"NEED_SMTP"_s, 64, u"txt(0)"_s, false);
    d->txt(0)->setText(u"smtp.example.com"_s);
    d->txt(2)->setText(u"   "_s);
    d->verifyFault(saves, u"NEED_USER"_s, 64, u"txt(2)"_s, false);
    d->txt(2)->setText(u"ann"_s);
    d->txt(5)->setText(u"   "_s);
    d->verifyFault(saves, u"NEED_MAIL"_s, 64, u"txt(5)"_s, false);
}

void TestSmtpDialog::theFirstFaultInOrderIsTold()
{
    d->taken = [](const QString &) { return true; };
    d->begin();
    for (int i = 0; i < 7; ++i) {
        d->txt(i)->clear();
    }
    d->txt(7)->setText(u"wrong"_s);
    d->verifyFault(saves, u"NEED_SMTP"_s, 64, u"txt(0)"_s, false);
    d->txt(0)->setText(u"mail"_s);
    d->verifyFault(saves, u"NEED_PORT"_s, 64, u"txt(1)"_s, false);
    d->txt(1)->setText(u"25"_s);
    d->verifyFault(saves, u"NEED_USER"_s, 64, u"txt(2)"_s, false);
    d->txt(2)->setText(u"u"_s);
    d->txt(5)->clear();
    d->txt(7)->setText(u"wrong"_s);
    d->verifyFault(saves, u"NEED_MAIL"_s, 64, u"txt(5)"_s, false);
    d->txt(5)->setText(u"wrong, too"_s);
    d->txt(7)->setText(u"wrong"_s);
    d->verifyFault(saves, u"VALID_ADDRESS"_s, 64, u"txt(5)"_s, true);
    d->txt(5)->setText(u"ann@example.com"_s);
    d->txt(7)->setText(u"wrong"_s);
    d->verifyFault(saves, u"VALID_ADDRESS"_s, 64, u"txt(7)"_s, true);
    d->txt(7)->clear();
    d->verifyFault(saves, u"SMTP_EXISTS"_s, 64, u"txt(5)"_s, true);
}

void TestSmtpDialog::theListIsAskedOnlyWhenAllElseIsRight()
{
    fillNew();
    d->txt(7)->setText(u"wrong"_s);
    d->verifyFault(saves, u"VALID_ADDRESS"_s, 64, u"txt(7)"_s, true);
    QCOMPARE(d->asked, QStringList());
    d->txt(7)->clear();
    d->click(u"sbtSA"_s);
    QCOMPARE(d->asked, d->saved);
}

void TestSmtpDialog::anUnchangedCopyIsStopped()
{
    const auto address = [](const QString &line) { return recordField(line, AccountSenderAddress).toLower(); };
    d->taken = [&](const QString &line) { return address(line) == address(annsAccount); };
    d->begin(Mode::Add, annsAccount);
    d->verifyFault(saves, u"SMTP_EXISTS"_s, 64, u"txt(5)"_s, true);
    d->txt(5)->setText(u"ann.two@example.com"_s);
    d->click(u"sbtSC"_s);
    QCOMPARE(d->saved.size(), 1);
}

void TestSmtpDialog::anEditOfThePasswordAloneIsSaved()
{
    d->begin(Mode::Edit, annsAccount);
    d->txt(3)->setText(u"another"_s);
    const ExpectedPrompts prompts; // nothing is asked
    d->click(u"sbtSC"_s);
    QCOMPARE(d->saved, QStringList{QString(annsAccount).replace(u"secret"_s, u"another"_s)});
}

void TestSmtpDialog::theLineHasAllFieldsInOrderAndTrimmed()
{
    d->begin();
    const QStringList entered = {u" s "_s,   u" 465 "_s,         u" u "_s, u" p w "_s,
                                 u" a b "_s, u" a@b.example "_s, u" c "_s, u" d@e.example "_s};
    for (int i = 0; i < 8; ++i) {
        d->txt(i)->setText(entered.at(i));
    }
    opt(1)->click();
    d->click(u"sbtSC"_s);
    QCOMPARE(d->saved, QStringList{u"s\t465\tS\tY\tu\tp w\ta b\ta@b.example\tc\td@e.example\t/SAEND"_s});
}

void TestSmtpDialog::anAddressInAnotherScriptIsSaved()
{
    fillNew();
    d->txt(5)->setText(u"анна@пример.example"_s);
    d->click(u"sbtSC"_s);
    QCOMPARE(recordField(d->saved.value(0), AccountSenderAddress), u"анна@пример.example"_s);
}

void TestSmtpDialog::saveAndCloseUnloadsTheDialog()
{
    fillNew();
    d->show();
    d->click(u"sbtSC"_s);
    QCOMPARE(d->saved.size(), 1);
    QVERIFY(!d->forms.isLoaded(d->form));
}

void TestSmtpDialog::saveAndAddClearsTheBoxesAndStays()
{
    d->begin(Mode::Add, QString(annsAccount).replace(u"\tT\tY\t"_s, u"\tT\tN\t"_s));
    d->show();
    const ExpectedPrompts prompts;
    d->click(u"sbtSA"_s);
    QCOMPARE(d->saved.size(), 1);
    QVERIFY(d->dialog()->isVisible());
    QCOMPARE(texts(), QStringList({QString(), u"25"_s}) + QStringList(6, QString()));
    QVERIFY(opt(0)->isChecked());
    QVERIFY(d->tick(u"cbx(1)"_s)->isChecked());
    QVERIFY(d->txt(2)->isEnabled());
    QCOMPARE(d->focused(), u"txt(0)"_s);
    QCOMPARE(d->dialog()->mode(), Mode::Add);
}

void TestSmtpDialog::saveAndAddInAnEditKeepsItsCaptionAndItsMode()
{
    d->begin(Mode::Edit, annsAccount);
    d->click(u"sbtSA"_s);
    QCOMPARE(d->dialog()->windowTitle(), u"Edit SMTP Account - ann@example.com"_s);
    QCOMPARE(d->dialog()->mode(), Mode::Edit);
    QCOMPARE(texts(), QStringList({QString(), u"25"_s}) + QStringList(6, QString()));
    // What is entered next goes the same way.
    d->txt(0)->setText(u"mail"_s);
    d->txt(2)->setText(u"ann@example.net"_s);
    d->click(u"sbtSC"_s);
    QCOMPARE(d->saved.size(), 2);
}

void TestSmtpDialog::closeSavesNothing()
{
    fillNew();
    const ExpectedPrompts prompts;
    d->show();
    d->click(u"sbtClose"_s);
    QVERIFY(!d->forms.isLoaded(d->form));
    QVERIFY(d->saved.isEmpty());
}

void TestSmtpDialog::aZeroTypedAsTheFirstDigitOfThePortIsToldAtOnce()
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

void TestSmtpDialog::aPortThatGrowsTooLargeIsToldAtThatDigit()
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

void TestSmtpDialog::aPortOutOfRangeIsPutBack_data()
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

void TestSmtpDialog::aPortOutOfRangeIsPutBack()
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

void TestSmtpDialog::aPortWithinRangeStays_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("stored");
    QTest::newRow("lowest") << u"1"_s << u"1"_s;
    QTest::newRow("highest") << u"65535"_s << u"65535"_s;
    QTest::newRow("blanks around it") << u" 587 "_s << u"587"_s;
    QTest::newRow("pasted with its line end") << u"587\r\n"_s << u"587"_s;
}

void TestSmtpDialog::aPortWithinRangeStays()
{
    QFETCH(QString, text);
    QFETCH(QString, stored);
    fillNew();
    d->txt(1)->selectAll();
    const ExpectedPrompts prompts;
    paste(d->txt(1), text);
    d->click(u"sbtSC"_s);
    QCOMPARE(recordField(d->saved.value(0), AccountPort), stored);
}

void TestSmtpDialog::anEmptiedPortIsNotToldBeforeSaving()
{
    d->begin();
    const ExpectedPrompts prompts;
    d->txt(1)->selectAll();
    QTest::keyClick(d->txt(1), Qt::Key_Delete);
    QCOMPARE(d->txt(1)->text(), QString());
}

void TestSmtpDialog::aDigitAfterThePutBackPortReplacesIt()
{
    d->begin();
    d->txt(1)->clear();
    ExpectedPrompts prompts;
    prompts.expectBox(u"PORT_LIMIT"_s, 64);
    QTest::keyClicks(d->txt(1), u"0587"_s);
    QCOMPARE(d->txt(1)->text(), u"587"_s);
}

void TestSmtpDialog::aUserWithAnAtSignGivesNameAndAddress()
{
    d->begin();
    d->txt(0)->setText(u"smtp.example.com"_s);
    QTest::keyClicks(d->txt(2), u"ann@example.net"_s);
    QCOMPARE(d->txt(4)->text(), u"ann"_s);
    QCOMPARE(d->txt(5)->text(), u"ann@example.net"_s);
}

void TestSmtpDialog::onlyTheFirstAtSignEndsTheName()
{
    d->begin();
    d->txt(2)->setText(u"a@b@c"_s);
    QCOMPARE(d->txt(4)->text(), u"a"_s);
    QCOMPARE(d->txt(5)->text(), u"a@b@c"_s);
}

void TestSmtpDialog::aUserWithoutAnAtSignTakesTheServersDomain_data()
{
    QTest::addColumn<QString>("server");
    QTest::addColumn<QString>("address");
    QTest::newRow("server name without its first label") << u"smtp.example.com"_s << u"ann@example.com"_s;
    QTest::newRow("only the first label goes") << u"a.b.c.example"_s << u"ann@b.c.example"_s;
    QTest::newRow("a server without a dot, whole") << u"mailhost"_s << u"ann@mailhost"_s;
    QTest::newRow("no server") << QString() << u"ann@"_s;
    QTest::newRow("a dot at the end") << u"mailhost."_s << u"ann@"_s;
}

void TestSmtpDialog::aUserWithoutAnAtSignTakesTheServersDomain()
{
    QFETCH(QString, server);
    QFETCH(QString, address);
    d->begin();
    d->txt(0)->setText(server);
    QTest::keyClicks(d->txt(2), u"ann"_s);
    QCOMPARE(d->txt(4)->text(), u"ann"_s);
    QCOMPARE(d->txt(5)->text(), address);
}

void TestSmtpDialog::anEmptiedUserLeavesTheAtSignAndTheDomain()
{
    fillNew();
    d->txt(2)->clear();
    QCOMPARE(d->txt(4)->text(), QString());
    QCOMPARE(d->txt(5)->text(), u"@example.com"_s);
}

void TestSmtpDialog::theSenderNameGoesToTheReceiptName()
{
    d->begin();
    QTest::keyClicks(d->txt(4), u"Ann Lee"_s);
    QCOMPARE(d->txt(6)->text(), u"Ann Lee"_s);
    QCOMPARE(d->txt(7)->text(), QString());
}

void TestSmtpDialog::theSenderAddressGoesToTheReceiptAddress()
{
    d->begin();
    QTest::keyClicks(d->txt(5), u"ann@example.com"_s);
    QCOMPARE(d->txt(7)->text(), u"ann@example.com"_s);
    QCOMPARE(d->txt(6)->text(), QString());
}

void TestSmtpDialog::theUserReachesTheReceiptFields()
{
    d->begin();
    QTest::keyClicks(d->txt(2), u"ann@example.net"_s);
    QCOMPARE(texts().mid(4), (QStringList{u"ann"_s, u"ann@example.net"_s, u"ann"_s, u"ann@example.net"_s}));
}

void TestSmtpDialog::theReceiptFieldsFillNothing()
{
    d->begin();
    d->txt(6)->setText(u"Bob"_s);
    d->txt(7)->setText(u"bob@example.org"_s);
    d->txt(3)->setText(u"secret"_s);
    QCOMPARE(texts(), (QStringList{QString(), u"25"_s, QString(), u"secret"_s, QString(), QString(), u"Bob"_s,
                                   u"bob@example.org"_s}));
}

void TestSmtpDialog::theServerAloneFillsNothing()
{
    fillNew();
    d->txt(0)->setText(u"smtp.example.org"_s);
    QCOMPARE(d->txt(5)->text(), u"ann@example.com"_s);
}

void TestSmtpDialog::liveFillingGoesOnAfterARecordWasShown()
{
    d->begin(Mode::Edit, annsAccount);
    QTest::keyClicks(d->txt(2), u"a"_s);
    QCOMPARE(texts().mid(4), (QStringList{u"anna"_s, u"anna@example.com"_s, u"anna"_s, u"anna@example.com"_s}));
}

void TestSmtpDialog::authenticationEnablesUserAndPassword()
{
    d->begin();
    const QList<QWidget *> controls = {d->get<QLabel>(u"lbl(7)"_s), d->get<QLabel>(u"lbl(8)"_s), d->txt(2), d->txt(3)};
    for (const bool on : {false, true}) {
        d->tick(u"cbx(1)"_s)->click();
        QCOMPARE(d->tick(u"cbx(1)"_s)->isChecked(), on);
        for (const QWidget *control : controls) {
            QCOMPARE(control->isEnabled(), on);
        }
        QVERIFY(d->txt(4)->isEnabled());
    }
    QCOMPARE(d->get<QLabel>(u"lbl(7)"_s)->buddy(), d->txt(2));
    QCOMPARE(d->get<QLabel>(u"lbl(8)"_s)->buddy(), d->txt(3));
}

void TestSmtpDialog::altASavesAndAddsAndAltCSavesAndCloses()
{
    fillNew();
    d->show();
    QTest::keyClick(d->txt(4), Qt::Key_A, Qt::AltModifier);
    QCOMPARE(d->saved.size(), 1);
    QVERIFY(d->dialog()->isVisible());
    d->txt(0)->setText(u"mail"_s);
    d->txt(2)->setText(u"ann@example.net"_s);
    QTest::keyClick(d->txt(2), Qt::Key_C, Qt::AltModifier);
    QCOMPARE(d->saved.size(), 2);
    QVERIFY(!d->forms.isLoaded(d->form));
}

void TestSmtpDialog::theTabKeyGoesThroughTheFieldsInOrder()
{
    d->help = [] {};
    d->begin();
    d->show();
    QCOMPARE(d->tabOrder(u"txt(0)"_s),
             (QStringList{u"txt(0)"_s, u"txt(1)"_s, u"opt(0)"_s, u"cbx(1)"_s, u"txt(2)"_s, u"txt(3)"_s, u"txt(4)"_s,
                          u"txt(5)"_s, u"txt(6)"_s, u"txt(7)"_s, u"sbtSA"_s, u"sbtSC"_s, u"sbtClose"_s, u"sbtHelp"_s}));
}

void TestSmtpDialog::thePasswordIsNotShown()
{
    QCOMPARE(d->txt(3)->echoMode(), QLineEdit::Password);
    for (const int other : {0, 1, 2, 4, 5, 6, 7}) {
        QCOMPARE(d->txt(other)->echoMode(), QLineEdit::Normal);
    }
}

QTEST_MAIN(TestSmtpDialog)
#include "test_smtpdialog.moc"
