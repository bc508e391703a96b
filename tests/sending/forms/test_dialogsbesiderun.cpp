#include "macros/forms/frmpubmacro.h"
#include "macros/forms/frmpubmacrodetail.h"
#include "quillon/forms/formregistry.h"
#include "quillon/forms/qtprompts.h"
#include "recipients/forms/frmpubprompt.h"
#include "records/forms/frmpuboptions.h"
#include "sending/forms/formprogressview.h"
#include "sending/forms/frmpubprogress.h"
#include "sending/sendbench.h"
#include "support/scriptedserver.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;
using namespace corvane;

namespace {

constexpr int mails = 5;

} // namespace

/// The dialogs that a user opens while a run is under way, as the program shows them: they do not hold the run.
class TestDialogsBesideRun : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void aDialogThatIsOpenedMeanwhileDoesNotHoldTheRun();
    void aDialogThatIsOpenedMeanwhileDoesNotHoldTheRun_data();
    void aBoxOfTheRunHoldsItAndNothingElse();
    void aRunThatIsCancelledEndsBesideADialog();

private:
    using Field = Message::Field;

    void begin(const QStringList &people)
    {
        m_bench->window.setText(Field::To, people.join(u", "_s));
        m_run->run();
    }
    static QStringList people()
    {
        QStringList all;
        for (int i = 1; i <= mails; ++i) {
            all.append(u"n%1@y.org"_s.arg(i));
        }
        return all;
    }
    /// The box that is on the screen; nullptr while there is none.
    static QMessageBox *box() { return qobject_cast<QMessageBox *>(QApplication::activeModalWidget()); }
    static void leave(QWidget *dialog)
    {
        auto *asking = qobject_cast<QMessageBox *>(dialog);
        asking ? asking->buttons().constFirst()->click() : static_cast<void>(dialog->close());
    }
    /// Calls @p look each time that the event loop has nothing else to do, until it says true.
    static void untilTrue(QObject *context, const std::function<bool()> &look)
    {
        auto *timer = new QTimer(context);
        connect(timer, &QTimer::timeout, context, [timer, look] {
            if (look()) {
                timer->deleteLater();
                timer->stop();
            }
        });
        timer->start(1);
    }

    std::unique_ptr<SendBench> m_bench;
    std::unique_ptr<testsupport::ScriptedServer> m_server;
    std::unique_ptr<quillon::FormRegistry> m_forms;
    std::unique_ptr<quillon::QtPrompts> m_asker;
    std::unique_ptr<FormProgressView> m_progress;
    std::unique_ptr<SendRun> m_run;
};

void TestDialogsBesideRun::init()
{
    m_bench = std::make_unique<SendBench>();
    m_server = std::make_unique<testsupport::ScriptedServer>();
    m_bench->useServer(u"127.0.0.1"_s, m_server->port());
    m_bench->window.setOneByOne(true);
    m_bench->tree.globals.settings.set(Setting::OboInterval, u"0.02"_s);
    m_forms = std::make_unique<quillon::FormRegistry>();
    m_asker = std::make_unique<quillon::QtPrompts>(*m_forms);
    quillon::setPrompts(m_asker.get());
    m_progress = std::make_unique<FormProgressView>(*m_forms, [] { return nullptr; });
    m_run = std::make_unique<SendRun>(
        SendRun::Rooms{m_bench->tree.globals, m_bench->window, m_bench->window, *m_progress, m_bench->prompts});
    m_forms->add(u"frmPubProgress"_s, [this] {
        return new frmPubProgress(
            {[this] { m_run->requestStop(); }, [this] { m_forms->unload(u"frmPubProgress"_s); }, [] {}});
    });
    m_forms->add(u"frmPubOptions"_s, [this] {
        return new frmPubOptions(
            m_bench->tree.globals, m_bench->window, *m_forms,
            OptionsHooks{[] {}, [] { return QString(); }, [] { return QList<QAction *>(); }, [] {}});
    });
    m_forms->add(u"frmPubMacro"_s, [this] { return new frmPubMacro(m_bench->tree.globals, *m_forms, {[] {}, [] {}}); });
    m_forms->add(u"frmPubMacroDetail"_s, [] { return new frmPubMacroDetail([] {}); });
    m_forms->add(u"frmPubPrompt"_s,
                 [this] { return new frmPubPrompt(m_bench->tree.globals, m_bench->prompts.entries(), [] {}); });
}

void TestDialogsBesideRun::cleanup()
{
    m_run.reset();
    quillon::setPrompts(nullptr);
    m_progress.reset();
    m_asker.reset();
    m_forms.reset();
    m_server.reset();
    m_bench.reset();
}

using Opening = std::function<void()>;
Q_DECLARE_METATYPE(Opening)

void TestDialogsBesideRun::aDialogThatIsOpenedMeanwhileDoesNotHoldTheRun_data()
{
    QTest::addColumn<Opening>("open");
    for (const char *form : {"frmPubOptions", "frmPubMacro", "frmPubPrompt"}) {
        QTest::newRow(form) << Opening([form] { quillon::prompts().showModalForm(QString::fromLatin1(form), -1); });
    }
    QTest::newRow("files to open") << Opening([] {
        (void)quillon::prompts().openFiles({u"Files"_s, {{u"All"_s, u"*.*"_s}}, QString(), true});
    });
    QTest::newRow("file to save") << Opening([] { (void)quillon::prompts().saveFile({u"Save"_s, {}, QString()}); });
    QTest::newRow("folder") << Opening([] { (void)quillon::prompts().selectFolder(u"Folder"_s); });
    QTest::newRow("colour") << Opening([] { (void)quillon::prompts().chooseColor(); });
    QTest::newRow("input box") << Opening([] { (void)quillon::prompts().input({QString(), u"Which?"_s, QString()}); });
    QTest::newRow("box of another command") << Opening([] {
        (void)quillon::prompts().box({QString(), u"Another"_s, QString(), quillon::YesNoBox});
    });
}

void TestDialogsBesideRun::aDialogThatIsOpenedMeanwhileDoesNotHoldTheRun()
{
    QFETCH(const Opening, open);
    begin(people());
    QVERIFY(m_run->state().Sending());
    QCOMPARE(m_server->Mails.size(), 0);

    QPointer<QWidget> opened;
    bool stoodOpen = false;
    untilTrue(this, [&] {
        if (!opened) {
            opened = QApplication::activeModalWidget();
            return false;
        }
        if (m_server->Mails.size() == mails && m_run->state().phase() == RunState::Phase::Closing && box() &&
            box() != opened) {
            stoodOpen = opened->isVisible();
            leave(box());
        }
        if (stoodOpen && !m_run->state().Sending()) {
            leave(opened); // beyond the end of the run
            return true;
        }
        return false;
    });
    open();
    QVERIFY(stoodOpen);
    QCOMPARE(m_server->Mails.size(), mails);
    QVERIFY(!m_run->state().Sending());
}

void TestDialogsBesideRun::aBoxOfTheRunHoldsItAndNothingElse()
{
    struct Held {
        int connections;
        qsizetype mails;
        bool counting;
        bool ended;
        bool operator==(const Held &) const = default;
    };
    m_server->answer("RCPT TO:<n1@", "550 unknown\r\n");
    QList<Held> held;
    int turns = 0;
    untilTrue(this, [&] {
        // The event loop turns while a box stands: everything else goes on, and the run waits.
        if (!box() || ++turns < 100) {
            return false;
        }
        turns = 0;
        held.append({m_server->Connections, m_server->Mails.size(), m_run->state().isCounting(),
                     m_bench->log().contains(u"End: (moment)"_s)});
        leave(box());
        return held.size() == 2;
    });
    m_bench->window.setText(Field::To, people().join(u", "_s));
    SendBench::run(*m_run);
    QCOMPARE(held.size(), 2);
    QVERIFY((held.at(0) == Held{2, 0, true, false}));
    QVERIFY((held.at(1) == Held{mails + 1, mails - 1, false, false}));
    QCOMPARE(m_bench->log().constLast(), u"End: (moment)"_s);
}

void TestDialogsBesideRun::aRunThatIsCancelledEndsBesideADialog()
{
    bool cancelled = false;
    m_server->Responder = [&](const QByteArray &line) -> std::optional<QByteArray> {
        if (line.startsWith("RCPT TO:<n1@")) {
            auto *dialog = m_forms->form(u"frmPubProgress"_s);
            cancelled = dialog->isVisible();
            dialog->findChild<QPushButton *>(u"sbtCancel"_s)->click();
            cancelled = cancelled && m_run->state().pblnStop();
        }
        return std::nullopt;
    };
    begin(people());
    bool over = false;
    untilTrue(this, [&] {
        over = !m_run->state().Sending();
        if (over) {
            m_forms->unload(u"frmPubOptions"_s);
        }
        return over;
    });
    quillon::prompts().showModalForm(u"frmPubOptions"_s, -1);
    QVERIFY(over);
    QVERIFY(cancelled);
    QCOMPARE(m_server->Mails.size(), 1);
    QVERIFY(!m_progress->isVisible());
}

QTEST_MAIN(TestDialogsBesideRun)
#include "test_dialogsbesiderun.moc"
