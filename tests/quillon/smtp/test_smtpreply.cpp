#include "quillon/mail/smtpextensions.h"

#include <QTest>

using namespace quillon;
using namespace Qt::StringLiterals;

class TestSmtpReply : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aReplyMayBeCutAtEveryPlace();
    void aReplyOfOneOctetAtATimeIsWhole();
    void blankLinesArePassedOver();
    void endlessBlankLinesAreAFault();
    void lineFeedsAloneEndLines();
    void aCodeAloneIsAReply();
    void codesMustAgreeWithinAReply();
    void whatIsNotSmtpIsAFault_data();
    void whatIsNotSmtpIsAFault();
    void anEndlessLineIsAFaultAndTakesNoMoreMemory();
    void endlessLinesOfOneReplyAreAFault();
    void aFaultStays();
    void pendingInputIsSeen();
    void textsArePrintableAndBounded();
    void textsAreUtf8ElseLatin1();
    void extensionsAreReadInAnyCase();
    void extensionsOfTheGreetingLineDoNotCount();
    void sizeWithoutAFigureIsNoLimit();
};

namespace {

QList<SmtpReply> repliesOf(const QList<QByteArray> &pieces)
{
    SmtpReplyParser parser;
    QList<SmtpReply> found;
    for (const QByteArray &piece : pieces) {
        parser.feed(piece);
        while (auto reply = parser.next()) {
            found += *reply;
        }
    }
    return found;
}

const QByteArray dialogue = "220 ready\r\n250-host\r\n250-SIZE 100\r\n250 HELP\r\n354\r\n";

void compareDialogue(const QList<SmtpReply> &found)
{
    QCOMPARE(found.size(), 3);
    QCOMPARE(found.at(0).Code, 220);
    QCOMPARE(found.at(0).Lines, QList<QByteArray>{"ready"});
    QCOMPARE(found.at(1).Code, 250);
    QCOMPARE(found.at(1).Lines, (QList<QByteArray>{"host", "SIZE 100", "HELP"}));
    QCOMPARE(found.at(2).Code, 354);
    QCOMPARE(found.at(2).Lines, QList<QByteArray>{""});
}

} // namespace

void TestSmtpReply::aReplyMayBeCutAtEveryPlace()
{
    for (qsizetype at = 0; at <= dialogue.size(); ++at) {
        compareDialogue(repliesOf({dialogue.left(at), dialogue.mid(at)}));
    }
}

void TestSmtpReply::aReplyOfOneOctetAtATimeIsWhole()
{
    QList<QByteArray> octets;
    for (const char c : dialogue) {
        octets += QByteArray(1, c);
    }
    compareDialogue(repliesOf(octets));
}

void TestSmtpReply::blankLinesArePassedOver()
{
    compareDialogue(
        repliesOf({"\r\n\r\n220 ready\r\n \r\n250-host\r\n\r\n250-SIZE 100\r\n\t\r\n250 HELP\r\n\n354\r\n\r\n"}));
}

void TestSmtpReply::endlessBlankLinesAreAFault()
{
    SmtpReplyParser parser;
    parser.feed(QByteArray("\r\n").repeated(10'000));
    QVERIFY(!parser.next());
    QVERIFY(!parser.fault().isEmpty());
}

void TestSmtpReply::lineFeedsAloneEndLines()
{
    compareDialogue(repliesOf({QByteArray(dialogue).replace("\r\n", "\n")}));
}

void TestSmtpReply::aCodeAloneIsAReply()
{
    const QList<SmtpReply> found = repliesOf({"250\r\n250-\r\n250 \r\n"});
    QCOMPARE(found.size(), 2);
    QCOMPARE(found.at(1).Lines, (QList<QByteArray>{"", ""}));
}

void TestSmtpReply::codesMustAgreeWithinAReply()
{
    SmtpReplyParser parser;
    parser.feed("250-one\r\n550 two\r\n");
    QVERIFY(!parser.next());
    QVERIFY2(parser.fault().contains(u"550 two"), qPrintable(parser.fault()));
}

void TestSmtpReply::whatIsNotSmtpIsAFault_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("web server") << QByteArray("HTTP/1.1 400 Bad Request");
    QTest::newRow("secure shell") << QByteArray("SSH-2.0-OpenSSH_9.2");
    QTest::newRow("too short") << QByteArray("25");
    QTest::newRow("no separator") << QByteArray("250ok");
    QTest::newRow("no such class") << QByteArray("150 wait");
    QTest::newRow("class of six") << QByteArray("600 what");
    QTest::newRow("NUL") << QByteArray("2\0"
                                       "0 ok",
                                       6);
    QTest::newRow("binary") << QByteArray("\x16\x03\x01\x02\xff");
    QTest::newRow("sign") << QByteArray("2-1 ok");
}

void TestSmtpReply::whatIsNotSmtpIsAFault()
{
    QFETCH(QByteArray, line);
    SmtpReplyParser parser;
    parser.feed(line + "\r\n");
    QVERIFY(!parser.next());
    QVERIFY(parser.fault().startsWith(u"its answer is not SMTP"));
}

void TestSmtpReply::anEndlessLineIsAFaultAndTakesNoMoreMemory()
{
    SmtpReplyParser parser;
    parser.feed("220 ");
    for (int i = 0; i < 100; ++i) {
        parser.feed(QByteArray(1000, 'x'));
        QVERIFY(!parser.next());
    }
    QVERIFY(parser.fault().contains(u"without end"));
    QVERIFY(!parser.hasPending());
}

void TestSmtpReply::endlessLinesOfOneReplyAreAFault()
{
    SmtpReplyParser parser;
    parser.feed(QByteArray("250-more\r\n").repeated(SmtpReplyParser::MaxLines + 1));
    QVERIFY(!parser.next());
    QVERIFY(!parser.fault().isEmpty());
}

void TestSmtpReply::aFaultStays()
{
    SmtpReplyParser parser;
    parser.feed("garbage\r\n");
    QVERIFY(!parser.next());
    const QString fault = parser.fault();
    parser.feed("220 ready\r\n");
    QVERIFY(!parser.next());
    QCOMPARE(parser.fault(), fault);
}

void TestSmtpReply::pendingInputIsSeen()
{
    SmtpReplyParser parser;
    parser.feed("220 ready\r\n\r\n");
    QVERIFY(parser.next());
    QVERIFY(!parser.hasPending());
    parser.feed("2");
    QVERIFY(parser.hasPending());
    QVERIFY(!parser.next());
    QVERIFY(parser.hasPending());
    parser.feed("50-more\r\n");
    QVERIFY(!parser.next());
    QVERIFY(parser.hasPending());
    parser.clear();
    QVERIFY(!parser.hasPending());
}

void TestSmtpReply::textsArePrintableAndBounded()
{
    const SmtpReply reply{550, {"no\x1b[31m\x07 \r way", QByteArray(1000, 'x')}};
    QVERIFY(reply.text().startsWith(u"550 no [31m way xxx"));
    QVERIFY(reply.text().size() <= 301);
    // A text direction override would turn the rest of the message box around.
    QCOMPARE(printableText(u"a\u202eb\u2028c"_s), u"a b c"_s);
    QCOMPARE(printableText(QByteArray("\xf0\x9f\x98\x80").repeated(50), 10).size(), 11);
}

void TestSmtpReply::textsAreUtf8ElseLatin1()
{
    QCOMPARE(printableText(QByteArray("Postfach gel\xc3\xb6scht")), u"Postfach gelöscht"_s);
    QCOMPARE(printableText(QByteArray("Postfach gel\xf6scht")), u"Postfach gelöscht"_s);
    // Cut in the middle of a character, UTF-8 is still UTF-8.
    for (int limit = 10; limit < 14; ++limit) {
        QCOMPARE(printableText("x" + QByteArray("\xc3\xb6").repeated(100), limit),
                 u"x"_s + QString(limit - 1, u'ö') + u"…"_s);
    }
}

void TestSmtpReply::extensionsAreReadInAnyCase()
{
    const SmtpExtensions found = SmtpExtensions::fromEhlo(
        {250,
         {"host", "pipelining", "Size 1000", "auth=LOGIN", "AUTH  plain Login CRAM-MD5", "SMTPutf8", "STARTTLS", ""}});
    QVERIFY(found.Pipelining && found.Size && found.SmtpUtf8 && found.StartTls);
    QCOMPARE(found.MaxSize, 1000);
    QCOMPARE(found.Auth, (QList<QByteArray>{"LOGIN", "PLAIN", "CRAM-MD5"}));
}

void TestSmtpReply::extensionsOfTheGreetingLineDoNotCount()
{
    const SmtpExtensions found = SmtpExtensions::fromEhlo({250, {"STARTTLS"}});
    QVERIFY(!found.StartTls);
}

void TestSmtpReply::sizeWithoutAFigureIsNoLimit()
{
    QCOMPARE(SmtpExtensions::fromEhlo({250, {"host", "SIZE"}}).MaxSize, 0);
    QCOMPARE(SmtpExtensions::fromEhlo({250, {"host", "SIZE many"}}).MaxSize, 0);
    QCOMPARE(SmtpExtensions::fromEhlo({250, {"host", "SIZE -5"}}).MaxSize, 0);
    QVERIFY(SmtpExtensions::fromEhlo({250, {"host", "SIZE"}}).Size);
}

QTEST_GUILESS_MAIN(TestSmtpReply)
#include "test_smtpreply.moc"
