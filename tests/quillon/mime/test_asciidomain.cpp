#include "quillon/mail/asciidomain.h"

#include <QTest>

using namespace Qt::StringLiterals;

class TestAsciiDomain : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void onlyOtherLettersThanAsciiAreTurned_data();
    void onlyOtherLettersThanAsciiAreTurned();
};

void TestAsciiDomain::onlyOtherLettersThanAsciiAreTurned_data()
{
    QTest::addColumn<QString>("domain");
    QTest::addColumn<QByteArray>("ascii");
    QTest::newRow("ascii") << u"Mail.Example.org"_s << "Mail.Example.org"_ba;
    QTest::newRow("letters") << u"bücher.example"_s << "xn--bcher-kva.example"_ba;
    QTest::newRow("capitals") << u"BÜCHER.Example"_s << "xn--bcher-kva.example"_ba;
    QTest::newRow("turned already") << u"xn--bcher-kva.example"_s << "xn--bcher-kva.example"_ba;
    QTest::newRow("literal") << u"[192.0.2.1]"_s << "[192.0.2.1]"_ba;
    QTest::newRow("last of ASCII") << u"a\u007F"_s << "a\x7F"_ba;
    QTest::newRow("first beyond ASCII") << u"a\u0080"_s << QByteArray();
    QTest::newRow("literal of other letters") << u"[ü]"_s << QByteArray();
    QTest::newRow("not to be judged here") << u"a..b_c"_s << "a..b_c"_ba;
    QTest::newRow("without an ASCII form") << u"ü..example"_s << QByteArray();
    QTest::newRow("empty") << QString() << QByteArray();
}

void TestAsciiDomain::onlyOtherLettersThanAsciiAreTurned()
{
    QFETCH(QString, domain);
    QTEST(quillon::asciiDomain(domain), "ascii");
}

QTEST_GUILESS_MAIN(TestAsciiDomain)
#include "test_asciidomain.moc"
