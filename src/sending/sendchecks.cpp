#include "sending/sendchecks.h"

#include "core/formnames.h"
#include "core/recipiententry.h"
#include "core/settings.h"
#include "core/texts.h"
#include "records/recordfields.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

using Field = Message::Field;

/// What a failed check shows, and where it leads: to the field that is to be mended, or to a tab of the options.
struct CheckFault {
    QString key;
    int style = quillon::InformationBox;
    std::optional<QString> value; ///< shown in front of the text
    std::optional<Field> field;
    int optionsTab = noTab;
};

using CheckResult = std::optional<CheckFault>;

CheckResult checkProxy(const ApplicationGlobals &globals)
{
    if (!proxyInUse(globals)) {
        return std::nullopt;
    }
    const QString proxy = globals.settings.text(Setting::DefaultProxy);
    if (recordField(proxy, ProxyAddress).isEmpty()) {
        return CheckFault{u"PROXY_ADDRESS"_s, quillon::InformationBox, {}, {}, ProxyTab};
    }
    if (recordField(proxy, ProxyAuthentication) == "Y"_L1 && recordField(proxy, ProxyUser).isEmpty()) {
        return CheckFault{u"PROXY_USER"_s, quillon::InformationBox, {}, {}, ProxyTab};
    }
    return std::nullopt;
}

CheckResult checkAccount(const QString &account)
{
    if (!account.isEmpty()) {
        return std::nullopt;
    }
    return CheckFault{u"NEED_SMTP_S"_s, quillon::PlainBox, {}, {}, AccountTab};
}

struct SenderCheck {
    Field field;
    const char16_t *missingKey;
    const char16_t *invalidKey;
};

CheckResult checkSender(const QString &text, const SenderCheck &check)
{
    const QString sender = text.trimmed().toLower();
    if (sender.isEmpty()) {
        return CheckFault{QString::fromUtf16(check.missingKey), quillon::InformationBox, {}, check.field};
    }
    if (!IsRecipientEntry(sender)) {
        return CheckFault{QString::fromUtf16(check.invalidKey), quillon::WarningBox, sender, check.field};
    }
    return std::nullopt;
}

CheckResult checkReceivers(const RunValues &values)
{
    if (values.to.trimmed().isEmpty() && values.cc.trimmed().isEmpty() && values.bcc.trimmed().isEmpty()) {
        return CheckFault{u"NEED_RECEIVERS"_s, quillon::InformationBox, {}, Field::To};
    }
    return std::nullopt;
}

CheckResult checkRecipients(Field field, const QString &text, const QString &invalidKey)
{
    const QStringList entries = splitRecipients(text);
    const auto bad = std::find_if_not(entries.begin(), entries.end(), IsRecipientEntry);
    if (bad == entries.end()) {
        return std::nullopt;
    }
    return CheckFault{invalidKey, quillon::WarningBox, *bad, field};
}

/// The first fault, in the order in which a user is to be told.
CheckResult firstFault(const ApplicationGlobals &globals, const RunValues &values)
{
    for (const CheckResult &fault :
         {checkProxy(globals), checkAccount(values.account),
          checkSender(values.sender, {Field::Sender, u"SENDER", u"INVALID_SENDER"}),
          checkSender(values.replyReceiver, {Field::ReplyReceiver, u"REPLY", u"INVALID_REPLY"}), checkReceivers(values),
          checkRecipients(Field::To, values.to, u"INVALID_TO"_s),
          checkRecipients(Field::CC, values.cc, u"INVALID_CC"_s),
          checkRecipients(Field::BCC, values.bcc, u"INVALID_BCC"_s)}) {
        if (fault) {
            return fault;
        }
    }
    return std::nullopt;
}

RunValues takeValues(const Message &message)
{
    RunValues values;
    values.account = message.text(Field::Account);
    values.sender = message.text(Field::Sender);
    values.replyReceiver = message.text(Field::ReplyReceiver);
    values.to = message.text(Field::To);
    values.cc = message.text(Field::CC);
    values.bcc = message.text(Field::BCC);
    values.actualDate = message.isActual(Message::Choice::Date);
    values.date = message.customDate();
    values.time = message.customTime();
    values.format = message.format();
    values.encoding = message.text(Field::Encoding);
    values.priority = message.priority();
    values.receipt = message.receipt();
    values.oneByOne = message.oneByOne();
    values.attachments = message.attachmentPaths();
    values.subject = message.text(Field::Subject).trimmed();
    values.content = contentOf(message, values.format);
    return values;
}

} // namespace

quillon::Task<std::optional<RunValues>> checkMessage(const ApplicationGlobals &globals, const Message &message,
                                                     Window &window)
{
    const RunValues values = takeValues(message);
    const CheckResult fault = firstFault(globals, values);
    if (!fault) {
        co_return values;
    }
    co_await messageShown(fault->key, fault->style, fault->value);
    if (fault->field) {
        window.setFocus(*fault->field);
    } else {
        co_await quillon::fromEventLoop(
            [tab = fault->optionsTab] { quillon::prompts().showModalForm(optionsForm, tab); });
    }
    co_return std::nullopt;
}

} // namespace corvane
