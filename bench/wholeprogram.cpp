#include "benchwindow.h"
#include "quillon/forms/formregistry.h"
#include "sending/forms/formprogressview.h"
#include "sending/forms/frmpubprogress.h"
#include "sending/sendrun.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QElapsedTimer>

using namespace Qt::StringLiterals;
using namespace corvane;

namespace {

constexpr double nanosecondsPerSecond = 1e9;
constexpr int settled = 100; ///< mails after which the memory has to stay as it is

/// The real dialog, with a look at the clock and the memory when a mail's turn comes.
class WatchedProgress : public FormProgressView {
public:
    using FormProgressView::FormProgressView;

    void setProgress(int i, int total) override
    {
        FormProgressView::setProgress(i, total);
        if (total <= 0) {
            return; // the run is over
        }
        const int stretch = qMin(1000, total / 2);
        if (i == 1) {
            m_timer.start();
        }
        if (i == stretch + 1) {
            first = seconds() / stretch;
        }
        if (i == total - stretch) {
            m_before = seconds();
        }
        if (i == total) {
            last = (seconds() - m_before) / stretch;
        }
        if (i == settled + 1) {
            memoryEarly = residentMemory();
        }
    }

    double first = 0;
    double last = 0;
    double memoryEarly = 0;

private:
    [[nodiscard]] double seconds() const { return static_cast<double>(m_timer.nsecsElapsed()) / nanosecondsPerSecond; }

    QElapsedTimer m_timer;
    double m_before = 0;
};

void fill(frmPubMain &main, const BenchTask &task)
{
    using Field = Message::Field;
    Message &message = main.message();
    QStringList recipients;
    for (int i = 1; i <= task.count; ++i) {
        recipients.append(benchName(i) + u" <"_s + benchAddress(i) + u'>');
    }
    // While there is no editor for it the choice is closed to the user, but the message can hold a document.
    main.findChild<QAbstractButton *>(u"opt(8)"_s)->setEnabled(true);
    message.setFormat(Message::Format::Rich);
    if (message.format() != Message::Format::Rich) {
        qFatal("the message is not a document");
    }
    message.setText(Field::Account, u"ada@x.example"_s);
    message.setText(Field::Sender, u"Ada King <ada@x.example>"_s);
    message.setText(Field::ReplyReceiver, u"ada@x.example"_s);
    message.setText(Field::To, recipients.join(u", "_s));
    message.setText(Field::Subject, u"News for {Full Name of The Recipient}"_s);
    message.setText(Field::RichContent, benchText(task.document));
    message.setOneByOne(true);
}

void runToItsEnd(SendRun &run)
{
    run.run();
    while (run.state().Sending()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

} // namespace

QJsonObject measureProgram(const BenchTask &task)
{
    BenchWindow bench(task);
    frmPubMain &main = *bench.main;
    quillon::FormRegistry forms;
    forms.add(u"frmPubProgress"_s, [] { return new frmPubProgress({[] {}, [] {}, [] {}}); });
    fill(main, task);

    WatchedProgress progress(forms, [&main] { return &main; });
    SendRun run({bench.globals, main.message(), main.view(), progress, bench.recipients});
    QElapsedTimer timer;
    timer.start();
    runToItsEnd(run);
    const auto taken = static_cast<double>(timer.nsecsElapsed());
    const double memoryLate = residentMemory();
    if (bench.nobody.closing.isEmpty()) {
        qFatal("the run did not come to its end");
    }
    return {{u"seconds"_s, taken / nanosecondsPerSecond},
            {u"first"_s, progress.first},
            {u"last"_s, progress.last},
            {u"memoryEarly"_s, progress.memoryEarly},
            {u"memoryLate"_s, memoryLate}};
}
