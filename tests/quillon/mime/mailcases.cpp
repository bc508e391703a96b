#include "mailcases.h"

#include "quillon/mail/charset.h"
#include "quillon/mail/encodinglist.h"

#include <QFile>
#include <QHash>

using namespace Qt::StringLiterals;
using namespace quillon;

namespace {

constexpr char16_t firstOwnCharacter = 0xA0;
constexpr int lineLength = 40;

QString writeFile(const QTemporaryDir &files, const QString &name, const QByteArray &content)
{
    QFile file(files.filePath(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size()) {
        qFatal("cannot write %s", qPrintable(file.fileName()));
    }
    return file.fileName();
}

MailMessage newMessage()
{
    MailMessage message;
    message.From.Address = u"sender@example.org"_s;
    message.To.Add({u"to@example.com"_s, QString()});
    return message;
}

/// Everything beyond US-ASCII in the first plane that @p charset can hold.
QString ownCharacters(const QByteArray &charset)
{
    QString characters;
    for (uint code = firstOwnCharacter; code < 0xFFFE; ++code) {
        const QChar character(code);
        // Blanks at the edges of a line and marks of direction are text as well, but no names.
        if (!character.isSurrogate() && code != 0x2028 && code != 0x2029 && encodeStrictly(character, charset)) {
            characters += character;
        }
    }
    return characters;
}

QString inLines(const QString &characters, const QByteArray &charset)
{
    // Two characters of US-ASCII that not every reader of Shift_JIS has.
    QString text = encodeStrictly(u"~\\"_s, charset) ? u"Plain text ~ \\ end.\r\n"_s : u"Plain text.\r\n"_s;
    for (qsizetype at = 0; at < characters.size(); at += lineLength) {
        text += characters.mid(at, lineLength) + u"\r\n"_s;
    }
    return text;
}

QString letters(const QString &characters, qsizetype count)
{
    QString result;
    for (const QChar character : characters) {
        if (character.isLetterOrNumber() && result.size() < count) {
            result += character;
        }
    }
    return result.isEmpty() ? u"letters"_s : result;
}

void addCharset(QList<MailCase> &cases, const QTemporaryDir &files, const QByteArray &charset)
{
    const QString name = QString::fromLatin1(charset);
    const QString own = ownCharacters(charset);
    const QString text = inLines(own, charset);
    if (!encodeStrictly(text, charset)) {
        qFatal("the characters of %s do not fit together", charset.constData());
    }
    const QString word = letters(own, 60);
    MailCase plain{u"plain "_s + name, newMessage(), name, QString()};
    MailMessage &message = plain.Message;
    message.Charset = name;
    message.Subject = word + u' ' + letters(own, 200);
    message.From.Name = word;
    message.To.Clear();
    message.To.Add({u"first@example.com"_s, u"Dr. "_s + word});
    message.To.Add({u"second@example.com"_s, word.left(8) + u", "_s + word.right(8)});
    message.Content = text;
    message.Attachments.Add({word + u".txt"_s, writeFile(files, name + u".bin"_s, text.toUtf8())});
    cases.append(plain);

    MailCase html = plain;
    html.Name = u"html "_s + name;
    html.Message.Format = MailMessage::Html;
    const QString document = u"<html><head><meta charset=\"%1\"><title>x</title></head><body><pre>\r\n%2</pre><p>%3</p>"
                             "</body></html>\r\n"_s;
    const bool all = charset == "utf-8" || charset == "gb18030";
    html.Message.Content = document.arg(u"x-other"_s, text, u"😀"_s);
    html.Html = document.arg(name, text, all ? u"😀"_s : u"&#128512;"_s);
    html.TextCharset = all ? name : u"utf-8"_s;
    cases.append(html);

    MailCase misfit = plain;
    misfit.Name = u"misfit "_s + name;
    misfit.Message.Content = u"smile 😀\r\n"_s + word;
    misfit.TextCharset = all ? name : u"utf-8"_s;
    cases.append(misfit);
}

} // namespace

QList<MailCase> charsetCases(const QTemporaryDir &files)
{
    QList<MailCase> cases;
    for (const EncodingEntry &entry : offeredEncodings(encodingList())) {
        addCharset(cases, files, entry.Code.toLatin1());
    }
    return cases;
}

QList<MailCase> awkwardBodies()
{
    const QList<QPair<QString, QString>> bodies{
        {u"empty"_s, QString()},
        {u"no line end"_s, u"just this"_s},
        {u"one line end"_s, u"\r\n"_s},
        {u"eight bits"_s, u"Grüße, 日本, 😀\r\n"_s},
        {u"long line"_s, u"0123456789"_s.repeated(1000)},
        {u"long line of letters"_s, u"日本語ü"_s.repeated(1000) + u"\r\n"_s},
        {u"dots"_s, u".\r\n..\r\n...\r\n.x\r\n.\r\n"_s},
        {u"only a dot"_s, u"."_s},
        {u"bare line feeds"_s, u"a\nb\n\nc\n"_s},
        {u"bare carriage returns"_s, u"a\rb\r\rc\r"_s},
        {u"mixed line ends"_s, u"a\n\rb\r\n\nc\r\r\nd"_s},
        {u"trailing blanks"_s, u"a \r\nb\t\r\n  \r\n "_s},
        {u"nul and controls"_s, u"a"_s + QChar(0) + u"b\x01\x1B\x7F\x0B\x0C"_s + QChar(0x85) + u"\r\n"_s},
        {u"from line"_s, u"From me to you\r\n>From\r\nFrom\r\n"_s},
        {u"equals"_s, u"a=3D=\r\n=20\r\n=\r\n"_s},
        {u"looks like a boundary"_s, u"--=_x.1\r\n\r\n--=_x.1--\r\n--\r\n"_s},
        {u"looks like headers"_s, u"Subject: not me\r\nBcc: x@example.com\r\n\r\nbody\r\n"_s},
        {u"separators"_s, u"a\u2028b\u2029c\uFEFFd\u200B\r\n"_s},
    };
    QList<MailCase> cases;
    for (const auto &[name, body] : bodies) {
        MailCase plain{name, newMessage(), QString(), QString()};
        plain.Message.Content = body;
        cases.append(plain);
        MailCase html{u"html "_s + name, newMessage(), QString(), QString()};
        html.Message.Format = MailMessage::Html;
        html.Message.Content = u"<p>x</p>"_s + body;
        cases.append(html);
    }
    return cases;
}

QList<MailCase> headerInjections(const QTemporaryDir &files)
{
    const QString path = writeFile(files, u"plain.txt"_s, "text");
    QList<MailCase> cases;
    for (const QString &lineEnd : {u"\r\n"_s, u"\n"_s, u"\r"_s, u"\r\n "_s, QString(QChar(0)), QString(QChar(0x85)),
                                   QString(QChar(0x2028)), u"\v"_s, u"\r\n\r\n"_s}) {
        for (const QString &start : {u"Hello"_s, u"Grüße"_s, QString()}) {
            const QString evil = start + lineEnd + u"X-Evil: yes"_s;
            MailCase one{u"injection %1"_s.arg(cases.size()), newMessage(), QString(), QString()};
            MailMessage &message = one.Message;
            message.Content = u"body\r\n"_s;
            message.Subject = evil;
            message.From.Name = evil;
            message.ReplyTo = {u"reply@example.org"_s, evil};
            message.RequestReceipt = true;
            message.ReceiptTo = {u"receipt@example.org"_s, evil};
            message.To.Item(1).Name = evil;
            message.CC.Add({u"cc@example.com"_s, evil});
            message.Priority = u"2"_s + evil;
            message.Charset = u"utf-8"_s + evil;
            message.AccountName = evil;
            message.Attachments.Add({evil + u".txt"_s, path});
            cases.append(one);
        }
    }
    return cases;
}

QList<MailCase> awkwardNames(const QTemporaryDir &files)
{
    const QString path = writeFile(files, u"plain.txt"_s, "text");
    QList<MailCase> cases;
    for (const QString &name : {u"Plain"_s,
                                u"Two Words"_s,
                                u"Doe, John"_s,
                                u"O'Brien (Bob) <x>"_s,
                                u"a@b.example"_s,
                                u"Jürgen Müller"_s,
                                u"日本語の名前"_s,
                                u"😀 party 👩‍👩‍👧"_s,
                                u"=?utf-8?Q?looks_encoded?="_s,
                                u"100% & more; a=b"_s,
                                u"x"_s.repeated(300),
                                u"ü"_s.repeated(300),
                                u"many words in here "_s.repeated(20).trimmed(),
                                u"dots.and.more..x"_s,
                                u"[brackets]"_s,
                                u"under_score"_s,
                                u"''single''"_s,
                                u"a:b;c"_s,
                                u"Ünï \"quoted\" ö"_s,
                                u"two  blanks"_s,
                                u"עברית"_s}) {
        MailCase one{u"name %1"_s.arg(cases.size()), newMessage(), QString(), QString()};
        MailMessage &message = one.Message;
        message.Content = u"body\r\n"_s;
        message.Subject = name;
        message.From.Name = name;
        message.ReplyTo = {u"reply@example.org"_s, name};
        message.To.Item(1).Name = name;
        message.To.Add({u"second@example.com"_s, name});
        message.CC.Add({u"third@example.com"_s, name});
        message.Attachments.Add({name + u".txt"_s, path});
        cases.append(one);
    }
    return cases;
}
