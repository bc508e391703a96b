#include "quillon/fault.h"
#include "records/transportsettings.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace corvane;
using quillon::MailTransport;

class TestTransportSettings : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void securityFieldYIsReadAsS();
    void unknownSecurityLeavesTheTransportsOwn();
    void fieldThatIsNoNumberIsZeroWithAFault();
    void emptyNumberIsZeroWithoutAFault();
    void userIsTakenOnlyWithAuthenticationY();
    void proxyIsTakenAsItStands();
};

void TestTransportSettings::securityFieldYIsReadAsS()
{
    QCOMPARE(securityOf(u"N"_s), 0);
    QCOMPARE(securityOf(u"S"_s), 1);
    QCOMPARE(securityOf(u"Y"_s), 1);
    QCOMPARE(securityOf(u"T"_s), 2);
    QCOMPARE(securityOf(u"y"_s, 7), 7);
    QCOMPARE(securityOf(QString(), 7), 7);
}

void TestTransportSettings::unknownSecurityLeavesTheTransportsOwn()
{
    MailTransport transport;
    transport.Security = MailTransport::StartTls;
    useAccount(u"h\t25\tX\tN"_s, transport);
    QCOMPARE(transport.Security, 2);
    useAccount(u"h\t25\tN\tN"_s, transport);
    QCOMPARE(transport.Security, 0);
}

void TestTransportSettings::fieldThatIsNoNumberIsZeroWithAFault()
{
    const int faults = quillon::faultCount();
    QCOMPARE(numberOf(u"25x"_s), 0L);
    QCOMPARE(numberOf(u"99999999999999999999"_s), 0L);
    QCOMPARE(quillon::faultCount(), faults + 2);
    QCOMPARE(numberOf(u" 2525 "_s), 2525L);
    QCOMPARE(quillon::faultCount(), faults + 2);
}

void TestTransportSettings::emptyNumberIsZeroWithoutAFault()
{
    const int faults = quillon::faultCount();
    QCOMPARE(numberOf(QString()), 0L);
    QCOMPARE(numberOf(u"  "_s), 0L);
    QCOMPARE(quillon::faultCount(), faults);
}

void TestTransportSettings::userIsTakenOnlyWithAuthenticationY()
{
    for (const QString &flag : {u"N"_s, u"y"_s, QString()}) {
        MailTransport transport;
        useAccount(u"h\t25\tN\t"_s + flag + u"\tada\tsecret"_s, transport);
        QCOMPARE(transport.User, QString());
        QCOMPARE(transport.Password, QString());
        useProxy(u"Socks5\th\t1080\t"_s + flag + u"\tpat\tsecret"_s, transport);
        QCOMPARE(transport.ProxyUser, QString());
        QCOMPARE(transport.ProxyPassword, QString());
    }
    MailTransport transport;
    useAccount(u"h\t25\tN\tY\tada\tsecret"_s, transport);
    QCOMPARE(transport.User, u"ada"_s);
    QCOMPARE(transport.Password, u"secret"_s);
    useProxy(u"Socks5\th\t1080\tY\tpat\tgeheim"_s, transport);
    QCOMPARE(transport.ProxyUser, u"pat"_s);
    QCOMPARE(transport.ProxyPassword, u"geheim"_s);
}

void TestTransportSettings::proxyIsTakenAsItStands()
{
    MailTransport transport;
    useProxy(u"Socks5\t p.x.org \t 1081 \tN\t\t\t/PSEND"_s, transport);
    QCOMPARE(transport.ProxyServer, u" p.x.org "_s);
    QCOMPARE(transport.ProxyPort, 1081L);
    useProxy(QString(), transport);
    QCOMPARE(transport.ProxyServer, QString());
    QCOMPARE(transport.ProxyPort, 0L);
}

QTEST_GUILESS_MAIN(TestTransportSettings)
#include "test_transportsettings.moc"
