// Times what a user waits for in the input prompt manager with 100,000 prompts: opening it until it is painted, Find
// until its hits are painted, and the deletion of a thousand rows. Prints the median of eleven rounds of each, in
// milliseconds. Run it offscreen or on any display, in a release build.

#include "core/datatree.h"
#include "core/texts.h"
#include "recipients/forms/frmpubprompt.h"
#include "recipients/inputprompts.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QListView>
#include <QPushButton>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

constexpr int promptCount = 100'000;
constexpr int rounds = 11;

/// Gives every input box the same answer and says Yes to every box.
class Answers : public quillon::Prompts {
public:
    Answers() { quillon::setPrompts(this); }
    ~Answers() override { quillon::setPrompts(nullptr); }
    quillon::BoxAnswer box(const quillon::BoxRequest &) override { return quillon::BoxAnswer::Yes; }
    QString input(const quillon::InputRequest &) override { return answer; }
    QStringList openFiles(const quillon::FileRequest &) override { return {}; }
    QString saveFile(const quillon::FileRequest &) override { return {}; }
    QString selectFolder(const QString &) override { return {}; }
    long chooseColor() override { return -1; }
    void showModalForm(const QString &, int) override {}

    QString answer;
};

void report(const char *what, const std::function<void()> &prepare, const std::function<void()> &work)
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
    std::printf("%-44s %8.1f ms  (largest %.1f)\n", what, times.at(rounds / 2), times.constLast());
}

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
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
        dialog = std::make_unique<corvane::frmPubPrompt>(globals, memory.entries());
        dialog->show();
        paint();
    };
    const auto find = [&](const QString &text) {
        answers.answer = text;
        press(u"sbtFind");
        paint();
    };

    report("upsReadPrompts", nothing, [&] { memory.upsReadPrompts(); });
    report("open the dialog", nothing, open);
    report("find one of them", nothing, [&] { find(u"user77777@"_s); });
    report(
        "find every second", [&] { find(u"bob"_s); }, [&] { find(u"ann"_s); });
    report("find all", nothing, [&] { find(u"example"_s); });
    report("find none", nothing, [&] { find(u"nobody"_s); });
    QString recipients;
    for (int i = 0; i < 1000; ++i) {
        recipients += u"Ann Recipient <user%1@example.%2>, "_s.arg(i).arg(i % 2 == 0 ? u"org"_s : u"net"_s);
    }
    report("upsSavePrompts with 1000, half of them new", writeFile,
           [&] { memory.upsSavePrompts(recipients, QString(), QString()); });
    report(
        "delete a thousand rows",
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
    return 0;
}
