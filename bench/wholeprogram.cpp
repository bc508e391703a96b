#include "composer/frmpubmain.h"
#include "core/datatree.h"
#include "core/settings.h"
#include "core/texts.h"
#include "macros/macrocatalogue.h"
#include "measures.h"
#include "quillon/forms/formregistry.h"
#include "quillon/system/prompts.h"
#include "records/accountrecords.h"
#include "sending/forms/formprogressview.h"
#include "sending/forms/frmpubprogress.h"
#include "sending/sendrun.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using namespace corvane;

namespace {

constexpr double nanosecondsPerSecond = 1e9;
constexpr int settled = 100; ///< mails after which the memory has to stay as it is

/// Boxes are answered at once, as nobody sits here. A run that shows any but its closing box has gone wrong.
class NobodyThere : public quillon::HarmlessPrompts {
public:
    quillon::BoxAnswer box(const quillon::BoxRequest &request) override
    {
        if (request.Style != quillon::InformationBox) {
            qFatal("%s", qPrintable(request.Text));
        }
        closing = request.Text;
        return quillon::BoxAnswer::Ok;
    }
    void showModalForm(const QString &form, int) override { qFatal("%s was shown", qPrintable(form)); }

    QString closing;
};

/// The resident memory of this process in KB.
double memory()
{
    QFile status(u"/proc/self/status"_s);
    if (status.open(QIODevice::ReadOnly)) {
        for (QByteArray line = status.readLine(); !line.isEmpty(); line = status.readLine()) {
            if (line.startsWith("VmRSS:")) {
                return line.mid(6).chopped(3).trimmed().toDouble();
            }
        }
    }
    qFatal("the memory of this process is not told");
}

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
            memoryEarly = memory();
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

void makeAccount(const ApplicationGlobals &globals, const BenchTask &task)
{
    const QStringList fields{u"127.0.0.1"_s,
                             QString::number(task.port),
                             task.starttls ? u"T"_s : u"N"_s,
                             task.starttls ? u"Y"_s : u"N"_s,
                             u"ada"_s,
                             u"secret"_s,
                             u"Ada King"_s,
                             u"ada@x.example"_s,
                             u"Ada's desk"_s,
                             u"ada@x.example"_s,
                             u"/SAEND"_s};
    QFile file(globals.paths.smtpFile);
    if (!file.open(QIODevice::WriteOnly) || file.write(fields.join(u'\t').toUtf8() + "\r\n") < 0) {
        qFatal("the account was not written");
    }
}

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
    const QTemporaryDir folder;
    for (const QString &name : {u"user"_s, u"shared"_s}) {
        QDir(folder.path()).mkpath(name);
    }
    ApplicationGlobals globals;
    globals.programFolder = QStringLiteral(PROGRAM_FOLDER);
    qputenv("XDG_DATA_HOME", QFile::encodeName(folder.filePath(u"user"_s)));
    qputenv("XDG_DATA_DIRS", QFile::encodeName(folder.filePath(u"shared"_s)));
    globals.paths = dataPathsBelow(folder.filePath(u"user"_s), folder.filePath(u"shared"_s));
    setLanguageFolder(globals.programFolder);
    PrepareDataFolder(globals);
    prepareSettings(globals);
    seedMacros(globals);
    makeAccount(globals, task);

    NobodyThere nobody;
    quillon::setPrompts(&nobody);
    quillon::FormRegistry forms;
    MainHooks hooks;
    hooks.send = [] {};
    hooks.exitProgram = [](bool) {};
    hooks.findSmtpRecord = [&globals](const QString &text) { return FindSmtpRecord(globals, text); };
    hooks.insertIntoSignature = [](const QString &) { return false; };
    hooks.findSignature = [&globals](const QString &name) { return signatureText(globals, name); };
    hooks.showForm = [](const QString &, int) {};
    hooks.optionsOpen = hooks.sending = [] { return false; };
    hooks.showProgress = [] { return false; };
    hooks.loadLists = hooks.checkAccount = hooks.readPrompts = hooks.minimised = hooks.closed = [] {};
    frmPubMain main(globals, std::move(hooks));
    main.load();
    main.show();
    forms.add(u"frmPubProgress"_s, [] { return new frmPubProgress({[] {}, [] {}, [] {}}); });
    fill(main, task);

    WatchedProgress progress(forms);
    InputPrompts prompts(globals);
    SendRun run({globals, main.message(), main.view(), progress, prompts});
    QElapsedTimer timer;
    timer.start();
    runToItsEnd(run);
    const auto taken = static_cast<double>(timer.nsecsElapsed());
    const double memoryLate = memory();
    quillon::setPrompts(nullptr);
    if (nobody.closing.isEmpty()) {
        qFatal("the run did not come to its end");
    }
    return {{u"seconds"_s, taken / nanosecondsPerSecond},
            {u"first"_s, progress.first},
            {u"last"_s, progress.last},
            {u"memoryEarly"_s, progress.memoryEarly},
            {u"memoryLate"_s, memoryLate}};
}
