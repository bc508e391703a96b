#include "message/plainmessage.h"

#include "quillon/text/lineends.h"

namespace corvane {

namespace {

bool isOneLine(Message::Field field)
{
    using Field = Message::Field;
    return field == Field::Account || field == Field::Sender || field == Field::ReplyReceiver ||
           field == Field::Encoding || field == Field::Subject;
}

} // namespace

QString contentOf(const Message &message, Message::Format format)
{
    return message.text(format == Message::Format::Plain ? Message::Field::PlainContent : Message::Field::RichContent);
}

QString PlainMessage::text(Field field) const
{
    const QString text = m_texts.value(field);
    return isOneLine(field) ? quillon::onOneLine(text) : quillon::withCrLf(text);
}

void PlainMessage::setText(Field field, const QString &text)
{
    QString &held = m_texts[field];
    // What is typed into the rich editor marks the message, a document that it is given does not.
    pblnChanged = pblnChanged || (field != Field::RichContent && held != text);
    held = text;
}

bool PlainMessage::isActual(Choice choice) const
{
    return m_actual.value(choice, true);
}

void PlainMessage::setActual(Choice choice, bool actual)
{
    m_actual.insert(choice, actual);
}

void PlainMessage::setCustomDateTime(const QDate &date, const QTime &time)
{
    m_date = date;
    m_time = time;
}

} // namespace corvane
