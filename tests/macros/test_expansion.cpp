#include "macros/expansion.h"
#include "macros/macrocatalogue.h"
#include "support/testclock.h"
#include "support/treefixture.h"

#include <QLocale>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace corvane;
using quillon::MailMessage;

namespace {

const QString names = u"{First Name of The Recipient}|{Last Name of The Recipient}|{Full Name of The Recipient}|"
                      "{Email Address of The Recipient}"_s;

MailMessage messageTo(const QString &name, const QString &address)
{
    MailMessage message;
    message.To.Add({address, name});
    message.Content = names;
    return message;
}

} // namespace

class TestExpansion : public QObject, protected TreeFixture {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        makeTree();
        seedMacros(m_tree->globals);
    }
    void cleanup() { dropTree(); }

    void threeWordNameGivesItsFirstAndLastWord();
    void emptyNameIsTheTextInFrontOfTheAt();
    void blankNameIsTheTextInFrontOfTheAt();
    void addressWithoutAtAndNameLeavesNameMacros();
    void severalBlanksMayLeaveAnEmptyWordUnexpanded();
    void firstOfToThenCcThenBccIsTheRecipient();
    void wholeListGetsTheValuesOfTheFirst();
    void noRecipientLeavesItsMacros();
    void htmlLosesItsLineEndsAndPlainKeepsThem();
    void loneLineFeedInHtmlStays();
    void keyInAnotherCaseStays();
    void datesAndTimesAreThoseOfTheUsersRegion();
    void deletedBuiltInLineTurnsItsMacroOff();
    void orderOfTheFileCountsAndAReplacementMayHoldALaterMacro();
    void macroThatContainsItselfIsReplacedOnce();
    void subjectAndEveryOccurrenceAreReplaced();
    void lineWithoutATabLeavesItsKey();
    void missingFileLeavesAllMacrosButJoinsHtml();
    void brokenLinesDoNoHarm();
    void emptyTextTakesItsKeyAway();
    void eachUseHasItsOwnMoment();
    void nameOfTheAddressEndsAtTheFirstAt();
    void nameKeepsItsBlanks();
    void subjectOfHtmlKeepsItsLineEnds();
    void textOfABuiltInKeyIsNotItsValue();

private:
    void macros(const QByteArray &lines) const { writeFile(m_tree->globals.paths.macrosFile, lines); }
    [[nodiscard]] MailMessage expanded(MailMessage message) const
    {
        ExpandMacros(m_tree->globals, message);
        return message;
    }
};

void TestExpansion::threeWordNameGivesItsFirstAndLastWord()
{
    QCOMPARE(expanded(messageTo(u"Ada King Lovelace"_s, u"ada@x.org"_s)).Content,
             u"Ada|Lovelace|Ada King Lovelace|ada@x.org"_s);
}

void TestExpansion::emptyNameIsTheTextInFrontOfTheAt()
{
    QCOMPARE(expanded(messageTo(QString(), u"ada.l@x.org"_s)).Content, u"ada.l|ada.l|ada.l|ada.l@x.org"_s);
}

void TestExpansion::blankNameIsTheTextInFrontOfTheAt()
{
    QCOMPARE(expanded(messageTo(u"  "_s, u"ada@x.org"_s)).Content, u"ada|ada|ada|ada@x.org"_s);
}

void TestExpansion::addressWithoutAtAndNameLeavesNameMacros()
{
    QCOMPARE(expanded(messageTo(QString(), u"ada"_s)).Content,
             QString(names).replace(u"{Email Address of The Recipient}"_s, u"ada"_s));
}

void TestExpansion::severalBlanksMayLeaveAnEmptyWordUnexpanded()
{
    QCOMPARE(expanded(messageTo(u"Ada Lovelace "_s, u"a@x.org"_s)).Content,
             u"Ada|{Last Name of The Recipient}|Ada Lovelace |a@x.org"_s);
}

void TestExpansion::firstOfToThenCcThenBccIsTheRecipient()
{
    MailMessage message;
    message.Content = names;
    message.BCC.Add({u"b@x.org"_s, u"Bea"_s});
    QCOMPARE(expanded(message).Content, u"Bea|Bea|Bea|b@x.org"_s);
    message.CC.Add({u"c@x.org"_s, u"Cid"_s});
    QCOMPARE(expanded(message).Content, u"Cid|Cid|Cid|c@x.org"_s);
    message.To.Add({u"t@x.org"_s, u"Tom"_s});
    QCOMPARE(expanded(message).Content, u"Tom|Tom|Tom|t@x.org"_s);
}

void TestExpansion::wholeListGetsTheValuesOfTheFirst()
{
    MailMessage message = messageTo(u"Ada"_s, u"a@x.org"_s);
    message.To.Add({u"b@x.org"_s, u"Bea"_s});
    QCOMPARE(expanded(message).Content, u"Ada|Ada|Ada|a@x.org"_s);
}

void TestExpansion::noRecipientLeavesItsMacros()
{
    MailMessage message;
    message.Content = names;
    QCOMPARE(expanded(message).Content, names);
}

void TestExpansion::htmlLosesItsLineEndsAndPlainKeepsThem()
{
    MailMessage message;
    message.Content = u"<p>a</p>\r\n<p>b</p>\r\n"_s;
    QCOMPARE(expanded(message).Content, u"<p>a</p>\r\n<p>b</p>\r\n"_s);
    message.Format = MailMessage::Html;
    QCOMPARE(expanded(message).Content, u"<p>a</p><p>b</p>"_s);
}

void TestExpansion::loneLineFeedInHtmlStays()
{
    MailMessage message;
    message.Format = MailMessage::Html;
    message.Content = u"a\nb\rc\r\nd"_s;
    QCOMPARE(expanded(message).Content, u"a\nb\rcd"_s);
}

void TestExpansion::keyInAnotherCaseStays()
{
    MailMessage message = messageTo(u"Ada"_s, u"a@x.org"_s);
    message.Content = u"{first name of the recipient}"_s;
    QCOMPARE(expanded(message).Content, u"{first name of the recipient}"_s);
}

void TestExpansion::datesAndTimesAreThoseOfTheUsersRegion()
{
    const QDateTime now(QDate(2026, 11, 21), QTime(14, 5, 9));
    const TestClock clock(now);
    const QLocale locale = QLocale::system();
    const auto date = [&](QLocale::FormatType format) { return locale.toString(now.date(), format); };
    const auto time = [&](QLocale::FormatType format) { return locale.toString(now.time(), format); };
    MailMessage message;
    message.Content = u"{Long Date}|{Short Date}|{Long Time}|{Short Time}|{Long Date and Time}|{Short Date and Time}"_s;
    QCOMPARE(expanded(message).Content,
             (QStringList{date(QLocale::LongFormat), date(QLocale::ShortFormat), time(QLocale::LongFormat),
                          time(QLocale::ShortFormat), date(QLocale::LongFormat) + u' ' + time(QLocale::LongFormat),
                          date(QLocale::ShortFormat) + u' ' + time(QLocale::ShortFormat)}
                  .join(u'|')));
}

void TestExpansion::deletedBuiltInLineTurnsItsMacroOff()
{
    m_tree->globals.lines.DeleteLineByKey(m_tree->globals.paths.macrosFile, u"{Full Name of The Recipient}"_s, u"\t"_s,
                                          0);
    QCOMPARE(expanded(messageTo(u"Ada"_s, u"a@x.org"_s)).Content, u"Ada|Ada|{Full Name of The Recipient}|a@x.org"_s);
}

void TestExpansion::orderOfTheFileCountsAndAReplacementMayHoldALaterMacro()
{
    macros("{late}\tL\tOther Information\tU\r\n{a}\tfrom {b} and {late}\tOther Information\tU\r\n"
           "{b}\tB\tOther Information\tU\r\n");
    MailMessage message;
    message.Content = u"{a}"_s;
    QCOMPARE(expanded(message).Content, u"from B and {late}"_s);
}

void TestExpansion::macroThatContainsItselfIsReplacedOnce()
{
    macros("{a}\tx{a}{a}x\tOther Information\tU\r\n");
    MailMessage message;
    message.Content = u"{a}"_s;
    QCOMPARE(expanded(message).Content, u"x{a}{a}x"_s);
}

void TestExpansion::subjectAndEveryOccurrenceAreReplaced()
{
    macros("{a}\t1\tOther Information\tU\r\n");
    MailMessage message;
    message.Subject = u"{a}{a}"_s;
    message.Content = u"{a} {{a}} {a"_s;
    QCOMPARE(expanded(message).Subject, u"11"_s);
    QCOMPARE(expanded(message).Content, u"1 {1} {a"_s);
}

void TestExpansion::lineWithoutATabLeavesItsKey()
{
    macros("{a}\r\n{Long Date}\r\n");
    MailMessage message;
    message.Content = u"{a}{Long Date}"_s;
    const QString content = expanded(message).Content;
    QVERIFY(content.startsWith(u"{a}"_s));
    QVERIFY(!content.contains(u"{Long Date}"_s)); // a built-in key needs no second field
}

void TestExpansion::missingFileLeavesAllMacrosButJoinsHtml()
{
    QVERIFY(QFile::remove(m_tree->globals.paths.macrosFile));
    MailMessage message = messageTo(u"Ada"_s, u"a@x.org"_s);
    message.Content += u"\r\n!"_s;
    message.Format = MailMessage::Html;
    QCOMPARE(expanded(message).Content, names + u'!');
}

void TestExpansion::brokenLinesDoNoHarm()
{
    const char broken[] = "\tno key\t\tU\r\n\r\n{a}\t1\t2\t3\t4\t5\t6\t7\t8\t9\r\n{\xFF}\tx\r\n{b\0}\ty\r\n";
    macros(QByteArray(broken, sizeof broken - 1));
    MailMessage message;
    message.Content = u"text {a} end"_s;
    QCOMPARE(expanded(message).Content, u"text 1 end"_s);
}

void TestExpansion::emptyTextTakesItsKeyAway()
{
    macros("{a}\t\tOther Information\tU\r\n{b}\t\r\n{c}\t \tOther Information\tU\r\n");
    MailMessage message;
    message.Subject = u"<{a}{b}{c}>"_s;
    message.Content = message.Subject;
    QCOMPARE(expanded(message).Subject, u"< >"_s);
    QCOMPARE(expanded(message).Content, u"< >"_s);
}

void TestExpansion::eachUseHasItsOwnMoment()
{
    class RunningClock : public TestClock {
    public:
        using TestClock::TestClock;
        [[nodiscard]] QDateTime now() const override { return present.addDays(++calls); }
        mutable int calls = 0;
    };
    const RunningClock clock(QDateTime(QDate(2026, 11, 21), QTime(14, 5, 9)));
    MailMessage message;
    message.Subject = u"{Short Date}"_s;
    message.Content = u"{Short Date}"_s;
    const MailMessage first = expanded(message);
    QVERIFY(first.Subject != first.Content);
    QVERIFY(first.Content != expanded(message).Subject);
}

void TestExpansion::nameOfTheAddressEndsAtTheFirstAt()
{
    QCOMPARE(expanded(messageTo(QString(), u"a@b@c"_s)).Content, u"a|a|a|a@b@c"_s);
    QCOMPARE(expanded(messageTo(QString(), u"@c"_s)).Content,
             QString(names).replace(u"{Email Address of The Recipient}"_s, u"@c"_s));
}

void TestExpansion::nameKeepsItsBlanks()
{
    QCOMPARE(expanded(messageTo(u" Ada  King "_s, u"a@x.org"_s)).Content,
             u"{First Name of The Recipient}|{Last Name of The Recipient}| Ada  King |a@x.org"_s);
}

void TestExpansion::subjectOfHtmlKeepsItsLineEnds()
{
    MailMessage message;
    message.Format = MailMessage::Html;
    message.Subject = u"a\r\nb"_s;
    QCOMPARE(expanded(message).Subject, u"a\r\nb"_s);
}

void TestExpansion::textOfABuiltInKeyIsNotItsValue()
{
    macros("{Full Name of The Recipient}\tsomebody\tx\tU\r\n{Short Date}\tsome day\tx\tU\r\n");
    MailMessage message = messageTo(u"Ada"_s, u"a@x.org"_s);
    message.Content = u"{Full Name of The Recipient} {Short Date}"_s;
    QVERIFY(expanded(message).Content.startsWith(u"Ada "_s) && !expanded(message).Content.contains(u"some day"_s));
    message.To.Clear();
    QVERIFY(expanded(message).Content.startsWith(u"{Full Name of The Recipient} "_s));
}

QTEST_GUILESS_MAIN(TestExpansion)
#include "test_expansion.moc"
