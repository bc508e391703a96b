#include "quillon/mail/charset.h"
#include "quillon/mail/encodedmail.h"
#include "quillon/mail/headerfield.h"
#include "quillon/mail/htmlmail.h"
#include "quillon/mail/htmltext.h"
#include "quillon/mail/mailfiles.h"
#include "quillon/mail/mailheaders.h"
#include "quillon/mail/transfercoding.h"
#include "quillon/text/lineends.h"

#include <QFileInfo>
#include <QHash>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quillon {

namespace {

/// Collects the stretches of a mail: text, and gaps for files.
class MailWriter {
public:
    explicit MailWriter(EncodedMail &mail) : m_mail(mail) {}

    QByteArray Text; ///< the stretch that is being written

    void addFile(const MailFile &file)
    {
        endText();
        m_mail.Stretches.append({QByteArray(), file.Path, file.Size});
        m_mail.Size += base64Size(file.Size);
    }

    void endText()
    {
        if (Text.isEmpty()) {
            return;
        }
        m_mail.Size += Text.size();
        m_mail.Stretches.append({std::exchange(Text, QByteArray()), QString(), 0});
    }

private:
    EncodedMail &m_mail;
};

/// One text part, ready to be written.
struct TextPart {
    QByteArray Subtype; ///< "plain" or "html"
    QByteArray Charset;
    QByteArray Octets;
};

/// A file that the document shows, with the name by which it refers to it.
struct RelatedPart {
    MailFile File;
    QByteArray ContentId;
};

/// One attachment, looked into.
struct AttachedPart {
    MailFile File;
    QString Name;
};

struct MailParts {
    QList<TextPart> Texts; ///< one, or the text version and the document
    QList<RelatedPart> Related;
    QList<AttachedPart> Attached;
};

/// What the content is encoded in: the message's charset, or UTF-8 where that is unknown or holds no plain US-ASCII,
/// which the line ends and tags of a mail have to be.
QByteArray usableCharset(const QString &name)
{
    const QByteArray charset = name.trimmed().toLatin1();
    if (charset.compare("utf-8", Qt::CaseInsensitive) == 0 || !isKnownCharset(charset)) {
        return "utf-8";
    }
    const QString probe = u"\r\n<a href=\"\">;</a>"_s;
    return encodeStrictly(probe, charset) == probe.toLatin1() ? charset : QByteArray("utf-8");
}

TextPart plainPart(const QString &text, const QByteArray &charset)
{
    if (auto octets = encodeStrictly(text, charset)) {
        return {"plain", charset, *octets};
    }
    return {"plain", "utf-8", text.toUtf8()};
}

/// Finds the local files that a document names and gives each its Content-ID.
class RelatedFiles {
public:
    RelatedFiles(MailEncoderCache &cache, QByteArray idDomain) : m_cache(cache), m_idDomain(std::move(idDomain)) {}

    /// The reference to put in the place of @p reference; empty where it stays.
    QString replacement(const QString &reference)
    {
        for (const QString &path : localPaths(reference)) {
            if (const auto known = m_ids.constFind(path); known != m_ids.constEnd()) {
                return u"cid:"_s + QString::fromLatin1(*known);
            }
            QString unused; // a file that is not there leaves the reference as it is
            const std::optional<MailFile> file = m_cache.inspect(path, unused);
            // Nothing but what is shown: a pasted document must not carry off the user's other files.
            if (file && isShownInPlace(file->Type)) {
                const QByteArray id =
                    "part" + QByteArray::number(m_parts.size() + 1) + '.' + randomDigits(8) + '@' + m_idDomain;
                m_ids.insert(path, id);
                m_parts.append({*file, id});
                return u"cid:"_s + QString::fromLatin1(id);
            }
        }
        return {};
    }

    [[nodiscard]] QList<RelatedPart> parts() const { return m_parts; }

private:
    MailEncoderCache &m_cache;
    QByteArray m_idDomain;
    QHash<QString, QByteArray> m_ids;
    QList<RelatedPart> m_parts;
};

void addHtml(MailParts &parts, const MailMessage &message, const QByteArray &charset, MailEncoderCache &cache,
             const QByteArray &domain)
{
    const QString source = withCrLf(withoutLoneSurrogates(message.Content));
    RelatedFiles related(cache, domain.startsWith('[') ? QByteArray("mail") : domain);
    const auto replace = [&related](const QString &reference) { return related.replacement(reference); };
    QByteArray used = charset;
    std::optional<QByteArray> octets = encodeHtml(htmlForMail(source, used, replace), used);
    if (!octets) {
        used = "utf-8";
        octets = htmlForMail(source, used, replace).Html.toUtf8();
    }
    parts.Texts.append(plainPart(textOfHtml(source), charset));
    parts.Texts.append({"html", used, *octets});
    parts.Related = related.parts();
}

/// Empty when all attachments can be read; otherwise the sentence about the first that cannot.
QString addAttachments(MailParts &parts, const MailMessage &message, MailEncoderCache &cache)
{
    for (const MailAttachment &attachment : message.Attachments) {
        QString error;
        const std::optional<MailFile> file = cache.inspect(attachment.Path, error);
        if (!file) {
            return error;
        }
        const QString name = headerText(attachment.Name).trimmed();
        parts.Attached.append({*file, name.isEmpty() ? QFileInfo(attachment.Path).fileName() : name});
    }
    return {};
}

/// Writes the parts of one mail around each other. Boundaries begin with "=_", which no coding of ours can produce, so
/// that none can occur in a part.
class BodyWriter {
public:
    BodyWriter(MailWriter &out, const MailParts &parts)
        : m_out(out), m_parts(parts), m_boundary("=_" + randomDigits(12))
    {
    }

    void write()
    {
        if (m_parts.Attached.isEmpty()) {
            writeContent(m_parts.Texts.size() == 1);
            return;
        }
        const QByteArray boundary = beginMultipart("mixed", QByteArray());
        nextPart(boundary);
        writeContent(false);
        for (const AttachedPart &attached : m_parts.Attached) {
            nextPart(boundary);
            writeFile(attached.File, attached.Name, "attachment", QByteArray());
        }
        endMultipart(boundary);
    }

private:
    void writeContent(bool standsAlone)
    {
        if (m_parts.Texts.size() == 1) {
            writeText(m_parts.Texts.first(), standsAlone);
            return;
        }
        const QByteArray boundary = beginMultipart("alternative", QByteArray());
        nextPart(boundary);
        writeText(m_parts.Texts.first(), false);
        nextPart(boundary);
        writeDocument(m_parts.Texts.last());
        endMultipart(boundary);
    }

    void writeDocument(const TextPart &document)
    {
        if (m_parts.Related.isEmpty()) {
            writeText(document, false);
            return;
        }
        const QByteArray boundary = beginMultipart("related", "type=\"text/html\"");
        nextPart(boundary);
        writeText(document, false);
        for (const RelatedPart &related : m_parts.Related) {
            nextPart(boundary);
            writeFile(related.File, QFileInfo(related.File.Path).fileName(), "inline", related.ContentId);
        }
        endMultipart(boundary);
    }

    void writeText(const TextPart &part, bool standsAlone)
    {
        const TransferCoding coding = bestTransferCoding(part.Octets, standsAlone);
        m_out.Text += "Content-Type: text/" + part.Subtype + "; charset=" + part.Charset +
                      "\r\nContent-Transfer-Encoding: " + transferCodingName(coding) + "\r\n\r\n";
        appendCoded(m_out.Text, part.Octets, coding, standsAlone);
        if (!standsAlone && coding != TransferCoding::Base64) {
            m_out.Text += "\r\n"; // belongs to the boundary that follows
        }
    }

    void writeFile(const MailFile &file, const QString &name, QByteArrayView disposition, const QByteArray &contentId)
    {
        HeaderField type(m_out.Text, "Content-Type");
        type.add(file.Type + ';');
        addParameterInWords(type, "name", name);
        type.end();
        m_out.Text += "Content-Transfer-Encoding: base64\r\n";
        if (!contentId.isEmpty()) {
            m_out.Text += "Content-ID: <" + contentId + ">\r\n";
        }
        HeaderField shown(m_out.Text, "Content-Disposition");
        shown.add(disposition.toByteArray() + ';');
        addParameter(shown, "filename", name);
        shown.end();
        m_out.Text += "\r\n";
        m_out.addFile(file);
    }

    QByteArray beginMultipart(QByteArrayView subtype, QByteArrayView parameter)
    {
        const QByteArray boundary = m_boundary + '.' + QByteArray::number(++m_multiparts);
        HeaderField type(m_out.Text, "Content-Type");
        type.add("multipart/" + subtype.toByteArray() + ';');
        if (!parameter.isEmpty()) {
            type.add(parameter.toByteArray() + ';');
        }
        type.add("boundary=\"" + boundary + '"');
        type.end();
        m_out.Text += "\r\n";
        return boundary;
    }

    void nextPart(const QByteArray &boundary) { m_out.Text += "--" + boundary + "\r\n"; }
    void endMultipart(const QByteArray &boundary) { m_out.Text += "--" + boundary + "--\r\n"; }

    MailWriter &m_out;
    const MailParts &m_parts;
    QByteArray m_boundary;
    int m_multiparts = 0;
};

EncodedMail failure(const QString &errorText)
{
    EncodedMail mail;
    mail.ErrorText = errorText;
    return mail;
}

} // namespace

MailEncoder::MailEncoder() : m_cache(std::make_unique<MailEncoderCache>()) {}

MailEncoder::~MailEncoder() = default;

EncodedMail MailEncoder::encode(const MailMessage &message, const QDateTime &now)
{
    const MailHeaders headers = mailHeaders(message, now);
    if (!headers.ErrorText.isEmpty()) {
        return failure(headers.ErrorText);
    }
    MailParts parts;
    if (const QString error = addAttachments(parts, message, *m_cache); !error.isEmpty()) {
        return failure(error);
    }
    const QByteArray charset = usableCharset(message.Charset);
    if (message.Format == MailMessage::Html) {
        addHtml(parts, message, charset, *m_cache, headers.SenderDomain);
    } else {
        parts.Texts.append(plainPart(withCrLf(withoutLoneSurrogates(message.Content)), charset));
    }
    EncodedMail mail;
    mail.NeedsSmtpUtf8 = headers.NeedsSmtpUtf8;
    MailWriter writer(mail);
    writer.Text.reserve(headers.Octets.size() + message.Content.size() * 3 + 2048);
    writer.Text += headers.Octets;
    BodyWriter(writer, parts).write();
    writer.endText();
    return mail;
}

} // namespace quillon
