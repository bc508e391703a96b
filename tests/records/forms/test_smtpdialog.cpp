#include "records/accountpresets.h"
#include "records/recordfields.h"
#include "smtpfixture.h"

#include <QLabel>

using namespace Qt::StringLiterals;
using namespace corvane;
using Mode = RecordDialog::Mode;

class TestSmtpDialog : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { d = std::make_unique<SmtpFixture>(); }
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
    // Saving
    void theLineHasAllFieldsInOrderAndTrimmed();
    void anAddressInAnotherScriptIsSaved();
    void saveAndCloseUnloadsTheDialog();
    void saveAndAddClearsTheBoxesAndStays();
    void saveAndAddInAnEditKeepsItsCaptionAndItsMode();
    void closeSavesNothing();
    // Controls
    void authenticationEnablesUserAndPassword();
    void altASavesAndAddsAndAltCSavesAndCloses();
    void theTabKeyGoesThroughTheFieldsInOrder();
    void thePasswordIsNotShown();

private:
    std::unique_ptr<SmtpFixture> d;
};

void TestSmtpDialog::aNewAccountHasItsStartValues()
{
    const QStringList start = {QString(), u"25"_s, QString(), QString(), QString(), QString(), QString(), QString()};
    const auto verify = [&] {
        QCOMPARE(d->texts(), start);
        QVERIFY(d->opt(0)->isChecked());
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
    QCOMPARE(d->texts(), (QStringList{u"smtp.example.com"_s, u"587"_s, u"ann"_s, u"secret"_s, u"Ann Lee"_s,
                                      u"ann@example.com"_s, u"Bob"_s, u"bob@example.org"_s}));
    QVERIFY(d->opt(2)->isChecked());
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
        QCOMPARE(d->opt(i)->isChecked(), i == option);
    }
    d->click(u"sbtSA"_s);
    QCOMPARE(recordField(d->saved.constFirst(), AccountSecurity), field);
}

void TestSmtpDialog::oldYesInSecurityIsSslAndIsStoredAsS()
{
    d->begin(Mode::Edit, u"a\t465\tY\tN\t\t\t\tann@example.com\t\t\t/SAEND"_s);
    QVERIFY(d->opt(1)->isChecked());
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
    QCOMPARE(d->texts(), QStringList{u"smtp.example.com"_s} + QStringList(7, QString()));
    QVERIFY(d->opt(0)->isChecked());
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
    QCOMPARE(d->texts(),
             (QStringList{u"a"_s, u"25"_s, u"u"_s, u"p"_s, u"n"_s, u"ann@example.com"_s, QString(), QString()}));
}

void TestSmtpDialog::beginningAnewForgetsTheFormerRecord()
{
    d->begin(Mode::Edit, annsAccount);
    d->begin();
    QCOMPARE(d->texts(), QStringList({QString(), u"25"_s}) + QStringList(6, QString()));
    QVERIFY(d->opt(0)->isChecked());
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
    QCOMPARE(d->texts(), boxes);
    QVERIFY(d->opt(option)->isChecked());
    QVERIFY(d->tick(u"cbx(1)"_s)->isChecked());
    QCOMPARE(d->dialog()->windowTitle(), u"Add SMTP Account"_s);
}

void TestSmtpDialog::aPresetsAddressCannotBeSavedAsItStands()
{
    for (const AccountPreset &preset : {menagPreset, menahPreset}) {
        d->begin(Mode::Add, presetLine(preset));
        d->verifyFault(u"VALID_ADDRESS"_s, 64, u"txt(5)"_s, true);
    }
}

void TestSmtpDialog::theLineHasAllFieldsInOrderAndTrimmed()
{
    d->begin();
    const QStringList entered = {u" s "_s,   u" 465 "_s,         u" u "_s, u" p w "_s,
                                 u" a b "_s, u" a@b.example "_s, u" c "_s, u" d@e.example "_s};
    for (int i = 0; i < 8; ++i) {
        d->txt(i)->setText(entered.at(i));
    }
    d->opt(1)->click();
    d->click(u"sbtSC"_s);
    QCOMPARE(d->saved, QStringList{u"s\t465\tS\tY\tu\tp w\ta b\ta@b.example\tc\td@e.example\t/SAEND"_s});
}

void TestSmtpDialog::anAddressInAnotherScriptIsSaved()
{
    d->fillNew();
    d->txt(5)->setText(u"анна@пример.example"_s);
    d->click(u"sbtSC"_s);
    QCOMPARE(recordField(d->saved.value(0), AccountSenderAddress), u"анна@пример.example"_s);
}

void TestSmtpDialog::saveAndCloseUnloadsTheDialog()
{
    d->fillNew();
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
    QCOMPARE(d->texts(), QStringList({QString(), u"25"_s}) + QStringList(6, QString()));
    QVERIFY(d->opt(0)->isChecked());
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
    QCOMPARE(d->texts(), QStringList({QString(), u"25"_s}) + QStringList(6, QString()));
    // What is entered next goes the same way.
    d->txt(0)->setText(u"mail"_s);
    d->txt(2)->setText(u"ann@example.net"_s);
    d->click(u"sbtSC"_s);
    QCOMPARE(d->saved.size(), 2);
}

void TestSmtpDialog::closeSavesNothing()
{
    d->fillNew();
    const ExpectedPrompts prompts;
    d->show();
    d->click(u"sbtClose"_s);
    QVERIFY(!d->forms.isLoaded(d->form));
    QVERIFY(d->saved.isEmpty());
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
    d->fillNew();
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
