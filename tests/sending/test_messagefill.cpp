#include "quillon/mail/encodedmail.h"
#include "sending/messagefill.h"
#include "sending/sendbench.h"
#include "support/testclock.h"
#include "support/waitfor.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace corvane;
using quillon::MailMessage;

/// The filling of a message by itself: all of what it puts into the message and into the log.
class TestMessageFill : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_bench = std::make_unique<SendBench>();
        m_message = MailMessage();
        m_values = RunValues();
        m_values.account = u"ada@x.org"_s;
        m_values.sender = u"ada@x.org"_s;
        m_values.replyReceiver = u"ada@x.org"_s;
    }
    void cleanup() { m_bench.reset(); }

    void everyFieldGoesIntoTheMessageAndTheLogWithoutItsBlanks();
    void fieldsOfBlanksHaveNeitherEntryNorLine();
    void everyPriorityHasItsNumberAndItsName();
    void receiptWithoutANameIsTheBareAddress();
    void receiptWithoutAnAddressGoesToTheSender_data();
    void receiptWithoutAnAddressGoesToTheSender();
    void recipientsAreRememberedBetweenTheLinesOfCcAndBcc();

private:
    static QStringList entries(const quillon::MailAddressList &list)
    {
        QStringList texts;
        for (const quillon::MailAddress &entry : list) {
            texts.append(entry.Name + u'|' + entry.Address);
        }
        return texts;
    }
    void fill(
        RunMode mode = RunMode::Manual, const std::function<void()> &remember = [] {})
    {
        const SendingLog log(m_bench->tree.globals, quillon::systemClock().now());
        const FillContext context{m_bench->tree.globals, m_bench->window, m_values, m_account, log, mode, remember};
        waitFor(fillMessage(m_message, context));
    }

    std::unique_ptr<SendBench> m_bench;
    MailMessage m_message;
    RunValues m_values;
    QString m_account = u"s\t25\tN\tN\t\t\tAda\tada@x.org\tAda's desk\treceipts@x.org\t/SAEND"_s;
};

void TestMessageFill::everyFieldGoesIntoTheMessageAndTheLogWithoutItsBlanks()
{
    const QString file = m_bench->tree.path(u"list.txt"_s);
    writeFile(file, "x");
    m_bench->window.encodings = {u"utf-8 | Unicode (UTF-8)"_s, u"koi8-r | Cyrillic (KOI8-R)"_s, u"big5 | Chinese"_s};
    m_values.account = u"\t ada@x.org \r\n"_s;
    m_values.sender = u"\t Ada KING <Ada@X.org> \r\n"_s;
    m_values.replyReceiver = u"\t Reply <reply@x.org> \r\n"_s;
    m_values.to = u"\t Bob B <bob@y.org> , cy@y.org , \r\n"_s;
    m_values.cc = u"\t cid@y.org \r\n"_s;
    m_values.bcc = u"\t Bea <bea@y.org>, \r\n"_s;
    m_values.actualDate = false;
    m_values.date = QDate(2027, 3, 7);
    m_values.time = QTime(6, 7, 8);
    m_values.format = Message::Format::Rich;
    m_values.encoding = u"Cyrillic (KOI8-R)"_s;
    m_values.priority = Message::Priority::Low;
    m_values.receipt = true;
    m_values.oneByOne = true;
    m_values.attachments = {file};
    m_values.subject = u"One"_s;
    m_values.content = u"Two\r\nthree"_s;
    fill(RunMode::Automatic);
    QCOMPARE(m_message.AccountName, u"ada@x.org"_s);
    QCOMPARE(m_message.From.Name, u"Ada KING"_s);
    QCOMPARE(m_message.From.Address, u"Ada@X.org"_s);
    QCOMPARE(m_message.ReplyTo.Name, u"Reply"_s);
    QCOMPARE(m_message.ReplyTo.Address, u"reply@x.org"_s);
    QCOMPARE(entries(m_message.To), (QStringList{u"Bob B|bob@y.org"_s, u"|cy@y.org"_s}));
    QCOMPARE(entries(m_message.CC), QStringList{u"|cid@y.org"_s});
    QCOMPARE(entries(m_message.BCC), QStringList{u"Bea|bea@y.org"_s});
    QCOMPARE(m_message.Date, u"Sun, 7 Mar 2027 06:07:08"_s);
    QCOMPARE(m_message.Format, int(MailMessage::Html));
    QCOMPARE(m_message.Charset, u"koi8-r"_s);
    QCOMPARE(m_bench->window.encodingIndex, 1);
    QCOMPARE(m_message.Priority, u"4"_s);
    QVERIFY(m_message.RequestReceipt);
    QCOMPARE(m_message.ReceiptTo.Name, u"Ada's desk"_s);
    QCOMPARE(m_message.ReceiptTo.Address, u"receipts@x.org"_s);
    QCOMPARE(m_message.Attachments.Count(), 1);
    QCOMPARE(m_message.Attachments.Item(1).Path, file);
    QCOMPARE(m_message.Subject, u"One"_s);
    QCOMPARE(m_message.Content, u"Two\r\nthree"_s);
    QCOMPARE(m_bench->log(),
             (QStringList{u"Account: ada@x.org"_s, u"Sender: Ada KING <Ada@X.org>"_s, u"ReplyTo: Reply <reply@x.org>"_s,
                          u"To: Bob B <bob@y.org> , cy@y.org ,"_s, u"CC: cid@y.org"_s, u"BCC: Bea <bea@y.org>,"_s,
                          u"Date & Time: Sun, 7 Mar 2027 06:07:08"_s, u"Message Type: Rich Text (HTML)"_s,
                          u"Encoding: koi8-r"_s, u"Priority: Low"_s, u"Request Read Receipt: Yes"_s,
                          u"Receipt Receiver: Ada's desk <receipts@x.org>"_s, u"One By One: Yes"_s,
                          u"Sending Method: Automatic"_s, u"Attachments: "_s + file, u"Subject: One"_s, u"Content: "_s,
                          u"Two"_s, u"three"_s}));
}

void TestMessageFill::fieldsOfBlanksHaveNeitherEntryNorLine()
{
    const TestClock clock(QDateTime(QDate(2026, 11, 7), QTime(14, 5, 9)));
    m_values.to = u" \t"_s;
    m_values.cc = u"\r\n "_s;
    m_values.bcc = u"  "_s;
    m_values.date = QDate(2027, 3, 7); // not asked for: the date is the actual one
    m_values.time = QTime(6, 7, 8);
    m_values.encoding = u"unknown"_s;
    m_values.attachments = {m_bench->tree.path(u"gone"_s)};
    fill();
    QCOMPARE(m_message.To.Count() + m_message.CC.Count() + m_message.BCC.Count(), 0);
    QCOMPARE(m_message.Date, QString()); // the transport stamps the moment at which it sends
    QCOMPARE(m_message.Format, int(MailMessage::PlainText));
    QCOMPARE(m_message.Charset, QString());
    QVERIFY(!m_message.RequestReceipt);
    QCOMPARE(m_message.ReceiptTo.Name + m_message.ReceiptTo.Address, QString());
    QCOMPARE(m_message.Attachments.Count(), 0);
    QCOMPARE(m_bench->log(), (QStringList{u"Account: ada@x.org"_s, u"Sender: ada@x.org"_s, u"ReplyTo: ada@x.org"_s,
                                          u"Date & Time: Sat, 7 Nov 2026 14:05:09"_s, u"Message Type: Plain Text"_s,
                                          u"Priority: Normal"_s, u"Request Read Receipt: No"_s, u"One By One: No"_s,
                                          u"Sending Method: Manual"_s, u"Content: "_s, QString()}));
}

void TestMessageFill::everyPriorityHasItsNumberAndItsName()
{
    QStringList numbers;
    for (const auto priority : {Message::Priority::High, Message::Priority::Normal, Message::Priority::Low}) {
        m_values.priority = priority;
        fill();
        numbers.append(m_message.Priority);
    }
    QCOMPARE(numbers, (QStringList{u"2"_s, u"3"_s, u"4"_s}));
    QCOMPARE(m_bench->log().filter(u"Priority: "_s),
             (QStringList{u"Priority: High"_s, u"Priority: Normal"_s, u"Priority: Low"_s}));
}

void TestMessageFill::receiptWithoutANameIsTheBareAddress()
{
    m_values.receipt = true;
    m_account = u"s\t25\tN\tN\t\t\tAda\tada@x.org\t\treceipts@x.org\t/SAEND"_s;
    fill();
    QCOMPARE(m_message.ReceiptTo.Name, QString());
    QVERIFY(m_bench->log().contains(u"Receipt Receiver: receipts@x.org"_s));
}

void TestMessageFill::receiptWithoutAnAddressGoesToTheSender_data()
{
    QTest::addColumn<QString>("account");
    QTest::newRow("neither name nor address") << u"s\t25\tN\tN\t\t\tAda\tada@x.org\t\t\t/SAEND"_s;
    QTest::newRow("a name alone") << u"s\t25\tN\tN\t\t\tAda\tada@x.org\tAda's desk\t\t/SAEND"_s;
    QTest::newRow("blanks") << u"s\t25\tN\tN\t\t\tAda\tada@x.org\tAda's desk\t  \t/SAEND"_s;
    QTest::newRow("a short line") << u"s\t25\tN\tN"_s;
}

void TestMessageFill::receiptWithoutAnAddressGoesToTheSender()
{
    QFETCH(const QString, account);
    m_account = account;
    m_values.receipt = true;
    m_values.sender = u"Sales desk <sales@x.org>"_s; // not the account's own
    m_values.to = u"bob@y.org"_s;
    fill();
    QCOMPARE(m_message.ReceiptTo.Name, u"Sales desk"_s);
    QCOMPARE(m_message.ReceiptTo.Address, u"sales@x.org"_s);
    QVERIFY(m_bench->log().contains(u"Receipt Receiver: Sales desk <sales@x.org>"_s));
    m_values.sender = u"sales@x.org"_s;
    fill();
    QCOMPARE(m_message.ReceiptTo.Name, QString());
    QCOMPARE(m_bench->log().filter(u"Receipt Receiver: "_s).constLast(), u"Receipt Receiver: sales@x.org"_s);
    quillon::MailEncoder encoder;
    const quillon::EncodedMail mail = encoder.encode(m_message, quillon::systemClock().now());
    QVERIFY2(mail.Stretches.constFirst().Bytes.contains("\r\nDisposition-Notification-To: sales@x.org\r\n"),
             mail.Stretches.constFirst().Bytes.constData());
}

void TestMessageFill::recipientsAreRememberedBetweenTheLinesOfCcAndBcc()
{
    m_values.cc = u"cid@y.org"_s;
    m_values.bcc = u"bea@y.org"_s;
    int times = 0;
    fill(RunMode::Manual, [&] {
        ++times;
        QCOMPARE(m_bench->log().constLast(), u"CC: cid@y.org"_s);
        QCOMPARE(entries(m_message.BCC), QStringList{u"|bea@y.org"_s});
    });
    QCOMPARE(times, 1);
}

QTEST_GUILESS_MAIN(TestMessageFill)
#include "test_messagefill.moc"
