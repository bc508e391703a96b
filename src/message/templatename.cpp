#include "message/templatename.h"

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

const QString newTitle = u"Corvane - New Message"_s;

QString titleOf(const QString &what, const QString &name)
{
    return u"Corvane - "_s + what + u" \""_s + name + u'"';
}

} // namespace

QString withoutForbiddenCharacters(const QString &text)
{
    QString name;
    for (const QChar c : text) {
        if (!u"\\/:*?\"<>|"_s.contains(c)) {
            name += c;
        }
    }
    return name;
}

QString newMessageTitle()
{
    return newTitle;
}

QString editTitle(const QString &name)
{
    return titleOf(u"Edit"_s, name);
}

QString previewTitle(const QString &name)
{
    return titleOf(u"Preview"_s, name);
}

bool isNewMessageTitle(const QString &title)
{
    return title == newTitle;
}

QString nameInTitle(const QString &title)
{
    const qsizetype quote = title.indexOf(u'"');
    return quote < 0 ? QString() : title.sliced(quote + 1).chopped(quote + 1 < title.size() ? 1 : 0);
}

} // namespace corvane
