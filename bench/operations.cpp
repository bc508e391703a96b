#include "macros/expansion.h"
#include "measures.h"
#include "quillon/mail/mailmessage.h"
#include "recipients/inputprompts.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace {

constexpr double nanosecondsPerSecond = 1e9;

void writeFile(const QString &path, const QByteArray &octets)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(octets) != octets.size()) {
        qFatal("cannot write %s", qPrintable(path));
    }
}

} // namespace

QJsonObject measureMacros()
{
    constexpr int macros = 500;
    constexpr qsizetype megabyte = 1024 * 1024;
    const QTemporaryDir folder;
    corvane::ApplicationGlobals globals;
    globals.paths.macrosFile = folder.filePath(u"macros.dll"_s);
    QByteArray lines;
    for (int i = 0; i < macros; ++i) {
        const QByteArray number = QByteArray::number(i);
        lines += "{Macro " + number + "}\tdescription\ttext of " + number + "\r\n";
    }
    writeFile(globals.paths.macrosFile, lines);

    quillon::MailMessage message;
    message.To.Add({benchAddress(1), benchName(1)});
    message.Format = quillon::MailMessage::PlainText;
    message.Subject = u"{Macro 7}"_s;
    for (int i = 0; message.Content.size() < megabyte; ++i) {
        message.Content += u"A line of usual length with words in it and, now and then, {braces} or "_s;
        message.Content += i % 20 == 0 ? u"{Macro %1}.\r\n"_s.arg(i / 20 % macros) : u"none of them.\r\n"_s;
    }
    QElapsedTimer timer;
    timer.start();
    corvane::ExpandMacros(globals, message);
    const auto taken = static_cast<double>(timer.nsecsElapsed());
    if (message.Content.contains(u"{Macro "_s) || message.Subject.contains(u'{')) {
        qFatal("a macro was left");
    }
    return {{u"seconds"_s, taken / nanosecondsPerSecond}};
}

QJsonObject measurePrompts()
{
    constexpr int remembered = 100'000;
    constexpr int recipients = 1000;
    const QTemporaryDir folder;
    corvane::ApplicationGlobals globals;
    globals.paths.promptsFile = folder.filePath(u"prompts.dll"_s);
    QByteArray lines;
    for (int i = 1; i <= remembered; ++i) {
        lines += (benchName(i) + u" <"_s + benchAddress(i) + u">\r\n"_s).toUtf8();
    }
    writeFile(globals.paths.promptsFile, lines);
    QStringList entries;
    for (int i = 1; i <= recipients; ++i) {
        const int number = remembered - recipients / 2 + i; // half of them are known
        entries.append(benchName(number) + u" <"_s + benchAddress(number) + u'>');
    }
    corvane::InputPrompts prompts(globals);
    QElapsedTimer timer;
    timer.start();
    prompts.upsSavePrompts(entries.join(u", "_s), QString(), QString());
    const auto taken = static_cast<double>(timer.nsecsElapsed());
    prompts.upsReadPrompts();
    if (prompts.entries().size() != remembered + recipients / 2) {
        qFatal("%lld prompts were kept", static_cast<long long>(prompts.entries().size()));
    }
    return {{u"seconds"_s, taken / nanosecondsPerSecond}};
}
