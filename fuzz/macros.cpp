// Macro expansion: whatever stands in the file of macros and in the message, the quick way of replacing gives what the
// rule says, one macro after the other. An input is the lines of the file, an empty line, the recipient's name, the
// subject and the content.

#include "check.h"
#include "macros/expansion.h"
#include "macros/orderedreplacement.h"
#include "quillon/system/platform.h"

#include <QLocale>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype mostLines = 40;
constexpr qsizetype longestResult = 20'000; // macros that hold one another can outgrow any memory

class StandingClock : public quillon::Clock {
public:
    [[nodiscard]] QDateTime now() const override { return QDateTime(QDate(2026, 11, 21), QTime(14, 5, 9)); }
};

/// What the recipient is called, by the rule.
struct Recipient {
    QString full;
    QString first;
    QString last;
    QString address;
};

std::optional<QString> valueOf(const QStringList &fields, const Recipient &recipient)
{
    const QHash<QString, QString> values = {{u"{First Name of The Recipient}"_s, recipient.first},
                                            {u"{Last Name of The Recipient}"_s, recipient.last},
                                            {u"{Full Name of The Recipient}"_s, recipient.full},
                                            {u"{Email Address of The Recipient}"_s, recipient.address}};
    if (const auto value = values.constFind(fields.first()); value != values.constEnd()) {
        return value->isEmpty() ? std::nullopt : std::optional(*value);
    }
    const QDateTime now = quillon::systemClock().now();
    const QLocale locale = QLocale::system();
    const QString longDate = locale.toString(now.date(), QLocale::LongFormat);
    const QString shortDate = locale.toString(now.date(), QLocale::ShortFormat);
    const QString longTime = locale.toString(now.time(), QLocale::LongFormat);
    const QString shortTime = locale.toString(now.time(), QLocale::ShortFormat);
    const QHash<QString, QString> moments = {{u"{Long Date}"_s, longDate},
                                             {u"{Short Date}"_s, shortDate},
                                             {u"{Long Time}"_s, longTime},
                                             {u"{Short Time}"_s, shortTime},
                                             {u"{Long Date and Time}"_s, longDate + u' ' + longTime},
                                             {u"{Short Date and Time}"_s, shortDate + u' ' + shortTime}};
    if (const auto moment = moments.constFind(fields.first()); moment != moments.constEnd()) {
        return *moment;
    }
    return fields.size() > 1 ? std::optional(fields.at(1)) : std::nullopt;
}

/// One macro after the other over the whole text; nothing where the text outgrows what is looked at here.
std::optional<QString> byTheRule(QString text, const QStringList &lines, const Recipient &recipient)
{
    for (const QString &line : lines) {
        const QStringList fields = line.split(u'\t');
        const std::optional<QString> value = valueOf(fields, recipient);
        if (fields.first().isEmpty() || !value) {
            continue;
        }
        if (text.size() + text.count(fields.first()) * value->size() > longestResult) {
            return std::nullopt;
        }
        text.replace(fields.first(), *value);
    }
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static StandingClock clock;
    quillon::setSystemClock(&clock);
    const QString input = QString::fromUtf8(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    QStringList all = input.split(u'\n');
    const qsizetype end = all.indexOf(QString());
    if (end < 0 || end > mostLines) {
        return 0;
    }
    const QStringList lines = all.first(end);
    all.remove(0, end + 1);
    const auto take = [&all] { return all.isEmpty() ? QString() : all.takeFirst(); };

    quillon::MailMessage message;
    const QString name = take();
    message.To.Add({u"ann@example.org"_s, name});
    message.Subject = take();
    message.Content = all.join(u'\n');
    message.Format = name.startsWith(u'<') ? quillon::MailMessage::Html : quillon::MailMessage::PlainText;

    const QString full = name.trimmed().isEmpty() ? u"ann"_s : name;
    const Recipient recipient{full, full.section(u' ', 0, 0), full.section(u' ', -1), u"ann@example.org"_s};
    const bool html = message.Format == quillon::MailMessage::Html;
    const QString content = html ? QString(message.Content).remove(u"\r\n"_s) : message.Content;
    const std::optional<QString> expectedSubject = byTheRule(message.Subject, lines, recipient);
    const std::optional<QString> expectedContent = byTheRule(content, lines, recipient);
    if (!expectedSubject || !expectedContent) {
        return 0;
    }
    corvane::expandMacroLines(lines, message);
    mustHold(message.Subject == *expectedSubject);
    mustHold(message.Content == *expectedContent);
    mustHold(message.To.Count() == 1 && message.To.Item(1).Name == name);
    return 0;
}
