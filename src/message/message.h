#pragma once

#include <QDate>
#include <QString>
#include <QStringList>
#include <QTime>

namespace corvane {

/// One message, by its fields. The main window implements it over its controls, which are the message there: a reader
/// sees what the user sees, and setting a field fires its change rule just as typing would. A stored template and plain
/// values are messages too.
class Message {
public:
    enum class Field {
        Account,       ///< cbb(6)
        Sender,        ///< cbb(0)
        ReplyReceiver, ///< cbb(1)
        Encoding,      ///< cbb(2), the display name
        To,            ///< txt(0)
        CC,            ///< txt(1)
        BCC,           ///< txt(2)
        Subject,       ///< utbSubject
        PlainContent,  ///< utbContent
        RichContent,   ///< the document of dhe
        Source,        ///< utbSource
    };

    /// Choices between the account's own value, or the moment, and one of the user's.
    enum class Choice {
        Sender,        ///< opt(0), opt(1)
        ReplyReceiver, ///< opt(2), opt(3)
        Date,          ///< opt(4), opt(5)
    };

    enum class Format { Rich, Plain };         ///< opt(8), opt(9)
    enum class Priority { High, Normal, Low }; ///< menosh(0) to menosh(2)

    virtual ~Message() = default;

    [[nodiscard]] virtual QString text(Field field) const = 0; ///< line ends are CR LF
    virtual void setText(Field field, const QString &text) = 0;

    [[nodiscard]] virtual bool isActual(Choice choice) const = 0;
    virtual void setActual(Choice choice, bool actual) = 0;
    [[nodiscard]] virtual QDate customDate() const = 0; ///< dtp(0)
    [[nodiscard]] virtual QTime customTime() const = 0; ///< dtp(1)
    virtual void setCustomDateTime(const QDate &date, const QTime &time) = 0;

    [[nodiscard]] virtual Format format() const = 0;
    virtual void setFormat(Format format) = 0;
    [[nodiscard]] virtual Priority priority() const = 0;
    virtual void setPriority(Priority priority) = 0;
    [[nodiscard]] virtual bool oneByOne() const = 0; ///< menfb
    virtual void setOneByOne(bool on) = 0;
    [[nodiscard]] virtual bool receipt() const = 0; ///< mentr
    virtual void setReceipt(bool on) = 0;

    /// Full paths of the attachment rows, lsv(0), first to last.
    [[nodiscard]] virtual QStringList attachmentPaths() const = 0;
    virtual void setAttachmentPaths(const QStringList &paths) = 0;

    /// The hidden list of encodings, cbb(3): entries of code, " | ", display name; one of them is selected.
    [[nodiscard]] virtual int encodingCount() const = 0;
    virtual void selectEncoding(int index) = 0;
    [[nodiscard]] virtual QString selectedEncoding() const = 0; ///< the selected entry, whole

    bool pblnChanged = false; ///< the message differs from what was last saved or created
};

/// The text that the message's body has in that format.
[[nodiscard]] QString contentOf(const Message &message, Message::Format format);

} // namespace corvane
