#include "sending/onebyonebench.h"

using namespace Qt::StringLiterals;
using namespace corvane;

/// Sending one by one: who gets which mail, and how the result is told.
class TestOneByOne : public QObject, private OneByOneBench {
    Q_OBJECT

private Q_SLOTS:
    void init() { begin(); }
    void cleanup() { end(); }

    void everyRecipientGetsAPersonalMailInTo();
    void logTellsAllSent();
    void someFailuresAreToldByNameAndTheBoxGivesTheTotal();
    void allFailuresAreLoggedAsNoneSentAndTheBoxGivesTheTotalAsSent();
    void duplicatesGetTwoMails();
    void eachMailHasItsOwnConnectionAndTheFirstOnlyProvesTheAccount();
    void countersFollowTheRun();
    void moreRecipientsThanCanBeCountedSendNothing();
    void logTellsTheModeOfTheRun();
    void largestCountableRollIsCounted();
    void everyThirdRecipientRefusedIsToldByName();
    void lastConnectionIsEnded();
    void progressIsVisibleBeforeTheFirstCounter();
    void cancelledRunEndsItsConnectionOfTheLastMail();
    void outcomeIsToldForOneAsForMany();
    void outcomeIsToldForOneAsForMany_data();
};

void TestOneByOne::everyRecipientGetsAPersonalMailInTo()
{
    m_bench->window.setText(Field::CC, u"Cid <cid@y.org>"_s);
    runAndExpect(4);
    QCOMPARE(m_server->Mails.size(), 4);
    const QList<QByteArray> names = {"Bob", "cy", "Cid", "Bea"};
    const QList<QByteArray> addresses = {"bob@y.org", "cy@y.org", "cid@y.org", "bea@y.org"};
    for (qsizetype i = 0; i < 4; ++i) {
        const QByteArray mail = "\r\n" + m_server->Mails.at(i);
        QVERIFY(mail.contains("Dear " + names.at(i) + ","));
        const qsizetype to = mail.indexOf("\r\nTo: ");
        QVERIFY(mail.sliced(to, mail.indexOf("\r\n", to + 2) - to).contains(addresses.at(i)));
        QVERIFY(!mail.contains("\r\nCc: ") && !mail.contains("\r\nBcc: "));
        for (const QByteArray &other : addresses) {
            QVERIFY(other == addresses.at(i) || !mail.contains(other));
        }
    }
}

void TestOneByOne::logTellsAllSent()
{
    runAndExpect(3);
    QCOMPARE(result(), (QStringList{u"text of SENT_SUCCA 3 text of SENT_SUCCB:"_s,
                                    u"Bob B <bob@y.org>, cy@y.org, Bea <bea@y.org>"_s, u"End: (moment)"_s}));
}

void TestOneByOne::someFailuresAreToldByNameAndTheBoxGivesTheTotal()
{
    refuse("bob@y.org");
    refuse("bea@y.org");
    ExpectedPrompts asked([](const QString &) {});
    m_bench->run();
    QCOMPARE(result(),
             (QStringList{u"text of SENT_SUCCA 1 text of SENT_SUCCB:"_s, u"cy@y.org"_s, u"text of FAIL_ADDR"_s,
                          u"Bob B <bob@y.org>, Bea <bea@y.org>"_s, u"End: (moment)"_s}));
    QCOMPARE(asked.log().size(), 3);
    QVERIFY(asked.log().at(0).contains(u"bob@y.org"_s) && asked.log().at(0).contains(u"style 16"_s));
    QCOMPARE(asked.log().at(2), u"box SENT_SUCCA style 64: "_s + boxText(3));
    QCOMPARE(m_bench->log().filter(QRegularExpression(u"^Error: "_s)).size(), 2);
}

void TestOneByOne::allFailuresAreLoggedAsNoneSentAndTheBoxGivesTheTotalAsSent()
{
    m_server->answer("RCPT", "550 unknown\r\n");
    ExpectedPrompts asked([](const QString &) {});
    m_bench->run();
    QCOMPARE(result(), (QStringList{u"text of SENT_SUCCA 3 text of SENT_UNSUCCB"_s,
                                    u"Bob B <bob@y.org>, cy@y.org, Bea <bea@y.org>"_s, u"End: (moment)"_s}));
    QCOMPARE(asked.log().last(), u"box SENT_SUCCA style 64: "_s + boxText(3));
}

void TestOneByOne::duplicatesGetTwoMails()
{
    m_bench->window.setText(Field::BCC, u"cy@y.org"_s);
    runAndExpect(3);
    QCOMPARE(m_server->count("RCPT TO:<cy@y.org>"), 2);
}

void TestOneByOne::eachMailHasItsOwnConnectionAndTheFirstOnlyProvesTheAccount()
{
    runAndExpect(3);
    QCOMPARE(m_server->Connections, 4);
    QTRY_COMPARE(m_server->Ended, 4);
}

void TestOneByOne::countersFollowTheRun()
{
    runAndExpect(3);
    QCOMPARE(m_bench->progress.counters.filter(u"Sending "_s),
             (QStringList{u"Sending 1/3 emails..."_s, u"Sending 2/3 emails..."_s, u"Sending 3/3 emails..."_s,
                          u"Sending emails..."_s, u"Sending emails..."_s}));
    QCOMPARE(m_bench->progress.steps,
             (QList<std::pair<int, int>>{
                 {0, 0}, {0, 3}, {1, 3}, {2, 3}, {3, 3}, FakeProgress::rest, FakeProgress::rest})); // taken, not begun
    QVERIFY(!m_bench->progress.visible);
}

void TestOneByOne::moreRecipientsThanCanBeCountedSendNothing()
{
    QStringList many;
    for (int i = 0; i < 32768; ++i) {
        many.append(u"a"_s + QString::number(i) + u"@y.org"_s);
    }
    m_bench->window.setText(Field::To, many.join(u','));
    m_bench->window.setText(Field::BCC, QString());
    const int faults = quillon::faultCount();
    runAndExpect(0);
    QCOMPARE(m_server->Mails.size(), 0);
    QCOMPARE(quillon::faultCount(), faults + 1);
    QCOMPARE(result(), (QStringList{u"text of SENT_SUCCA 0 text of SENT_UNSUCCB"_s, QString(), u"End: (moment)"_s}));
}

void TestOneByOne::logTellsTheModeOfTheRun()
{
    runAndExpect(3);
    QVERIFY(m_bench->log().contains(u"One By One: Yes"_s));
    QCOMPARE(m_bench->log().count(QString(75, u'-')), 1);
    QVERIFY(m_bench->log().contains(u"Dear {First Name of The Recipient},"_s));
}

void TestOneByOne::largestCountableRollIsCounted()
{
    QStringList many;
    for (int i = 0; i < 32767; ++i) {
        many.append(u"a"_s + QString::number(i) + u"@y.org"_s);
    }
    m_bench->window.setText(Field::To, many.join(u','));
    m_bench->window.setText(Field::BCC, QString());
    m_bench->progress.afterCounter = [this](const QString &) { m_bench->sender.requestStop(); };
    const ExpectedPrompts asked;
    m_bench->run();
    QVERIFY(m_bench->progress.counters.contains(u"Sending 1/32767 emails..."_s));
}

void TestOneByOne::everyThirdRecipientRefusedIsToldByName()
{
    QStringList people;
    for (int i = 1; i <= 9; ++i) {
        people.append(u"a%1@y.org"_s.arg(i));
    }
    m_bench->window.setText(Field::To, people.join(u", "_s));
    m_bench->window.setText(Field::BCC, QString());
    for (const char *bad : {"a3@y.org", "a6@y.org", "a9@y.org"}) {
        refuse(bad);
    }
    ExpectedPrompts asked([](const QString &) {});
    m_bench->run();
    QCOMPARE(result(), (QStringList{u"text of SENT_SUCCA 6 text of SENT_SUCCB:"_s,
                                    u"a1@y.org, a2@y.org, a4@y.org, a5@y.org, a7@y.org, a8@y.org"_s,
                                    u"text of FAIL_ADDR"_s, u"a3@y.org, a6@y.org, a9@y.org"_s, u"End: (moment)"_s}));
}

void TestOneByOne::lastConnectionIsEnded()
{
    runAndExpect(3);
    QTRY_COMPARE(m_server->count("QUIT"), 4);
}

void TestOneByOne::progressIsVisibleBeforeTheFirstCounter()
{
    QList<bool> visible;
    m_bench->progress.afterCounter = [&](const QString &) {
        visible.append(m_bench->progress.visible);
        m_bench->progress.visible = false; // closed by the user; only what the transport tells brings it back
    };
    m_bench->progress.afterActivity = [this](const QString &text) {
        QVERIFY(m_bench->progress.visible || text.isEmpty());
        m_bench->progress.visible = false;
    };
    runAndExpect(3);
    QCOMPARE(visible.constFirst(), true);
}

void TestOneByOne::cancelledRunEndsItsConnectionOfTheLastMail()
{
    m_server->Responder = [this](const QByteArray &line) -> std::optional<QByteArray> {
        if (line.startsWith("RCPT TO:<cy@")) {
            m_bench->sender.requestStop();
        }
        return std::nullopt;
    };
    const ExpectedPrompts asked;
    m_bench->run();
    QCOMPARE(m_server->Connections, 3);
    QTRY_COMPARE(m_server->Ended, 3);
}

void TestOneByOne::outcomeIsToldForOneAsForMany_data()
{
    QTest::addColumn<bool>("refused");
    QTest::addColumn<QStringList>("entry");
    QTest::newRow("sent") << false
                          << QStringList{u"text of SENT_SUCCA 1 text of SENT_SUCCB:"_s, u"Bob B <bob@y.org>"_s,
                                         u"End: (moment)"_s};
    QTest::newRow("refused") << true
                             << QStringList{u"text of SENT_SUCCA 1 text of SENT_UNSUCCB"_s, u"Bob B <bob@y.org>"_s,
                                            u"End: (moment)"_s};
}

void TestOneByOne::outcomeIsToldForOneAsForMany()
{
    QFETCH(const bool, refused);
    m_bench->window.setText(Field::To, u"Bob B <bob@y.org>"_s);
    m_bench->window.setText(Field::BCC, QString());
    if (refused) {
        refuse("bob@y.org");
    }
    ExpectedPrompts asked([](const QString &) {});
    m_bench->run();
    QTEST(result(), "entry");
    QCOMPARE(asked.log().constLast(), u"box SENT_SUCCA style 64: "_s + boxText(1));
}

QTEST_GUILESS_MAIN(TestOneByOne)
#include "test_onebyone.moc"
