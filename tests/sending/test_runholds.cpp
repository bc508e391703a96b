#include "sending/onebyonebench.h"

#include <QRegularExpression>
#include <QTimer>

using namespace Qt::StringLiterals;
using namespace corvane;

/// What holds a run, what ends it where it rests, and how it finds its account.
class TestRunHolds : public QObject, private OneByOneBench {
    Q_OBJECT

private Q_SLOTS:
    void init() { begin(); }
    void cleanup() { end(); }

    void boxOfTheRunHoldsItAloneAndRefusesASecondRun();
    void errorOfOneMailHoldsTheNext();
    void exitInABoxOfTheRunLeavesNothingBehind();
    void exitInABoxOfTheRunLeavesNothingBehind_data();
    void endedRunDoesNotLogOnAfterPacking();
    void cancelWhilePackingSendsNothing();
    void accountIsFoundInAnyCase();
    void accountIsFoundInAnyCase_data();
    void recordsPortAndServerMayHaveBlanks();

private:
    [[nodiscard]] const RunState &state() const { return m_bench->sender.state(); }
    [[nodiscard]] QStringList ends() const { return m_bench->log().filter(QRegularExpression(u"^End: "_s)); }
    /// Lets everything that the event loop has to do be done, as far as it goes without an answer to a box.
    static void settle()
    {
        for (int turn = 0; turn < 100; ++turn) {
            QCoreApplication::processEvents();
        }
    }
    /// Attaches a folder that takes several turns of the event loop to be packed.
    void attachLargeFolder() const
    {
        const QString folder = m_bench->tree.path(u"photos"_s);
        QVERIFY(QDir().mkpath(folder));
        QFile large(folder + u"/large"_s);
        QVERIFY(large.open(QIODevice::WriteOnly) && large.resize(100'000'000));
        m_bench->window.setAttachmentPaths({folder});
    }
    /// Runs, and calls @p act once, while the folder is being packed; true when it was called.
    bool runAndActWhilePacking(const std::function<void()> &act)
    {
        m_bench->sender.run();
        bool packing = false;
        while (state().Sending()) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
            const QStringList log = packing ? QStringList() : m_bench->log();
            if (!log.isEmpty() && log.constLast() == u"Sending Method: Manual"_s) {
                packing = true;
                act();
            }
        }
        return packing;
    }
};

void TestRunHolds::boxOfTheRunHoldsItAloneAndRefusesASecondRun()
{
    ExpectedPrompts asked;
    int turns = 0;
    asked
        .expectBox(boxText(3), quillon::InformationBox, quillon::BoxAnswer::Ok, std::nullopt,
                   [&] {
                       QTimer::singleShot(0, this, [&turns] { ++turns; });
                       settle();
                       QCOMPARE(turns, 1); // the event loop turns on
                       QVERIFY(ends().isEmpty());
                       QVERIFY(state().Sending() && state().isTold());
                       QVERIFY(m_bench->progress.visible);
                       m_bench->sender.run();
                       QVERIFY(state().Sending());
                   })
        .expectBox(u"OTHER_RUN"_s, quillon::InformationBox);
    m_bench->run();
    QCOMPARE(ends().size(), 1);
}

void TestRunHolds::errorOfOneMailHoldsTheNext()
{
    refuse("bob@y.org");
    QList<int> connections;
    class Asker : public quillon::HarmlessPrompts {
    public:
        quillon::BoxAnswer box(const quillon::BoxRequest &request) override
        {
            shown(request);
            return quillon::BoxAnswer::Ok;
        }
        std::function<void(const quillon::BoxRequest &)> shown;
    } asker;
    asker.shown = [&](const quillon::BoxRequest &request) {
        settle();
        connections.append(m_server->Connections);
        QCOMPARE(request.Style, connections.size() == 1 ? quillon::CriticalBox : quillon::InformationBox);
    };
    quillon::Prompts *before = quillon::setPrompts(&asker);
    m_bench->run();
    quillon::setPrompts(before);
    QCOMPARE(connections, (QList<int>{2, 4}));
    QCOMPARE(m_server->Mails.size(), 2);
}

void TestRunHolds::exitInABoxOfTheRunLeavesNothingBehind_data()
{
    QTest::addColumn<QByteArray>("at");
    QTest::newRow("error of a mail") << QByteArray("RCPT");
    QTest::newRow("error of a connection") << QByteArray("EHLO");
    QTest::newRow("result") << QByteArray();
}

void TestRunHolds::exitInABoxOfTheRunLeavesNothingBehind()
{
    QFETCH(const QByteArray, at);
    if (!at.isEmpty()) {
        m_server->answer(at, "550 no\r\n");
        m_server->answer("HELO", "550 no\r\n");
    }
    int boxes = 0;
    QStringList log;
    class Leaver : public quillon::HarmlessPrompts {
    public:
        quillon::BoxAnswer box(const quillon::BoxRequest &) override
        {
            leave();
            return quillon::BoxAnswer::Ok;
        }
        std::function<void()> leave;
    } leaver;
    leaver.leave = [&] {
        ++boxes;
        m_bench->sender.end();
        log = m_bench->log();
    };
    quillon::Prompts *before = quillon::setPrompts(&leaver);
    m_bench->run();
    settle();
    quillon::setPrompts(before);
    QCOMPARE(boxes, 1);
    QCOMPARE(m_bench->log(), log);
    QVERIFY(ends().isEmpty());
    QTRY_COMPARE(m_server->Ended, m_server->Connections);
}

void TestRunHolds::endedRunDoesNotLogOnAfterPacking()
{
    attachLargeFolder();
    const ExpectedPrompts asked; // none may come
    QVERIFY(runAndActWhilePacking([this] { m_bench->sender.end(); }));
    settle();
    QCOMPARE(m_bench->log().constLast(), u"Sending Method: Manual"_s);
    QCOMPARE(QDir(m_bench->tree.globals.paths.zips).entryList(QDir::Files | QDir::Hidden), QStringList());
    QTRY_COMPARE(m_server->Ended, 1);
    QCOMPARE(m_server->Mails.size(), 0);
}

void TestRunHolds::cancelWhilePackingSendsNothing()
{
    attachLargeFolder();
    const ExpectedPrompts asked;
    QVERIFY(runAndActWhilePacking([this] { m_bench->sender.requestStop(); }));
    QCOMPARE(m_server->Mails.size(), 0);
    QVERIFY(m_bench->log().contains(u"Attachments: "_s + m_bench->tree.path(u"photos"_s)));
    QCOMPARE(result(), QStringList{u"End: (moment)"_s});
}

void TestRunHolds::accountIsFoundInAnyCase_data()
{
    QTest::addColumn<QByteArray>("stored");
    QTest::addColumn<QString>("chosen");
    QTest::newRow("stored with capitals") << QByteArray("ADA@X.org") << u"ada@x.org"_s;
    QTest::newRow("chosen with capitals") << QByteArray("ada@x.org") << u"Ada@X.ORG"_s;
    QTest::newRow("blanks around the choice") << QByteArray("Ada@x.org") << u"\t ada@x.org \r\n"_s;
}

void TestRunHolds::accountIsFoundInAnyCase()
{
    QFETCH(const QByteArray, stored);
    QFETCH(const QString, chosen);
    QByteArray lines = contentOf(m_bench->tree.globals.paths.smtpFile);
    lines.replace("\tada@x.org\t", '\t' + stored + '\t');
    writeFile(m_bench->tree.globals.paths.smtpFile,
              "other.example\t1\tN\tN\t\t\tO\tother@x.org\t\t\t/SAEND\r\n" + lines);
    m_bench->window.setText(Field::Account, chosen);
    runAndExpect(3);
    QCOMPARE(m_server->Mails.size(), 3);
}

void TestRunHolds::recordsPortAndServerMayHaveBlanks()
{
    QByteArray lines = contentOf(m_bench->tree.globals.paths.smtpFile);
    const QByteArray port = QByteArray::number(m_server->port());
    lines.replace("127.0.0.1\t" + port + '\t', " 127.0.0.1 \t " + port + " \t");
    writeFile(m_bench->tree.globals.paths.smtpFile, lines);
    runAndExpect(3);
    QCOMPARE(m_server->Mails.size(), 3);
}

QTEST_GUILESS_MAIN(TestRunHolds)
#include "test_runholds.moc"
