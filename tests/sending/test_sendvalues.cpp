#include "sending/sendbench.h"
#include "support/waitfor.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace corvane;
using Field = Message::Field;
Q_DECLARE_METATYPE(Field)

/// What the checks let pass, which fault they find first, and the values that they hand on.
class TestSendValues : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_bench = std::make_unique<SendBench>(); }
    void cleanup() { m_bench.reset(); }

    void everyFieldIsTakenAsItStands();
    void fieldsAreReadOnce();
    void whatIsGoodPasses();
    void whatIsGoodPasses_data();
    void blanksAloneAreNoReceiver();
    void blanksAloneAreNoReceiver_data();
    void badSenderIsShownTrimmedAndInLowerCase();
    void badSenderIsShownTrimmedAndInLowerCase_data();
    void firstFaultOfTwoIsTold();
    void firstFaultOfTwoIsTold_data();
    void proxysUserIsNeededOnlyWithALogin();
    void proxysUserIsNeededOnlyWithALogin_data();
    void boxComesBeforeTheFocus();
    void optionsOpenWithoutAFocus();

private:
    [[nodiscard]] std::optional<RunValues> checked()
    {
        return waitFor(checkMessage(m_bench->tree.globals, m_bench->window, m_bench->window));
    }

    std::unique_ptr<SendBench> m_bench;
};

void TestSendValues::everyFieldIsTakenAsItStands()
{
    FakeWindow &window = m_bench->window;
    window.setText(Field::Account, u" ada@x.org "_s);
    window.setText(Field::Sender, u" Ada <A@x.org> "_s);
    window.setText(Field::ReplyReceiver, u" Reply <R@x.org> "_s);
    window.setText(Field::To, u" to@y.org, "_s);
    window.setText(Field::CC, u" cc@y.org "_s);
    window.setText(Field::BCC, u" bcc@y.org "_s);
    window.setText(Field::Encoding, u" Some (X) "_s);
    window.setText(Field::Subject, u"\t  the  subject \r\n"_s);
    window.setText(Field::PlainContent, u" plain \r\n"_s);
    window.setText(Field::RichContent, u" <p>rich</p> "_s);
    window.setActual(Message::Choice::Date, false);
    window.setCustomDateTime(QDate(2027, 3, 5), QTime(6, 7, 8));
    window.setPriority(Message::Priority::High);
    window.setReceipt(true);
    window.setOneByOne(true);
    window.setAttachmentPaths({u"/a"_s, u"/b"_s});
    const auto values = checked();
    QVERIFY(values);
    QCOMPARE(values->account, u" ada@x.org "_s);
    QCOMPARE(values->sender, u" Ada <A@x.org> "_s);
    QCOMPARE(values->replyReceiver, u" Reply <R@x.org> "_s);
    QCOMPARE(values->to, u" to@y.org, "_s);
    QCOMPARE(values->cc, u" cc@y.org "_s);
    QCOMPARE(values->bcc, u" bcc@y.org "_s);
    QVERIFY(!values->actualDate);
    QCOMPARE(values->date, QDate(2027, 3, 5));
    QCOMPARE(values->time, QTime(6, 7, 8));
    QCOMPARE(values->format, Message::Format::Plain);
    QCOMPARE(values->encoding, u" Some (X) "_s);
    QCOMPARE(values->priority, Message::Priority::High);
    QVERIFY(values->receipt);
    QVERIFY(values->oneByOne);
    QCOMPARE(values->attachments, (QStringList{u"/a"_s, u"/b"_s}));
    QCOMPARE(values->subject, u"the  subject"_s);
    QCOMPARE(values->content, u" plain \r\n"_s);

    window.setFormat(Message::Format::Rich);
    window.setActual(Message::Choice::Date, true);
    window.setReceipt(false);
    window.setOneByOne(false);
    const auto others = checked();
    QVERIFY(others && others->actualDate && !others->receipt && !others->oneByOne);
    QCOMPARE(others->format, Message::Format::Rich);
    QCOMPARE(others->content, u" <p>rich</p> "_s);
}

void TestSendValues::fieldsAreReadOnce()
{
    QMap<Field, int> readings;
    m_bench->window.beforeRead = [&](Field field) { ++readings[field]; };
    QVERIFY(checked());
    for (const Field field : {Field::Account, Field::Sender, Field::ReplyReceiver, Field::To, Field::CC, Field::BCC,
                              Field::Subject, Field::PlainContent}) {
        QCOMPARE(readings.value(field), 1);
    }
}

void TestSendValues::whatIsGoodPasses_data()
{
    QTest::addColumn<QList<Field>>("fields");
    QTest::addColumn<QString>("text");
    const QList<Field> senders{Field::Sender, Field::ReplyReceiver};
    const QList<Field> recipients{Field::To, Field::CC, Field::BCC};
    QTest::newRow("account of a blank") << QList<Field>{Field::Account} << u" "_s;
    QTest::newRow("blanks around the bare address of a sender") << senders << u"\t ada@x.org \r\n"_s;
    QTest::newRow("blanks around the name and address of a sender") << senders << u" Ada <ada@x.org>\r\n"_s;
    QTest::newRow("sender in capitals") << senders << u"ADA KING <ADA@X.ORG>"_s;
    QTest::newRow("blanks around recipients") << recipients << u"\t bob@y.org ,\r\n Cy <cy@y.org> \r\n"_s;
    QTest::newRow("comma and blanks at the end") << recipients << u"bob@y.org, \t"_s;
    QTest::newRow("comma alone") << recipients << u","_s;
}

void TestSendValues::whatIsGoodPasses()
{
    QFETCH(const QList<Field>, fields);
    QFETCH(const QString, text);
    const ExpectedPrompts asked;
    for (const Field field : fields) {
        const QString before = m_bench->window.text(field);
        m_bench->window.setText(field, text);
        QVERIFY(checked());
        m_bench->window.setText(field, before);
    }
}

void TestSendValues::blanksAloneAreNoReceiver_data()
{
    QTest::addColumn<QString>("to");
    QTest::addColumn<QString>("cc");
    QTest::addColumn<QString>("bcc");
    QTest::addColumn<bool>("good");
    const QString one = u"a@y.org"_s;
    QTest::newRow("nothing") << QString() << QString() << QString() << false;
    QTest::newRow("blanks in To") << u" \t"_s << QString() << QString() << false;
    QTest::newRow("blanks in CC") << QString() << u"\r\n "_s << QString() << false;
    QTest::newRow("blanks in BCC") << QString() << QString() << u"  "_s << false;
    QTest::newRow("To only") << one << u" "_s << u" "_s << true;
    QTest::newRow("CC only") << u" "_s << one << u" "_s << true;
    QTest::newRow("BCC only") << u" "_s << u" "_s << one << true;
}

void TestSendValues::blanksAloneAreNoReceiver()
{
    QFETCH(const QString, to);
    QFETCH(const QString, cc);
    QFETCH(const QString, bcc);
    QFETCH(const bool, good);
    m_bench->window.setText(Field::To, to);
    m_bench->window.setText(Field::CC, cc);
    m_bench->window.setText(Field::BCC, bcc);
    ExpectedPrompts asked;
    if (!good) {
        asked.expectBox(u"NEED_RECEIVERS"_s, quillon::InformationBox);
    }
    QCOMPARE(checked().has_value(), good);
    QCOMPARE(m_bench->window.focused, good ? QList<Field>() : QList<Field>{Field::To});
}

void TestSendValues::badSenderIsShownTrimmedAndInLowerCase_data()
{
    QTest::addColumn<Field>("field");
    QTest::addColumn<QString>("key");
    QTest::newRow("sender") << Field::Sender << u"INVALID_SENDER"_s;
    QTest::newRow("reply receiver") << Field::ReplyReceiver << u"INVALID_REPLY"_s;
}

void TestSendValues::badSenderIsShownTrimmedAndInLowerCase()
{
    QFETCH(const Field, field);
    QFETCH(const QString, key);
    m_bench->window.setText(field, u"\t ÄDA <ADA> \r\n"_s);
    ExpectedPrompts asked;
    asked.expectBox(u"'äda <ada>' text of "_s + key, quillon::WarningBox, quillon::BoxAnswer::Ok, u"äda <ada>"_s);
    QVERIFY(!checked());
    QCOMPARE(m_bench->window.focused, QList<Field>{field});
}

void TestSendValues::firstFaultOfTwoIsTold_data()
{
    QTest::addColumn<QList<Field>>("empty");
    QTest::addColumn<QList<Field>>("bad");
    QTest::addColumn<QString>("key");
    QTest::addColumn<int>("style");
    const int information = quillon::InformationBox;
    const int warning = quillon::WarningBox;
    QTest::newRow("sender before reply receiver")
        << QList<Field>{} << QList<Field>{Field::ReplyReceiver, Field::Sender} << u"INVALID_SENDER"_s << warning;
    QTest::newRow("reply receiver before receivers")
        << QList<Field>{Field::To} << QList<Field>{Field::ReplyReceiver} << u"INVALID_REPLY"_s << warning;
    QTest::newRow("no reply receiver before a bad recipient")
        << QList<Field>{Field::ReplyReceiver} << QList<Field>{Field::To} << u"REPLY"_s << information;
    QTest::newRow("To before CC") << QList<Field>{} << QList<Field>{Field::BCC, Field::CC, Field::To} << u"INVALID_TO"_s
                                  << warning;
    QTest::newRow("CC before BCC") << QList<Field>{} << QList<Field>{Field::BCC, Field::CC} << u"INVALID_CC"_s
                                   << warning;
}

void TestSendValues::firstFaultOfTwoIsTold()
{
    QFETCH(const QList<Field>, empty);
    QFETCH(const QList<Field>, bad);
    QFETCH(const QString, key);
    QFETCH(const int, style);
    for (const Field field : empty) {
        m_bench->window.setText(field, QString());
    }
    for (const Field field : bad) {
        m_bench->window.setText(field, u"bad"_s);
    }
    ExpectedPrompts asked;
    asked.expectBox(key, style);
    QVERIFY(!checked());
}

void TestSendValues::proxysUserIsNeededOnlyWithALogin_data()
{
    QTest::addColumn<QString>("use");
    QTest::addColumn<QString>("record");
    QTest::addColumn<QString>("key");
    QTest::newRow("no login, no user") << u"True"_s << u"Socks5\tp.x.org\t1080\tN\t\t\t/PSEND"_s << QString();
    QTest::newRow("login and user") << u"True"_s << u"Socks5\tp.x.org\t1080\tY\tada\t\t/PSEND"_s << QString();
    QTest::newRow("login in lower case") << u"True"_s << u"Socks5\tp.x.org\t1080\ty\t\t\t/PSEND"_s << QString();
    QTest::newRow("not in use") << u"False"_s << QString() << QString();
    QTest::newRow("neither server nor user") << u"True"_s << u"Socks5\t\t1080\tY\t\t\t/PSEND"_s << u"PROXY_ADDRESS"_s;
    QTest::newRow("no user") << u"True"_s << u"Socks5\tp.x.org\t1080\tY\t\tpw\t/PSEND"_s << u"PROXY_USER"_s;
}

void TestSendValues::proxysUserIsNeededOnlyWithALogin()
{
    QFETCH(const QString, use);
    QFETCH(const QString, record);
    QFETCH(const QString, key);
    m_bench->tree.useProxy(record);
    m_bench->tree.globals.settings.set(Setting::ProxyUse, use);
    ExpectedPrompts asked;
    if (!key.isEmpty()) {
        asked.expectBox(key, quillon::InformationBox).expectForm(u"frmPubOptions"_s, 0);
    }
    QCOMPARE(checked().has_value(), key.isEmpty());
}

void TestSendValues::boxComesBeforeTheFocus()
{
    m_bench->window.setText(Field::CC, u"bad"_s);
    ExpectedPrompts asked;
    asked.expectBox(u"INVALID_CC"_s, quillon::WarningBox, quillon::BoxAnswer::Ok, std::nullopt,
                    [this] { QVERIFY(m_bench->window.focused.isEmpty()); });
    QVERIFY(!checked());
    QCOMPARE(m_bench->window.focused, QList<Field>{Field::CC});
}

void TestSendValues::optionsOpenWithoutAFocus()
{
    m_bench->window.setText(Field::Account, QString());
    ExpectedPrompts asked;
    asked.expectBox(u"NEED_SMTP_S"_s, quillon::PlainBox).expectForm(u"frmPubOptions"_s, 1);
    QVERIFY(!checked());
    QVERIFY(m_bench->window.focused.isEmpty());
}

QTEST_GUILESS_MAIN(TestSendValues)
#include "test_sendvalues.moc"
