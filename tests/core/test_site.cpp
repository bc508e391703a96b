#include "core/site.h"
#include "support/treefixture.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace corvane;

class TestSite : public QObject, protected TreeFixture {
    Q_OBJECT

private Q_SLOTS:
    void init() { makeBareTree(); }
    void cleanup() { dropTree(); }

    void missingFileCallsNobody();
    void shippedFileTellsTheDefaults();
    void deployersValuesCount();
    void blankValuesHaveTheDefaults();
    void portThatIsNoneIsPort80WithAFault();
    void portThatIsNoneIsPort80WithAFault_data();

private:
    [[nodiscard]] Site siteOf(const QByteArray &file) const
    {
        writeFile(m_tree->globals.programFolder + u"/site.dll"_s, file);
        return readSite(m_tree->globals.programFolder);
    }
    static void compareWithDefaults(const Site &site)
    {
        QCOMPARE(site.address, u"http://www.corvane.invalid/"_s);
        QCOMPARE(site.proxyTestHost, u"www.corvane.invalid"_s);
        QCOMPARE(site.proxyTestPort, 80L);
    }
};

void TestSite::missingFileCallsNobody()
{
    const int faults = quillon::faultCount();
    compareWithDefaults(readSite(m_tree->globals.programFolder));
    QCOMPARE(quillon::faultCount(), faults);
}

void TestSite::shippedFileTellsTheDefaults()
{
    const QByteArray shipped = contentOf(u"" TEST_SOURCE_DIR "/../../resources/site.dll"_s);
    for (const char *key : {"Address=", "Proxy Test Host=", "Proxy Test Port="}) {
        QVERIFY2(shipped.contains(key), key);
    }
    compareWithDefaults(siteOf(shipped));
}

void TestSite::deployersValuesCount()
{
    const Site site = siteOf("[Site]\r\nAddress= https://mail.example/corvane \r\nProxy Test Host=web.example\r\n"
                             "Proxy Test Port=65535\r\n");
    QCOMPARE(site.address, u"https://mail.example/corvane/"_s);
    QCOMPARE(site.proxyTestHost, u"web.example"_s);
    QCOMPARE(site.proxyTestPort, 65535L);
}

void TestSite::blankValuesHaveTheDefaults()
{
    compareWithDefaults(siteOf("[Site]\r\nAddress=\r\nProxy Test Host=  \r\nProxy Test Port=\r\n"));
}

void TestSite::portThatIsNoneIsPort80WithAFault_data()
{
    QTest::addColumn<QByteArray>("port");
    for (const char *port : {"0", "65536", "-1", "http", "80x", "99999999999999999999"}) {
        QTest::newRow(port) << QByteArray(port);
    }
}

void TestSite::portThatIsNoneIsPort80WithAFault()
{
    QFETCH(const QByteArray, port);
    const int faults = quillon::faultCount();
    QCOMPARE(siteOf("[Site]\r\nProxy Test Port=" + port + "\r\n").proxyTestPort, 80L);
    QCOMPARE(quillon::faultCount(), faults + 1);
}

QTEST_GUILESS_MAIN(TestSite)
#include "test_site.moc"
