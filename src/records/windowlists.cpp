#include "records/windowlists.h"

#include "core/recipiententry.h"
#include "records/recordfields.h"

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

using Field = Message::Field;

/// A box whose list is filled anew keeps the text that it showed. It is put back as a pick would: behind the same
/// address there may be another record by now. No text is no pick.
void replaceList(Message &message, Window &window, Field field, const QStringList &entries)
{
    const QString shown = message.text(field);
    window.setList(field, entries);
    if (!shown.isEmpty()) {
        message.setText(field, shown);
    }
}

} // namespace

void LoadSmtpLists(const ApplicationGlobals &globals, Message &message, Window &window)
{
    QStringList addresses;
    const QStringList lines = globals.lines.ReadLines(globals.paths.smtpFile);
    for (const QString &line : lines) {
        if (line.count(u'\t') >= AccountSenderAddress) {
            addresses.append(recordField(line, AccountSenderAddress));
        }
    }
    replaceList(message, window, Field::Account, addresses);
    const QString standard = globals.settings.text(Setting::DefaultAccount);
    if (message.text(Field::Account).isEmpty() && !standard.isEmpty()) {
        message.setText(Field::Account, recordField(standard, AccountSenderAddress));
    }
}

void LoadSenderLists(const ApplicationGlobals &globals, Message &message, Window &window)
{
    QStringList entries;
    const QStringList lines = globals.lines.ReadLines(globals.paths.sendersFile);
    for (const QString &line : lines) {
        if (line.count(u'\t') < SenderAddress) {
            continue;
        }
        const QString name = recordField(line, SenderName);
        entries.append(toRecipientEntry(name.trimmed().isEmpty() ? QString() : name, recordField(line, SenderAddress)));
    }
    replaceList(message, window, Field::Sender, entries);
    replaceList(message, window, Field::ReplyReceiver, entries);
}

} // namespace corvane
