#include "optionsbench.h"
#include "quillon/forms/qtprompts.h"
#include "support/scriptedserver.h"

#include <QDialog>
#include <QGuiApplication>
#include <QTabBar>

using namespace Qt::StringLiterals;
using namespace corvane;
using testsupport::ScriptedServer;
using Tab = OptionsTab;

/// Where the form could leave its user: with a hidden field, a wide window, another row, an hourglass.
class TestOptionFaults : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aBadNumberComesBackWithItsTab();
    void aLongReasonDoesNotWidenTheWindow();
    void theSelectedRowBecomesTheDefault();
    void theSelectedRowIsTestedThoughAnotherIsPresent();
    void theHourglassShowsWhileConnectingOnly();
    void helpOpensTheManual();
    void itOpensAboveAnotherModalForm();

private:
    static QString accountAt(const QString &host, int port, const QString &address)
    {
        return u"%1\t%2\tN\tN\t\t\tAnn\t%3\t\t\t/SAEND"_s.arg(host).arg(port).arg(address);
    }
    static void putAccounts(OptionsBench &bench, const QStringList &lines)
    {
        writeFile(bench.globals().paths.smtpFile, (lines.join(u"\r\n"_s) + u"\r\n"_s).toUtf8());
    }
    /// Selects the first of two rows and leaves the second as the present one.
    static void selectFirstWithSecondPresent(OptionsBench &bench)
    {
        bench.click(3, 0);
        bench.click(3, 1, Qt::ControlModifier);
        bench.click(3, 1, Qt::ControlModifier);
        QCOMPARE(bench.selectedRows(3).size(), 1);
        QCOMPARE(bench.lsv(3)->currentIndex().row(), 1);
    }
};

void TestOptionFaults::aBadNumberComesBackWithItsTab()
{
    OptionsBench bench;
    bench.open(Tab::OtherTab);
    bench.focus(bench.txt(14));
    bench.txt(14)->setText(u"3"_s);
    bench.prompts.expectBox(u"INTERVAL_LIMIT"_s, quillon::InformationBox);
    QTest::mouseClick(bench.sst()->tabBar(), Qt::LeftButton, {}, bench.sst()->tabBar()->tabRect(0).center());
    QCoreApplication::processEvents();
    QCOMPARE(bench.sst()->currentIndex(), static_cast<int>(Tab::OtherTab));
    QVERIFY(bench.txt(14)->isVisible());
    QCOMPARE(bench.focused(), u"txt(14)"_s);
}

void TestOptionFaults::aLongReasonDoesNotWidenTheWindow()
{
    OptionsBench bench;
    putAccounts(bench, {accountAt(QString(250, u'a'), 25, u"ann@a.example"_s)});
    bench.open(Tab::AccountTab);
    const int width = bench.form()->width();
    bench.prompts.expectBox(u"CONN_SMTP_UNSU"_s, quillon::WarningBox);
    bench.clickTest();
    QCoreApplication::processEvents();
    QVERIFY(bench.get<QLabel>(u"lblReason"_s)->text().contains(QString(60, u'a')));
    QCOMPARE(bench.form()->width(), width);
}

void TestOptionFaults::theSelectedRowBecomesTheDefault()
{
    OptionsBench bench;
    putAccounts(bench, {accountAt(u"one"_s, 25, u"1@a.example"_s), accountAt(u"two"_s, 25, u"2@a.example"_s)});
    bench.open(Tab::AccountTab);
    selectFirstWithSecondPresent(bench);
    bench.button(u"sbtSMTP(5)"_s)->click();
    QCOMPARE(bench.boldRows(3), QStringList{u"one"_s});
    bench.lsv(3)->clearSelection();
    bench.lsv(3)->selectionModel()->setCurrentIndex(bench.lsv(3)->model()->index(1, 0), QItemSelectionModel::NoUpdate);
    bench.button(u"sbtSMTP(5)"_s)->click();
    QCOMPARE(bench.boldRows(3), QStringList{u"one"_s}); // nothing is selected
}

void TestOptionFaults::theSelectedRowIsTestedThoughAnotherIsPresent()
{
    OptionsBench bench;
    ScriptedServer first;
    ScriptedServer second;
    putAccounts(bench, {accountAt(u"127.0.0.1"_s, first.port(), u"1@a.example"_s),
                        accountAt(u"127.0.0.1"_s, second.port(), u"2@a.example"_s)});
    bench.open(Tab::AccountTab);
    selectFirstWithSecondPresent(bench);
    bench.prompts.expectBox(u"CONN_SMTP_SUCC"_s, quillon::InformationBox);
    bench.clickTest();
    QCOMPARE(first.Connections, 1);
    QCOMPARE(second.Connections, 0);
}

void TestOptionFaults::theHourglassShowsWhileConnectingOnly()
{
    OptionsBench bench;
    putAccounts(bench, {accountAt(u"127.0.0.1"_s, 1, u"1@a.example"_s)});
    bench.open(Tab::AccountTab);
    Qt::CursorShape shape = Qt::ArrowCursor;
    // Runs in the event loop inside the connection.
    QMetaObject::invokeMethod(
        bench.form(),
        [&shape] {
            const QCursor *cursor = QGuiApplication::overrideCursor();
            shape = cursor ? cursor->shape() : Qt::ArrowCursor;
        },
        Qt::QueuedConnection);
    bool atTheBox = true;
    bench.prompts.expectBox(u"CONN_SMTP_UNSU"_s, quillon::WarningBox, quillon::BoxAnswer::Ok, std::nullopt,
                            [&atTheBox] { atTheBox = QGuiApplication::overrideCursor(); });
    bench.clickTest();
    QCOMPARE(shape, Qt::WaitCursor);
    QVERIFY(!atTheBox);
    QVERIFY(!QGuiApplication::overrideCursor());
}

void TestOptionFaults::helpOpensTheManual()
{
    OptionsBench bench;
    int opened = 0;
    bench.help = [&opened] { ++opened; };
    bench.open(Tab::ProxyTab);
    bench.sbt(3)->click();
    QTest::keyClick(bench.form(), Qt::Key_F1);
    bench.form()->showTab(Tab::OtherTab);
    QTest::keyClick(bench.form(), Qt::Key_F1);
    QCOMPARE(opened, 3);
}

void TestOptionFaults::itOpensAboveAnotherModalForm()
{
    OptionsBench bench;
    quillon::QtPrompts asker(bench.forms);
    QDialog below;
    below.setModal(true);
    below.show();
    QVERIFY(QTest::qWaitForWindowActive(&below));
    QMetaObject::invokeMethod(
        qApp,
        [&bench] {
            QVERIFY(QTest::qWaitForWindowActive(bench.form()));
            QCOMPARE(bench.sst()->currentIndex(), static_cast<int>(Tab::OtherTab));
            QTest::keyClicks(bench.cbb(2), u"1"_s); // it takes input
            bench.sbt(2)->click();
        },
        Qt::QueuedConnection);
    asker.showModalForm(u"frmPubOptions"_s, Tab::OtherTab);
    QVERIFY(!bench.isLoaded());
    QVERIFY(below.isVisible());
}

QTEST_MAIN(TestOptionFaults)
#include "test_optionfaults.moc"
