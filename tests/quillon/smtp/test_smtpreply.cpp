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
    void textsAreCutBehindWholeCharacters();
    void linesAndRepliesAreBoundedExactly_data();
    void linesAndRepliesAreBoundedExactly();
    void codesDecide_data();
    void codesDecide();
    void aClearedParserTakesRepliesAgain();
    void extensionsAreReadInAnyCase();
    void extensionsOfTheGreetingLineDoNotCount();
    void sizeWithoutAFigureIsNoLimit();
    void keywordsAreReadWhole();
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

void TestSmtpReply::textsAreCutBehindWholeCharacters()
{
    QCOMPARE(printableText(u"abc"_s, 3), u"abc"_s);
    QCOMPARE(printableText(u"abcd"_s, 3), u"abc…"_s);
    QCOMPARE(printableText(u" \tabc\r\n "_s, 3), u"abc"_s);
    QCOMPARE(printableText(u"ab😀"_s, 4), u"ab😀"_s);
    QCOMPARE(printableText(u"ab😀c"_s, 4), u"ab😀…"_s);
    QCOMPARE(printableText(u"ab😀"_s, 3), u"ab…"_s);
    QCOMPARE(printableText(u"ab😀😀"_s, 3), u"ab…"_s);
    QCOMPARE(printableText(QByteArray("abcd"), 3), u"abc…"_s);
    // A text that ends in the middle of a character is none in UTF-8.
    QCOMPARE(printableText(QByteArray("x\xc3")), u"xÃ"_s);
    QCOMPARE((SmtpReply{250, {"one", "", " two"}}.text()), u"250 one two"_s);
    QCOMPARE((SmtpReply{250, {QByteArray(296, 'x')}}.text()), u"250 "_s + QString(296, u'x'));
    QCOMPARE((SmtpReply{250, {QByteArray(297, 'x')}}.text()), u"250 "_s + QString(296, u'x') + u'…');
}

void TestSmtpReply::linesAndRepliesAreBoundedExactly_data()
{
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<int>("replies");
    QTest::addColumn<QString>("fault");
    const QByteArray blank = QByteArray("\r\n").repeated(SmtpReplyParser::MaxBlankLines);
    const QByteArray lines = QByteArray("250-x\n").repeated(SmtpReplyParser::MaxLines - 1);
    const QByteArray longest = "250 " + QByteArray(SmtpReplyParser::MaxLineLength - 4, 'x');
    const QString endless = u"its answer has a line without end, “250 "_s + QString(56, u'x') + u"”"_s;
    QTest::newRow("longest line") << longest + '\n' << 1 << QString();
    QTest::newRow("longest line behind another") << "220 a\n" + longest + '\n' << 2 << QString();
    QTest::newRow("line too long") << longest + "x\n" << 0 << endless;
    QTest::newRow("longest line not ended") << longest << 0 << QString();
    QTest::newRow("line too long and not ended") << longest + 'x' << 0 << endless;
    QTest::newRow("line too long behind another") << "220 a\n" + longest + "x\n" << 1 << endless;
    QTest::newRow("most lines") << lines + "250 x\n" << 1 << QString();
    QTest::newRow("most lines twice") << lines + "250 x\n" + lines + "250 x\n" << 2 << QString();
    QTest::newRow("lines too many") << lines + "250-x\n250 x\n" << 0 << u"its answer has too many lines"_s;
    QTest::newRow("most blank lines") << blank + "250 x\n" << 1 << QString();
    QTest::newRow("most blank lines twice") << blank + "250-x\n" + blank + "250 x\n" << 1 << QString();
    QTest::newRow("blank lines too many") << blank + "\n250 x\n" << 0 << u"it answers with nothing but blank lines"_s;
}

void TestSmtpReply::linesAndRepliesAreBoundedExactly()
{
    QFETCH(QByteArray, input);
    QFETCH(int, replies);
    QFETCH(QString, fault);
    SmtpReplyParser parser;
    parser.feed(input);
    int found = 0;
    while (parser.next()) {
        ++found;
    }
    QCOMPARE(found, replies);
    QCOMPARE(parser.fault(), fault);
}

void TestSmtpReply::codesDecide_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<int>("code"); // 0: it is no reply
    QTest::addColumn<bool>("positive");
    QTest::addColumn<bool>("refusal");
    QTest::newRow("199") << QByteArray("199 x") << 0 << false << false;
    QTest::newRow("200") << QByteArray("200 x") << 200 << true << false;
    QTest::newRow("299") << QByteArray("299 x") << 299 << true << false;
    QTest::newRow("300") << QByteArray("300 x") << 300 << false << false;
    QTest::newRow("399") << QByteArray("399 x") << 399 << false << false;
    QTest::newRow("400") << QByteArray("400 x") << 400 << false << true;
    QTest::newRow("599") << QByteArray("599 x") << 599 << false << true;
    QTest::newRow("600") << QByteArray("600 x") << 0 << false << false;
    QTest::newRow("letter in the middle") << QByteArray("2a0 x") << 0 << false << false;
    QTest::newRow("letter at the end") << QByteArray("20a x") << 0 << false << false;
    QTest::newRow("slash and colon") << QByteArray("2/: x") << 0 << false << false;
    QTest::newRow("blank before") << QByteArray(" 250 x") << 0 << false << false;
    QTest::newRow("two digits") << QByteArray("25") << 0 << false << false;
    QTest::newRow("four digits") << QByteArray("2500") << 0 << false << false;
    QTest::newRow("tab behind") << QByteArray("250\tx") << 0 << false << false;
    QTest::newRow("nothing behind") << QByteArray("251") << 251 << true << false;
}

void TestSmtpReply::codesDecide()
{
    QFETCH(QByteArray, line);
    QFETCH(int, code);
    QFETCH(bool, positive);
    QFETCH(bool, refusal);
    SmtpReplyParser parser;
    parser.feed(line + "\r\n");
    const std::optional<SmtpReply> reply = parser.next();
    QCOMPARE(reply ? reply->Code : 0, code);
    QCOMPARE(parser.fault().isEmpty(), code != 0);
    QCOMPARE(reply && reply->isPositive(), positive);
    QCOMPARE(reply && reply->isRefusal(), refusal);
}

void TestSmtpReply::aClearedParserTakesRepliesAgain()
{
    SmtpReplyParser parser;
    for (const char *before : {"garbage\r\n", "250-begun\r\n", "22"}) {
        parser.feed(before);
        QVERIFY(!parser.next());
        parser.clear();
        QVERIFY(parser.fault().isEmpty() && !parser.hasPending());
        parser.feed("220 ready\r\n");
        QCOMPARE(parser.next().value_or(SmtpReply()).Lines, QList<QByteArray>{"ready"});
    }
}

void TestSmtpReply::keywordsAreReadWhole()
{
    const SmtpExtensions none = SmtpExtensions::fromEhlo(
        {250, {"host", "STARTTLSX", "XPIPELINING", "X SMTPUTF8", "SIZES 5", "AUTHX PLAIN", "", "8BITMIME SIZE AUTH"}});
    QVERIFY(!none.StartTls && !none.Pipelining && !none.SmtpUtf8 && !none.Size && none.Auth.isEmpty());
    const SmtpExtensions all =
        SmtpExtensions::fromEhlo({250,
                                  {"host", " starttls ", "PIPELINING x", "SMTPUTF8\tx", "SIZE 10 20", "AUTH=PLAIN  X",
                                   "AUTH", "auth plain", "AUTH Y"}});
    QVERIFY(all.StartTls && all.Pipelining && all.SmtpUtf8 && all.Size);
    QCOMPARE(all.MaxSize, 10);
    QCOMPARE(all.Auth, (QList<QByteArray>{"PLAIN", "X", "Y"}));
}

QTEST_GUILESS_MAIN(TestSmtpReply)
#include "test_smtpreply.moc"
