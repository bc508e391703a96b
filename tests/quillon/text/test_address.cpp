#include "quillon/text/quillonaddress.h"

#include <QTest>

using namespace Qt::StringLiterals;

class TestAddress : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void isEmailAddress();
    void isEmailAddress_data();
};

void TestAddress::isEmailAddress_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("valid");
    const auto row = [](const QString &text, bool valid) {
        QTest::newRow(qPrintable(text.left(60) + (valid ? u" +"_s : u" -"_s))) << text << valid;
    };
    for (const QString &good : {u"a@b.c"_s,
                                u"ada.lovelace+list@mail.example.org"_s,
                                u"o'brien@x.org"_s,
                                u"ada@localhost"_s,
                                u"müller@exämple.de"_s,
                                u"用户@例子.广告"_s,
                                u"\"a..b\"@x.org"_s,
                                u"\"a\\\"b\"@x.org"_s,
                                u"a@[127.0.0.1]"_s,
                                u"a@[IPv6:2001:db8::1]"_s,
                                u"!#$%&'*+-/=?^_`{|}~@x.org"_s,
                                u"a@1.example"_s,
                                QString(64, u'l') + u"@x.org"_s,
                                QString(32, u'ü') + u"@x.org"_s,
                                u"a@"_s + QString(63, u'd') + u".org"_s,
                                u"a@"_s + QString(31, u'ü') + u".org"_s,
                                u"\"a\"@b.c"_s,
                                u"\"a\\\\\"@b.c"_s,
                                u"a@"_s + QString(u"abcdefg."_s).repeated(31) + u"abcd"_s,
                                u"a@b-c.d"_s,
                                u"0@B.C"_s,
                                u"a@[0.0.0.255]"_s,
                                u"a@[ipv6:::1]"_s,
                                u"a@[IPv6:ABCDEF:abcdef:0:9.1]"_s}) {
        row(good, true);
    }
    for (const QString &bad : {QString(),
                               u"a"_s,
                               u"@"_s,
                               u"a@"_s,
                               u"@b.c"_s,
                               u"a@b@c.d"_s,
                               u"a b@c.d"_s,
                               u" a@b.c"_s,
                               u"a@b.c "_s,
                               u".a@b.c"_s,
                               u"a.@b.c"_s,
                               u"a..b@c.d"_s,
                               u"a@.c"_s,
                               u"a@b."_s,
                               u"a@b..c"_s,
                               u"a@-b.c"_s,
                               u"a@b-.c"_s,
                               u"a@b_c.d"_s,
                               u"<a@b.c>"_s,
                               u"a,b@c.d"_s,
                               u"a@b.c\r\nRCPT TO:<x@y.z>"_s,
                               u"a\t@b.c"_s,
                               u"a@b.c\0"_s + QChar(0),
                               u"\"a@b.c"_s,
                               u"\"\"@b.c"_s,
                               u"a@[300.1.1.1]"_s,
                               u"a@[1.2.3]"_s,
                               u"a@[IPv6:xyz]"_s,
                               u"a(c)@b.c"_s,
                               u"a@b:c"_s,
                               QString(65, u'l') + u"@x.org"_s,
                               u"a@"_s + QString(64, u'd') + u".org"_s,
                               u"a@"_s + QString(u"abcdefgh."_s).repeated(29) + u"org"_s,
                               u"a\u0085@b.c"_s,
                               u"a\u00A0@b.c"_s,
                               u"a\u202E@b.c"_s,
                               QString(33, u'ü') + u"@x.org"_s,
                               u"a@"_s + QString(32, u'ü') + u".org"_s,
                               u"a@"_s + QString(u"abcdefg."_s).repeated(31) + u"abcde"_s,
                               u"\"a\\\"@b.c"_s,
                               u"\"a\"b\"@c.d"_s,
                               u"a\"@b.c"_s,
                               u"a>@b.c"_s,
                               u"a\\b@c.d"_s,
                               u"a:b@c.d"_s,
                               u"a@[1.2.3.256]"_s,
                               u"a@[1.2.3.]"_s,
                               u"a@[1.2.3.0001]"_s,
                               u"a@[1.2.3.+1]"_s,
                               u"a@[1.2.3.4.5]"_s,
                               u"a@[1.2.3.4"_s,
                               u"a@1.2.3.4]"_s,
                               u"a@[IPv6:1:2]"_s,
                               u"a@[IPv6:1::g]"_s,
                               u"a@[1::2:3]"_s,
                               u"a@[]"_s,
                               u"a@b.c"_s + QChar(0xD800)}) {
        row(bad, false);
    }
}

void TestAddress::isEmailAddress()
{
    QFETCH(const QString, text);
    QFETCH(const bool, valid);
    QCOMPARE(quillon::QuillonAddress().IsEmailAddress(text), valid);
}

QTEST_GUILESS_MAIN(TestAddress)
#include "test_address.moc"
