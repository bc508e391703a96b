#include "quillon/mail/headerfield.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace quillon;

/// The fields at the head of a mail as octets: what is left of a text, which addresses are taken, where lines fold.
class TestHeaderField : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void lineEndsBecomeBlanksAndControlsGo_data();
    void lineEndsBecomeBlanksAndControlsGo();
    void addressesAreTakenAsTheyCanStandInAField_data();
    void addressesAreTakenAsTheyCanStandInAField();
    void textFieldsStayPlainWhileTheyFit_data();
    void textFieldsStayPlainWhileTheyFit();
    void namesStandBareQuotedOrEncoded_data();
    void namesStandBareQuotedOrEncoded();
    void addressesAreFoldedAndCommasStandBehindThem();
    void parametersAreQuotedOrInNumberedPieces_data();
    void parametersAreQuotedOrInNumberedPieces();
    void lineHasAtMost76Characters();
};

namespace {

QString a(qsizetype count)
{
    return QString(count, u'a');
}

} // namespace

void TestHeaderField::lineEndsBecomeBlanksAndControlsGo_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("clean");
    QTest::newRow("empty") << QString() << QString();
    QTest::newRow("nothing to do") << u" aü\u00A0~ "_s << u" aü\u00A0~ "_s;
    QTest::newRow("line ends") << u"a\r\nb\rc\nd\r"_s << u"a b c d "_s;
    QTest::newRow("line feed first") << u"a\n\rb"_s << u"a  b"_s;
    QTest::newRow("other breaks") << u"a\tb\vc\fd\u0085e\u2028f\u2029g"_s << u"a b c d e f g"_s;
    QTest::newRow("controls") << u"a\u0001\u001F\u007F\u0080\u009Fb"_s << u"ab"_s;
    QTest::newRow("pair") << u"\u0001😀"_s << u"😀"_s;
    QTest::newRow("half a pair") << QString(u"a"_s + QChar(0xDE00)) << u"a\uFFFD"_s;
}

void TestHeaderField::lineEndsBecomeBlanksAndControlsGo()
{
    QFETCH(QString, text);
    QTEST(headerText(text), "clean");
}

void TestHeaderField::addressesAreTakenAsTheyCanStandInAField_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QByteArray>("octets"); // empty: refused
    const auto row = [](const QString &address, const QByteArray &octets) {
        QTest::newRow(address.toUtf8().toPercentEncoding().constData()) << address << octets;
    };
    const auto same = [&row](const QString &address) { row(address, address.toUtf8()); };
    for (const QString &address :
         {u"a@b"_s, u"A.Z-0_9@B-z.0_9"_s, u"!#$%&'*+-/=?^_`{|}~@b"_s, u".a..b.@b"_s, u"ü\u00A1@b"_s, u"\"\"@b"_s,
          u"\"a@b c\"@d"_s, u"\"a\\\"b\"@d"_s, u"\"a\\\\\"@d"_s, u"\"ü\"@d"_s, u"a@[1.2.3.4]"_s, u"a@[b]"_s}) {
        same(address);
    }
    row(u"a@Bücher.example"_s, "a@xn--bcher-kva.example");
    for (const QString &address :
         {u"@b"_s,         u"a@"_s,          u"a"_s,          u"\"@b"_s,
          u"\"a\\\"@b"_s,  u"\"a\"b\"@c"_s,  u"\"a\"\"@c"_s,  u"\"a@c"_s,
          u"a\"@c"_s,      u"a\\b@c"_s,      u"a(b@c"_s,      u"a)b@c"_s,
          u"a,b@c"_s,      u"a:b@c"_s,       u"a;b@c"_s,      u"a<b@c"_s,
          u"a>b@c"_s,      u"a[b@c"_s,       u"a]b@c"_s,      u"a@b@c"_s,
          u"a b@c"_s,      u"a\u00A0b@c"_s,  u"a\u2003b@c"_s, u"a\u0085b@c"_s,
          u"a\u2028b@c"_s, u"a\tb@c"_s,      u"\"a\tb\"@c"_s, u"a\u007Fb@c"_s,
          u"a@b c"_s,      u"a@.b"_s,        u"a@b..c"_s,     u"a@b!c"_s,
          u"a@b/c"_s,      u"a@[]"_s,        u"a@[b"_s,       u"a@b]"_s,
          u"a@[a b]"_s,    u"a@[a[b]"_s,     u"a@[a]b]"_s,    u"a@[a\\b]"_s,
          u"a@[ü]"_s,      u"a@[a\u007F]"_s, u"a@ü..b"_s,     QString(u"a"_s + QChar(0xD800) + u"@b"_s)}) {
        row(address, QByteArray());
    }
}

void TestHeaderField::addressesAreTakenAsTheyCanStandInAField()
{
    QFETCH(QString, address);
    QFETCH(QByteArray, octets);
    const std::optional<AddressSpec> spec = addressSpec(address);
    QCOMPARE(spec ? spec->Octets : QByteArray(), octets);
    if (spec) {
        const QByteArray local = octets.first(octets.lastIndexOf('@'));
        QCOMPARE(spec->NeedsSmtpUtf8, std::any_of(local.begin(), local.end(), [](char c) { return c < 0; }));
    }
}

void TestHeaderField::textFieldsStayPlainWhileTheyFit_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("field");
    QTest::newRow("empty") << QString() << QByteArray("Subject: \r\n");
    QTest::newRow("plain") << u"a  b ~"_s << QByteArray("Subject: a  b ~\r\n");
    QTest::newRow("just fits") << a(67) << "Subject: " + a(67).toLatin1() + "\r\n";
    QTest::newRow("one more folds") << a(30) + u' ' + a(37)
                                    << "Subject: " + a(30).toLatin1() + "\r\n " + a(37).toLatin1() + "\r\n";
    QTest::newRow("longest word") << u"b "_s + a(60) + u" cccccc"_s
                                  << "Subject: b " + a(60).toLatin1() + "\r\n cccccc\r\n";
    QTest::newRow("longer word") << a(61) + u" bbbbbb"_s
                                 << "Subject: =?UTF-8?Q?" + a(55).toLatin1() + "?=\r\n =?UTF-8?Q?" + a(6).toLatin1() +
                                        "_bbbbbb?=\r\n";
    QTest::newRow("two blanks in a long one") << a(30) + u"  "_s + a(36)
                                              << "Subject: =?UTF-8?Q?" + a(30).toLatin1() + "__" + a(23).toLatin1() +
                                                     "?=\r\n =?UTF-8?Q?" + a(13).toLatin1() + "?=\r\n";
    QTest::newRow("blank first") << u" a"_s << QByteArray("Subject: =?UTF-8?Q?_a?=\r\n");
    QTest::newRow("blank last") << u"a "_s << QByteArray("Subject: =?UTF-8?Q?a_?=\r\n");
    QTest::newRow("looks encoded") << u"a=?b"_s << QByteArray("Subject: =?UTF-8?Q?a=3D=3Fb?=\r\n");
    QTest::newRow("question") << u"a?="_s << QByteArray("Subject: a?=\r\n");
    QTest::newRow("letters") << u"aaaü"_s << QByteArray("Subject: =?UTF-8?B?YWFhw7w=?=\r\n");
    QTest::newRow("line end") << u"a\r\nb"_s << QByteArray("Subject: a b\r\n");
}

void TestHeaderField::textFieldsStayPlainWhileTheyFit()
{
    QFETCH(QString, text);
    QByteArray out = "Before: x\r\n";
    appendTextField(out, "Subject", text);
    QCOMPARE(out.sliced(0, 11), QByteArray("Before: x\r\n"));
    QTEST(out.sliced(11), "field");
}

void TestHeaderField::namesStandBareQuotedOrEncoded_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("shown");
    QTest::newRow("none") << QString() << QByteArray("a@b");
    QTest::newRow("blanks only") << u" \t "_s << QByteArray("a@b");
    QTest::newRow("atoms") << u"J. Doe"_s << QByteArray("\"J. Doe\" <a@b>");
    QTest::newRow("all of an atom") << u"!#$%&'*+-/?=^_`{|}~ aZ09"_s << QByteArray("!#$%&'*+-/?=^_`{|}~ aZ09 <a@b>");
    QTest::newRow("blanks around") << u" Ada "_s << QByteArray("Ada <a@b>");
    QTest::newRow("at sign") << u"a@b"_s << QByteArray("\"a@b\" <a@b>");
    QTest::newRow("quotes and backslash") << u"\"x\\"_s << QByteArray("\"\\\"x\\\\\" <a@b>");
    QTest::newRow("longest") << a(60) << a(60).toLatin1() + " <a@b>";
    QTest::newRow("longer") << a(61) << "=?UTF-8?Q?" + a(60).toLatin1() + "?=\r\n =?UTF-8?Q?a?= <a@b>";
    QTest::newRow("two blanks") << u"a  b"_s << QByteArray("=?UTF-8?Q?a__b?= <a@b>");
    QTest::newRow("looks encoded") << u"=?"_s << QByteArray("=?UTF-8?B?PT8=?= <a@b>");
    QTest::newRow("letters") << u"Übung eins"_s << QByteArray("=?UTF-8?Q?=C3=9Cbung_eins?= <a@b>");
}

void TestHeaderField::namesStandBareQuotedOrEncoded()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, shown);
    QByteArray out;
    appendAddressField(out, "To", {{name, "a@b"}});
    QCOMPARE(out, "To: " + shown + "\r\n");
}

void TestHeaderField::addressesAreFoldedAndCommasStandBehindThem()
{
    QByteArray out;
    appendAddressField(out, "Cc", {{u"Ada"_s, "a@b"}, {QString(), "c@d"}, {u"Eve"_s, "e@f"}});
    QCOMPARE(out, QByteArray("Cc: Ada <a@b>, c@d, Eve <e@f>\r\n"));
    out.clear();
    const QByteArray longAddress = QByteArray(30, 'x') + "@y";
    appendAddressField(out, "Cc", {{QString(), longAddress}, {QString(), longAddress}, {QString(), longAddress}});
    QCOMPARE(out, "Cc: " + longAddress + ", " + longAddress + ",\r\n " + longAddress + "\r\n");
}

void TestHeaderField::parametersAreQuotedOrInNumberedPieces_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QByteArray>("parameter");
    QTest::addColumn<QByteArray>("inWords");
    const auto row = [](const char *name, const QString &value, const QByteArray &parameter, const QByteArray &words) {
        QTest::newRow(name) << value << parameter << words;
    };
    row("empty", QString(), "=\"\"", "=\"\"");
    row("plain", u" a b.txt\t"_s, "=\"a b.txt\"", "=\"a b.txt\"");
    row("longest", a(60), "=\"" + a(60).toLatin1() + '"', "=\"" + a(60).toLatin1() + '"');
    row("longer", a(61), "*0*=UTF-8''" + a(50).toLatin1() + "; n*1*=" + a(11).toLatin1(),
        "=\"=?UTF-8?Q?" + a(58).toLatin1() + "?= =?UTF-8?Q?aaa?=\"");
    row("quote", u"\""_s, "*=UTF-8''%22", "=\"=?UTF-8?Q?=22?=\"");
    row("backslash", u"\\"_s, "*=UTF-8''%5C", "=\"=?UTF-8?Q?=5C?=\"");
    row("looks encoded", u"=?"_s, "*=UTF-8''%3D%3F", "=\"=?UTF-8?B?PT8=?=\"");
    row("what needs no escape", u"ü.-_09azAZ"_s, "*=UTF-8''%C3%BC.-_09azAZ", "=\"=?UTF-8?B?w7wuLV8wOWF6QVo=?=\"");
    row("what does", u"ü !~"_s, "*=UTF-8''%C3%BC%20%21%7E", "=\"=?UTF-8?B?w7wgIX4=?=\"");
    row("pieces of whole characters", a(44) + u"üüb"_s, "*0*=UTF-8''" + a(44).toLatin1() + "%C3%BC; n*1*=%C3%BCb",
        "=\"=?UTF-8?Q?" + a(44).toLatin1() + "=C3=BC=C3=BCb?=\"");
}

void TestHeaderField::parametersAreQuotedOrInNumberedPieces()
{
    QFETCH(QString, value);
    QFETCH(QByteArray, parameter);
    QFETCH(QByteArray, inWords);
    const auto written = [](void (*add)(HeaderField &, QByteArrayView, const QString &), const QString &text) {
        QByteArray out;
        HeaderField field(out, "T");
        add(field, "n", text);
        field.end();
        return out.replace("\r\n ", " ");
    };
    QCOMPARE(written(addParameter, value), "T: n" + parameter + "\r\n");
    QCOMPARE(written(addParameterInWords, value), "T: n" + inWords + "\r\n");
}

void TestHeaderField::lineHasAtMost76Characters()
{
    const QList<std::tuple<int, QByteArray>> rows = {{70, " "}, {71, " "}, {72, "\r\n "}};
    for (const auto &[size, between] : rows) {
        QByteArray out = "Before: x\r\n";
        HeaderField field(out, "T");
        QCOMPARE(field.room(), 73);
        field.add("a");
        QCOMPARE(field.room(), 71);
        field.add(QByteArray(size, 'x'));
        field.end();
        QCOMPARE(out, "Before: x\r\nT: a" + between + QByteArray(size, 'x') + "\r\n");
    }
    QByteArray out;
    HeaderField field(out, "T");
    field.add(QByteArray(100, 'x')); // a line of its own would be none
    QCOMPARE(out, "T: " + QByteArray(100, 'x'));
}

QTEST_APPLESS_MAIN(TestHeaderField)
#include "test_headerfield.moc"
