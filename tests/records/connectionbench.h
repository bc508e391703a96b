#pragma once

#include "quillon/mail/mailtransport.h"
#include "records/connectiontest.h"
#include "support/childserver.h"
#include "support/scriptedserver.h"
#include "support/waitfor.h"

#include <QTest>
#include <QTimer>

/// What the tests of the connection tests share: record lines for servers on loopback, times, and the reason of the
/// last test that was run.
class ConnectionBench : public QObject {
protected:
    static constexpr int longTime = 60'000;
    static constexpr int shortTime = 150;
    static constexpr int shortGrace = 30;

    const QString password = QStringLiteral("geheim-hunter2");
    const QString noLogin = QStringLiteral("N\t\t");
    const QString login = QStringLiteral("Y\tada\t") + password;

    /// The lines of an account and of a proxy; @p loginFields from the authentication to the password.
    static QString accountLine(const QString &host, const QString &port, const QString &security,
                               const QString &loginFields)
    {
        const QString rest = QStringLiteral("Ada\tada@x.org\t\t\t/SAEND");
        return QStringList{host, port, security, loginFields, rest}.join(QChar(u'\t'));
    }
    static QString accountLine(quint16 port, const QString &security, const QString &loginFields)
    {
        return accountLine(QStringLiteral("127.0.0.1"), QString::number(port), security, loginFields);
    }
    static QString proxyLine(const QString &host, const QString &port, const QString &loginFields)
    {
        return QStringList{QStringLiteral("Socks5"), host, port, loginFields, QStringLiteral("/PSEND")}.join(
            QChar(u'\t'));
    }
    static QString proxyLine(quint16 port, const QString &loginFields = QStringLiteral("N\t\t"))
    {
        return proxyLine(QStringLiteral("127.0.0.1"), QString::number(port), loginFields);
    }
    static quint16 portOfNobody()
    {
        QTcpServer gone;
        return gone.listen(QHostAddress::LocalHost) ? gone.serverPort() : 0;
    }

    bool smtp(const QString &account, const QString &proxy = QString())
    {
        return keep(waitFor(corvane::TestSmtpConnection(account, proxy)));
    }
    /// The test of a proxy, with a web server on loopback in the place of the site's.
    bool reach(const QString &proxy, quint16 webPort)
    {
        const QString host = QStringLiteral("127.0.0.1");
        return keep(waitFor(corvane::TestProxyConnection(proxy, {QStringLiteral("http://127.0.0.1/"), host, webPort})));
    }
    bool keep(const corvane::ConnectionTestResult &result)
    {
        m_reason = result.reason;
        return result.works;
    }
    /// That @p test is false while a timer ticks.
    template <typename Test> static void verifyLoopLives(Test test)
    {
        int ticks = 0;
        QTimer timer;
        connect(&timer, &QTimer::timeout, &timer, [&ticks] { ++ticks; });
        timer.start(1);
        QVERIFY(!test());
        QCOMPARE_GT(ticks, 1);
    }
    /// Rows of proxy lines with a wrong number of fields; "%1" is the port.
    static void addWrongProxyLines()
    {
        QTest::addColumn<QString>("proxy");
        QTest::newRow("a blank") << QStringLiteral(" ");
        QTest::newRow("6 fields") << QStringLiteral("Socks5\t127.0.0.1\t%1\tY\tpat\tgeheim-hunter2");
        QTest::newRow("8 fields") << QStringLiteral("Socks5\t127.0.0.1\t%1\tY\tpat\tgeheim-hunter2\t\t/PSEND");
    }
    /// Rows of hosts that are none, or that nobody can resolve.
    static void addOddHosts()
    {
        QTest::addColumn<QString>("host");
        // A label of more than 63 octets is known to be no name without asking anybody.
        QTest::newRow("unresolvable") << QString(64, u'x') + QStringLiteral(".invalid");
        QTest::newRow("unresolvable, not Latin") << QString(64, QChar(u'\u0436')) + QStringLiteral(".invalid");
        QTest::newRow("empty") << QString();
        QTest::newRow("blank") << QStringLiteral("  ");
        QTest::newRow("blank within") << QStringLiteral("mail x.org");
        QTest::newRow("300 characters") << QString(300, u'x');
        QTest::newRow("path") << QStringLiteral("mail.x.org/inbox");
        QTest::newRow("address") << QStringLiteral("ada@x.org");
        QTest::newRow("brackets") << QStringLiteral("[]");
        QTest::newRow("line end") << QStringLiteral("x.org\r\nQUIT");
        QTest::newRow("zero") << QStringLiteral("x") + QChar::Null + QStringLiteral("y");
        QTest::newRow("lone surrogate") << QString(QChar(0xd800));
        QTest::newRow("direction mark") << QStringLiteral("\u202email.x.org");
    }
    /// A socks_stub.py that reaches @p target whatever it is asked for.
    static bool startStub(testsupport::ChildServer &proxy, const testsupport::ScriptedServer &target,
                          QStringList more = {})
    {
        more += {QStringLiteral("--target"), QString::number(target.port())};
        return proxy.startPython(QStringLiteral("socks_stub.py"), more);
    }
    void verifyReason(const QString &words) const
    {
        QVERIFY2(m_reason.contains(words, Qt::CaseInsensitive), qPrintable(m_reason));
        QVERIFY2(!m_reason.contains(password), qPrintable(m_reason));
    }

    QString m_reason;
};
