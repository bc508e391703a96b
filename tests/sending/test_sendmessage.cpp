#include "sending/servedbench.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;
using namespace corvane;

/// How each field of the window goes into the mail and into the log.
class TestSendMessage : public QObject, private ServedBench {
    Q_OBJECT

private Q_SLOTS:
    void init() { begin(); }
    void cleanup() { end(); }

    void onlyBccIsNotLoggedAsToAndGivesTheMacrosTheirRecipient();
    void senderIsSentInItsCaseAsTyped();
    void customDateTakesDateAndTimeFromTheirFields();
    void actualDateIsLeftToTheTransport();
    void unknownEncodingIsNotLogged();
    void encodingListStaysOnTheMatch();
    void noSubjectLeavesItsLineOut();
    void prioritiesAreNumbered();
    void prioritiesAreNumbered_data();
    void receiptGoesToTheAccountsReceiver();
    void attachmentsAreLogged();
    void replyReceiverIsInTheMail();
    void blanksAroundTheAccountAreNoPartOfIt();
    void htmlMessageIsLoggedAsRichText();
};

void TestSendMessage::onlyBccIsNotLoggedAsToAndGivesTheMacrosTheirRecipient()
{
    m_bench->window.setText(Field::To, QString());
    m_bench->window.setText(Field::BCC, u"Bea B <bea@y.org>"_s);
    sendWell();
    QVERIFY(m_bench->log().filter(QRegularExpression(u"^To: "_s)).isEmpty());
    QVERIFY(m_bench->log().contains(u"BCC: Bea B <bea@y.org>"_s));
    QVERIFY(mail().contains("Dear Bea,"));
}

void TestSendMessage::senderIsSentInItsCaseAsTyped()
{
    m_bench->window.setText(Field::Sender, u"Ada KING <Ada@X.org>"_s);
    sendWell();
    QVERIFY(m_server->heard("MAIL FROM:<Ada@X.org>") || m_server->heard("MAIL FROM:<Ada@x.org>"));
    QVERIFY(mail().contains("Ada KING"));
    QVERIFY(m_bench->log().contains(u"Sender: Ada KING <Ada@X.org>"_s));
}

void TestSendMessage::customDateTakesDateAndTimeFromTheirFields()
{
    m_bench->window.setActual(Message::Choice::Date, false);
    m_bench->window.setCustomDateTime(QDate(2027, 3, 5), QTime(6, 7, 8));
    sendWell();
    QVERIFY(m_bench->log().contains(u"Date & Time: Fri, 5 Mar 2027 06:07:08"_s));
    QVERIFY(mail().contains("Date: Fri, 5 Mar 2027 06:07:08 ") || mail().contains("Date: Fri, 05 Mar 2027 06:07:08 "));
}

void TestSendMessage::actualDateIsLeftToTheTransport()
{
    sendWell();
    const QByteArray headers = "\r\n" + mail();
    const qsizetype date = headers.indexOf("\r\nDate: ");
    QVERIFY(date >= 0);
    const QByteArray text = headers.sliced(date + 8, headers.indexOf("\r\n", date + 2) - date - 8);
    const QDateTime stamped = QDateTime::fromString(QString::fromLatin1(text), Qt::RFC2822Date);
    QVERIFY2(stamped.isValid(), text.constData());
    QVERIFY(qAbs(stamped.secsTo(QDateTime::currentDateTime())) < 600);
}

void TestSendMessage::unknownEncodingIsNotLogged()
{
    m_bench->window.encodings = {u"utf-8 | Unicode (UTF-8)"_s, u"koi8-r | Cyrillic (KOI8-R)"_s};
    m_bench->window.setText(Field::Encoding, u"unicode (utf-8)"_s);
    sendWell();
    QVERIFY(m_bench->log().filter(u"Encoding"_s).isEmpty());
    QCOMPARE(m_bench->window.encodingIndex, 1);
}

void TestSendMessage::encodingListStaysOnTheMatch()
{
    m_bench->window.encodings = {u"utf-8 | Unicode (UTF-8)"_s, u"koi8-r | Cyrillic (KOI8-R)"_s, u"big5 | Chinese"_s};
    m_bench->window.setText(Field::Encoding, u"Cyrillic (KOI8-R)"_s);
    m_bench->window.setText(Field::PlainContent, u"привет"_s);
    sendWell();
    QCOMPARE(m_bench->window.encodingIndex, 1);
    QVERIFY(m_bench->log().contains(u"Encoding: koi8-r"_s));
    QVERIFY(mail().toLower().contains("charset=koi8-r") || mail().toLower().contains("charset=\"koi8-r\""));
}

void TestSendMessage::noSubjectLeavesItsLineOut()
{
    m_bench->window.setText(Field::Subject, u"  "_s);
    sendWell();
    const QStringList log = m_bench->log();
    QVERIFY(log.filter(QRegularExpression(u"^Subject"_s)).isEmpty());
    QVERIFY(log.contains(u"Content: "_s));
}

void TestSendMessage::prioritiesAreNumbered_data()
{
    QTest::addColumn<Message::Priority>("priority");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("header");
    QTest::newRow("high") << Message::Priority::High << u"High"_s << QByteArray("Importance: high");
    QTest::newRow("normal") << Message::Priority::Normal << u"Normal"_s << QByteArray();
    QTest::newRow("low") << Message::Priority::Low << u"Low"_s << QByteArray("Importance: low");
}

void TestSendMessage::prioritiesAreNumbered()
{
    QFETCH(const Message::Priority, priority);
    QFETCH(const QString, name);
    QFETCH(const QByteArray, header);
    m_bench->window.setPriority(priority);
    sendWell();
    QVERIFY(m_bench->log().contains(u"Priority: "_s + name));
    QVERIFY2(header.isEmpty() || mail().toLower().contains(header.toLower()), mail().constData());
}

void TestSendMessage::receiptGoesToTheAccountsReceiver()
{
    m_bench->window.setReceipt(true);
    sendWell();
    QVERIFY(mail().contains("Disposition-Notification-To: "));
    QVERIFY(mail().contains("<receipts@x.org>"));
}

void TestSendMessage::attachmentsAreLogged()
{
    const QString folder = m_bench->tree.path(u"photos"_s);
    QVERIFY(QDir().mkpath(folder));
    writeFile(folder + u"/a"_s, "x");
    const QString file = m_bench->tree.path(u"list.txt"_s);
    writeFile(file, "x");
    m_bench->window.setAttachmentPaths({file, m_bench->tree.path(u"gone"_s), folder});
    sendWell();
    QVERIFY(m_bench->log().contains(u"Attachments: "_s + file + u"; "_s + folder));
    QVERIFY(mail().contains("list.txt") && mail().contains("photos.zip"));
}

void TestSendMessage::replyReceiverIsInTheMail()
{
    sendWell();
    const QByteArray headers = "\r\n" + mail();
    const qsizetype reply = headers.indexOf("\r\nReply-To: ");
    QVERIFY(reply >= 0);
    QVERIFY(headers.sliced(reply, headers.indexOf("\r\n", reply + 2) - reply).contains("reply@x.org"));
}

void TestSendMessage::blanksAroundTheAccountAreNoPartOfIt()
{
    m_bench->window.setText(Field::Account, u" ada@x.org "_s);
    sendWell();
    QVERIFY(m_bench->log().contains(u"Account: ada@x.org"_s));
}

void TestSendMessage::htmlMessageIsLoggedAsRichText()
{
    m_bench->window.setFormat(Message::Format::Rich);
    m_bench->window.setText(Field::RichContent, u"<p>Dear {First Name of The Recipient}</p>"_s);
    sendWell();
    QVERIFY(m_bench->log().contains(u"Message Type: Rich Text (HTML)"_s));
    QVERIFY(mail().contains("multipart/alternative"));
    QVERIFY(mail().contains("<p>Dear Bob</p>"));
}

QTEST_GUILESS_MAIN(TestSendMessage)
#include "test_sendmessage.moc"
