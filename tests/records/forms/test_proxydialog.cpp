#include "recorddialogfixture.h"
#include "records/recordfields.h"

#include <QComboBox>
#include <QLabel>

using namespace Qt::StringLiterals;
using namespace corvane;
using Mode = RecordDialog::Mode;

namespace {

const QString storedProxy = u"Socks5\tproxy.example.com\t1081\tY\tann\tsecret\t/PSEND"_s;

} // namespace

class TestProxyDialog : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        d = std::make_unique<RecordDialogFixture>(u"frmPubProxy"_s);
        d->saves = {u"sbtSA"_s, u"sbtSC"_s};
    }
    void cleanup() { d.reset(); }

    void aNewProxyHasItsStartValues();
    void theProtocolHasOneEntry();
    void addHasItsExactCaption();
    void editNamesAddressAndPortInItsCaption();
    void copyHasTheCaptionOfAdd();
    void editShowsAllFieldsAsTheyAreStored();
    void anotherProtocolIsShownAsTheOneThereIs();
    void aShortLineLeavesTheMissingBoxesEmpty();
    void anEmptyAddressIsTold();
    void anEmptyPortIsTold();
    void anEmptyUserIsToldWhileAuthenticationIsOn();
    void anEmptyUserPassesWithoutAuthentication();
    void aTakenProxyIsToldWithTheFocusInTheAddress();
    void aTakenProxyIsToldWithoutASelection();
    void theFirstFaultInOrderIsTold();
    void anotherUserIsAnotherProxy();
    void theLineHasAllFieldsInOrderAndTrimmed();
    void saveAndCloseUnloadsTheDialog();
    void saveAndAddClearsTheBoxesAndStays();
    void saveAndAddInAnEditKeepsItsCaptionAndItsMode();
    void closeSavesNothing();
    void aPortOutOfRangeIsPutBackAs1080();
    void authenticationEnablesUserAndPassword();
    void altASavesAndAddsAndAltCSavesAndCloses();
    void theTabKeyGoesThroughTheFieldsInOrder();
    void thePasswordIsNotShown();

private:
    QComboBox *cbb() { return d->get<QComboBox>(u"cbb"_s); }
    QCheckBox *cbx() { return d->tick(u"cbx"_s); }
    QStringList texts() { return {d->txt(0)->text(), d->txt(1)->text(), d->txt(2)->text(), d->txt(3)->text()}; }
    void verifyStartValues();

    std::unique_ptr<RecordDialogFixture> d;
};

void TestProxyDialog::verifyStartValues()
{
    QCOMPARE(texts(), (QStringList{QString(), u"1080"_s, QString(), QString()}));
    QVERIFY(!cbx()->isChecked());
    QVERIFY(!d->txt(2)->isEnabled());
    QCOMPARE(cbb()->currentText(), u"Socks5"_s);
    QCOMPARE(d->focused(), u"txt(0)"_s);
}

void TestProxyDialog::aNewProxyHasItsStartValues()
{
    verifyStartValues();
    d->begin(Mode::Edit, storedProxy);
    d->begin();
    verifyStartValues();
}

void TestProxyDialog::theProtocolHasOneEntry()
{
    QCOMPARE(cbb()->count(), 1);
    QCOMPARE(cbb()->itemText(0), u"Socks5"_s);
    QVERIFY(!cbb()->isEditable());
}

void TestProxyDialog::addHasItsExactCaption()
{
    d->begin();
    QCOMPARE(d->dialog()->windowTitle(), u"Add Proxy Server"_s);
}

void TestProxyDialog::editNamesAddressAndPortInItsCaption()
{
    d->begin(Mode::Edit, storedProxy);
    QCOMPARE(d->dialog()->windowTitle(), u"Edit Proxy Server - proxy.example.com:1081"_s);
}

void TestProxyDialog::copyHasTheCaptionOfAdd()
{
    d->begin(Mode::Add, storedProxy);
    QCOMPARE(d->dialog()->windowTitle(), u"Add Proxy Server"_s);
    QCOMPARE(d->txt(0)->text(), u"proxy.example.com"_s);
}

void TestProxyDialog::editShowsAllFieldsAsTheyAreStored()
{
    d->begin(Mode::Edit, storedProxy);
    QCOMPARE(texts(), (QStringList{u"proxy.example.com"_s, u"1081"_s, u"ann"_s, u"secret"_s}));
    QVERIFY(cbx()->isChecked());
    d->click(u"sbtSC"_s);
    QCOMPARE(d->saved, QStringList{storedProxy});
}

void TestProxyDialog::anotherProtocolIsShownAsTheOneThereIs()
{
    d->begin(Mode::Edit, QString(storedProxy).replace(u"Socks5"_s, u"Http"_s));
    QCOMPARE(cbb()->currentText(), u"Socks5"_s);
    d->click(u"sbtSC"_s);
    QCOMPARE(d->saved, QStringList{storedProxy});
}

void TestProxyDialog::aShortLineLeavesTheMissingBoxesEmpty()
{
    d->begin(Mode::Edit, u"Socks5\tproxy"_s);
    QCOMPARE(texts(), (QStringList{u"proxy"_s, QString(), QString(), QString()}));
    QVERIFY(!cbx()->isChecked());
    QCOMPARE(d->dialog()->windowTitle(), u"Edit Proxy Server - proxy:"_s);
}

void TestProxyDialog::anEmptyAddressIsTold()
{
    d->begin(Mode::Add, storedProxy);
    d->txt(0)->setText(u"  "_s);
    d->verifyFault(u"NEED_ADDR"_s, 64, u"txt(0)"_s, false);
}

void TestProxyDialog::anEmptyPortIsTold()
{
    d->begin(Mode::Add, storedProxy);
    d->txt(1)->clear();
    d->verifyFault(u"NEED_PORT"_s, 64, u"txt(1)"_s, false);
}

void TestProxyDialog::anEmptyUserIsToldWhileAuthenticationIsOn()
{
    d->begin(Mode::Add, storedProxy);
    d->txt(2)->setText(u"  "_s);
    d->verifyFault(u"NEED_USER"_s, 64, u"txt(2)"_s, false);
}

void TestProxyDialog::anEmptyUserPassesWithoutAuthentication()
{
    d->begin(Mode::Add, storedProxy);
    d->txt(2)->clear();
    cbx()->click();
    d->click(u"sbtSC"_s);
    QCOMPARE(d->saved, QStringList{u"Socks5\tproxy.example.com\t1081\tN\t\tsecret\t/PSEND"_s});
}

void TestProxyDialog::aTakenProxyIsToldWithTheFocusInTheAddress()
{
    d->taken = [](const QString &) { return true; };
    d->begin(Mode::Add, storedProxy);
    d->verifyFault(u"PROXY_EXISTS"_s, 64, u"txt(0)"_s, false);
}

void TestProxyDialog::aTakenProxyIsToldWithoutASelection()
{
    d->taken = [](const QString &) { return true; };
    d->begin(Mode::Add, storedProxy);
    d->show();
    d->focus(d->txt(0));
    d->txt(0)->setCursorPosition(3);
    ExpectedPrompts prompts;
    prompts.expectBox(u"PROXY_EXISTS"_s, 64);
    QTest::keyClick(d->txt(0), Qt::Key_C, Qt::AltModifier);
    QCoreApplication::processEvents();
    QCOMPARE(d->focused(), u"txt(0)"_s);
    QVERIFY(!d->txt(0)->hasSelectedText());
}

void TestProxyDialog::theFirstFaultInOrderIsTold()
{
    d->taken = [](const QString &) { return true; };
    d->begin();
    d->txt(1)->clear();
    cbx()->click();
    d->verifyFault(u"NEED_ADDR"_s, 64, u"txt(0)"_s, false);
    d->txt(0)->setText(u"proxy"_s);
    d->verifyFault(u"NEED_PORT"_s, 64, u"txt(1)"_s, false);
    d->txt(1)->setText(u"1080"_s);
    d->verifyFault(u"NEED_USER"_s, 64, u"txt(2)"_s, false);
    QCOMPARE(d->asked, QStringList());
    d->txt(2)->setText(u"ann"_s);
    d->verifyFault(u"PROXY_EXISTS"_s, 64, u"txt(0)"_s, false);
}

void TestProxyDialog::anotherUserIsAnotherProxy()
{
    // The list compares what it is handed, so the line must tell address, port and user apart.
    d->taken = [](const QString &line) {
        return recordField(line, ProxyAddress) == "proxy.example.com"_L1 && recordField(line, ProxyPort) == "1081"_L1 &&
               recordField(line, ProxyUser) == "ann"_L1;
    };
    d->begin(Mode::Add, storedProxy);
    d->verifyFault(u"PROXY_EXISTS"_s, 64, u"txt(0)"_s, false);
    d->txt(2)->setText(u"bob"_s);
    d->click(u"sbtSC"_s);
    QCOMPARE(d->saved, QStringList{QString(storedProxy).replace(u"ann"_s, u"bob"_s)});
}

void TestProxyDialog::theLineHasAllFieldsInOrderAndTrimmed()
{
    d->begin();
    cbx()->click();
    d->txt(0)->setText(u" 127.0.0.1 "_s);
    d->txt(1)->setText(u" 9050 "_s);
    d->txt(2)->setText(u" u "_s);
    d->txt(3)->setText(u" p w "_s);
    d->click(u"sbtSC"_s);
    QCOMPARE(d->saved, QStringList{u"Socks5\t127.0.0.1\t9050\tY\tu\tp w\t/PSEND"_s});
}

void TestProxyDialog::saveAndCloseUnloadsTheDialog()
{
    d->begin(Mode::Add, storedProxy);
    d->show();
    d->click(u"sbtSC"_s);
    QCOMPARE(d->saved.size(), 1);
    QVERIFY(!d->forms.isLoaded(d->form));
}

void TestProxyDialog::saveAndAddClearsTheBoxesAndStays()
{
    d->begin(Mode::Add, storedProxy);
    d->show();
    d->click(u"sbtSA"_s);
    QCOMPARE(d->saved.size(), 1);
    QVERIFY(d->dialog()->isVisible());
    verifyStartValues();
}

void TestProxyDialog::saveAndAddInAnEditKeepsItsCaptionAndItsMode()
{
    d->begin(Mode::Edit, storedProxy);
    d->click(u"sbtSA"_s);
    QCOMPARE(d->dialog()->windowTitle(), u"Edit Proxy Server - proxy.example.com:1081"_s);
    QCOMPARE(d->dialog()->mode(), Mode::Edit);
    verifyStartValues();
}

void TestProxyDialog::closeSavesNothing()
{
    d->begin(Mode::Add, storedProxy);
    d->show();
    d->click(u"sbtClose"_s);
    QVERIFY(!d->forms.isLoaded(d->form));
    QVERIFY(d->saved.isEmpty());
}

void TestProxyDialog::aPortOutOfRangeIsPutBackAs1080()
{
    d->begin(Mode::Add, storedProxy);
    for (const QString &text : {u"0"_s, u"65536"_s, u"x"_s, u" "_s}) {
        d->txt(1)->clear();
        ExpectedPrompts prompts;
        prompts.expectBox(u"PORT_LIMIT"_s, 64);
        paste(d->txt(1), text);
        QCOMPARE(d->txt(1)->text(), u"1080"_s);
    }
}

void TestProxyDialog::authenticationEnablesUserAndPassword()
{
    d->begin();
    const QList<QWidget *> controls = {d->get<QLabel>(u"lbl(7)"_s), d->get<QLabel>(u"lbl(8)"_s), d->txt(2), d->txt(3)};
    for (const bool on : {true, false}) {
        cbx()->click();
        for (const QWidget *control : controls) {
            QCOMPARE(control->isEnabled(), on);
        }
        QVERIFY(d->txt(0)->isEnabled());
    }
}

void TestProxyDialog::altASavesAndAddsAndAltCSavesAndCloses()
{
    d->begin(Mode::Add, storedProxy);
    d->show();
    QTest::keyClick(d->txt(3), Qt::Key_A, Qt::AltModifier);
    QCOMPARE(d->saved.size(), 1);
    QVERIFY(d->dialog()->isVisible());
    d->txt(0)->setText(u"other"_s);
    QTest::keyClick(d->txt(0), Qt::Key_C, Qt::AltModifier);
    QCOMPARE(d->saved.size(), 2);
    QVERIFY(!d->forms.isLoaded(d->form));
}

void TestProxyDialog::theTabKeyGoesThroughTheFieldsInOrder()
{
    d->help = [] {};
    d->begin(Mode::Add, storedProxy);
    d->show();
    QCOMPARE(d->tabOrder(u"cbb"_s), (QStringList{u"cbb"_s, u"txt(0)"_s, u"txt(1)"_s, u"cbx"_s, u"txt(2)"_s, u"txt(3)"_s,
                                                 u"sbtSA"_s, u"sbtSC"_s, u"sbtClose"_s, u"sbtHelp"_s}));
}

void TestProxyDialog::thePasswordIsNotShown()
{
    QCOMPARE(d->txt(3)->echoMode(), QLineEdit::Password);
    QCOMPARE(d->txt(2)->echoMode(), QLineEdit::Normal);
}

QTEST_MAIN(TestProxyDialog)
#include "test_proxydialog.moc"
