#include "sending/onebyone.h"

#include "core/recipiententry.h"
#include "core/texts.h"
#include "macros/expansion.h"
#include "quillon/fault.h"
#include "sending/sendingtexts.h"

#include <algorithm>
#include <limits>
#include <optional>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

constexpr int millisecondsPerSecond = 1000;
constexpr double longestInterval = 1'000'000; // seconds; more than any timer is asked for

using quillon::MailAddressList;
using quillon::MailMessage;

/// Who got their mail and who did not, each entry with ", " behind it.
struct Outcome {
    qint16 sent = 0;
    QString successes;
    QString failures;
};

MailAddressList rollOf(const MailMessage &message)
{
    MailAddressList roll;
    for (const MailAddressList *list : {&message.To, &message.CC, &message.BCC}) {
        for (const quillon::MailAddress &recipient : *list) {
            roll.Add(recipient);
        }
    }
    return roll;
}

/// The number of mails, which is counted in 16 bits: a longer roll cannot be counted, and nothing is sent.
qint16 totalOf(const MailAddressList &roll)
{
    if (roll.Count() > std::numeric_limits<qint16>::max()) {
        quillon::reportFault(u"too many recipients to be counted: "_s + QString::number(roll.Count()));
        return 0;
    }
    return static_cast<qint16>(roll.Count());
}

/// Makes the message the personal mail of one recipient, with the subject and content that the window shows now.
void address(MailMessage &message, const quillon::MailAddress &recipient, const OneByOneContext &context)
{
    message.To.Clear();
    message.CC.Clear();
    message.BCC.Clear();
    message.To.Add(recipient);
    message.Subject = context.source.text(Message::Field::Subject).trimmed();
    message.Content = contentOf(context.source, context.values.format);
}

quillon::Task<> waitForInterval(const OneByOneContext &context)
{
    const QString text = context.globals.settings.text(Setting::OboInterval);
    const std::optional<double> seconds = context.globals.settings.number(Setting::OboInterval);
    if (!seconds) {
        quillon::reportFault(u"not a number of seconds to wait: '"_s + text + u'\'');
        co_return;
    }
    if (*seconds == 0) {
        co_return;
    }
    context.progress.setActivity(QString::fromUtf16(intervalText) + text + QString::fromUtf16(intervalEnd));
    co_await quillon::nextTurn();
    const double bounded = std::clamp(*seconds, 0.0, longestInterval);
    co_await context.globals.system.WaitMilliseconds(static_cast<qint64>(bounded * millisecondsPerSecond));
}

void cutLastSeparator(QString &list)
{
    if (list.size() >= 2) {
        list.chop(2);
    }
}

QString entryOf(const Outcome &outcome, int total)
{
    const QString begin = LookupText(u"SENT_SUCCA"_s) + u' ';
    const QString lineEnd = u"\r\n"_s;
    if (outcome.sent < 1) {
        return begin + QString::number(total) + u' ' + LookupText(u"SENT_UNSUCCB"_s) + lineEnd + outcome.failures;
    }
    const QString sent =
        begin + QString::number(outcome.sent) + u' ' + LookupText(u"SENT_SUCCB"_s) + u':' + lineEnd + outcome.successes;
    if (outcome.sent >= total) {
        return sent;
    }
    return sent + lineEnd + LookupText(u"FAIL_ADDR"_s) + lineEnd + outcome.failures;
}

quillon::Task<> report(Outcome outcome, int total, const OneByOneContext &context)
{
    context.state.enter(RunState::Phase::Closing);
    context.progress.setCounter(QString::fromUtf16(progressRestText));
    context.progress.setAtRest();
    context.progress.setActivity(QString());
    cutLastSeparator(outcome.failures);
    cutLastSeparator(outcome.successes);
    context.log.line(entryOf(outcome, total));
    // The box tells how many mails were made, whatever became of them: the log holds the real figures.
    const QString text =
        LookupText(u"SENT_SUCCA"_s) + u' ' + QString::number(total) + u' ' + LookupText(u"SENT_SUCCB"_s) + u'!';
    co_await textShown(text, quillon::InformationBox, u"SENT_SUCCA"_s);
}

} // namespace

quillon::Task<> sendOneByOne(MailMessage &message, const OneByOneContext &context)
{
    const MailAddressList roll = rollOf(message);
    const qint16 total = totalOf(roll);
    context.progress.makeVisible();
    Outcome outcome;
    for (int i = 1; i <= total; ++i) {
        if (context.state.pblnStop()) {
            co_return;
        }
        context.state.enter(RunState::Phase::Counting);
        context.progress.setCounter(QString::fromUtf16(progressCountText).arg(i).arg(total));
        context.progress.setProgress(outcome.sent, total);
        address(message, roll.Item(i), context);
        co_await quillon::nextTurn();
        ExpandMacros(context.globals, message);
        context.connection.quit();
        co_await waitForInterval(context);
        co_await context.connection.connect(); // a failure shows in the sending that follows
        const bool sent = co_await context.connection.send(message);
        const quillon::MailAddress &recipient = message.To.Item(1);
        const QString entry = toRecipientEntry(recipient.Name, recipient.Address) + u", "_s;
        outcome.sent = static_cast<qint16>(outcome.sent + (sent ? 1 : 0));
        (sent ? outcome.successes : outcome.failures) += entry;
    }
    context.progress.setProgress(outcome.sent, total);
    co_await report(outcome, total, context);
    context.connection.quit();
}

} // namespace corvane
