#include "message/templatefiles.h"

#include "message/encodingsearch.h"
#include "message/messagetexts.h"
#include "quillon/files/safefile.h"
#include "quillon/files/settingsfile.h"
#include "quillon/files/writeoutcome.h"
#include "quillon/mail/encodinglist.h"
#include "quillon/mail/subjectcodec.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>

#include <algorithm>
#include <cerrno>
#include <optional>
#include <unistd.h>
#include <utility>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

using Field = Message::Field;
using Choice = Message::Choice;

const QString charset = u"utf-8"_s;

QString filePath(const ApplicationGlobals &globals, const QString &prefix, const QString &name)
{
    return globals.paths.templates + u'/' + prefix + name + u".dll"_s;
}

QString choiceText(const Message &message, Choice choice)
{
    return message.isActual(choice) ? QString::fromUtf16(headwords::actual) : QString::fromUtf16(headwords::custom);
}

QString flagWord(bool flag)
{
    return flag ? QString::fromUtf16(headwords::yes) : QString::fromUtf16(headwords::no);
}

QString priorityText(Message::Priority priority)
{
    using Priority = Message::Priority;
    return priority == Priority::High     ? QString::fromUtf16(headwords::high)
           : priority == Priority::Normal ? QString::fromUtf16(headwords::normal)
                                          : QString::fromUtf16(headwords::low);
}

Message::Priority priorityOf(const QString &text)
{
    using Priority = Message::Priority;
    return text == QStringView(headwords::high)     ? Priority::High
           : text == QStringView(headwords::normal) ? Priority::Normal
                                                    : Priority::Low;
}

QString momentText(const Message &message)
{
    if (message.isActual(Choice::Date)) {
        return QString::fromUtf16(headwords::actual);
    }
    const QLocale digits = QLocale::c(); // a person's own digits are none for who reads this
    return digits.toString(message.customDate(), u"yyyyMMdd"_s) + u' ' +
           digits.toString(message.customTime(), u"HH:mm:ss"_s);
}

QString existingAttachments(const Message &message)
{
    QStringList paths = message.attachmentPaths();
    paths.removeIf([](const QString &path) { return !QFileInfo::exists(path); });
    return paths.join(u'|');
}

/// A second name for a file, or a copy where the file system knows no such thing; false when there is no file, or the
/// name cannot be had.
bool giveName(const QString &path, const QString &newPath)
{
    if (!QFile::exists(path) || QFile::exists(newPath)) {
        return false;
    }
    if (::link(QFile::encodeName(path).constData(), QFile::encodeName(newPath).constData()) == 0) {
        return true;
    }
    const std::optional<QByteArray> content =
        QFileInfo(newPath).dir().exists() && errno != ENAMETOOLONG ? quillon::readWholeFile(path) : std::nullopt;
    return content && quillon::writeWholeFile(newPath, *content);
}

/// The code of the encoding whose display name is chosen; empty when the list does not offer it.
QString chosenEncoding(Message &message)
{
    return selectEncodingOfName(message, message.text(Field::Encoding));
}

/// A part of the moment that cannot be read leaves what stands in the message.
void readMoment(const QString &text, Message &message)
{
    const bool actual = text == QStringView(headwords::actual);
    message.setActual(Choice::Date, actual);
    if (actual) {
        return;
    }
    const QDate date = QDate::fromString(text.left(8), u"yyyyMMdd"_s);
    const QTime time = QTime::fromString(text.right(8), u"HH:mm:ss"_s);
    message.setCustomDateTime(date.isValid() ? date : message.customDate(),
                              time.isValid() ? time : message.customTime());
}

/// The paths that are still there; of several with one file name the first.
QStringList storedAttachments(const QString &text)
{
    QStringList paths;
    QStringList names;
    for (const QString &path : text.split(u'|', Qt::SkipEmptyParts)) {
        const QFileInfo file(path);
        if (file.exists() && !names.contains(file.fileName())) {
            names.append(file.fileName());
            paths.append(path);
        }
    }
    return paths;
}

void readEncoding(const QString &code, Message &message)
{
    for (int i = 0; i < message.encodingCount(); ++i) {
        message.selectEncoding(i);
        const auto entry = quillon::EncodingEntry::parse(message.selectedEncoding());
        if (entry && entry->Code == code) {
            message.setText(Field::Encoding, entry->Name);
            return;
        }
    }
}

} // namespace

QString headPath(const ApplicationGlobals &globals, const QString &name)
{
    return filePath(globals, u"head_"_s, name);
}

QString contentPath(const ApplicationGlobals &globals, const QString &name)
{
    return filePath(globals, u"content_"_s, name);
}

QStringList templateNames(const ApplicationGlobals &globals)
{
    return globals.lines.ReadLines(globals.paths.templatesFile);
}

bool isListed(const ApplicationGlobals &globals, const QString &name)
{
    const QStringList names = templateNames(globals);
    return std::any_of(names.begin(), names.end(), [&name](const QString &listed) {
        return listed.trimmed().toLower() == name.trimmed().toLower();
    });
}

bool writeTemplate(const ApplicationGlobals &globals, const QString &name, bool isNew, Message &message,
                   const std::function<void()> &rememberRecipients)
{
    bool written = !isNew || globals.lines.AppendLine(globals.paths.templatesFile, name);
    quillon::SettingsFile head(headPath(globals, name));
    const auto write = [&head](const char16_t *key, const QString &value) {
        head.setValue(QString::fromUtf16(headkeys::section), QString::fromUtf16(key), value);
    };
    write(headkeys::account, message.text(Field::Account).trimmed());
    write(headkeys::senderType, choiceText(message, Choice::Sender));
    write(headkeys::sender, message.text(Field::Sender));
    write(headkeys::replyReceiverType, choiceText(message, Choice::ReplyReceiver));
    write(headkeys::replyReceiver, message.text(Field::ReplyReceiver));
    write(headkeys::to, message.text(Field::To));
    write(headkeys::cc, message.text(Field::CC));
    write(headkeys::bcc, message.text(Field::BCC));
    write(headkeys::subject, quillon::SubjectCodec().Encode(message.text(Field::Subject), charset));
    rememberRecipients();
    write(headkeys::attachments, existingAttachments(message));
    write(headkeys::dateAndTime, momentText(message));
    write(headkeys::type, message.format() == Message::Format::Plain ? QString::fromUtf16(headwords::plain)
                                                                     : QString::fromUtf16(headwords::html));
    if (const QString code = chosenEncoding(message); !code.isEmpty()) {
        write(headkeys::encoding, code);
    }
    write(headkeys::priority, priorityText(message.priority()));
    write(headkeys::oneByOne, flagWord(message.oneByOne()));
    write(headkeys::receipt, flagWord(message.receipt()));
    written &= head.save();
    written &= globals.lines.WriteTextFile(contentPath(globals, name), contentOf(message, message.format()), charset);
    return written;
}

void LoadTemplate(const ApplicationGlobals &globals, const QString &name, Message &message)
{
    for (const Field field :
         {Field::To, Field::CC, Field::BCC, Field::Subject, Field::Source, Field::PlainContent, Field::RichContent}) {
        message.setText(field, QString());
    }
    const QString path = quillon::existingPath(headPath(globals, name));
    if (!QFile::exists(path)) {
        return;
    }
    const quillon::SettingsFile head(path);
    const auto value = [&head](const char16_t *key) {
        return head.value(QString::fromUtf16(headkeys::section), QString::fromUtf16(key));
    };
    message.setText(Field::Account, value(headkeys::account));
    // The choice may fill the box; the stored text then takes its place.
    message.setActual(Choice::Sender, value(headkeys::senderType) == QStringView(headwords::actual));
    message.setText(Field::Sender, value(headkeys::sender));
    message.setActual(Choice::ReplyReceiver, value(headkeys::replyReceiverType) == QStringView(headwords::actual));
    message.setText(Field::ReplyReceiver, value(headkeys::replyReceiver));
    message.setText(Field::To, value(headkeys::to));
    message.setText(Field::CC, value(headkeys::cc));
    message.setText(Field::BCC, value(headkeys::bcc));
    message.setText(Field::Subject, quillon::SubjectCodec().Decode(value(headkeys::subject), charset));
    message.setAttachmentPaths(storedAttachments(value(headkeys::attachments)));
    readMoment(value(headkeys::dateAndTime), message);
    message.setFormat(value(headkeys::type) == QStringView(headwords::plain) ? Message::Format::Plain
                                                                             : Message::Format::Rich);
    readEncoding(value(headkeys::encoding), message);
    message.setPriority(priorityOf(value(headkeys::priority)));
    message.setOneByOne(value(headkeys::oneByOne) == QStringView(headwords::yes));
    message.setReceipt(value(headkeys::receipt) == QStringView(headwords::yes));
    const bool plain = message.format() == Message::Format::Plain;
    const QString content = quillon::existingPath(contentPath(globals, name));
    message.setText(plain ? Field::PlainContent : Field::RichContent,
                    QFile::exists(content) ? globals.lines.ReadTextFile(content) : QString());
}

void deleteTemplate(const ApplicationGlobals &globals, const QString &name)
{
    globals.lines.DeleteLineByKey(globals.paths.templatesFile, name, QString(), 0);
    for (const QString &path : {headPath(globals, name), contentPath(globals, name)}) {
        QFile::remove(quillon::existingPath(path));
        quillon::tellDeleted(path);
    }
}

void renameTemplate(const ApplicationGlobals &globals, const QString &name, const QString &newName)
{
    QStringList moved;
    for (const auto path : {headPath, contentPath}) {
        const QString present = quillon::existingPath(path(globals, name));
        if (giveName(present, path(globals, newName))) {
            moved.append(present);
        }
    }
    globals.lines.MoveLineToEnd(globals.paths.templatesFile, name, newName);
    // Only now: a name that the list holds has its files at every moment.
    for (const QString &path : std::as_const(moved)) {
        QFile::remove(path);
    }
    for (const auto path : {headPath, contentPath}) {
        quillon::tellDeleted(path(globals, name)); // where nobody will write any more
    }
}

} // namespace corvane
