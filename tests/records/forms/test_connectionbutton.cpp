#include "optionsbench.h"
#include "records/connectionbench.h"

#include <QCloseEvent>
#include <QtTest/qtestspontaneevent.h>

using namespace Qt::StringLiterals;
using namespace corvane;
using quillon::MailTransport;
using testsupport::ChildServer;
using testsupport::ScriptedServer;
using Tab = OptionsTab;

class TestConnectionButton : public ConnectionBench {
    Q_OBJECT

private Q_SLOTS:
    void init() { MailTransport::setTimeouts(longTime, longTime, shortGrace); }

    void anAccountThatWorksIsTold();
    void anAccountThatFailsIsAWarning();
    void whileConnectingTheFormSaysSoAndIsDisabled();
    void afterwardsAllIsAsBefore();
    void theReasonStandsUntilTheNextTest();
    void noPasswordIsShown();
    void anAccountsLineOfAnotherLengthFails();
    void anAccountIsNeeded();
    void aProxyIsNeededForItsTest();
    void aTickedProxyThatIsNotThereIsNeeded();
    void theDefaultProxyIsUsedWhenTicked();
    void theDefaultProxyIsNotUsedWithoutTheTick();
    void oddRuleATickWithoutADefaultProxyConnectsDirectly();
    void aProxyThatReachesTheSiteIsTold();
    void aProxyThatFailsIsAWarning();
    void theSelectedRowIsTested();
    void nothingCanBePressedMeanwhile();
    void theWindowCannotBeClosedMeanwhile();
    void theExitUnloadsTheFormMeanwhile();

private:
    static void putAccount(OptionsBench &bench, const QString &line)
    {
        writeFile(bench.globals().paths.smtpFile, line.toUtf8() + "\r\n");
    }
    static void putProxy(OptionsBench &bench, const QString &line)
    {
        writeFile(bench.globals().paths.proxyFile, line.toUtf8() + "\r\n");
    }
    static void setDefaultProxy(OptionsBench &bench, const QString &line)
    {
        bench.globals().settings.set(Setting::DefaultProxy, line);
    }
    /// Lets the proxy's test reach for a server of ours in the place of the site's.
    static void putSite(OptionsBench &bench, const ScriptedServer &web)
    {
        const QString text = u"[Site]\r\nProxy Test Host=127.0.0.1\r\nProxy Test Port=%1\r\n"_s.arg(web.port());
        writeFile(bench.globals().programFolder + u"/site.dll"_s, text.toUtf8());
    }
    /// Runs @p look when the server has been greeted, that is in the middle of a test.
    static void lookInside(ScriptedServer &server, const std::function<void()> &look)
    {
        server.Responder = [look](const QByteArray &line) {
            if (line.startsWith("EHLO")) {
                look();
            }
            return std::optional<QByteArray>();
        };
    }
    /// Presses Test and sees that this comes, and nothing else.
    static void verifyTest(OptionsBench &bench, const QString &key, int style,
                           const std::function<void()> &whileShown = {})
    {
        bench.prompts.expectBox(key, style, quillon::BoxAnswer::Ok, std::nullopt, whileShown);
        bench.clickTest();
        QCOMPARE(bench.prompts.leftOver(), QStringList());
    }
    /// That an account is tested past the proxy in the list.
    void verifyDirect(bool ticked, bool standard)
    {
        ScriptedServer server;
        ScriptedServer proxy;
        OptionsBench bench;
        putAccount(bench, accountLine(server.port(), u"N"_s, noLogin));
        putProxy(bench, proxyLine(proxy.port()));
        if (standard) {
            setDefaultProxy(bench, proxyLine(proxy.port()));
        }
        bench.globals().settings.set(Setting::ProxyUse, u"True"_s);
        bench.open(Tab::AccountTab);
        bench.cbx(0)->setChecked(ticked);
        verifyTest(bench, u"CONN_SMTP_SUCC"_s, 64);
        QCOMPARE(server.Connections, 1);
        QCOMPARE(proxy.Connections, 0);
    }
    static QString reason(OptionsBench &bench) { return bench.get<QLabel>(u"lblReason"_s)->text(); }
};

void TestConnectionButton::anAccountThatWorksIsTold()
{
    ScriptedServer server;
    OptionsBench bench;
    putAccount(bench, accountLine(server.port(), u"N"_s, noLogin));
    bench.open(Tab::AccountTab);
    verifyTest(bench, u"CONN_SMTP_SUCC"_s, 64);
    QCOMPARE(server.Connections, 1);
    QVERIFY(server.heard("EHLO") && !server.heard("MAIL"));
    QCOMPARE(reason(bench), QString());
}

void TestConnectionButton::anAccountThatFailsIsAWarning()
{
    ScriptedServer server;
    server.Greeting = "554 closed on Sundays\r\n";
    OptionsBench bench;
    putAccount(bench, accountLine(server.port(), u"N"_s, noLogin));
    bench.open(Tab::AccountTab);
    verifyTest(bench, u"CONN_SMTP_UNSU"_s, 48);
    QCOMPARE(server.Connections, 1);
}

void TestConnectionButton::whileConnectingTheFormSaysSoAndIsDisabled()
{
    ScriptedServer server;
    OptionsBench bench;
    putAccount(bench, accountLine(server.port(), u"N"_s, noLogin));
    bench.open(Tab::AccountTab);
    int looks = 0;
    const auto look = [&] {
        ++looks;
        QVERIFY(!LookupText(u"CONN_SMTP"_s).isEmpty());
        QCOMPARE(bench.status()->text(), LookupText(u"CONN_SMTP"_s));
        QVERIFY(bench.status()->isVisible());
        QVERIFY(!bench.form()->isEnabled());
        QCOMPARE(bench.form()->cursor().shape(), Qt::WaitCursor);
    };
    lookInside(server, [&] {
        look();
        // What is seen over a disabled form is the application's pointer.
        QVERIFY(QGuiApplication::overrideCursor());
        QCOMPARE(QGuiApplication::overrideCursor()->shape(), Qt::WaitCursor);
    });
    // The box comes first, and only then all is put back.
    verifyTest(bench, u"CONN_SMTP_SUCC"_s, 64, look);
    QCOMPARE(looks, 2);
}

void TestConnectionButton::afterwardsAllIsAsBefore()
{
    const quint16 port = portOfNobody();
    ScriptedServer server;
    for (const bool works : {true, false}) {
        OptionsBench bench;
        putAccount(bench, accountLine(works ? server.port() : port, u"N"_s, noLogin));
        bench.open(Tab::AccountTab);
        bench.focus(bench.lsv(3));
        verifyTest(bench, works ? u"CONN_SMTP_SUCC"_s : u"CONN_SMTP_UNSU"_s, works ? 64 : 48);
        QCOMPARE(bench.status()->text(), QString());
        QVERIFY(bench.form()->isEnabled());
        QCOMPARE(bench.form()->cursor().shape(), Qt::ArrowCursor);
        QVERIFY(!QGuiApplication::overrideCursor());
        QVERIFY(bench.lsv(3)->hasFocus());
        QCOMPARE(bench.sst()->currentIndex(), 1);
        QCOMPARE(bench.selectedRows(3).size(), 1);
    }
}

void TestConnectionButton::theReasonStandsUntilTheNextTest()
{
    ScriptedServer server;
    server.Greeting = "554 closed on Sundays\r\n";
    OptionsBench bench;
    putAccount(bench, accountLine(server.port(), u"N"_s, noLogin));
    bench.open(Tab::AccountTab);
    verifyTest(bench, u"CONN_SMTP_UNSU"_s, 48, [&bench] {
        QVERIFY(reason(bench).contains(u"554 closed on Sundays"_s));
        const auto *label = bench.get<QLabel>(u"lblReason"_s);
        QVERIFY(!label->isEnabled());
        QCOMPARE(label->palette().color(QPalette::Disabled, QPalette::WindowText),
                 label->palette().color(QPalette::Active, QPalette::WindowText));
        QCOMPARE(bench.status()->text(), QString());
    });
    QCOMPARE(bench.prompts.boxRequests().constLast().Details, reason(bench)); // in the box, too
    QVERIFY2(reason(bench).contains(u"554 closed on Sundays"_s), qPrintable(reason(bench)));
    server.Greeting = "220 open\r\n";
    QString inside = u"not looked"_s;
    lookInside(server, [&] { inside = reason(bench); });
    verifyTest(bench, u"CONN_SMTP_SUCC"_s, 64);
    QCOMPARE(inside + reason(bench) + bench.prompts.boxRequests().constLast().Details, QString());
}

void TestConnectionButton::noPasswordIsShown()
{
    ScriptedServer server;
    server.Offers = {"AUTH PLAIN"};
    server.answer("AUTH", "535 wrong password\r\n");
    OptionsBench bench;
    putAccount(bench, accountLine(server.port(), u"N"_s, login));
    bench.open(Tab::AccountTab);
    verifyTest(bench, u"CONN_SMTP_UNSU"_s, 48);
    QVERIFY2(reason(bench).contains(u"535"_s), qPrintable(reason(bench)));
    const QList<QLabel *> labels = bench.form()->findChildren<QLabel *>();
    for (const QLabel *label : labels) {
        QVERIFY(!label->text().contains(password));
    }
    QVERIFY(!bench.prompts.log().join(u' ').contains(password));
}

void TestConnectionButton::anAccountsLineOfAnotherLengthFails()
{
    ScriptedServer server;
    OptionsBench bench;
    putAccount(bench, accountLine(server.port(), u"N"_s, noLogin) + u"\tmore"_s);
    bench.open(Tab::AccountTab);
    verifyTest(bench, u"CONN_SMTP_UNSU"_s, 48);
    QCOMPARE(server.Connections, 0);
}

void TestConnectionButton::anAccountIsNeeded()
{
    OptionsBench empty;
    empty.open(Tab::AccountTab);
    empty.cbx(0)->setChecked(true); // the proxy is asked for only when there is an account
    verifyTest(empty, u"NEED_SMTP_T"_s, 64);
    QCOMPARE(empty.sst()->currentIndex(), 1);
    OptionsBench bench;
    putAccount(bench, oneAccount);
    bench.open(Tab::AccountTab);
    bench.lsv(3)->selectionModel()->clearSelection();
    verifyTest(bench, u"NEED_SMTP_T"_s, 64);
}

void TestConnectionButton::aProxyIsNeededForItsTest()
{
    OptionsBench empty;
    empty.open(Tab::ProxyTab);
    verifyTest(empty, u"NEED_PROXY_T"_s, 64);
    OptionsBench bench;
    putProxy(bench, oneProxy);
    bench.open(Tab::ProxyTab);
    bench.lsv(2)->selectionModel()->clearSelection();
    verifyTest(bench, u"NEED_PROXY_T"_s, 64);
    QVERIFY(bench.form()->isEnabled());
}

void TestConnectionButton::aTickedProxyThatIsNotThereIsNeeded()
{
    ScriptedServer server;
    OptionsBench bench;
    putAccount(bench, accountLine(server.port(), u"N"_s, noLogin));
    bench.open(Tab::AccountTab);
    bench.cbx(0)->setChecked(true);
    verifyTest(bench, u"NEED_PROXY_TEST"_s, 64, [&bench] { QCOMPARE(bench.sst()->currentIndex(), 1); });
    QCOMPARE(bench.sst()->currentIndex(), 0);
    QCOMPARE(server.Connections, 0);
    QVERIFY(bench.form()->isEnabled());
}

void TestConnectionButton::theDefaultProxyIsUsedWhenTicked()
{
    ScriptedServer server;
    ChildServer proxy;
    QVERIFY2(startStub(proxy, server), qPrintable(proxy.fault()));
    OptionsBench bench;
    putAccount(bench, accountLine(u"mail.invalid"_s, u"2525"_s, u"N"_s, noLogin));
    putProxy(bench, oneProxy);
    setDefaultProxy(bench, proxyLine(proxy.port()));
    bench.open(Tab::AccountTab);
    bench.cbx(0)->setChecked(true); // as it stands, saved or not
    verifyTest(bench, u"CONN_SMTP_SUCC"_s, 64);
    QCOMPARE(proxy.waitForLine("ASKED "), "name mail.invalid 2525");
    QCOMPARE(server.Connections, 1);
}

void TestConnectionButton::theDefaultProxyIsNotUsedWithoutTheTick()
{
    verifyDirect(false, true);
}

void TestConnectionButton::oddRuleATickWithoutADefaultProxyConnectsDirectly()
{
    verifyDirect(true, false);
}

void TestConnectionButton::aProxyThatReachesTheSiteIsTold()
{
    ScriptedServer web;
    web.Greeting = "";
    ChildServer proxy;
    QVERIFY2(proxy.startMicrosocks(), qPrintable(proxy.fault()));
    OptionsBench bench;
    putSite(bench, web);
    putProxy(bench, proxyLine(proxy.port()));
    bench.open(Tab::ProxyTab);
    bench.focus(bench.lsv(2));
    QString inside;
    bench.prompts.expectBox(u"CONN_PROXY_SUCC"_s, 64, quillon::BoxAnswer::Ok, std::nullopt, [&] {
        inside = bench.status()->text();
        QVERIFY(!bench.form()->isEnabled());
        QCOMPARE(bench.form()->cursor().shape(), Qt::WaitCursor);
    });
    bench.clickTest();
    QCOMPARE(bench.prompts.leftOver(), QStringList());
    QCOMPARE(inside, LookupText(u"CONN_PROXY"_s));
    QVERIFY(!inside.isEmpty());
    QCOMPARE(web.Connections, 1);
    QCOMPARE(bench.status()->text(), QString());
    QVERIFY(bench.form()->isEnabled() && bench.lsv(2)->hasFocus());
    QCOMPARE(bench.form()->cursor().shape(), Qt::ArrowCursor);
}

void TestConnectionButton::aProxyThatFailsIsAWarning()
{
    ScriptedServer web;
    OptionsBench bench;
    putSite(bench, web);
    putProxy(bench, proxyLine(portOfNobody()));
    bench.open(Tab::ProxyTab);
    verifyTest(bench, u"CONN_PROXY_UNSU"_s, 48);
    QVERIFY2(reason(bench).contains(u"proxy"_s), qPrintable(reason(bench)));
    QCOMPARE(web.Connections, 0);
}

void TestConnectionButton::theSelectedRowIsTested()
{
    ScriptedServer first;
    ScriptedServer second;
    OptionsBench bench;
    putAccount(bench,
               accountLine(first.port(), u"N"_s, noLogin) + u"\r\n"_s + accountLine(second.port(), u"N"_s, noLogin));
    bench.open(Tab::AccountTab);
    bench.click(3, 1);
    verifyTest(bench, u"CONN_SMTP_SUCC"_s, 64);
    QCOMPARE(first.Connections, 0);
    QCOMPARE(second.Connections, 1);
}

void TestConnectionButton::nothingCanBePressedMeanwhile()
{
    ScriptedServer server;
    OptionsBench bench;
    putAccount(bench, accountLine(server.port(), u"N"_s, noLogin));
    bench.open(Tab::AccountTab);
    lookInside(server, [&] {
        for (const int index : {15, 0, 1, 2}) {
            QTest::mouseClick(bench.sbt(index), Qt::LeftButton);
            bench.sbt(index)->click();
        }
        QTest::keyClick(bench.form(), Qt::Key_E, Qt::AltModifier);
        QTest::keyClick(bench.form(), Qt::Key_Delete);
        QTest::keyClick(bench.form(), Qt::Key_S, Qt::AltModifier);
        QVERIFY(bench.isLoaded() && bench.form()->isVisible());
    });
    verifyTest(bench, u"CONN_SMTP_SUCC"_s, 64);
    QCOMPARE(server.Connections, 1);
    QCOMPARE(bench.rows(3).size(), 1);
}

void TestConnectionButton::theWindowCannotBeClosedMeanwhile()
{
    ScriptedServer server;
    OptionsBench bench;
    putAccount(bench, accountLine(server.port(), u"N"_s, noLogin));
    bench.open(Tab::AccountTab);
    const auto closeAsTheUser = [&bench] {
        QCloseEvent event;
        QSpontaneKeyEvent::setSpontaneous(&event);
        qApp->notify(bench.form(), &event);
        return event.isAccepted();
    };
    bool closed = true;
    lookInside(server, [&] { closed = closeAsTheUser(); });
    verifyTest(bench, u"CONN_SMTP_SUCC"_s, 64);
    QVERIFY(!closed);
    QVERIFY(bench.isLoaded() && bench.form()->isVisible());
    QCOMPARE(bench.refills, 1);
    QVERIFY(closeAsTheUser());
    QVERIFY(!bench.isLoaded());
}

void TestConnectionButton::theExitUnloadsTheFormMeanwhile()
{
    ScriptedServer server;
    OptionsBench bench;
    putAccount(bench, accountLine(server.port(), u"N"_s, noLogin));
    bench.open(Tab::AccountTab);
    lookInside(server, [&bench] { bench.forms.unload(u"frmPubOptions"_s); });
    bench.clickTest(); // no box comes any more
    QVERIFY(!bench.isLoaded());
    QVERIFY(!QGuiApplication::overrideCursor());
    QCOMPARE(bench.refills, 2);
    QCoreApplication::processEvents();
    bench.open(Tab::AccountTab); // a new one is as good as the first
    QVERIFY(bench.form()->isEnabled());
    lookInside(server, [] {});
    verifyTest(bench, u"CONN_SMTP_SUCC"_s, 64);
}

QTEST_MAIN(TestConnectionButton)
#include "test_connectionbutton.moc"
