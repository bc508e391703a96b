#include "quillon/smtp/realserverbench.h"

#include <QCryptographicHash>

using namespace quillon;
using namespace Qt::StringLiterals;
using testsupport::ChildServer;

/// The transport against servers that others wrote: aiosmtpd with Python's TLS, and OpenSSL's certificates.
class TestSmtpServers : public QObject, private RealServerBench {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { prepare(); }
    void init() { renew(); }

    void aPlainServerGetsTheMailOctetByOctet();
    void linesOfDotsAndLongLinesArrive();
    void everyLoginWorksOverEveryLink_data();
    void everyLoginWorksOverEveryLink();
    void aWrongPasswordIsAnErrorOfConnect_data();
    void aWrongPasswordIsAnErrorOfConnect();
    void aRefusedRecipientOfARealServerIsNamed();
    void smtpUtf8GoesToAServerThatHasIt();
    void theServersSizeIsRespected();
    void aLargeFileRaisesThePeakMemoryByLessThanTwentyMegabytes_data();
    void aLargeFileRaisesThePeakMemoryByLessThanTwentyMegabytes();
};

namespace {

qint64 kilobytes(const QByteArray &field)
{
    QFile status(u"/proc/self/status"_s);
    if (status.open(QIODevice::ReadOnly)) {
        const QList<QByteArray> lines = status.readAll().split('\n');
        for (const QByteArray &line : lines) {
            if (line.startsWith(field + ':')) {
                return line.mid(field.size() + 1).trimmed().split(' ').first().toLongLong();
            }
        }
    }
    return -1;
}

// Sets the peak back to what is in use now.
bool resetPeak()
{
    QFile references(u"/proc/self/clear_refs"_s);
    return references.open(QIODevice::WriteOnly) && references.write("5") == 1;
}

} // namespace

void TestSmtpServers::aPlainServerGetsTheMailOctetByOctet()
{
    ChildServer server;
    QVERIFY2(server.startPython(u"smtp_server.py"_s, tlsArguments(u"none"_s)), qPrintable(server.fault()));
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY2(client.send(text, {u"a@b.c"_s, u"d@e.f"_s}), qPrintable(client.Errors.join(u'\n')));
    QCOMPARE(received(1), text);
    QCOMPARE(facts(1)["from"_L1].toString(), u"from@example.org"_s);
    QCOMPARE(facts(1)["to"_L1].toArray(), (QJsonArray{u"a@b.c"_s, u"d@e.f"_s}));
    QVERIFY(client.Errors.isEmpty());
}

void TestSmtpServers::linesOfDotsAndLongLinesArrive()
{
    ChildServer server;
    QVERIFY2(server.startPython(u"smtp_server.py"_s, tlsArguments(u"none"_s)), qPrintable(server.fault()));
    const QByteArray mail = ".\r\n..\r\n\r\n.a\r\n" + QByteArray(998, 'x') + "\r\n.\r\n";
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY2(client.send(mail), qPrintable(client.Errors.join(u'\n')));
    QCOMPARE(received(1), mail);
}

void TestSmtpServers::everyLoginWorksOverEveryLink_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<int>("security");
    QTest::addColumn<QString>("mechanism");
    QTest::addColumn<QString>("password");
    const QList<std::pair<QString, int>> links = {{u"none"_s, MailTransport::NoSecurity},
                                                  {u"starttls"_s, MailTransport::StartTls},
                                                  {u"implicit"_s, MailTransport::Ssl}};
    for (const auto &[kind, security] : links) {
        for (const QString &mechanism : {u"PLAIN"_s, u"LOGIN"_s, u"CRAM-MD5"_s}) {
            QTest::addRow("%s over %s", qPrintable(mechanism), qPrintable(kind))
                << kind << security << mechanism << u"geheim"_s;
        }
    }
    QTest::newRow("UTF-8 in PLAIN") << u"implicit"_s << int(MailTransport::Ssl) << u"PLAIN"_s << u"gehëim 密"_s;
    QTest::newRow("UTF-8 in LOGIN") << u"implicit"_s << int(MailTransport::Ssl) << u"LOGIN"_s << u"gehëim 密"_s;
}

void TestSmtpServers::everyLoginWorksOverEveryLink()
{
    QFETCH(QString, kind);
    QFETCH(int, security);
    QFETCH(QString, mechanism);
    QFETCH(QString, password);
    ChildServer server;
    QVERIFY2(
        server.startPython(u"smtp_server.py"_s, tlsArguments(kind) + QStringList{u"--auth"_s, mechanism, u"--user"_s,
                                                                                 u"user"_s, u"--password"_s, password}),
        qPrintable(server.fault()));
    Client client;
    client.Transport.Security = security;
    client.Transport.User = u"user"_s;
    client.Transport.Password = password;
    QCOMPARE(client.connectTo(server.port(), u"localhost"_s), 2);
    QVERIFY2(client.accepted(), qPrintable(client.Errors.join(u'\n')));
    QVERIFY2(client.send(text), qPrintable(client.Errors.join(u'\n')));
    QCOMPARE(server.waitForLine("AUTH "), mechanism.toLatin1());
    QCOMPARE(received(1), text);
    QCOMPARE(facts(1)["tls"_L1].toBool(), kind != u"none");
    QCOMPARE(facts(1)["login"_L1].toBool(), true);
    QVERIFY(!client.Progress.join(u' ').contains(password));
}

void TestSmtpServers::aWrongPasswordIsAnErrorOfConnect_data()
{
    QTest::addColumn<QString>("mechanism");
    QTest::newRow("PLAIN") << u"PLAIN"_s;
    QTest::newRow("LOGIN") << u"LOGIN"_s;
    QTest::newRow("CRAM-MD5") << u"CRAM-MD5"_s;
}

void TestSmtpServers::aWrongPasswordIsAnErrorOfConnect()
{
    QFETCH(QString, mechanism);
    ChildServer server;
    QVERIFY2(server.startPython(u"smtp_server.py"_s,
                                tlsArguments(u"starttls"_s) + QStringList{u"--auth"_s, mechanism, u"--user"_s,
                                                                          u"user"_s, u"--password"_s, u"geheim"_s}),
             qPrintable(server.fault()));
    Client client;
    client.Transport.Security = MailTransport::StartTls;
    client.Transport.User = u"user"_s;
    client.Transport.Password = u"falsches Wort"_s;
    QVERIFY(client.connectTo(server.port(), u"localhost"_s) != 2);
    QCOMPARE(client.Errors.size(), 1);
    const QString error = client.Errors.first();
    QVERIFY2(error.contains(u"535 5.7.8") && error.contains(mechanism), qPrintable(error));
    QVERIFY2(!error.contains(u"falsches Wort"), qPrintable(error));
    QVERIFY(!client.send(text));
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY(received(1).isEmpty());
}

void TestSmtpServers::aRefusedRecipientOfARealServerIsNamed()
{
    ChildServer server;
    QVERIFY2(server.startPython(u"smtp_server.py"_s, tlsArguments(u"none"_s) + QStringList{u"--refuse"_s, u"no@b.c"_s}),
             qPrintable(server.fault()));
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(!client.send(text, {u"yes@b.c"_s, u"no@b.c"_s}));
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY2(client.Errors.first().contains(u"no@b.c") && client.Errors.first().contains(u"550 5.1.1"),
             qPrintable(client.Errors.first()));
    QVERIFY(client.send(text, {u"yes@b.c"_s}));
    QCOMPARE(facts(1)["to"_L1].toArray(), (QJsonArray{u"yes@b.c"_s}));
    QVERIFY(received(2).isEmpty());
}

void TestSmtpServers::smtpUtf8GoesToAServerThatHasIt()
{
    for (const bool has : {true, false}) {
        ChildServer server;
        QVERIFY2(server.startPython(u"smtp_server.py"_s,
                                    tlsArguments(u"none"_s) + (has ? QStringList() : QStringList{u"--no-utf8"_s})),
                 qPrintable(server.fault()));
        Client client;
        QCOMPARE(client.connectTo(server.port()), 2);
        QCOMPARE(client.send(text, {u"jürgen@bücher.example"_s}), has);
        QCOMPARE(client.Errors.size(), has ? 0 : 1);
        if (has) {
            QCOMPARE(facts(1)["to"_L1].toArray(), (QJsonArray{u"jürgen@xn--bcher-kva.example"_s}));
            QVERIFY(facts(1)["options"_L1].toArray().contains(u"SMTPUTF8"_s));
        }
    }
}

void TestSmtpServers::theServersSizeIsRespected()
{
    ChildServer server;
    QVERIFY2(server.startPython(u"smtp_server.py"_s, tlsArguments(u"none"_s) + QStringList{u"--size"_s, u"1000"_s}),
             qPrintable(server.fault()));
    Client client;
    QCOMPARE(client.connectTo(server.port()), 2);
    QVERIFY(!client.send(QByteArray(1001, 'x')));
    QVERIFY2(client.Errors.first().contains(u"1000 octets"), qPrintable(client.Errors.join(u'\n')));
    QVERIFY(client.send(text));
    QCOMPARE(received(1), text);
}

void TestSmtpServers::aLargeFileRaisesThePeakMemoryByLessThanTwentyMegabytes_data()
{
    QTest::addColumn<int>("security");
    QTest::newRow("plain") << int(MailTransport::NoSecurity);
    QTest::newRow("TLS") << int(MailTransport::Ssl);
}

void TestSmtpServers::aLargeFileRaisesThePeakMemoryByLessThanTwentyMegabytes()
{
    QFETCH(int, security);
#ifdef __SANITIZE_ADDRESS__
    QSKIP("the address sanitizer keeps freed memory, so that the peak says nothing");
#endif
    constexpr qint64 size = 200LL * 1024 * 1024;
    QFile file(m_out->filePath(u"large.bin"_s));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.resize(size));
    file.close();
    ChildServer server;
    QStringList arguments;
    if (security != MailTransport::NoSecurity) {
        arguments = {u"--certificate"_s, m_certificates->localhostFile(), u"--key"_s,
                     m_certificates->localhostKeyFile()};
    }
    QVERIFY2(server.startPython(u"sink_server.py"_s, arguments), qPrintable(server.fault()));
    const EncodedMail mail = Client::mailWithFile(file.fileName());
    Client client;
    client.Transport.Security = security;
    QVERIFY(resetPeak());
    const qint64 before = kilobytes("VmHWM");
    QCOMPARE(client.connectTo(server.port(), u"localhost"_s), 2);
    QVERIFY2(waitFor(client.Transport.SendEncoded(mail, u"a@b.c"_s, {u"d@e.f"_s})),
             qPrintable(client.Errors.join(u'\n')));
    const qint64 raised = kilobytes("VmHWM") - before;
    qInfo("peak memory raised by %lld kB from %lld kB", raised, before);
    QVERIFY(before > 0);
    QVERIFY(raised < 20 * 1024);

    // All of it has arrived: the digest is that of the header, of lines of "A" and of the end.
    QCryptographicHash digest(QCryptographicHash::Sha256);
    digest.addData("Subject: file\r\n\r\n");
    const qint64 coded = (size + 2) / 3 * 4;
    const QByteArray line = QByteArray(76, 'A') + "\r\n";
    qint64 left = coded;
    for (; left > 76; left -= 76) {
        digest.addData(line);
    }
    QByteArray last(left, 'A');
    for (qint64 i = 0; i < (3 - size % 3) % 3; ++i) {
        last[left - 1 - i] = '=';
    }
    digest.addData(last + "\r\n.\r\n");
    const QList<QByteArray> told = server.waitForLine("MAIL ").split(' ');
    QCOMPARE(told.first().toLongLong(), mail.Size + 3);
    QCOMPARE(told.last(), digest.result().toHex());
}

QTEST_GUILESS_MAIN(TestSmtpServers)
#include "test_smtpservers.moc"
