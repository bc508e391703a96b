#include "macros/expansion.h"

#include "macros/macrocatalogue.h"
#include "macros/moments.h"
#include "macros/orderedreplacement.h"
#include "macros/placeholders.h"

#include <optional>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

RecipientValues valuesOf(const quillon::MailMessage &message)
{
    for (const quillon::MailAddressList *list : {&message.To, &message.CC, &message.BCC}) {
        if (list->Count() == 0) {
            continue;
        }
        const quillon::MailAddress &recipient = list->Item(1);
        const qsizetype at = recipient.Address.indexOf(u'@');
        const QString name = !recipient.Name.trimmed().isEmpty() ? recipient.Name
                             : at >= 0                           ? recipient.Address.first(at)
                                                                 : QString();
        return {name, recipient.Address};
    }
    return {};
}

/// What a line's placeholder turns into now; nothing when it stays as it is.
std::optional<QString> replacement(const QStringList &fields, const RecipientValues &values)
{
    const QString &key = fields.constFirst();
    if (auto text = recipientText(key, values)) {
        return text->isEmpty() ? std::nullopt : text;
    }
    if (auto moment = momentText(key)) {
        return moment;
    }
    return fields.size() > MacroText ? std::optional(fields.at(MacroText)) : std::nullopt;
}

} // namespace

void ExpandMacros(const ApplicationGlobals &globals, quillon::MailMessage &message)
{
    expandMacroLines(globals.lines.ReadLines(globals.paths.macrosFile), message);
}

void expandMacroLines(const QStringList &lines, quillon::MailMessage &message)
{
    const RecipientValues values = valuesOf(message);
    if (message.Format == quillon::MailMessage::Html) {
        message.Content.remove(u"\r\n"_s);
    }
    QStringList keys;
    QList<QStringList> macros;
    for (const QString &line : lines) {
        macros.append(line.split(u'\t'));
        keys.append(macros.constLast().constFirst());
    }
    for (QString *text : {&message.Subject, &message.Content}) {
        replaceInOrder(*text, keys, [&](qsizetype index) { return replacement(macros.at(index), values); });
    }
}

} // namespace corvane
