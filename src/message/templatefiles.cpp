#include "message/templatefiles.h"

#include "message/encodingsearch.h"
#include "quillon/files/safefile.h"
#include "quillon/files/settingsfile.h"
#include "quillon/mail/encodinglist.h"
#include "quillon/mail/subjectcodec.h"

#include <QFile>
#include <QFileInfo>
#include <QLocale>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

using Field = Message::Field;
using Choice = Message::Choice;

const QString section = u"Head"_s;
const QString charset = u"utf-8"_s;

QString filePath(const ApplicationGlobals &globals, const QString &prefix, const QString &name)
{
    return globals.paths.templates + u'/' + prefix + name + u".dll"_s;
}

QString choiceText(const Message &message, Choice choice)
{
    return message.isActual(choice) ? u"Actual"_s : u"Custom"_s;
}

QString flagText(bool flag)
{
    return flag ? u"True"_s : u"False"_s;
}

QString priorityText(Message::Priority priority)
{
    using Priority = Message::Priority;
    return priority == Priority::High ? u"High"_s : priority == Priority::Normal ? u"Normal"_s : u"Low"_s;
}

Message::Priority priorityOf(const QString &text)
{
    using Priority = Message::Priority;
    return text == "High"_L1 ? Priority::High : text == "Normal"_L1 ? Priority::Normal : Priority::Low;
}

QString momentText(const Message &message)
{
    if (message.isActual(Choice::Date)) {
        return u"Actual"_s;
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

/// The code of the encoding whose display name is chosen; empty when the list does not offer it.
QString chosenEncoding(Message &message)
{
    return selectEncodingOfName(message, message.text(Field::Encoding));
}

/// A part of the moment that cannot be read leaves what stands in the message.
void readMoment(const QString &text, Message &message)
{
    const bool actual = text == "Actual"_L1;
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

void writeTemplate(const ApplicationGlobals &globals, const QString &name, bool isNew, Message &message,
                   const std::function<void()> &rememberRecipients)
{
    if (isNew) {
        globals.lines.AppendLine(globals.paths.templatesFile, name);
    }
    quillon::SettingsFile head(headPath(globals, name));
    const auto write = [&head](const QString &key, const QString &value) { head.setValue(section, key, value); };
    write(u"SMTP Account"_s, message.text(Field::Account).trimmed());
    write(u"Sender Type"_s, choiceText(message, Choice::Sender));
    write(u"Sender"_s, message.text(Field::Sender));
    write(u"Reply Receiver Type"_s, choiceText(message, Choice::ReplyReceiver));
    write(u"Reply Receiver"_s, message.text(Field::ReplyReceiver));
    write(u"To"_s, message.text(Field::To));
    write(u"CC"_s, message.text(Field::CC));
    write(u"BCC"_s, message.text(Field::BCC));
    write(u"Subject"_s, quillon::SubjectCodec().Encode(message.text(Field::Subject), charset));
    rememberRecipients();
    write(u"Attachments"_s, existingAttachments(message));
    write(u"Date & Time"_s, momentText(message));
    write(u"Type"_s, message.format() == Message::Format::Plain ? u"Plain"_s : u"HTML"_s);
    if (const QString code = chosenEncoding(message); !code.isEmpty()) {
        write(u"Encoding"_s, code);
    }
    write(u"Priority"_s, priorityText(message.priority()));
    write(u"One By One"_s, flagText(message.oneByOne()));
    write(u"Receipt"_s, flagText(message.receipt()));
    head.save();
    globals.lines.WriteTextFile(contentPath(globals, name), contentOf(message, message.format()), charset);
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
    const auto value = [&head](const QString &key) { return head.value(section, key); };
    message.setText(Field::Account, value(u"SMTP Account"_s));
    // The choice may fill the box; the stored text then takes its place.
    message.setActual(Choice::Sender, value(u"Sender Type"_s) == "Actual"_L1);
    message.setText(Field::Sender, value(u"Sender"_s));
    message.setActual(Choice::ReplyReceiver, value(u"Reply Receiver Type"_s) == "Actual"_L1);
    message.setText(Field::ReplyReceiver, value(u"Reply Receiver"_s));
    message.setText(Field::To, value(u"To"_s));
    message.setText(Field::CC, value(u"CC"_s));
    message.setText(Field::BCC, value(u"BCC"_s));
    message.setText(Field::Subject, quillon::SubjectCodec().Decode(value(u"Subject"_s), charset));
    message.setAttachmentPaths(storedAttachments(value(u"Attachments"_s)));
    readMoment(value(u"Date & Time"_s), message);
    message.setFormat(value(u"Type"_s) == "Plain"_L1 ? Message::Format::Plain : Message::Format::Rich);
    readEncoding(value(u"Encoding"_s), message);
    message.setPriority(priorityOf(value(u"Priority"_s)));
    message.setOneByOne(value(u"One By One"_s) == "True"_L1);
    message.setReceipt(value(u"Receipt"_s) == "True"_L1);
    const bool plain = message.format() == Message::Format::Plain;
    const QString content = quillon::existingPath(contentPath(globals, name));
    message.setText(plain ? Field::PlainContent : Field::RichContent,
                    QFile::exists(content) ? globals.lines.ReadTextFile(content) : QString());
}

} // namespace corvane
