#include "records/accountrecords.h"

#include "core/recipiententry.h"
#include "quillon/text/quillonaddress.h"
#include "records/recordfields.h"

using namespace Qt::StringLiterals;

namespace corvane {

QString FindSmtpRecord(const ApplicationGlobals &globals, const QString &address)
{
    if (address.trimmed().isEmpty()) {
        return {};
    }
    const QString wanted = u'\t' + address.toLower() + u'\t';
    const QStringList lines = globals.lines.ReadLines(globals.paths.smtpFile);
    for (const QString &line : lines) {
        if (line.toLower().contains(wanted)) {
            return line;
        }
    }
    return {};
}

bool DefaultSmtpUsable(const ApplicationGlobals &globals)
{
    const QString record = globals.settings.text(Setting::DefaultAccount);
    const quillon::QuillonAddress tester;
    const QString receipt = recordField(record, AccountReceiptAddress);
    return !recordField(record, AccountServer).isEmpty() && !recordField(record, AccountPort).isEmpty() &&
           (recordField(record, AccountAuthentication) != "Y"_L1 || !recordField(record, AccountUser).isEmpty()) &&
           tester.IsEmailAddress(recordField(record, AccountSenderAddress)) &&
           (receipt.isEmpty() || tester.IsEmailAddress(receipt));
}

QString accountSender(const QString &record)
{
    const QString name = recordField(record, AccountSenderName);
    const QString address = recordField(record, AccountSenderAddress);
    return toRecipientEntry(name.trimmed().isEmpty() ? QString() : name, address);
}

} // namespace corvane
