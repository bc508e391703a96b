#include "recorddialogfixture.h"

using namespace Qt::StringLiterals;
using namespace corvane;
using Mode = RecordDialog::Mode;

namespace {

const QString storedSender = u"Ann Lee\tann@example.com\tat work"_s;

} // namespace

class TestSenderDialog : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        d = std::make_unique<RecordDialogFixture>(u"frmPubSender"_s);
        d->saves = {u"sbt(0)"_s, u"sbt(1)"_s};
    }
    void cleanup() { d.reset(); }

    void aNewSenderIsEmpty();
    void addHasItsExactCaption();
    void editNamesTheAddressInItsCaption();
    void copyHasTheCaptionOfAdd();
    void editShowsAllFieldsAsTheyAreStored();
    void aShortLineLeavesTheMissingBoxesEmpty();
    void anEmptyAddressIsTold();
    void anInvalidAddressIsAWarningAndSelected();
    void aTakenSenderIsToldAndItsNameSelected();
    void theFirstFaultInOrderIsTold();
    void theDisplayNameMayStayEmpty();
    void oneAddressMayStandUnderTwoNames();
    void theLineHasAllFieldsInOrderAndTrimmed();
    void saveAndCloseUnloadsTheDialog();
    void saveAndAddClearsTheBoxesAndStays();
    void saveAndAddInAnEditKeepsItsCaptionAndItsMode();
    void closeSavesNothing();
    void altSSavesAndAddsAndAltCSavesAndCloses();
    void altAIsNoKeyHere();
    void theTabKeyGoesThroughTheFieldsInOrder();

private:
    QLineEdit *disp() { return d->box(u"txtDisp"_s); }
    QLineEdit *email() { return d->box(u"txtEmail"_s); }
    QLineEdit *remark() { return d->box(u"txtRemark"_s); }
    QStringList texts() { return {disp()->text(), email()->text(), remark()->text()}; }

    std::unique_ptr<RecordDialogFixture> d;
};

void TestSenderDialog::aNewSenderIsEmpty()
{
    QCOMPARE(texts(), QStringList(3, QString()));
    d->begin(Mode::Edit, storedSender);
    d->begin();
    QCOMPARE(texts(), QStringList(3, QString()));
    QCOMPARE(d->focused(), u"txtDisp"_s);
}

void TestSenderDialog::addHasItsExactCaption()
{
    d->begin();
    QCOMPARE(d->dialog()->windowTitle(), u"Add Custom Sender"_s);
}

void TestSenderDialog::editNamesTheAddressInItsCaption()
{
    d->begin(Mode::Edit, storedSender);
    QCOMPARE(d->dialog()->windowTitle(), u"Edit Custom Sender - <ann@example.com>"_s);
}

void TestSenderDialog::copyHasTheCaptionOfAdd()
{
    d->begin(Mode::Add, storedSender);
    QCOMPARE(d->dialog()->windowTitle(), u"Add Custom Sender"_s);
    QCOMPARE(email()->text(), u"ann@example.com"_s);
}

void TestSenderDialog::editShowsAllFieldsAsTheyAreStored()
{
    d->begin(Mode::Edit, storedSender);
    QCOMPARE(texts(), (QStringList{u"Ann Lee"_s, u"ann@example.com"_s, u"at work"_s}));
    d->click(u"sbt(1)"_s);
    QCOMPARE(d->saved, QStringList{storedSender});
}

void TestSenderDialog::aShortLineLeavesTheMissingBoxesEmpty()
{
    d->begin(Mode::Edit, u"Ann Lee"_s);
    QCOMPARE(texts(), (QStringList{u"Ann Lee"_s, QString(), QString()}));
    QCOMPARE(d->dialog()->windowTitle(), u"Edit Custom Sender - <>"_s);
}

void TestSenderDialog::anEmptyAddressIsTold()
{
    d->begin(Mode::Add, storedSender);
    for (const QString &blank : {QString(), u"  "_s}) {
        email()->setText(blank);
        d->verifyFault(u"CHECK_ADDRESS"_s, 64, u"txtEmail"_s, false);
    }
}

void TestSenderDialog::anInvalidAddressIsAWarningAndSelected()
{
    d->begin(Mode::Add, storedSender);
    email()->setText(u"Ann <ann@example.com>"_s);
    d->verifyFault(u"VALID_ADDRESS"_s, 48, u"txtEmail"_s, true);
}

void TestSenderDialog::aTakenSenderIsToldAndItsNameSelected()
{
    d->taken = [](const QString &) { return true; };
    d->begin(Mode::Add, storedSender);
    d->verifyFault(u"SEND_EXISTS"_s, 64, u"txtDisp"_s, true);
}

void TestSenderDialog::theFirstFaultInOrderIsTold()
{
    d->taken = [](const QString &) { return true; };
    d->begin();
    d->verifyFault(u"CHECK_ADDRESS"_s, 64, u"txtEmail"_s, false);
    email()->setText(u"ann"_s);
    d->verifyFault(u"VALID_ADDRESS"_s, 48, u"txtEmail"_s, true);
    QCOMPARE(d->asked, QStringList());
    email()->setText(u"ann@example.com"_s);
    d->verifyFault(u"SEND_EXISTS"_s, 64, u"txtDisp"_s, true);
}

void TestSenderDialog::theDisplayNameMayStayEmpty()
{
    d->begin();
    email()->setText(u"ann@example.com"_s);
    d->click(u"sbt(1)"_s);
    QCOMPARE(d->saved, QStringList{u"\tann@example.com\t"_s});
}

void TestSenderDialog::oneAddressMayStandUnderTwoNames()
{
    d->taken = [](const QString &line) { return line.startsWith("Ann Lee\tann@example.com\t"_L1); };
    d->begin(Mode::Add, storedSender);
    d->verifyFault(u"SEND_EXISTS"_s, 64, u"txtDisp"_s, true);
    disp()->setText(u"Ann"_s);
    d->click(u"sbt(1)"_s);
    QCOMPARE(d->saved, QStringList{u"Ann\tann@example.com\tat work"_s});
}

void TestSenderDialog::theLineHasAllFieldsInOrderAndTrimmed()
{
    d->begin();
    disp()->setText(u" Ann Lee "_s);
    email()->setText(u" ann@example.com "_s);
    remark()->setText(u" at work "_s);
    d->click(u"sbt(1)"_s);
    QCOMPARE(d->saved, QStringList{storedSender});
}

void TestSenderDialog::saveAndCloseUnloadsTheDialog()
{
    d->begin(Mode::Add, storedSender);
    d->show();
    d->click(u"sbt(1)"_s);
    QCOMPARE(d->saved.size(), 1);
    QVERIFY(!d->forms.isLoaded(d->form));
}

void TestSenderDialog::saveAndAddClearsTheBoxesAndStays()
{
    d->begin(Mode::Add, storedSender);
    d->show();
    d->click(u"sbt(0)"_s);
    QCOMPARE(d->saved.size(), 1);
    QVERIFY(d->dialog()->isVisible());
    QCOMPARE(texts(), QStringList(3, QString()));
    QCOMPARE(d->focused(), u"txtDisp"_s);
}

void TestSenderDialog::saveAndAddInAnEditKeepsItsCaptionAndItsMode()
{
    d->begin(Mode::Edit, storedSender);
    d->click(u"sbt(0)"_s);
    QCOMPARE(d->dialog()->windowTitle(), u"Edit Custom Sender - <ann@example.com>"_s);
    QCOMPARE(d->dialog()->mode(), Mode::Edit);
    QCOMPARE(texts(), QStringList(3, QString()));
}

void TestSenderDialog::closeSavesNothing()
{
    d->begin(Mode::Add, storedSender);
    d->show();
    d->click(u"sbt(2)"_s);
    QVERIFY(!d->forms.isLoaded(d->form));
    QVERIFY(d->saved.isEmpty());
}

void TestSenderDialog::altSSavesAndAddsAndAltCSavesAndCloses()
{
    d->begin(Mode::Add, storedSender);
    d->show();
    QTest::keyClick(remark(), Qt::Key_S, Qt::AltModifier);
    QCOMPARE(d->saved.size(), 1);
    QVERIFY(d->dialog()->isVisible());
    email()->setText(u"bob@example.org"_s);
    QTest::keyClick(email(), Qt::Key_C, Qt::AltModifier);
    QCOMPARE(d->saved, (QStringList{storedSender, u"\tbob@example.org\t"_s}));
    QVERIFY(!d->forms.isLoaded(d->form));
}

void TestSenderDialog::altAIsNoKeyHere()
{
    d->begin(Mode::Add, storedSender);
    d->show();
    QTest::keyClick(email(), Qt::Key_A, Qt::AltModifier);
    QVERIFY(d->saved.isEmpty());
    QVERIFY(d->dialog()->isVisible());
}

void TestSenderDialog::theTabKeyGoesThroughTheFieldsInOrder()
{
    d->help = [] {};
    d->begin();
    d->show();
    QCOMPARE(d->tabOrder(u"txtDisp"_s), (QStringList{u"txtDisp"_s, u"txtEmail"_s, u"txtRemark"_s, u"sbt(0)"_s,
                                                     u"sbt(1)"_s, u"sbt(2)"_s, u"sbt(3)"_s}));
}

QTEST_MAIN(TestSenderDialog)
#include "test_senderdialog.moc"
