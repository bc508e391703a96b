#include "sending/messagefill.h"

#include "core/recipiententry.h"
#include "message/encodingsearch.h"
#include "quillon/system/platform.h"
#include "records/recordfields.h"
#include "sending/attachments.h"
#include "sending/sendingtexts.h"

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

QString yesNo(bool value)
{
    return QString::fromUtf16(value ? logtexts::yes : logtexts::no);
}

void addRecipients(quillon::MailAddressList &list, const QString &text)
{
    const QStringList entries = splitRecipients(text);
    for (const QString &entry : entries) {
        list.Add(toMailAddress(entry));
    }
}

void logUnlessEmpty(const SendingLog &log, QStringView heading, const QString &value)
{
    if (!value.isEmpty()) {
        log.entry(heading, value);
    }
}

void fillAddresses(quillon::MailMessage &message, const FillContext &context)
{
    const RunValues &values = context.values;
    message.AccountName = values.account.trimmed();
    context.log.entry(logtexts::account, message.AccountName);
    message.From = toMailAddress(values.sender.trimmed());
    context.log.entry(logtexts::sender, values.sender.trimmed());
    message.ReplyTo = toMailAddress(values.replyReceiver.trimmed());
    context.log.entry(logtexts::replyTo, values.replyReceiver.trimmed());
    addRecipients(message.To, values.to);
    logUnlessEmpty(context.log, logtexts::to, values.to.trimmed());
    addRecipients(message.CC, values.cc);
    logUnlessEmpty(context.log, logtexts::cc, values.cc.trimmed());
    addRecipients(message.BCC, values.bcc);
    context.rememberRecipients();
    logUnlessEmpty(context.log, logtexts::bcc, values.bcc.trimmed());
}

void fillDate(quillon::MailMessage &message, const FillContext &context)
{
    const RunValues &values = context.values;
    if (!values.actualDate) {
        message.Date = mailDateText(context.globals, values.date, values.time);
        context.log.entry(logtexts::dateAndTime, message.Date);
        return;
    }
    // The transport stamps the moment at which it really sends.
    const QDateTime now = quillon::systemClock().now();
    context.log.entry(logtexts::dateAndTime, mailDateText(context.globals, now.date(), now.time()));
}

void fillEncoding(quillon::MailMessage &message, const FillContext &context)
{
    const QString code = selectEncodingOfName(context.source, context.values.encoding);
    if (!code.isEmpty()) {
        message.Charset = code;
        context.log.entry(logtexts::encoding, message.Charset);
    }
}

void fillPriority(quillon::MailMessage &message, const FillContext &context)
{
    using Priority = Message::Priority;
    const Priority priority = context.values.priority;
    message.Priority = priority == Priority::High ? u"2"_s : priority == Priority::Normal ? u"3"_s : u"4"_s;
    context.log.entry(logtexts::priority, QString::fromUtf16(priority == Priority::High     ? logtexts::high
                                                             : priority == Priority::Normal ? logtexts::normal
                                                                                            : logtexts::low));
}

void fillReceipt(quillon::MailMessage &message, const FillContext &context)
{
    message.RequestReceipt = context.values.receipt;
    context.log.entry(logtexts::requestReceipt, yesNo(message.RequestReceipt));
    if (message.RequestReceipt) {
        message.ReceiptTo.Name = recordField(context.accountRecord, AccountReceiptName);
        message.ReceiptTo.Address = recordField(context.accountRecord, AccountReceiptAddress);
        if (message.ReceiptTo.Address.trimmed().isEmpty()) {
            message.ReceiptTo = message.From; // without a receiver the mail would ask for nothing
        }
        context.log.entry(logtexts::receiptReceiver,
                          toRecipientEntry(message.ReceiptTo.Name, message.ReceiptTo.Address));
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
    context.log.entry(logtexts::messageType, QString::fromUtf16(plain ? logtexts::plainText : logtexts::richText));
    fillEncoding(message, context);
    fillPriority(message, context);
    fillReceipt(message, context);
    context.log.entry(logtexts::oneByOne, yesNo(values.oneByOne));
    context.log.entry(logtexts::sendingMethod,
                      QString::fromUtf16(context.mode == RunMode::Manual ? logtexts::manual : logtexts::automatic));
    const QString attachments = co_await ResolveAttachments(context.globals, values.attachments, message);
    logUnlessEmpty(context.log, logtexts::attachments, attachments);
    message.Subject = values.subject;
    logUnlessEmpty(context.log, logtexts::subject, message.Subject);
    message.Content = values.content;
    context.log.line(QString::fromUtf16(logtexts::content) + message.Content);
}

} // namespace corvane
