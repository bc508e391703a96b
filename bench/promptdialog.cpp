// Times what a user waits for in the input prompt manager with 100,000 prompts: opening it until it is painted, Find
// until its hits are painted, and the deletion of a thousand rows.
//   bench_promptdialog ROUNDS
// Prints the medians as one line of JSON, in milliseconds. Runs offscreen or on any display.

#include "core/datatree.h"
#include "core/texts.h"
#include "recipients/forms/frmpubprompt.h"
#include "recipients/inputprompts.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QListView>
#include <QPushButton>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

constexpr int promptCount = 100'000;

/// Gives every input box the same answer and says Yes to every box.
class Answers : public quillon::HarmlessPrompts {
public:
    Answers() { quillon::setPrompts(this); }
    ~Answers() override { quillon::setPrompts(nullptr); }
    quillon::BoxAnswer box(const quillon::BoxRequest &) override { return quillon::BoxAnswer::Yes; }
    QString input(const quillon::InputRequest &) override { return answer; }

    QString answer;
};

/// The median of the milliseconds that @p work takes, each time after @p prepare.
double median(int rounds, const std::function<void()> &prepare, const std::function<void()> &work)
{
    QList<double> times;
    for (int i = 0; i < rounds; ++i) {
        prepare();
        QElapsedTimer timer;
        timer.start();
        work();
        times.append(static_cast<double>(timer.nsecsElapsed()) / 1e6);
    }
    std::sort(times.begin(), times.end());
    return times.at(rounds / 2);
}

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    const int rounds = argc > 1 ? qMax(1, std::atoi(argv[1])) : 1;
    QJsonObject result;
    const auto report = [&](const QString &what, const std::function<void()> &prepare,
                            const std::function<void()> &work) { result.insert(what, median(rounds, prepare, work)); };
    QTemporaryDir folder;
    corvane::ApplicationGlobals globals;
    globals.paths.promptsFile = folder.filePath(u"prompts.dll"_s);
    QByteArray lines;
    for (int i = 0; i < promptCount; ++i) {
        lines += (i % 2 == 0 ? "Ann " : "Bob ") + ("Recipient <user" + QByteArray::number(i)) + "@example.org>\r\n";
    }
    const auto writeFile = [&] {
        QFile file(globals.paths.promptsFile);
        if (!file.open(QIODevice::WriteOnly) || file.write(lines) != lines.size()) {
            std::exit(1);
        }
    };
    writeFile();
    Answers answers;
    corvane::InputPrompts memory(globals);
    std::unique_ptr<corvane::frmPubPrompt> dialog;
    const auto nothing = [] {};
    const auto press = [&](const char16_t *name) {
        dialog->findChild<QPushButton *>(QString::fromUtf16(name))->click();
    };
    const auto paint = [&] {
        dialog->repaint();
        QApplication::processEvents();
    };
    const auto open = [&] {
        dialog = std::make_unique<corvane::frmPubPrompt>(globals, memory.entries(), nothing);
        dialog->show();
        paint();
    };
    const auto find = [&](const QString &text) {
        answers.answer = text;
        press(u"sbtFind");
        paint();
    };

    report(u"upsReadPrompts"_s, nothing, [&] { memory.upsReadPrompts(); });
    report(u"open the dialog"_s, nothing, open);
    report(u"find one of them"_s, nothing, [&] { find(u"user77777@"_s); });
    report(
        u"find every second"_s, [&] { find(u"bob"_s); }, [&] { find(u"ann"_s); });
    report(u"find all"_s, nothing, [&] { find(u"example"_s); });
    report(u"find none"_s, nothing, [&] { find(u"nobody"_s); });
    QString recipients;
    for (int i = 0; i < 1000; ++i) {
        recipients += u"Ann Recipient <user%1@example.%2>, "_s.arg(i).arg(i % 2 == 0 ? u"org"_s : u"net"_s);
    }
    report(u"upsSavePrompts with 1000, half of them new"_s, writeFile,
           [&] { memory.upsSavePrompts(recipients, QString(), QString()); });
    report(
        u"delete a thousand rows"_s,
        [&] {
            writeFile();
            memory.upsReadPrompts();
            open();
            find(u"user77"_s);
        },
        [&] {
            press(u"sbtDel");
            paint();
        });
    std::puts(QJsonDocument(result).toJson(QJsonDocument::Compact).constData());
    return 0;
}
