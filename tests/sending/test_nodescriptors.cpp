#include "quillon/archive/zipbuilder.h"
#include "quillon/files/descriptors.h"
#include "quillon/files/settingsfile.h"
#include "quillon/smtp/client.h"
#include "sending/servedbench.h"
#include "support/waitfor.h"

#include <QFileInfo>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>
#include <vector>

using namespace Qt::StringLiterals;
using namespace corvane;

namespace {

/// Takes every file descriptor that the process may still have, but a few.
class NoDescriptors {
public:
    explicit NoDescriptors(size_t left = 0)
    {
        ::getrlimit(RLIMIT_NOFILE, &m_before);
        const rlimit few{128, m_before.rlim_max};
        ::setrlimit(RLIMIT_NOFILE, &few);
        for (int next = 0; (next = ::open("/dev/null", O_RDONLY | O_CLOEXEC)) >= 0;) {
            m_taken.push_back(next);
        }
        for (; left > 0; --left) {
            ::close(m_taken.back());
            m_taken.pop_back();
        }
    }
    ~NoDescriptors()
    {
        for (const int taken : m_taken) {
            ::close(taken);
        }
        ::setrlimit(RLIMIT_NOFILE, &m_before);
    }
    NoDescriptors(const NoDescriptors &) = delete;
    NoDescriptors &operator=(const NoDescriptors &) = delete;

private:
    rlimit m_before{};
    std::vector<int> m_taken;
};

} // namespace

/// A process that has no file descriptor left: whatever needs one fails and says so, nothing hangs or is harmed.
class TestNoDescriptors : public QObject, private ServedBench {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
#ifdef __SANITIZE_ADDRESS__
        QSKIP("the sanitizer asks with a pipe whether an object may be touched, and takes it for none without one");
#endif
        begin();
    }
    void cleanup()
    {
        end();
    }

    void descriptorsAreCountedAsTheyAre();
    void connectingFailsWithItsError_data();
    void connectingFailsWithItsError();
    void aMailWhoseFileCannotBeReadIsNotSent();
    void filesStayAsTheyWere();
    void noArchiveIsLeft();
    void aRunEndsAndTheNextOneWorks();
};

void TestNoDescriptors::descriptorsAreCountedAsTheyAre()
{
    for (const size_t left : {0U, 1U, 7U, 8U}) {
        const NoDescriptors none(left);
        for (int round = 0; round < 2; ++round) {
            QVERIFY(quillon::descriptorsLeft(static_cast<int>(left)));
            QVERIFY(!quillon::descriptorsLeft(static_cast<int>(left) + 1));
        }
    }
}

void TestNoDescriptors::connectingFailsWithItsError_data()
{
    QTest::addColumn<QString>("host");
    QTest::addColumn<size_t>("left");
    for (const size_t left : {0U, 1U, 3U, 7U}) {
        const QByteArray few = QByteArray::number(static_cast<int>(left)) + " left";
        QTest::newRow("an address, " + few) << u"127.0.0.1"_s << left;
        QTest::newRow("a name, " + few) << u"localhost"_s << left;
    }
}

void TestNoDescriptors::connectingFailsWithItsError()
{
    QFETCH(const QString, host);
    QFETCH(const size_t, left);
    Client client;
    {
        const NoDescriptors none(left);
        QCOMPARE(client.connectTo(m_server->port(), host), 0);
    }
    QCOMPARE(client.Errors,
             QStringList{u"Connecting to %1, port %2, failed: this program has too many files open."_s.arg(
                 host, QString::number(m_server->port()))});
    QCOMPARE(client.connectTo(m_server->port(), host), 2);
}

void TestNoDescriptors::aMailWhoseFileCannotBeReadIsNotSent()
{
    const QString path = m_bench->tree.path(u"attachment.txt"_s);
    writeFile(path, "attached");
    Client client;
    QCOMPARE(client.connectTo(m_server->port()), 2);
    {
        const NoDescriptors none;
        QVERIFY(!waitFor(client.Transport.SendEncoded(Client::mailWithFile(path), u"a@b.c"_s, {u"d@e.f"_s})));
    }
    QCOMPARE(client.Errors.size(), 1);
    QVERIFY2(client.Errors.first().contains(u"the file “attachment.txt” can no longer be read"_s),
             qPrintable(client.Errors.first()));
    QVERIFY(m_server->Mails.isEmpty());
}

void TestNoDescriptors::filesStayAsTheyWere()
{
    const QString settings = m_bench->tree.path(u"settings.dll"_s);
    const QString log = m_bench->tree.path(u"a.log"_s);
    writeFile(settings, "[A]\r\nkey=old\r\n");
    writeFile(log, "first\r\n");
    quillon::SettingsFile opened(settings);
    opened.setValue(u"A"_s, u"key"_s, u"new"_s);
    const int before = quillon::faultCount();
    {
        const NoDescriptors none;
        QVERIFY(!opened.save());
        QVERIFY(!quillon::writeWholeFile(settings, "new"));
        QVERIFY(!quillon::appendToFile(log, "second\r\n"));
        // A file that cannot be read is not rewritten as an empty one, also not later.
        quillon::SettingsFile unread(settings);
        QVERIFY(!unread.readable());
        unread.setValue(u"A"_s, u"key"_s, u"new"_s);
        QVERIFY(!unread.save());
    }
    QVERIFY(quillon::faultCount() >= before + 3);
    QCOMPARE(contentOf(settings), "[A]\r\nkey=old\r\n");
    QCOMPARE(contentOf(log), "first\r\n");
    QVERIFY(opened.save());
    QVERIFY(quillon::appendToFile(log, "second\r\n"));
    QCOMPARE(contentOf(settings), "[A]\r\nkey=new\r\n");
    QCOMPARE(contentOf(log), "first\r\nsecond\r\n");
}

void TestNoDescriptors::noArchiveIsLeft()
{
    const QString folder = m_bench->tree.path(u"photos"_s);
    QDir().mkpath(folder);
    writeFile(folder + u"/a.txt"_s, "a");
    quillon::ZipBuilder builder;
    builder.ArchivePath = m_bench->tree.path(u"photos.zip"_s);
    builder.AddPattern(folder + u"/*"_s);
    {
        const NoDescriptors none;
        QVERIFY(!waitFor(builder.Build()));
    }
    QVERIFY(!QFileInfo::exists(builder.ArchivePath));
    QVERIFY(waitFor(builder.Build()));
    QVERIFY(QFileInfo::exists(builder.ArchivePath));
}

void TestNoDescriptors::aRunEndsAndTheNextOneWorks()
{
    {
        ExpectedPrompts asked([](const QString &) {});
        const NoDescriptors none;
        m_bench->run();
        QVERIFY(!asked.log().isEmpty());
    }
    QVERIFY(!m_bench->sender.state().Sending());
    QVERIFY(m_server->Mails.isEmpty());
    sendWell();
    QCOMPARE(m_server->Mails.size(), 1);
}

QTEST_GUILESS_MAIN(TestNoDescriptors)
#include "test_nodescriptors.moc"
