#include "benchwindow.h"

#include "core/datatree.h"
#include "core/settings.h"
#include "core/texts.h"
#include "macros/macrocatalogue.h"
#include "records/accountrecords.h"
#include "records/signaturerecords.h"

#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;
using namespace corvane;

namespace {

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

} // namespace

BenchWindow::BenchWindow(const BenchTask &task)
{
    for (const QString &name : {u"user"_s, u"shared"_s}) {
        QDir(folder.path()).mkpath(name);
    }
    globals.programFolder = QStringLiteral(PROGRAM_FOLDER);
    qputenv("XDG_DATA_HOME", QFile::encodeName(folder.filePath(u"user"_s)));
    qputenv("XDG_DATA_DIRS", QFile::encodeName(folder.filePath(u"shared"_s)));
    globals.paths = dataPathsBelow(folder.filePath(u"user"_s), folder.filePath(u"shared"_s));
    setLanguageFolder(globals.programFolder);
    PrepareDataFolder(globals);
    prepareSettings(globals);
    seedMacros(globals);
    makeAccount(globals, task);

    quillon::setPrompts(&nobody);
    MainHooks hooks;
    hooks.send = [] {};
    hooks.exitProgram = [](bool) {};
    hooks.findSmtpRecord = [this](const QString &text) { return FindSmtpRecord(globals, text); };
    hooks.insertIntoSignature = [](const QString &) { return false; };
    hooks.findSignature = [this](const QString &name) { return signatureText(globals, name); };
    hooks.showForm = [](const QString &, int) {};
    hooks.optionsOpen = hooks.sending = [] { return false; };
    hooks.showProgress = [] { return false; };
    hooks.loadLists = hooks.checkAccount = hooks.readPrompts = hooks.minimised = hooks.closed = [] {};
    hooks.prompts = [this] { return recipients.entries(); };
    hooks.rememberRecipients = [] {};
    main = std::make_unique<frmPubMain>(globals, std::move(hooks));
    main->load();
    main->show();
}

BenchWindow::~BenchWindow()
{
    main.reset();
    quillon::setPrompts(nullptr);
}

double residentMemory()
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
