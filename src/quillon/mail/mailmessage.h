#pragma once

#include <QList>
#include <QString>

namespace quillon {

/// One sender or recipient.
struct MailAddress {
    QString Address; ///< the bare e-mail address
    QString Name;    ///< display name, may be empty
};

/// A list that is addressed from 1, as the rest of the program counts it.
template <typename Entry> class MailList {
public:
    /// The entry at @p index, 1 to Count(). Another index is a fault and gives an entry that belongs to nobody.
    Entry &Item(qsizetype index) { return inRange(index) ? m_entries[index - 1] : (m_nobody = Entry()); }
    const Entry &Item(qsizetype index) const { return inRange(index) ? m_entries[index - 1] : m_nobody; }

    /// Appends @p entry; without one, a new empty entry, which is then Item(Count()).
    void Add(const Entry &entry = Entry()) { m_entries.append(entry); }
    void Clear() { m_entries.clear(); }
    [[nodiscard]] qsizetype Count() const { return m_entries.size(); }

    [[nodiscard]] auto begin() const { return m_entries.cbegin(); }
    [[nodiscard]] auto end() const { return m_entries.cend(); }

private:
    [[nodiscard]] bool inRange(qsizetype index) const { return index >= 1 && index <= m_entries.size(); }

    QList<Entry> m_entries;
    Entry m_nobody;
};

using MailAddressList = MailList<MailAddress>;

/// A file that travels with a message.
struct MailAttachment {
    QString Name; ///< the file name shown to the receiver
    QString Path; ///< the full local path
};

using MailAttachmentList = MailList<MailAttachment>;

/// One message, as the send run fills it and the transport sends it.
struct MailMessage {
    enum FormatValue { PlainText = 1, Html = 2 };

    MailAddress From;
    MailAddress ReceiptTo; ///< receiver of the read receipt
    MailAddress ReplyTo;
    MailAddressList To;
    MailAddressList CC;
    MailAddressList BCC;
    MailAttachmentList Attachments;
    QString Date;        ///< text of the Date header without its zone; empty: the moment of sending
    QString AccountName; ///< the sender address of the account, carried for the log
    QString Subject;
    QString Content;        ///< plain text, or a whole HTML document
    QString Charset;        ///< MIME charset name, such as "utf-8"; empty means "utf-8"
    int Format = PlainText; ///< PlainText or Html
    QString Priority;       ///< "2" high, "3" normal, "4" low
    bool RequestReceipt = false;
};

} // namespace quillon
