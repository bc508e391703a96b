#include "sending/messagefill.h"

#include "message/encodingsearch.h"
#include "core/recipiententry.h"
#include "quillon/system/platform.h"
#include "records/recordfields.h"
#include "sending/attachments.h"

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

QString yesNo(bool value)
{
    return value ? u"Yes"_s : u"No"_s;
}

void addRecipients(quillon::MailAddressList &list, const QString &text)
{
    const QStringList entries = splitRecipients(text);
    for (const QString &entry : entries) {
        list.Add(toMailAddress(entry));
    }
}

void logUnlessEmpty(const SendingLog &log, const QString &heading, const QString &value)
{
    if (!value.isEmpty()) {
        log.entry(heading, value);
    }
}

void fillAddresses(quillon::MailMessage &message, const FillContext &context)
{
    const RunValues &values = context.values;
    message.AccountName = values.account.trimmed();
    context.log.entry(u"Account"_s, message.AccountName);
    message.From = toMailAddress(values.sender.trimmed());
    context.log.entry(u"Sender"_s, values.sender.trimmed());
    message.ReplyTo = toMailAddress(values.replyReceiver.trimmed());
    context.log.entry(u"ReplyTo"_s, values.replyReceiver.trimmed());
    addRecipients(message.To, values.to);
    logUnlessEmpty(context.log, u"To"_s, values.to.trimmed());
    addRecipients(message.CC, values.cc);
    logUnlessEmpty(context.log, u"CC"_s, values.cc.trimmed());
    addRecipients(message.BCC, values.bcc);
    context.rememberRecipients();
    logUnlessEmpty(context.log, u"BCC"_s, values.bcc.trimmed());
}

void fillDate(quillon::MailMessage &message, const FillContext &context)
{
    const RunValues &values = context.values;
    if (!values.actualDate) {
        message.Date = mailDateText(context.globals, values.date, values.time);
        context.log.entry(u"Date & Time"_s, message.Date);
        return;
    }
    // The transport stamps the moment at which it really sends.
    const QDateTime now = quillon::systemClock().now();
    context.log.entry(u"Date & Time"_s, mailDateText(context.globals, now.date(), now.time()));
}

void fillEncoding(quillon::MailMessage &message, const FillContext &context)
{
    const QString code = selectEncodingOfName(context.source, context.values.encoding);
    if (!code.isEmpty()) {
        message.Charset = code;
        context.log.entry(u"Encoding"_s, message.Charset);
    }
}

void fillPriority(quillon::MailMessage &message, const FillContext &context)
{
    using Priority = Message::Priority;
    const Priority priority = context.values.priority;
    message.Priority = priority == Priority::High ? u"2"_s : priority == Priority::Normal ? u"3"_s : u"4"_s;
    context.log.entry(u"Priority"_s, priority == Priority::High     ? u"High"_s
                                     : priority == Priority::Normal ? u"Normal"_s
                                                                    : u"Low"_s);
}

void fillReceipt(quillon::MailMessage &message, const FillContext &context)
{
    message.RequestReceipt = context.values.receipt;
    context.log.entry(u"Request Read Receipt"_s, yesNo(message.RequestReceipt));
    if (message.RequestReceipt) {
        message.ReceiptTo.Name = recordField(context.accountRecord, AccountReceiptName);
        message.ReceiptTo.Address = recordField(context.accountRecord, AccountReceiptAddress);
        context.log.entry(u"Receipt Receiver"_s, toRecipientEntry(message.ReceiptTo.Name, message.ReceiptTo.Address));
    }
}

} // namespace

quillon::Task<> fillMessage(quillon::MailMessage &message, const FillContext &context)
{
    const RunValues &values = context.values;
    const bool plain = values.format == Message::Format::Plain;
    fillAddresses(message, context);
    fillDate(message, context);
    message.Format = plain ? quillon::MailMessage::PlainText : quillon::MailMessage::Html;
    context.log.entry(u"Message Type"_s, plain ? u"Plain Text"_s : u"Rich Text (HTML)"_s);
    fillEncoding(message, context);
    fillPriority(message, context);
    fillReceipt(message, context);
    context.log.entry(u"One By One"_s, yesNo(values.oneByOne));
    context.log.entry(u"Sending Method"_s, context.mode == RunMode::Manual ? u"Manual"_s : u"Automatic"_s);
    const QString attachments = co_await ResolveAttachments(context.globals, values.attachments, message);
    logUnlessEmpty(context.log, u"Attachments"_s, attachments);
    message.Subject = values.subject;
    logUnlessEmpty(context.log, u"Subject"_s, message.Subject);
    message.Content = values.content;
    context.log.line(u"Content: \r\n"_s + message.Content);
}

} // namespace corvane
