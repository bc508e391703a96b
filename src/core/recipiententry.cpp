#include "core/recipiententry.h"

#include "quillon/text/lineends.h"
#include "quillon/text/quillonaddress.h"

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

constexpr qsizetype firstNamePosition = 2; // from 0: a name of one letter, a blank, then "<"

} // namespace

bool IsRecipientEntry(const QString &entry)
{
    const quillon::QuillonAddress tester;
    const qsizetype open = entry.indexOf(u'<');
    if (open >= firstNamePosition) {
        return entry.at(open - 1) == u' ' && entry.endsWith(u'>') &&
               tester.IsEmailAddress(entry.sliced(open + 1, entry.size() - open - 2));
    }
    return tester.IsEmailAddress(entry);
}

quillon::MailAddress toMailAddress(const QString &entry)
{
    const qsizetype open = entry.indexOf(u'<');
    if (open < firstNamePosition) {
        return {entry, {}};
    }
    QString address = entry.sliced(open + 1);
    address.chop(1);
    return {address, entry.first(open - 1)};
}

QString toRecipientEntry(const QString &name, const QString &address)
{
    return name.isEmpty() ? address : name + u" <"_s + address + u'>';
}

QString trimmedEntry(const QString &piece)
{
    return quillon::onOneLine(piece.trimmed());
}

QStringList splitRecipients(const QString &text)
{
    QString list = text.trimmed();
    if (list.endsWith(u',')) {
        list.chop(1);
    }
    if (list.isEmpty()) {
        return {};
    }
    QStringList entries = list.split(u',');
    for (QString &entry : entries) {
        entry = trimmedEntry(entry);
    }
    return entries;
}

} // namespace corvane
