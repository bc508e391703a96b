#include "benchwindow.h"

#include <QApplication>
#include <QClipboard>
#include <QElapsedTimer>
#include <QFile>
#include <QKeyEvent>
#include <QListView>
#include <QPlainTextEdit>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr int promptCount = 100'000;
constexpr double nanosecondsPerMillisecond = 1e6;

/// The milliseconds from a key until all that it changes is drawn.
double press(QWidget *box, Qt::Key key, const QString &text = {})
{
    QElapsedTimer timer;
    timer.start();
    QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier, text);
    QCoreApplication::sendEvent(box, &down);
    QKeyEvent up(QEvent::KeyRelease, key, Qt::NoModifier, text);
    QCoreApplication::sendEvent(box, &up);
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
    return static_cast<double>(timer.nsecsElapsed()) / nanosecondsPerMillisecond;
}

QList<double> typed(QWidget *box, const QString &text)
{
    QList<double> times;
    for (const QChar letter : text) {
        times.append(press(box, Qt::Key_A, letter));
    }
    return times;
}

QList<double> removed(QWidget *box, qsizetype letters)
{
    QList<double> times;
    for (; letters > 0; --letters) {
        times.append(press(box, Qt::Key_Backspace));
    }
    return times;
}

double median(QList<double> times)
{
    std::sort(times.begin(), times.end());
    return times.at(times.size() / 2);
}

double worst(const QList<double> &times)
{
    return *std::max_element(times.begin(), times.end());
}

} // namespace

QJsonObject measureTyping(const BenchTask &task)
{
    BenchWindow bench(task);
    QByteArray lines;
    for (int i = 0; i < promptCount; ++i) {
        lines += (i % 2 == 0 ? "Ann " : "Bob ") + ("Recipient <user" + QByteArray::number(i)) + "@example.org>\r\n";
    }
    QFile file(bench.globals.paths.promptsFile);
    if (!file.open(QIODevice::WriteOnly) || file.write(lines) != lines.size()) {
        qFatal("the earlier recipients were not written");
    }
    file.close();
    lines.clear();
    lines.squeeze();
    const double before = residentMemory();
    bench.recipients.upsReadPrompts();
    const double list = residentMemory() - before;

    auto *box = bench.main->findChild<QPlainTextEdit *>(u"txt(0)"_s);
    auto *offered = bench.main->findChild<QListView *>(u"lstFilter"_s);
    bench.main->activateWindow();
    box->setFocus();
    while (!box->hasFocus()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    QList<double> times;
    // One that is there, found early or late, one that is in none, and all of them at the empty token.
    for (const QString &text : {u"user7@example"_s, u"user99998@example"_s, u"nobody at all"_s, u"Ann"_s}) {
        times += typed(box, text);
        times += removed(box, text.size());
        if (!offered->isVisible()) {
            qFatal("nothing is offered");
        }
    }
    QStringList recipients;
    for (int i = 0; recipients.size() < 33'000; ++i) { // some 1 MB
        recipients.append(u"Recipient <user%1@example.org>"_s.arg(i));
    }
    QJsonObject result{{u"memory"_s, list}, {u"median"_s, median(times)}, {u"worst"_s, worst(times)}};
    for (const auto &[name, separator] : {std::pair(u"lines"_s, u"\n"_s), std::pair(u"oneLine"_s, u", "_s)}) {
        box->clear();
        QApplication::clipboard()->setText(recipients.join(separator));
        box->paste();
        box->moveCursor(QTextCursor::End);
        press(box, Qt::Key_Comma, u","_s);
        QCoreApplication::processEvents();
        const QList<double> large = typed(box, u"user99998@example"_s);
        result.insert(name + u"Median"_s, median(large));
        result.insert(name + u"Worst"_s, worst(large));
    }
    return result;
}
