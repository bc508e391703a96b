#include "quillon/mail/smtptls.h"
#include "sendbench.h"
#include "support/certificates.h"
#include "support/childserver.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace corvane;

/// Whole runs against servers that are not ours: what the log, the boxes and the server's mail say.
class TestRealServers : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        m_certificates = std::make_unique<testsupport::Certificates>();
        QVERIFY2(m_certificates->isValid(), qPrintable(m_certificates->fault()));
        quillon::SmtpTls::setAuthorities({m_certificates->authority()});
    }
    void init() { m_bench = std::make_unique<SendBench>(); }
    void cleanup()
    {
        m_bench.reset();
        quillon::SmtpTls::setAuthorities({m_certificates->authority()});
    }

    void plainServerGetsTheMail();
    void loginOverTls();
    void loginOverTls_data();
    void wrongPasswordFailsTheConnection();
    void untrustedCertificateFailsTheConnection();
    void wrongHostNameFailsTheConnection();
    void starttlsThatIsNotOfferedSendsNothingInTheClear();
    void proxyWithoutAndWithUser();
    void proxyWithoutAndWithUser_data();
    void refusedRecipientDeliversToNobody();

private:
    bool start(testsupport::ChildServer &server, QStringList arguments)
    {
        arguments << u"--out"_s << m_bench->tree.path();
        return server.startPython(u"smtp_server.py"_s, arguments);
    }
    [[nodiscard]] QStringList tls(const QString &kind) const
    {
        return {u"--tls"_s,         kind,
                u"--certificate"_s, m_certificates->localhostFile(),
                u"--key"_s,         m_certificates->localhostKeyFile()};
    }
    /// A run that is to succeed, with its log held against every line.
    void sendAndCompareLog()
    {
        ExpectedPrompts asked;
        asked.expectBox(u"SENT_SUCC"_s, quillon::InformationBox);
        m_bench->run();
        QStringList log = m_bench->log();
        QVERIFY2(log.size() == 19, qPrintable(log.join(u'\n')));
        log.removeAt(6); // the date is that of the moment
        QCOMPARE(log,
                 (QStringList{QString(75, u'-'), u"Begin: (moment)"_s, u"Account: ada@x.org"_s,
                              u"Sender: Ada King <ada@x.org>"_s, u"ReplyTo: reply@x.org"_s, u"To: Bob <bob@y.org>"_s,
                              u"Message Type: Plain Text"_s, u"Encoding: utf-8"_s, u"Priority: Normal"_s,
                              u"Request Read Receipt: No"_s, u"One By One: No"_s, u"Sending Method: Manual"_s,
                              u"Subject: Hello"_s, u"Content: "_s, u"Dear {First Name of The Recipient},"_s,
                              u"hello."_s, u"text of SENT_SUCC"_s, u"End: (moment)"_s}));
        QVERIFY(contentOf(m_bench->tree.path(u"1.eml"_s)).contains("Dear Bob,"));
    }
    /// A run whose connection fails: one box of the transport's with these words, then that of the connection.
    void failToConnect(const QString &server, quint16 port, const QStringList &words)
    {
        ExpectedPrompts asked([](const QString &) {});
        m_bench->run();
        const QString connection = u"text of CONN_FAILED "_s + server + u':' + QString::number(port);
        QCOMPARE(asked.log().size(), 2);
        QVERIFY(asked.log().at(0).contains(u"style 16"_s));
        for (const QString &word : words) {
            QVERIFY2(asked.log().at(0).contains(word, Qt::CaseInsensitive), qPrintable(asked.log().at(0)));
        }
        QCOMPARE(asked.log().at(1), u"box CONN_FAILED style 48: "_s + connection);
        QStringList log = m_bench->log();
        QCOMPARE(log.size(), 5);
        QVERIFY(log.takeAt(2).startsWith(u"Error: "_s));
        QCOMPARE(log,
                 (QStringList{QString(75, u'-'), u"Begin: (moment)"_s, u"Error: "_s + connection, u"End: (moment)"_s}));
        QVERIFY(!QFile::exists(m_bench->tree.path(u"1.eml"_s)));
    }
    [[nodiscard]] QJsonObject facts() const
    {
        return QJsonDocument::fromJson(contentOf(m_bench->tree.path(u"1.json"_s))).object();
    }

    std::unique_ptr<testsupport::Certificates> m_certificates;
    std::unique_ptr<SendBench> m_bench;
};

void TestRealServers::plainServerGetsTheMail()
{
    testsupport::ChildServer server;
    QVERIFY2(start(server, {}), qPrintable(server.fault()));
    m_bench->useServer(u"127.0.0.1"_s, server.port());
    sendAndCompareLog();
    QCOMPARE(facts().value(u"tls"_s).toBool(), false);
    QCOMPARE(facts().value(u"from"_s).toString(), u"ada@x.org"_s);
}

void TestRealServers::loginOverTls_data()
{
    QTest::addColumn<QString>("tlsKind");
    QTest::addColumn<QString>("security");
    QTest::addColumn<QString>("mechanism");
    for (const QString &mechanism : {u"PLAIN"_s, u"LOGIN"_s, u"CRAM-MD5"_s}) {
        QTest::newRow(qPrintable(u"STARTTLS "_s + mechanism)) << u"starttls"_s << u"T"_s << mechanism;
        QTest::newRow(qPrintable(u"implicit TLS "_s + mechanism)) << u"implicit"_s << u"S"_s << mechanism;
    }
}

void TestRealServers::loginOverTls()
{
    QFETCH(const QString, tlsKind);
    QFETCH(const QString, security);
    QFETCH(const QString, mechanism);
    testsupport::ChildServer server;
    QVERIFY2(start(server, tls(tlsKind) << u"--auth"_s << mechanism << u"--user"_s << u"ada"_s << u"--password"_s
                                        << u"gräße"_s),
             qPrintable(server.fault()));
    m_bench->useServer(u"localhost"_s, server.port(), security, u"Y\tada\tgräße"_s);
    sendAndCompareLog();
    QCOMPARE(facts().value(u"tls"_s).toBool(), true);
    QCOMPARE(facts().value(u"login"_s).toBool(), true);
    QVERIFY(!contentOf(m_bench->logPath()).contains(u"gräße"_s.toUtf8()));
}

void TestRealServers::wrongPasswordFailsTheConnection()
{
    testsupport::ChildServer server;
    QVERIFY2(start(server, tls(u"starttls"_s) << u"--auth"_s << u"PLAIN"_s << u"--user"_s << u"ada"_s << u"--password"_s
                                              << u"right"_s),
             qPrintable(server.fault()));
    m_bench->useServer(u"localhost"_s, server.port(), u"T"_s, u"Y\tada\twrong-one"_s);
    failToConnect(u"localhost"_s, server.port(), {u"535"_s});
    QVERIFY(!contentOf(m_bench->logPath()).contains("wrong-one"));
}

void TestRealServers::untrustedCertificateFailsTheConnection()
{
    quillon::SmtpTls::setAuthorities({});
    for (const auto &[kind, security] : {std::pair(u"starttls"_s, u"T"_s), std::pair(u"implicit"_s, u"S"_s)}) {
        m_bench.reset();
        m_bench = std::make_unique<SendBench>();
        testsupport::ChildServer server;
        QVERIFY2(start(server, tls(kind)), qPrintable(server.fault()));
        m_bench->useServer(u"localhost"_s, server.port(), security);
        failToConnect(u"localhost"_s, server.port(), {u"certificate"_s});
    }
}

void TestRealServers::wrongHostNameFailsTheConnection()
{
    testsupport::ChildServer server;
    QVERIFY2(start(server, {u"--tls"_s, u"starttls"_s, u"--certificate"_s, m_certificates->elsewhereFile(), u"--key"_s,
                            m_certificates->elsewhereKeyFile()}),
             qPrintable(server.fault()));
    m_bench->useServer(u"localhost"_s, server.port(), u"T"_s);
    failToConnect(u"localhost"_s, server.port(), {u"host name"_s});
}

void TestRealServers::starttlsThatIsNotOfferedSendsNothingInTheClear()
{
    testsupport::ChildServer server;
    QVERIFY2(start(server, {}), qPrintable(server.fault()));
    m_bench->useServer(u"127.0.0.1"_s, server.port(), u"T"_s);
    failToConnect(u"127.0.0.1"_s, server.port(), {u"STARTTLS"_s});
}

void TestRealServers::proxyWithoutAndWithUser_data()
{
    QTest::addColumn<QString>("user");
    QTest::addColumn<QString>("given");
    QTest::addColumn<bool>("passes");
    QTest::newRow("open proxy") << QString() << u"N\t\t"_s << true;
    QTest::newRow("with its user") << u"pat"_s << u"Y\tpat\tproxy-pass"_s << true;
    QTest::newRow("with a wrong password") << u"pat"_s << u"Y\tpat\twrong"_s << false;
}

void TestRealServers::proxyWithoutAndWithUser()
{
    QFETCH(const QString, user);
    QFETCH(const QString, given);
    QFETCH(const bool, passes);
    testsupport::ChildServer server;
    QVERIFY2(start(server, {}), qPrintable(server.fault()));
    testsupport::ChildServer proxy;
    QVERIFY2(proxy.startMicrosocks(user, u"proxy-pass"_s), qPrintable(proxy.fault()));
    m_bench->useServer(u"127.0.0.1"_s, server.port());
    m_bench->tree.useProxy(u"Socks5\t127.0.0.1\t"_s + QString::number(proxy.port()) + u'\t' + given + u"\t/PSEND"_s);
    if (passes) {
        sendAndCompareLog();
    } else {
        failToConnect(u"127.0.0.1"_s, server.port(), {u"proxy"_s});
    }
    QVERIFY(!contentOf(m_bench->logPath()).contains("proxy-pass"));
}

void TestRealServers::refusedRecipientDeliversToNobody()
{
    testsupport::ChildServer server;
    QVERIFY2(start(server, {u"--refuse"_s, u"cid@y.org"_s}), qPrintable(server.fault()));
    m_bench->useServer(u"127.0.0.1"_s, server.port());
    m_bench->window.setText(SendBench::Field::CC, u"cid@y.org"_s);
    ExpectedPrompts asked([](const QString &) {});
    m_bench->run();
    QCOMPARE(asked.log().size(), 2);
    QVERIFY(asked.log().at(0).contains(u"cid@y.org"_s));
    QVERIFY(asked.log().at(1).startsWith(u"box SENT_UNSUCC style 48"_s));
    QVERIFY(!QFile::exists(m_bench->tree.path(u"1.eml"_s)));
}

QTEST_GUILESS_MAIN(TestRealServers)
#include "test_realservers.moc"
