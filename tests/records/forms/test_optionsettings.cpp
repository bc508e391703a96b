#include "optionsbench.h"

#include <QAccessible>
#include <QFontDatabase>

using namespace Qt::StringLiterals;
using namespace corvane;
using Tab = OptionsTab;

class TestOptionSettings : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aFreshDialogShowsTheProxyTab();
    void theFourListsAreFilledAtLoad();
    void theMainWindowIsRefilledAtLoad();
    void theDefaultSettingsAreShown();
    void theTicksFollowTheirSettings();
    void startupChoosesItsOption_data();
    void startupChoosesItsOption();
    void formatChoosesItsOption_data();
    void formatChoosesItsOption();
    void emptySettingsAreShownAsTheirDefaults();
    void everyFontOfTheScreenIsOffered();
    void aFontThatIsNotInstalledIsShown();
    void anySizeOfAFontIsShown();
    void encodingsAreOfferedByTheirNamesWithoutHiddenOnes();
    void theEncodingOfTheSettingsIsChosen();
    void anUnknownEncodingChoosesNone();
    void theEncodingCannotBeTyped();
    void itOpensOnTheTabThatWasAskedFor();
    void aTabThatIsNotThereChangesNothing();
    void testIsShownOnTheTabsOfConnectionsOnly();
    void aHookThatIsNotSetIsAFaultByItsName();
    void f1IsHelpOnEveryTab();
};

void TestOptionSettings::aFreshDialogShowsTheProxyTab()
{
    OptionsBench bench;
    QCOMPARE(bench.sst()->currentIndex(), 0);
    QCOMPARE(bench.sst()->count(), 5);
    QCOMPARE(bench.form()->windowTitle(), u"Options"_s);
    QCOMPARE(bench.status()->text(), QString());
}

void TestOptionSettings::theFourListsAreFilledAtLoad()
{
    OptionsBench bench;
    const DataPaths &paths = bench.globals().paths;
    writeFile(paths.proxyFile, "Socks5\tproxy.example\t1080\tN\t\t\t/PSEND\r\n");
    writeFile(paths.smtpFile, "mail.example\t25\tN\tN\t\t\tAnn\tann@a.example\t\t\t/SAEND\r\n");
    writeFile(paths.sendersFile, "Bob\tbob@b.example\tat work\r\n");
    writeFile(paths.signsFile, "Short\t\r\nLong\t\r\n");
    QCOMPARE(bench.rows(2), QStringList{u"proxy.example"_s});
    QCOMPARE(bench.rows(3), QStringList{u"mail.example"_s});
    QCOMPARE(bench.rows(0), QStringList{u"Bob"_s});
    QCOMPARE(bench.rows(1), (QStringList{u"Short"_s, u"Long"_s}));
}

void TestOptionSettings::theMainWindowIsRefilledAtLoad()
{
    OptionsBench bench;
    bench.form();
    QCOMPARE(bench.refills, 1);
}

void TestOptionSettings::theDefaultSettingsAreShown()
{
    OptionsBench bench;
    QVERIFY(!bench.cbx(0)->isChecked());
    QVERIFY(!bench.cbx(1)->isChecked());
    QVERIFY(bench.cbx(4)->isChecked());
    QVERIFY(bench.opt(3)->isChecked());
    QVERIFY(bench.opt(5)->isChecked());
    QCOMPARE(bench.cbb(1)->currentText(), u"Courier New"_s);
    QCOMPARE(bench.cbb(2)->currentText(), u"10"_s);
    QCOMPARE(bench.cbb(3)->currentText(), u"Unicode (UTF-8)"_s);
    QCOMPARE(bench.txt(14)->text(), u"26"_s);
    QCOMPARE(bench.txt(15)->text(), u"1"_s);
    QCOMPARE(bench.txt(0)->text(), u"0"_s);
}

void TestOptionSettings::theTicksFollowTheirSettings()
{
    OptionsBench bench;
    bench.globals().settings.set(Setting::ProxyUse, u"True"_s);
    bench.globals().settings.set(Setting::AutoAddSignature, u"False"_s);
    bench.setOther(Setting::EmptyFolder, u"True"_s);
    QVERIFY(bench.cbx(0)->isChecked());
    QVERIFY(bench.cbx(1)->isChecked());
    QVERIFY(!bench.cbx(4)->isChecked());

    OptionsBench inAnotherCase; // is not the word
    inAnotherCase.globals().settings.set(Setting::ProxyUse, u"true"_s);
    inAnotherCase.globals().settings.set(Setting::AutoAddSignature, u"TRUE"_s);
    inAnotherCase.setOther(Setting::EmptyFolder, u"Yes"_s);
    QVERIFY(!inAnotherCase.cbx(0)->isChecked());
    QVERIFY(!inAnotherCase.cbx(1)->isChecked());
    QVERIFY(!inAnotherCase.cbx(4)->isChecked());
}

void TestOptionSettings::startupChoosesItsOption_data()
{
    QTest::addColumn<QString>("startup");
    QTest::addColumn<int>("option");
    QTest::newRow("Max") << u"Max"_s << 2;
    QTest::newRow("Last") << u"Last"_s << 3;
    QTest::newRow("empty is Last") << QString() << 3;
    QTest::newRow("Sys") << u"Sys"_s << 4;
    QTest::newRow("an unknown word chooses none") << u"Min"_s << -1;
    QTest::newRow("another case chooses none") << u"max"_s << -1;
}

void TestOptionSettings::startupChoosesItsOption()
{
    QFETCH(const QString, startup);
    QFETCH(const int, option);
    OptionsBench bench;
    bench.setOther(Setting::Startup, startup);
    for (int i = 2; i <= 4; ++i) {
        QCOMPARE(bench.opt(i)->isChecked(), i == option);
    }
    bench.opt(2)->click(); // and they exclude each other again
    bench.opt(4)->click();
    QVERIFY(!bench.opt(2)->isChecked() && !bench.opt(3)->isChecked() && bench.opt(4)->isChecked());
}

void TestOptionSettings::formatChoosesItsOption_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<bool>("rich");
    QTest::newRow("Rich") << u"Rich"_s << true;
    QTest::newRow("Plain") << u"Plain"_s << false;
    QTest::newRow("empty") << QString() << false;
    QTest::newRow("unknown") << u"rich"_s << false;
}

void TestOptionSettings::formatChoosesItsOption()
{
    QFETCH(const QString, format);
    QFETCH(const bool, rich);
    OptionsBench bench;
    bench.setOther(Setting::Format, format);
    QCOMPARE(bench.opt(6)->isChecked(), rich);
    QCOMPARE(bench.opt(5)->isChecked(), !rich);
}

void TestOptionSettings::emptySettingsAreShownAsTheirDefaults()
{
    OptionsBench bench;
    for (const Setting key : {Setting::Startup, Setting::FontName, Setting::FontSize, Setting::Format,
                              Setting::Interval, Setting::Times, Setting::OboInterval}) {
        bench.setOther(key, QString());
    }
    QVERIFY(bench.opt(3)->isChecked());
    QVERIFY(bench.opt(5)->isChecked());
    QCOMPARE(bench.cbb(1)->currentText(), u"Courier New"_s);
    QCOMPARE(bench.cbb(2)->currentText(), u"10"_s);
    QCOMPARE(bench.txt(14)->text(), u"26"_s);
    QCOMPARE(bench.txt(15)->text(), u"1"_s);
    QCOMPARE(bench.txt(0)->text(), u"0"_s);
}

void TestOptionSettings::everyFontOfTheScreenIsOffered()
{
    OptionsBench bench;
    QStringList offered;
    for (int i = 0; i < bench.cbb(1)->count(); ++i) {
        offered.append(bench.cbb(1)->itemText(i));
    }
    QVERIFY(!offered.isEmpty());
    QCOMPARE(offered, QFontDatabase::families());
}

void TestOptionSettings::aFontThatIsNotInstalledIsShown()
{
    OptionsBench bench;
    bench.setOther(Setting::FontName, u"Büro Grotesk 3000"_s);
    QVERIFY(!QFontDatabase::families().contains(u"Büro Grotesk 3000"_s));
    QCOMPARE(bench.cbb(1)->currentText(), u"Büro Grotesk 3000"_s);
}

void TestOptionSettings::anySizeOfAFontIsShown()
{
    OptionsBench bench;
    bench.setOther(Setting::FontSize, u"13.5"_s);
    QCOMPARE(bench.cbb(2)->currentText(), u"13.5"_s);
    QVERIFY(bench.cbb(2)->count() > 1);
}

void TestOptionSettings::encodingsAreOfferedByTheirNamesWithoutHiddenOnes()
{
    OptionsBench bench;
    QStringList names;
    const QStringList entries = bench.globals().text.GetEncodingList().split(u" || "_s);
    for (const QString &entry : entries) {
        if (!entry.startsWith(u'_')) {
            names.append(entry.mid(entry.indexOf(u" | "_s) + 3));
        }
    }
    QStringList offered;
    for (int i = 0; i < bench.cbb(3)->count(); ++i) {
        offered.append(bench.cbb(3)->itemText(i));
    }
    QVERIFY(offered.contains(u"Unicode (UTF-8)"_s));
    QCOMPARE(offered, names);
}

void TestOptionSettings::theEncodingOfTheSettingsIsChosen()
{
    OptionsBench bench;
    const QString entry = bench.window.encodings.last();
    bench.setOther(Setting::Encoding, entry.section(u" | "_s, 0, 0));
    QCOMPARE(bench.cbb(3)->currentText(), entry.section(u" | "_s, 1));
}

void TestOptionSettings::anUnknownEncodingChoosesNone()
{
    OptionsBench bench;
    bench.setOther(Setting::Encoding, u"x-unknown"_s);
    QCOMPARE(bench.cbb(3)->currentText(), QString());
}

void TestOptionSettings::theEncodingCannotBeTyped()
{
    OptionsBench bench;
    QVERIFY(!bench.cbb(3)->isEditable());
    QVERIFY(bench.cbb(1)->isEditable());
    QVERIFY(bench.cbb(2)->isEditable());
}

void TestOptionSettings::itOpensOnTheTabThatWasAskedFor()
{
    for (int tab = 0; tab < 5; ++tab) {
        OptionsBench bench;
        bench.open(tab);
        QCOMPARE(bench.sst()->currentIndex(), tab);
    }
}

void TestOptionSettings::aTabThatIsNotThereChangesNothing()
{
    OptionsBench bench;
    bench.form()->showTab(3);
    bench.form()->showTab(5);
    bench.form()->showTab(-1);
    QCOMPARE(bench.sst()->currentIndex(), 3);
}

void TestOptionSettings::testIsShownOnTheTabsOfConnectionsOnly()
{
    OptionsBench bench;
    bench.open(Tab::ProxyTab);
    const QList<bool> shown = {true, true, false, false, false};
    for (int tab = 4; tab >= 0; --tab) {
        bench.sst()->setCurrentIndex(tab);
        QCOMPARE(bench.sbt(15)->isVisible(), shown.at(tab));
        for (int index = 0; index <= 3; ++index) {
            QVERIFY(bench.sbt(index)->isVisible());
        }
    }
}

void TestOptionSettings::aHookThatIsNotSetIsAFaultByItsName()
{
    OptionsBench bench;
    for (const char *name : {"refillMainWindow", "encodingName", "macroItems", "help"}) {
        QTest::ignoreMessage(QtWarningMsg, qPrintable(u"hook not set: OptionsHooks::"_s + QString::fromLatin1(name)));
    }
    const int before = quillon::faultCount();
    frmPubOptions options(bench.globals(), bench.window, bench.forms, {});
    QCOMPARE(quillon::faultCount() - before, 4);
    options.findChild<QAbstractButton *>(u"sbt(3)"_s)->click();
    options.close();
}

void TestOptionSettings::f1IsHelpOnEveryTab()
{
    OptionsBench bench;
    int opened = 0;
    bench.help = [&opened] { ++opened; };
    bench.open(Tab::ProxyTab);
    for (int tab = 0; tab < 5; ++tab) {
        bench.form()->showTab(tab);
        QTest::keyClick(bench.form()->focusWidget(), Qt::Key_F1);
        QCOMPARE(opened, tab + 1);
    }
    bench.sbt(3)->click();
    QCOMPARE(opened, 6);
}

QTEST_MAIN(TestOptionSettings)
#include "test_optionsettings.moc"
