#include "sendbench.h"
#include "support/waitfor.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace corvane;
using Field = Message::Field;

class TestSendChecks : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_bench = std::make_unique<SendBench>(); }
    void cleanup() { m_bench.reset(); }

    void proxyWithoutAServerOpensItsTab();
    void proxyThatNeedsAUserOpensItsTab();
    void noAccountOpensTheAccountsTab();
    void missingOrBadSenderGetsTheFocus();
    void missingOrBadSenderGetsTheFocus_data();
    void badSenderIsShownInLowerCase();
    void noReceiverAtAllGetsTheFocusInTo();
    void badRecipientIsShownAsTyped();
    void badRecipientIsShownAsTyped_data();
    void goodRecipientsPass();
    void goodRecipientsPass_data();
    void checksGoInTheirOrder();
    void onlyBccPasses();
    void runThatEndsAtTheChecksLeavesNoTrace();

private:
    /// The checks alone, with the prompts that they are expected to show.
    [[nodiscard]] bool passes()
    {
        return waitFor(checkMessage(m_bench->tree.globals, m_bench->window, m_bench->window)).has_value();
    }

    std::unique_ptr<SendBench> m_bench;
};

void TestSendChecks::proxyWithoutAServerOpensItsTab()
{
    m_bench->tree.useProxy(u"Socks5\t\t1080\tN\t\t\t/PSEND"_s);
    ExpectedPrompts asked;
    asked.expectBox(u"PROXY_ADDRESS"_s, quillon::InformationBox).expectForm(u"frmPubOptions"_s, 0);
    QVERIFY(!passes());
}

void TestSendChecks::proxyThatNeedsAUserOpensItsTab()
{
    m_bench->tree.useProxy(u"Socks5\tproxy.x.org\t1080\tY\t\t\t/PSEND"_s);
    ExpectedPrompts asked;
    asked.expectBox(u"PROXY_USER"_s, quillon::InformationBox).expectForm(u"frmPubOptions"_s, 0);
    QVERIFY(!passes());
}

void TestSendChecks::noAccountOpensTheAccountsTab()
{
    m_bench->window.setText(Field::Account, QString());
    ExpectedPrompts asked;
    asked.expectBox(u"NEED_SMTP_S"_s, quillon::PlainBox).expectForm(u"frmPubOptions"_s, 1);
    QVERIFY(!passes());
}

void TestSendChecks::missingOrBadSenderGetsTheFocus_data()
{
    QTest::addColumn<Field>("field");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("key");
    QTest::addColumn<int>("style");
    const int information = quillon::InformationBox;
    const int warning = quillon::WarningBox;
    QTest::newRow("no sender") << Field::Sender << u"  "_s << u"SENDER"_s << information;
    QTest::newRow("bad sender") << Field::Sender << u"Ada<ada@x.org>"_s << u"INVALID_SENDER"_s << warning;
    QTest::newRow("no reply receiver") << Field::ReplyReceiver << QString() << u"REPLY"_s << information;
    QTest::newRow("bad reply receiver") << Field::ReplyReceiver << u"ada"_s << u"INVALID_REPLY"_s << warning;
}

void TestSendChecks::missingOrBadSenderGetsTheFocus()
{
    QFETCH(const Field, field);
    QFETCH(const QString, text);
    QFETCH(const QString, key);
    QFETCH(const int, style);
    m_bench->window.setText(field, text);
    ExpectedPrompts asked;
    asked.expectBox(key, style);
    QVERIFY(!passes());
    QCOMPARE(m_bench->window.focused, QList<Field>{field});
}

void TestSendChecks::badSenderIsShownInLowerCase()
{
    m_bench->window.setText(Field::Sender, u" Ada <ADA> "_s);
    ExpectedPrompts asked;
    asked.expectBox(u"'ada <ada>' text of INVALID_SENDER"_s, quillon::WarningBox, quillon::BoxAnswer::Ok,
                    u"ada <ada>"_s);
    QVERIFY(!passes());
}

void TestSendChecks::noReceiverAtAllGetsTheFocusInTo()
{
    m_bench->window.setText(Field::To, u" \r\n "_s);
    ExpectedPrompts asked;
    asked.expectBox(u"NEED_RECEIVERS"_s, quillon::InformationBox);
    QVERIFY(!passes());
    QCOMPARE(m_bench->window.focused, QList<Field>{Field::To});
}

void TestSendChecks::badRecipientIsShownAsTyped_data()
{
    QTest::addColumn<Field>("field");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("bad");
    QTest::addColumn<QString>("key");
    QTest::newRow("To") << Field::To << u"Bob <Bob>"_s << u"Bob <Bob>"_s << u"INVALID_TO"_s;
    QTest::newRow("CC") << Field::CC << u"a@x.org, Nobody, c"_s << u"Nobody"_s << u"INVALID_CC"_s;
    QTest::newRow("BCC") << Field::BCC << u"x"_s << u"x"_s << u"INVALID_BCC"_s;
    QTest::newRow("two trailing commas") << Field::To << u"a@x.org,,"_s << QString() << u"INVALID_TO"_s;
    QTest::newRow("comma in between") << Field::To << u"a@x.org,,b@x.org"_s << QString() << u"INVALID_TO"_s;
    QTest::newRow("no blank before the bracket")
        << Field::To << u"Bob<b@x.org>"_s << u"Bob<b@x.org>"_s << u"INVALID_TO"_s;
    QTest::newRow("bracket first") << Field::To << u"<b@x.org>"_s << u"<b@x.org>"_s << u"INVALID_TO"_s;
    QTest::newRow("name with a comma") << Field::To << u"\"Lovelace, Ada\" <a@x.org>"_s << u"\"Lovelace"_s
                                       << u"INVALID_TO"_s;
}

void TestSendChecks::badRecipientIsShownAsTyped()
{
    QFETCH(const Field, field);
    QFETCH(const QString, text);
    QFETCH(const QString, bad);
    QFETCH(const QString, key);
    m_bench->window.setText(field, text);
    ExpectedPrompts asked;
    asked.expectBox(u"'"_s + bad + u"' text of "_s + key, quillon::WarningBox, quillon::BoxAnswer::Ok, bad);
    QVERIFY(!passes());
    QCOMPARE(m_bench->window.focused, QList<Field>{field});
}

void TestSendChecks::goodRecipientsPass_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("one and a comma") << u"bob@y.org,"_s;
    QTest::newRow("several on lines") << u"Bob <bob@y.org>,\r\nÄnne <ae@y.org>"_s;
    QTest::newRow("right to left") << u"\u05D0\u05D3\u05D4 <a@y.org>"_s;
    QTest::newRow("quotes") << u"\"Bob\" <bob@y.org>"_s;
    QTest::newRow("international address") << u"用户@例子.广告"_s;
}

void TestSendChecks::goodRecipientsPass()
{
    QFETCH(const QString, text);
    m_bench->window.setText(Field::To, text);
    const ExpectedPrompts asked;
    QVERIFY(passes());
}

void TestSendChecks::checksGoInTheirOrder()
{
    m_bench->tree.useProxy(QString());
    for (const Field field : {Field::Account, Field::Sender, Field::ReplyReceiver, Field::To}) {
        m_bench->window.setText(field, QString());
    }
    m_bench->window.setText(Field::BCC, u"x"_s);
    m_bench->window.setText(Field::CC, u"x"_s);
    ExpectedPrompts asked;
    asked.expectBox(u"PROXY_ADDRESS"_s, quillon::InformationBox).expectForm(u"frmPubOptions"_s, 0);
    QVERIFY(!passes());
    m_bench->tree.globals.settings.set(Setting::ProxyUse, u"False"_s);
    asked.expectBox(u"NEED_SMTP_S"_s, quillon::PlainBox).expectForm(u"frmPubOptions"_s, 1);
    QVERIFY(!passes());
    m_bench->window.setText(Field::Account, u"ada@x.org"_s);
    asked.expectBox(u"SENDER"_s, quillon::InformationBox);
    QVERIFY(!passes());
    m_bench->window.setText(Field::Sender, u"ada@x.org"_s);
    asked.expectBox(u"REPLY"_s, quillon::InformationBox);
    QVERIFY(!passes());
    m_bench->window.setText(Field::ReplyReceiver, u"ada@x.org"_s);
    asked.expectBox(u"INVALID_CC"_s, quillon::WarningBox);
    QVERIFY(!passes());
    m_bench->window.setText(Field::CC, u"c@x.org"_s);
    asked.expectBox(u"INVALID_BCC"_s, quillon::WarningBox);
    QVERIFY(!passes());
    m_bench->window.setText(Field::BCC, QString());
    QVERIFY(passes());
}

void TestSendChecks::onlyBccPasses()
{
    m_bench->window.setText(Field::To, QString());
    m_bench->window.setText(Field::BCC, u"bob@y.org"_s);
    const ExpectedPrompts asked;
    QVERIFY(passes());
}

void TestSendChecks::runThatEndsAtTheChecksLeavesNoTrace()
{
    m_bench->window.setText(Field::To, QString());
    ExpectedPrompts asked;
    asked.expectBox(u"NEED_RECEIVERS"_s, quillon::InformationBox);
    m_bench->run();
    QVERIFY(!QFile::exists(m_bench->logPath()));
    QVERIFY(!m_bench->sender.state().Sending());
    QVERIFY(m_bench->window.statusTexts.isEmpty());
    QCOMPARE(contentOf(m_bench->tree.globals.paths.promptsFile), QByteArray(""));
}

QTEST_GUILESS_MAIN(TestSendChecks)
#include "test_sendchecks.moc"
