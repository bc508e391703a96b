#include "quillon/mail/charset.h"
#include "quillon/mail/encodedword.h"
#include "quillon/mail/encodinglist.h"
#include "quillon/mail/headerfield.h"
#include "quillon/mail/subjectcodec.h"
#include "randomtext.h"

#include <QTest>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace quillon;

class TestSubjectCodec : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void anySubjectComesBackExactly();
    void anySubjectComesBackExactly_data();
    void anyRandomSubjectComesBackExactly();
    void anyOfferedCharsetGivesTheSubjectBack();
    void encodedFormIsOneLineOfPrintableAscii();
    void plainSubjectStaysReadable();
    void onlyWhatALineOfAFileKeepsStaysAsItIs_data();
    void onlyWhatALineOfAFileKeepsStaysAsItIs();
    void plainTextThatWasNeverEncodedStays();
    void plainTextThatWasNeverEncodedStays_data();
    void loneSurrogateBecomesTheReplacementCharacter();
    void wordsAreNeverLongerThan75();
    void wordsHoldWholeCharacters();
    void shorterOfBothFormsIsTaken();
    void firstWordKeepsToItsRoom();
    void decoderTakesWhatOtherMailersWrite();
    void decoderTakesWhatOtherMailersWrite_data();
    void decoderLeavesWhatIsNoEncodedWord();
    void longSubjectFieldFoldsAndUnfolds();
    void headerTextHasNoControlCharacters();
};

namespace {

constexpr quint32 seed = 20261121;

bool isOneLineOfPrintableAscii(const QString &text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c >= u' ' && c < u'\x7f'; });
}

QString decodedOneByOne(const QList<QByteArray> &words)
{
    QString text;
    for (const QByteArray &word : words) {
        text += decodeEncodedWords(QString::fromLatin1(word));
    }
    return text;
}

} // namespace

void TestSubjectCodec::anySubjectComesBackExactly_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << QString();
    QTest::newRow("plain") << u"Meeting on Monday"_s;
    QTest::newRow("umlauts") << u"Grüße aus Köln"_s;
    QTest::newRow("leading and trailing blanks") << u"   both ends  "_s;
    QTest::newRow("only blanks") << u"     "_s;
    QTest::newRow("tabs") << u"\ta\tb\t"_s;
    QTest::newRow("line breaks") << u"one\r\ntwo\nthree\rfour\r\n"_s;
    QTest::newRow("looks encoded") << u"=?utf-8?Q?hello?="_s;
    QTest::newRow("looks encoded twice") << u"=?utf-8?Q?a?= =?utf-8?Q?b?="_s;
    QTest::newRow("half a word") << u"=?utf-8?Q?hello"_s;
    QTest::newRow("emoji") << u"👩‍👩‍👧‍👦 party 🎉"_s;
    QTest::newRow("nul") << u"a"_s + QChar(0) + u"b"_s + QChar(0);
    QTest::newRow("byte-order mark") << QChar(0xFEFF) + u"x"_s + QChar(0xFEFF);
    QTest::newRow("no-character") << QString(QChar(0xFFFF)) + QChar(0xFFFE);
    QTest::newRow("equals and brackets") << u"[section]; key=value \"q\""_s;
    QTest::newRow("long") << u"Ein sehr langer Betreff für alle "_s.repeated(40);
}

void TestSubjectCodec::anySubjectComesBackExactly()
{
    QFETCH(QString, text);
    const SubjectCodec codec;
    const QString encoded = codec.Encode(text, u"utf-8"_s);
    QVERIFY2(isOneLineOfPrintableAscii(encoded), qPrintable(encoded));
    QCOMPARE(encoded.trimmed(), encoded);
    QCOMPARE(codec.Decode(encoded, u"utf-8"_s), text);
}

void TestSubjectCodec::anyRandomSubjectComesBackExactly()
{
    qInfo("seed %u", seed);
    QRandomGenerator random(seed);
    const SubjectCodec codec;
    for (int i = 0; i < 5000; ++i) {
        const QString text = randomText(random, 120);
        const QString encoded = codec.Encode(text, u"utf-8"_s);
        QVERIFY2(isOneLineOfPrintableAscii(encoded) && encoded.trimmed() == encoded, qPrintable(encoded));
        QCOMPARE(codec.Decode(encoded, u"utf-8"_s), text);
    }
}

void TestSubjectCodec::anyOfferedCharsetGivesTheSubjectBack()
{
    const SubjectCodec codec;
    const QString subjects[] = {
        u"Grüße"_s, u"日本語のテスト"_s.repeated(9), u"Привет всем"_s.repeated(9), u"中文測試"_s,
        u"ไทย"_s,   u"한국어 시험"_s.repeated(9)};
    for (const QString &entry : encodingList().split(u" || "_s)) {
        const QString charset = entry.section(u" | "_s, 0, 0);
        for (const QString &subject : subjects) {
            const QString encoded = codec.Encode(subject, charset);
            QVERIFY2(isOneLineOfPrintableAscii(encoded), qPrintable(encoded));
            QCOMPARE(codec.Decode(encoded, charset), subject);
        }
    }
}

void TestSubjectCodec::encodedFormIsOneLineOfPrintableAscii()
{
    const QString encoded = SubjectCodec().Encode(u"Zeile eins\r\nZeile zwei: äöü"_s.repeated(5), u"utf-8"_s);
    const QStringList words = encoded.split(u' ');
    QVERIFY(words.size() > 1);
    for (const QString &word : words) {
        QVERIFY(word.startsWith(u"=?utf-8?"_s) && word.endsWith(u"?="_s) && word.size() <= 75);
    }
}

void TestSubjectCodec::plainSubjectStaysReadable()
{
    QCOMPARE(SubjectCodec().Encode(u"Invoice no. 5 = paid?"_s, u"utf-8"_s), u"Invoice no. 5 = paid?"_s);
}

void TestSubjectCodec::onlyWhatALineOfAFileKeepsStaysAsItIs_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("stays");
    QTest::newRow("empty") << QString() << true;
    QTest::newRow("first and last of ASCII") << u"!~"_s << true;
    QTest::newRow("blanks within") << u"a  b"_s << true;
    QTest::newRow("half a mark") << u"a= ?"_s << true;
    QTest::newRow("blank at the front") << u" a"_s << false;
    QTest::newRow("blank at the end") << u"a "_s << false;
    QTest::newRow("one blank") << u" "_s << false;
    QTest::newRow("mark of a word") << u"a=?"_s << false;
    QTest::newRow("last control") << u"a\u001Fb"_s << false;
    QTest::newRow("delete") << u"a\u007Fb"_s << false;
    QTest::newRow("other letter") << u"aüb"_s << false;
}

void TestSubjectCodec::onlyWhatALineOfAFileKeepsStaysAsItIs()
{
    QFETCH(QString, text);
    const SubjectCodec codec;
    const QString encoded = codec.Encode(text, u"utf-8"_s);
    QTEST(encoded == text, "stays");
    QCOMPARE(encoded.trimmed(), encoded);
    QCOMPARE(codec.Decode(encoded, u"utf-8"_s), text);
}

void TestSubjectCodec::plainTextThatWasNeverEncodedStays_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("ascii") << u"An old subject"_s;
    QTest::newRow("letters") << u"Grüße, 你好 🎉"_s;
    QTest::newRow("question") << u"really =? or ?= not"_s;
    QTest::newRow("unknown charset") << u"=?x-nothing?Q?a?= =?x-nothing?Q?b?="_s;
    QTest::newRow("bad escape") << u"=?utf-8?Q?=G1?="_s;
    QTest::newRow("bad octets") << u"=?utf-8?Q?=FF?=  =?utf-8?Q?=FE?="_s;
    QTest::newRow("charset with options") << u"=?us-ascii//IGNORE?Q?a?="_s;
    QTest::newRow("escape cut at the end") << u"=?utf-8?Q?a=4?= =?utf-8?Q?=?="_s;
    QTest::newRow("letters behind F") << u"=?utf-8?Q?=0G?= =?utf-8?Q?=g0?= =?utf-8?Q?=/0?= =?utf-8?Q?=:0?="_s;
    QTest::newRow("other coding") << u"=?utf-8?X?a?= =?utf-8?QQ?a?= =?utf-8??a?="_s;
    QTest::newRow("no charset") << u"=??Q?a?="_s;
    QTest::newRow("no Base64") << u"=?utf-8?B?a*b?="_s;
    QTest::newRow("no end") << u"=?utf-8?Q?a?"_s;
    QTest::newRow("no end behind the coding") << u"=?utf-8?Q?"_s;
    QTest::newRow("other end") << u"=?utf-8?Q?a?b"_s;
    QTest::newRow("no coding") << u"=?utf-8?"_s;
    QTest::newRow("controls in the word") << u"=?utf-8?Q?a\u007Fb?= =?utf-8?Q?a\tb?= =?utf-8?Q?ü?="_s;
    QTest::newRow("blanks in the word") << u"=?utf-8?Q?a b?="_s;
}

void TestSubjectCodec::plainTextThatWasNeverEncodedStays()
{
    QFETCH(QString, text);
    QCOMPARE(SubjectCodec().Decode(text, u"utf-8"_s), text);
}

void TestSubjectCodec::loneSurrogateBecomesTheReplacementCharacter()
{
    const SubjectCodec codec;
    const QString broken = u"a"_s + QChar(0xD83D) + u"b"_s + QChar(0xDE00);
    const QString expected = u"a\uFFFDb\uFFFD"_s;
    QCOMPARE(codec.Decode(codec.Encode(broken, u"utf-8"_s), u"utf-8"_s), expected);
    QCOMPARE(headerText(broken), expected);
}

void TestSubjectCodec::wordsAreNeverLongerThan75()
{
    qInfo("seed %u", seed);
    QRandomGenerator random(seed);
    for (int i = 0; i < 2000; ++i) {
        const QString text = randomText(random, 200);
        for (const QByteArray &word : encodedWords(text)) {
            QVERIFY2(word.size() <= 75, word.constData());
        }
        QCOMPARE(decodedOneByOne(encodedWords(text)), text);
    }
}

void TestSubjectCodec::wordsHoldWholeCharacters()
{
    for (const char *charset : {"utf-8", "iso-2022-jp", "shift_jis", "gb18030"}) {
        const QString text = u"あいうえおかきくけこ"_s.repeated(12);
        const QList<QByteArray> words = encodedWords(text, charset);
        QVERIFY(words.size() > 3 && words.first().toLower().startsWith(QByteArray("=?") + charset + '?'));
        QCOMPARE(decodedOneByOne(words), text);
    }
    const QList<QByteArray> emoji = encodedWords(u"😀"_s.repeated(100));
    QCOMPARE(decodedOneByOne(emoji), u"😀"_s.repeated(100));
}

void TestSubjectCodec::shorterOfBothFormsIsTaken()
{
    QCOMPARE(encodedWords(u"Gr\u00FC\u00DFe"_s).first(), QByteArray("=?UTF-8?B?R3LDvMOfZQ==?="));
    QCOMPARE(encodedWords(u"Einladung f\u00FCr alle"_s).first(), QByteArray("=?UTF-8?Q?Einladung_f=C3=BCr_alle?="));
    QCOMPARE(encodedWords(u"日本"_s).first(), QByteArray("=?UTF-8?B?5pel5pys?="));
    QVERIFY(encodedWords(QString()).isEmpty());
}

void TestSubjectCodec::firstWordKeepsToItsRoom()
{
    const QString text = u"ein längerer Text "_s.repeated(20);
    for (qsizetype room = 30; room <= 75; ++room) {
        const QList<QByteArray> words = encodedWords(text, "UTF-8", room);
        QVERIFY(words.first().size() <= room);
        for (qsizetype i = 1; i + 1 < words.size(); ++i) { // the others have a line of their own
            QVERIFY2(words[i].size() > 69, words[i].constData());
        }
        QCOMPARE(decodedOneByOne(words), text);
    }
}

void TestSubjectCodec::decoderTakesWhatOtherMailersWrite_data()
{
    QTest::addColumn<QString>("raw");
    QTest::addColumn<QString>("text");
    QTest::newRow("lower case") << u"=?iso-8859-1?q?a=e4?="_s << u"aä"_s;
    QTest::newRow("any case") << u"=?UTF-8?b?w7w=?= =?Utf-8?q?=C3=bC?="_s << u"üü"_s;
    QTest::newRow("hexadecimal digits") << u"=?us-ascii?Q?=09=0a=0A=0f=0F=49=39?="_s << u"\t\n\n\u000F\u000FI9"_s;
    QTest::newRow("no content") << u"a=?UTF-8?Q?\?=b=?UTF-8?B?\?="_s << u"ab"_s;
    QTest::newRow("blanks and line ends between") << u"=?UTF-8?Q?a?= \t\r\n =?UTF-8?Q?b?= c"_s << u"ab c"_s;
    QTest::newRow("other blanks between") << u"=?UTF-8?Q?a?=\u00A0=?UTF-8?Q?b?="_s << u"a\u00A0b"_s;
    QTest::newRow("undecodable first") << u"=?UTF-8?Q?=FF?=  =?koi8-r?Q?=C1?="_s << u"=?UTF-8?Q?=FF?=  а"_s;
    QTest::newRow("undecodable last") << u"=?koi8-r?Q?=C1?=  =?UTF-8?Q?=FF?="_s << u"а  =?UTF-8?Q?=FF?="_s;
    QTest::newRow("undecodable between") << u"=?koi8-r?Q?=C1?= =?UTF-8?Q?=FF?= =?koi8-r?Q?=C1?= =?us-ascii?Q?x?="_s
                                         << u"а =?UTF-8?Q?=FF?= аx"_s;
    QTest::newRow("shift left open") << u"=?iso-2022-jp?B?GyRCRnxLXA==?= =?iso-2022-jp?Q?a?="_s << u"日本a"_s;
    QTest::newRow("mark behind a word") << u"=?UTF-8?Q?a?==?"_s << u"a=?"_s;
    QTest::newRow("mixed with text") << u"Re: =?UTF-8?B?w7w=?= more"_s << u"Re: ü more"_s;
    QTest::newRow("character over two words") << u"=?UTF-8?Q?=C3?= =?UTF-8?Q?=BC?="_s << u"ü"_s;
    QTest::newRow("folded") << u"=?UTF-8?Q?a?=\r\n =?UTF-8?Q?b?="_s << u"ab"_s;
    QTest::newRow("touching") << u"=?UTF-8?Q?a?==?UTF-8?Q?b?="_s << u"ab"_s;
    QTest::newRow("two charsets") << u"=?UTF-8?Q?a?= =?koi8-r?Q?=C1?="_s << u"aа"_s;
    QTest::newRow("language tag") << u"=?US-ASCII*EN?Q?Keith_Moore?="_s << u"Keith Moore"_s;
    const QString longest = u"us-ascii*"_s + QString(50, u'x');
    QTest::newRow("longest language tag") << u"=?%1?Q?a?="_s.arg(longest) << u"a"_s;
    QTest::newRow("longer language tag") << u"=?%1x?Q?a?="_s.arg(longest) << u"=?%1x?Q?a?="_s.arg(longest);
    QTest::newRow("no padding") << u"=?UTF-8?B?w7w?="_s << u"ü"_s;
    QTest::newRow("mark before a word") << u"=?=?UTF-8?Q?a?="_s << u"=?a"_s;
}

void TestSubjectCodec::decoderTakesWhatOtherMailersWrite()
{
    QFETCH(QString, raw);
    QFETCH(QString, text);
    QCOMPARE(decodeEncodedWords(raw), text);
}

void TestSubjectCodec::decoderLeavesWhatIsNoEncodedWord()
{
    qInfo("seed %u", seed);
    QRandomGenerator random(seed);
    const QString alphabet = u"=?QqBb_ utf-8"_s;
    for (int i = 0; i < 20000; ++i) {
        QString text;
        for (int length = random.bounded(40); length > 0; --length) {
            text += alphabet[random.bounded(static_cast<int>(alphabet.size()))];
        }
        const QString decoded = decodeEncodedWords(text);
        QVERIFY(decoded.size() <= text.size());
        if (!text.contains(u"=?utf-8?"_s, Qt::CaseInsensitive) && !text.contains(u"=?utf8?"_s, Qt::CaseInsensitive)) {
            QCOMPARE(decoded, text);
        }
    }
}

void TestSubjectCodec::longSubjectFieldFoldsAndUnfolds()
{
    for (const QString &text : {u"word "_s.repeated(60).trimmed(), u"Wörter "_s.repeated(60).trimmed(),
                                u"x"_s.repeated(3000), u"two  blanks "_s.repeated(30)}) {
        QByteArray field;
        appendTextField(field, "Subject", text);
        QVERIFY(field.endsWith("\r\n"));
        for (const QByteArray &line : field.chopped(2).split('\n')) {
            QVERIFY2(line.trimmed().size() > 0 && line.size() <= 77, line.constData());
        }
        const QByteArray value = field.chopped(2).mid(9);
        QCOMPARE(decodeEncodedWords(QString::fromLatin1(value).replace(u"\r\n"_s, QString())), text);
    }
}

void TestSubjectCodec::headerTextHasNoControlCharacters()
{
    QCOMPARE(headerText(u"a\r\nb\rc\nd\te"_s + QChar(0) + QChar(7) + QChar(0x7F) + QChar(0x9B) + QChar(0x2028) + u'f'),
             u"a b c d e f"_s);
}

QTEST_APPLESS_MAIN(TestSubjectCodec)
#include "test_subjectcodec.moc"
