#include "sending/sendchecks.h"

#include "core/recipiententry.h"
#include "core/settings.h"
#include "core/texts.h"
#include "records/recordfields.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

using Field = MessageWindow::Field;

constexpr int proxyTab = 0;
constexpr int accountsTab = 1;

/// Shows a fault that only the options can mend.
void sendToOptions(const QString &key, int style, int tab)
{
    showMessage(key, style);
    quillon::prompts().showModalForm(u"frmPubOptions"_s, tab);
}

bool proxyPasses(const ApplicationGlobals &globals)
{
    if (!proxyInUse(globals)) {
        return true;
    }
    const QString proxy = globals.settings.proxy[ProxyDefault];
    if (recordField(proxy, ProxyAddress).isEmpty()) {
        sendToOptions(u"PROXY_ADDRESS"_s, quillon::InformationBox, proxyTab);
        return false;
    }
    if (recordField(proxy, ProxyAuthentication) == "Y"_L1 && recordField(proxy, ProxyUser).isEmpty()) {
        sendToOptions(u"PROXY_USER"_s, quillon::InformationBox, proxyTab);
        return false;
    }
    return true;
}

bool accountPasses(const QString &account)
{
    if (!account.isEmpty()) {
        return true;
    }
    sendToOptions(u"NEED_SMTP_S"_s, quillon::PlainBox, accountsTab);
    return false;
}

struct SenderCheck {
    Field field;
    const char16_t *missingKey;
    const char16_t *invalidKey;
};

bool senderPasses(MessageWindow &window, const QString &text, const SenderCheck &check)
{
    const QString sender = text.trimmed().toLower();
    if (sender.isEmpty()) {
        showMessage(QString::fromUtf16(check.missingKey), quillon::InformationBox);
    } else if (!IsRecipientEntry(sender)) {
        showMessage(QString::fromUtf16(check.invalidKey), quillon::WarningBox, sender);
    } else {
        return true;
    }
    window.setFocus(check.field);
    return false;
}

bool recipientsPass(MessageWindow &window, Field field, const QString &text, const QString &invalidKey)
{
    const QStringList entries = splitRecipients(text);
    const auto bad = std::find_if_not(entries.begin(), entries.end(), IsRecipientEntry);
    if (bad == entries.end()) {
        return true;
    }
    showMessage(invalidKey, quillon::WarningBox, *bad);
    window.setFocus(field);
    return false;
}

RunValues takeValues(const MessageWindow &window)
{
    RunValues values;
    values.account = window.text(Field::Account);
    values.sender = window.text(Field::Sender);
    values.replyReceiver = window.text(Field::ReplyReceiver);
    values.to = window.text(Field::To);
    values.cc = window.text(Field::CC);
    values.bcc = window.text(Field::BCC);
    values.actualDate = window.isActual(MessageWindow::Choice::Date);
    values.date = window.customDate();
    values.time = window.customTime();
    values.format = window.format();
    values.encoding = window.text(Field::Encoding);
    values.priority = window.priority();
    values.receipt = window.receipt();
    values.oneByOne = window.oneByOne();
    values.attachments = window.attachmentPaths();
    values.subject = window.text(Field::Subject).trimmed();
    values.content = contentOf(window, values.format);
    return values;
}

} // namespace

QString contentOf(const MessageWindow &window, MessageWindow::Format format)
{
    return window.text(format == MessageWindow::Format::Plain ? Field::PlainContent : Field::RichContent);
}

std::optional<RunValues> checkMessage(const ApplicationGlobals &globals, MessageWindow &window)
{
    RunValues values = takeValues(window);
    if (!proxyPasses(globals) || !accountPasses(values.account) ||
        !senderPasses(window, values.sender, {Field::Sender, u"SENDER", u"INVALID_SENDER"}) ||
        !senderPasses(window, values.replyReceiver, {Field::ReplyReceiver, u"REPLY", u"INVALID_REPLY"})) {
        return std::nullopt;
    }
    if (values.to.trimmed().isEmpty() && values.cc.trimmed().isEmpty() && values.bcc.trimmed().isEmpty()) {
        showMessage(u"NEED_RECEIVERS"_s, quillon::InformationBox);
        window.setFocus(Field::To);
        return std::nullopt;
    }
    if (!recipientsPass(window, Field::To, values.to, u"INVALID_TO"_s) ||
        !recipientsPass(window, Field::CC, values.cc, u"INVALID_CC"_s) ||
        !recipientsPass(window, Field::BCC, values.bcc, u"INVALID_BCC"_s)) {
        return std::nullopt;
    }
    return values;
}

} // namespace corvane
