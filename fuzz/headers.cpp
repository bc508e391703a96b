// The headers of a mail: whatever stands in the message, each field is one field of short lines that holds what was
// written. An input is the values of the message, separated by octets 30.

#include "check.h"
#include "quillon/mail/charset.h"
#include "quillon/mail/encodedword.h"
#include "quillon/mail/headerfield.h"
#include "quillon/mail/mailheaders.h"

#include <QSet>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype longestLine = 76;

/// The lines of one or more fields, which have to be whole and clean; @p utf8: UTF-8 may stand in them.
QList<QByteArray> linesOf(const QByteArray &octets, bool utf8)
{
    mustHold(octets.endsWith("\r\n"));
    const QList<QByteArray> lines = octets.chopped(2).replace("\r\n", "\n").split('\n');
    mustHold(octets.count('\r') == lines.size() && octets.count('\n') == lines.size());
    for (const QByteArray &line : lines) {
        mustHold(!line.trimmed().isEmpty());
        for (const char c : line) {
            mustHold((c >= ' ' && c != '\x7f' && static_cast<unsigned char>(c) < 0x80) ||
                     (utf8 && static_cast<unsigned char>(c) >= 0x80));
        }
    }
    return lines;
}

/// The body of the one field in @p octets, unfolded. No line but one that holds a single token is too long.
QByteArray bodyOf(const QByteArray &octets, const QByteArray &name, bool utf8 = false)
{
    const QList<QByteArray> lines = linesOf(octets, utf8);
    mustHold(lines.first().startsWith(name + ": "));
    for (qsizetype i = 0; i < lines.size(); ++i) {
        mustHold(i == 0 || lines[i].startsWith(' '));
        const QByteArray tokens = i == 0 ? lines[i].mid(name.size() + 2) : lines[i].mid(1);
        mustHold(lines[i].size() <= longestLine || !tokens.contains(' ') || tokens.startsWith('"'));
    }
    return lines.join().mid(name.size() + 2);
}

void checkTextField(const QString &text)
{
    QByteArray octets;
    quillon::appendTextField(octets, "Subject", text);
    const QString clean = quillon::headerText(text);
    if (clean.isEmpty()) {
        return; // what an empty field is like is checked with the whole headers
    }
    for (const QByteArray &line : linesOf(octets, false)) {
        mustHold(line.size() <= longestLine);
    }
    const QString body = QString::fromLatin1(bodyOf(octets, "Subject"));
    mustHold(quillon::decodeEncodedWords(body) == clean);
}

/// The display name in front of the address, read by the rules of RFC 5322 and 2047.
QString nameIn(const QByteArray &body, const QByteArray &address)
{
    mustHold(body.endsWith(" <" + address + '>'));
    const QByteArray phrase = body.chopped(address.size() + 3);
    if (!phrase.startsWith('"')) {
        return quillon::decodeEncodedWords(QString::fromLatin1(phrase));
    }
    mustHold(phrase.size() >= 2 && phrase.endsWith('"'));
    QString name;
    for (qsizetype i = 1; i < phrase.size() - 1; ++i) {
        mustHold(phrase[i] != '"');
        i += phrase[i] == '\\' ? 1 : 0;
        mustHold(i < phrase.size() - 1);
        name += QLatin1Char(phrase[i]);
    }
    return name;
}

void checkAddress(const QString &name, const QString &address)
{
    const auto spec = quillon::addressSpec(address);
    if (!spec) {
        return;
    }
    mustHold(!spec->Octets.contains('\r') && !spec->Octets.contains('\n') && spec->Octets.contains('@'));
    const QByteArray domain = spec->Octets.mid(spec->Octets.lastIndexOf('@') + 1);
    mustHold(!domain.isEmpty());
    for (const char c : spec->NeedsSmtpUtf8 ? domain : spec->Octets) {
        mustHold(c >= ' ' && c < '\x7f');
    }
    QByteArray octets;
    quillon::appendAddressField(octets, "To", {{name, spec->Octets}});
    const QByteArray body = bodyOf(octets, "To", spec->NeedsSmtpUtf8);
    const QString shown = quillon::headerText(name).trimmed();
    mustHold(shown.isEmpty() ? body == spec->Octets : nameIn(body, spec->Octets) == shown);
}

/// The value of a parameter, read by the rules of RFC 2045 and 2231.
QString valueIn(const QByteArray &body)
{
    QByteArray escaped;
    bool quoted = false;
    for (const QByteArray &part : body.split(';').mid(1)) {
        const QByteArray value = part.mid(part.indexOf('=') + 1);
        quoted = value.startsWith('"');
        escaped += value;
    }
    if (quoted) {
        mustHold(escaped.size() >= 2 && escaped.endsWith('"') && escaped.count('"') == 2);
        return QString::fromLatin1(escaped.sliced(1).chopped(1));
    }
    mustHold(escaped.startsWith("UTF-8''"));
    return QString::fromUtf8(QByteArray::fromPercentEncoding(escaped.mid(7)));
}

void checkParameter(const QString &value)
{
    const QString clean = quillon::headerText(value).trimmed();
    QByteArray octets;
    quillon::HeaderField field(octets, "Content-Disposition");
    field.add("attachment;");
    quillon::addParameter(field, "filename", value);
    field.end();
    const QByteArray body = bodyOf(octets, "Content-Disposition");
    if (!clean.contains(u';')) {
        mustHold(valueIn(body) == clean);
    }

    QByteArray old;
    quillon::HeaderField type(old, "Content-Type");
    type.add("image/png;");
    quillon::addParameterInWords(type, "name", value);
    type.end();
    const QByteArray named = bodyOf(old, "Content-Type");
    if (!clean.isEmpty()) {
        mustHold(named.startsWith("image/png; name=\"") && named.endsWith('"') && named.count('"') == 2);
        mustHold(quillon::decodeEncodedWords(QString::fromLatin1(named.mid(17).chopped(1))) == clean);
    }
}

void checkWholeHeaders(const QList<QString> &values)
{
    quillon::MailMessage message;
    message.From = {u"from@example.org"_s, values.value(0)};
    message.Subject = values.value(1);
    message.To.Add({values.value(2), values.value(3)});
    message.ReplyTo = {values.value(4), values.value(5)};
    message.ReceiptTo = {values.value(2), values.value(6)};
    message.RequestReceipt = true;
    message.Date = values.value(7);
    message.Priority = values.value(8);
    const QDateTime now(QDate(2026, 11, 21), QTime(14, 5, 9), Qt::OffsetFromUTC, 3600);
    const quillon::MailHeaders headers = quillon::mailHeaders(message, now);
    if (!headers.ErrorText.isEmpty()) {
        mustHold(!headers.ErrorText.contains(u'\n') && headers.ErrorText.endsWith(u'.'));
        return;
    }
    static const QSet<QByteArray> known = {"Date",
                                           "From",
                                           "Reply-To",
                                           "To",
                                           "Subject",
                                           "Message-ID",
                                           "MIME-Version",
                                           "X-Priority",
                                           "X-MSMail-Priority",
                                           "Importance",
                                           "Disposition-Notification-To"};
    QSet<QByteArray> seen;
    for (const QByteArray &line : linesOf(headers.Octets, headers.NeedsSmtpUtf8)) {
        if (line.startsWith(' ')) {
            mustHold(!seen.isEmpty());
            continue;
        }
        const QByteArray name = line.left(line.indexOf(':'));
        mustHold(known.contains(name) && !seen.contains(name));
        seen.insert(name);
    }
    for (const char *name : {"Date", "From", "To", "Subject", "Message-ID", "MIME-Version"}) {
        mustHold(seen.contains(name));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString input = QString::fromUtf8(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const QStringList values = input.split(QChar(30));
    checkTextField(values.value(1));
    checkAddress(values.value(0), values.value(2));
    checkParameter(values.value(0));
    checkWholeHeaders(values);
    return 0;
}
