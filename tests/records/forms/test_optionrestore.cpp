#include "optionsbench.h"

using namespace Qt::StringLiterals;
using namespace corvane;
using Tab = OptionsTab;

class TestOptionRestore : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void restoreAsksAndMayBeRefused_data();
    void restoreAsksAndMayBeRefused();
    void restorePutsBackTheSettingsAndTheTicks();
    void restoreLeavesTheListsAndTheDefaultsAlone();
    void closingWithoutSaveLosesATickAndKeepsANewAccount();
    void closingRefillsTheMainWindow();
    void closingByTheWindowIsTheSame();
};

void TestOptionRestore::restoreAsksAndMayBeRefused_data()
{
    QTest::addColumn<quillon::BoxAnswer>("answer");
    QTest::newRow("No") << quillon::BoxAnswer::No;
    QTest::newRow("Cancel") << quillon::BoxAnswer::Cancel;
}

void TestOptionRestore::restoreAsksAndMayBeRefused()
{
    QFETCH(const quillon::BoxAnswer, answer);
    OptionsBench bench;
    bench.changeAll();
    bench.save();
    const QByteArray before = bench.options();
    bench.prompts.expectBox(u"RESTORE_SET"_s, 35, answer);
    bench.sbt(1)->click();
    QCOMPARE(bench.prompts.leftOver(), QStringList());
    QCOMPARE(bench.options(), before);
    QCOMPARE(bench.globals().settings.text(Setting::Times), u"2"_s);
    QCOMPARE(bench.txt(15)->text(), u"2"_s);
}

void TestOptionRestore::restorePutsBackTheSettingsAndTheTicks()
{
    OptionsBench bench;
    writeFile(bench.globals().paths.proxyFile, oneProxy.toUtf8() + "\r\n");
    const QByteArray fresh = bench.options();
    bench.open(Tab::OtherTab);
    bench.changeAll();
    bench.cbx(0)->setChecked(true);
    bench.save();
    QVERIFY(bench.options() != fresh);
    bench.prompts.expectBox(u"RESTORE_SET"_s, 35, quillon::BoxAnswer::Yes);
    bench.sbt(1)->click();
    QCOMPARE(bench.options(), fresh);
    QCOMPARE(bench.globals().settings.text(Setting::Times), u"1"_s);
    QVERIFY(!bench.cbx(0)->isChecked() && !bench.cbx(1)->isChecked() && bench.cbx(4)->isChecked());
    QVERIFY(bench.opt(3)->isChecked() && bench.opt(5)->isChecked());
    QVERIFY(!bench.opt(2)->isChecked() && !bench.opt(6)->isChecked());
    QCOMPARE(bench.cbb(1)->currentText(), u"Courier New"_s);
    QCOMPARE(bench.cbb(2)->currentText(), u"10"_s);
    QCOMPARE(bench.cbb(3)->currentText(), u"Unicode (UTF-8)"_s);
    QCOMPARE(bench.txt(14)->text() + bench.txt(15)->text() + bench.txt(0)->text(), u"2610"_s);
    QVERIFY(bench.isLoaded() && bench.form()->isVisible());
}

void TestOptionRestore::restoreLeavesTheListsAndTheDefaultsAlone()
{
    OptionsBench bench;
    const DataPaths &paths = bench.globals().paths;
    const QList<QString> files = {paths.proxyFile, paths.smtpFile, paths.sendersFile, paths.signsFile};
    writeFile(paths.proxyFile, oneProxy.toUtf8() + "\r\n");
    writeFile(paths.smtpFile, oneAccount.toUtf8() + "\r\n");
    writeFile(paths.sendersFile, "Bob\tbob@b.example\t\r\n");
    writeFile(paths.signsFile, "Short\t\r\n");
    storeSettings(bench.globals(), {{Setting::DefaultProxy, oneProxy},
                                    {Setting::DefaultAccount, oneAccount},
                                    {Setting::DefaultSenderName, u"Bob"_s},
                                    {Setting::DefaultSenderAddress, u"bob@b.example"_s},
                                    {Setting::DefaultSignature, u"Short"_s},
                                    {Setting::Width, u"9000"_s}});
    const QByteArray before = bench.options();
    QList<QByteArray> contents;
    for (const QString &file : files) {
        contents.append(contentOf(file));
    }
    bench.changeAll();
    bench.save();
    bench.prompts.expectBox(u"RESTORE_SET"_s, 35, quillon::BoxAnswer::Yes);
    bench.sbt(1)->click();
    QCOMPARE(bench.options(), before);
    QCOMPARE(bench.globals().settings.text(Setting::Width), u"9000"_s);
    for (qsizetype i = 0; i < files.size(); ++i) {
        QCOMPARE(contentOf(files.at(i)), contents.at(i));
    }
    for (const int list : {0, 1, 2, 3}) {
        QCOMPARE(bench.rows(list).size(), 1);
        QCOMPARE(bench.boldRows(list), bench.rows(list));
    }
}

void TestOptionRestore::closingWithoutSaveLosesATickAndKeepsANewAccount()
{
    OptionsBench bench;
    bench.open(Tab::AccountTab);
    bench.cbx(4)->setChecked(false);
    bench.prompts.expectForm(u"frmPubSMTP"_s, -1, [&bench] {
        auto *dialog = bench.forms.form(u"frmPubSMTP"_s);
        dialog->findChild<QLineEdit *>(u"txt(0)"_s)->setText(u"mail.example"_s);
        dialog->findChild<QLineEdit *>(u"txt(2)"_s)->setText(u"ann"_s);
        dialog->findChild<QAbstractButton *>(u"sbtSC"_s)->click();
    });
    bench.get<QAction>(u"menan"_s)->trigger();
    bench.sbt(2)->click();
    QVERIFY(!bench.isLoaded());
    QCOMPARE(bench.rows(3), QStringList{u"mail.example"_s});
    QVERIFY(contentOf(bench.globals().paths.smtpFile).startsWith("mail.example\t25\t"));
    QVERIFY(bench.cbx(4)->isChecked());
    QCOMPARE(bench.stored(u"Signature"_s, u"AutoAdd"_s), u"True"_s);
}

void TestOptionRestore::closingRefillsTheMainWindow()
{
    OptionsBench bench;
    bench.open(Tab::SenderTab);
    QCOMPARE(bench.refills, 1);
    bench.sbt(2)->click();
    QCOMPARE(bench.refills, 2);
    QVERIFY(!bench.isLoaded());
}

void TestOptionRestore::closingByTheWindowIsTheSame()
{
    OptionsBench bench;
    bench.open(Tab::SenderTab);
    bench.form()->close();
    QCOMPARE(bench.refills, 2);
    QVERIFY(!bench.isLoaded());
}

QTEST_MAIN(TestOptionRestore)
#include "test_optionrestore.moc"
