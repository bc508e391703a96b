#include "quillon/mail/smtpenvelope.h"

#include "quillon/mail/asciidomain.h"
#include "quillon/mail/mailtexts.h"

#include <QSet>

#include <algorithm>

namespace quillon {

namespace {

// RFC 5321, 4.5.3.1.3 allows 256 octets for a path; servers that allow more may have it, up to the command's 512.
constexpr qsizetype maxPath = 480;

bool isAscii(QStringView text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x80; });
}

// Nothing that could end the path or the line. Blanks and angle brackets are for quoted local parts only.
bool isSafe(QStringView address)
{
    bool quoted = false;
    bool escaped = false;
    for (const QChar c : address) {
        if (c.category() == QChar::Other_Control || c == QChar::LineSeparator || c == QChar::ParagraphSeparator) {
            return false;
        }
        if (escaped) {
            escaped = false;
        } else if (quoted && c == u'\\') {
            escaped = true;
        } else if (c == u'"') {
            quoted = !quoted;
        } else if (!quoted && (c.isSpace() || c == u'<' || c == u'>')) {
            return false;
        }
    }
    return !quoted && !escaped;
}

struct Path {
    QByteArray Octets;
    bool NeedsUtf8 = false;
};

// The address as it stands between "<" and ">"; nothing if it must not go on the wire.
std::optional<Path> pathOf(const QString &address)
{
    if (address.isEmpty() || !isSafe(address) || !address.isValidUtf16()) {
        return std::nullopt;
    }
    const qsizetype at = address.lastIndexOf(u'@');
    const QString local = at < 0 ? address : address.left(at);
    // Only the local part has no ASCII form; with one in ASCII, the domain's ASCII form spares the extension.
    const QString domain = at < 0 ? QString() : QString::fromLatin1(asciiDomain(address.mid(at + 1)));
    if (local.isEmpty() || (at >= 0 && domain.isEmpty())) {
        return std::nullopt;
    }
    Path path;
    path.NeedsUtf8 = !isAscii(local);
    path.Octets = (at < 0 ? local : local + u'@' + domain).normalized(QString::NormalizationForm_C).toUtf8();
    if (path.Octets.size() > maxPath) {
        return std::nullopt;
    }
    return path;
}

SmtpFailure unsuitable(const OwnText &empty, const OwnText &invalid, const QString &address)
{
    return {0, address.isEmpty() ? say(empty) : say(invalid, printableText(address, 120))};
}

} // namespace

SmtpEnvelope SmtpEnvelope::plan(const SmtpMail &mail, const SmtpExtensions &extensions)
{
    const auto failed = [](const SmtpFailure &failure) { return SmtpEnvelope{{}, {}, failure}; };
    if (!mail.Content.ErrorText.isEmpty()) {
        return failed({0, mail.Content.ErrorText});
    }
    const std::optional<Path> from = pathOf(mail.From);
    if (!from) {
        return failed(unsuitable(mailtexts::senderEmpty, mailtexts::senderInvalid, mail.From));
    }
    if (mail.To.isEmpty()) {
        return failed({0, say(mailtexts::noRecipient)});
    }
    bool needsUtf8 = from->NeedsUtf8;
    const bool senderNeedsUtf8 = needsUtf8;
    needsUtf8 = needsUtf8 || mail.Content.NeedsSmtpUtf8;
    SmtpEnvelope envelope;
    envelope.Commands += QByteArray();
    QSet<QString> known;
    for (const QString &recipient : mail.To) {
        if (known.contains(recipient)) {
            continue;
        }
        known.insert(recipient);
        const std::optional<Path> to = pathOf(recipient);
        if (!to) {
            return failed(unsuitable(mailtexts::recipientEmpty, mailtexts::recipientInvalid, recipient));
        }
        if (to->NeedsUtf8 && !extensions.SmtpUtf8) {
            return failed({0, say(mailtexts::utf8ForRecipient, printableText(recipient, 120))});
        }
        needsUtf8 = needsUtf8 || to->NeedsUtf8;
        envelope.Commands += "RCPT TO:<" + to->Octets + '>';
        envelope.Recipients += recipient;
    }
    if (needsUtf8 && !extensions.SmtpUtf8) {
        return failed({0, senderNeedsUtf8 ? say(mailtexts::utf8ForSender, printableText(mail.From))
                                          : say(mailtexts::utf8ForHeader)});
    }
    if (extensions.MaxSize > 0 && mail.Content.Size > extensions.MaxSize) {
        return failed(
            {0, say(mailtexts::tooBig, QString::number(mail.Content.Size), QString::number(extensions.MaxSize))});
    }
    QByteArray &command = envelope.Commands.first();
    command = "MAIL FROM:<" + from->Octets + '>';
    if (extensions.Size) {
        command += " SIZE=" + QByteArray::number(mail.Content.Size);
    }
    if (needsUtf8) {
        command += " SMTPUTF8";
    }
    return envelope;
}

QString asciiHost(const QString &host)
{
    QString name = host.trimmed();
    if (name.startsWith(u'[') && name.endsWith(u']')) {
        name = name.mid(1, name.size() - 2);
    }
    const auto unfit = [](QChar c) { return c.isSpace() || !c.isPrint() || c == u'/' || c == u'@'; };
    if (std::any_of(name.cbegin(), name.cend(), unfit)) {
        return {};
    }
    return QString::fromLatin1(asciiDomain(name));
}

} // namespace quillon
