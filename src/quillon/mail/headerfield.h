#pragma once

#include "quillon/mail/mailmessage.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QString>

#include <optional>

namespace quillon {

/// Writes one header field (RFC 5322), token by token, and folds it so that no line is longer than 76 octets as long as
/// no single token is. Never folds right behind the colon.
class HeaderField {
public:
    /// Begins the field @p name at the end of @p out, which must stay until end().
    HeaderField(QByteArray &out, QByteArrayView name);

    /// Appends a blank and @p token, octets without line ends, on a new line where this one is full.
    void add(QByteArrayView token);

    /// Octets that a token may have to stand on the present line.
    [[nodiscard]] qsizetype room() const;

    /// Ends the field with CR LF.
    void end();

private:
    QByteArray &m_out;
    qsizetype m_lineStart;
    bool m_empty = true;
};

/// @p text without what must not stand in a header field: line ends and tabs become a blank (CR LF one), other control
/// characters are dropped, a lone surrogate becomes U+FFFD.
[[nodiscard]] QString headerText(const QString &text);

/// An address in the form that headers and SMTP take.
struct AddressSpec {
    QByteArray Octets;          ///< local part, "@", and the domain in its ASCII form (IDNA)
    bool NeedsSmtpUtf8 = false; ///< the local part is not US-ASCII (RFC 6531)
};

/// @p address as an addr-spec (RFC 5322, 6532): local part of atoms, dots or one quoted string, domain of labels or an
/// address literal. Nothing when it is none, holds control characters, blanks outside quotes, or a domain without an
/// ASCII form.
[[nodiscard]] std::optional<AddressSpec> addressSpec(const QString &address);

/// Appends an unstructured field such as Subject to @p out: as it is where the text is short and plain, folded at its
/// blanks where that loses nothing, as encoded words in UTF-8 otherwise.
void appendTextField(QByteArray &out, QByteArrayView name, const QString &text);

/// A display name and the address behind it.
struct HeaderMailbox {
    QString Name;
    QByteArray Address; ///< the octets of addressSpec()
};

/// Appends an address field such as To to @p out. Names lose the blanks at their ends, which readers drop, and become
/// atoms, a quoted string (RFC 5322) or encoded words.
void appendAddressField(QByteArray &out, QByteArrayView name, const QList<HeaderMailbox> &mailboxes);

/// Adds the parameter @p name with the value @p value, without blanks at its ends, to @p field, whose last token has to
/// end with ";". Plain short
/// US-ASCII stands in quotes; anything else is written after RFC 2231, in UTF-8, in numbered pieces where it is long.
void addParameter(HeaderField &field, QByteArrayView name, const QString &value);

/// The same as encoded words in quotes, which is no standard but what old readers look for in "name".
void addParameterInWords(HeaderField &field, QByteArrayView name, const QString &value);

} // namespace quillon
