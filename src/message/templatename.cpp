#include "message/templatename.h"

#include "message/messagetexts.h"

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

QString titleOf(const char16_t *what, const QString &name)
{
    return QString::fromUtf16(titleStart) + QString::fromUtf16(what) + u" \""_s + name + u'"';
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
    return QString::fromUtf16(newMessageTitleText);
}

QString editTitle(const QString &name)
{
    return titleOf(editTitleWord, name);
}

QString previewTitle(const QString &name)
{
    return titleOf(previewTitleWord, name);
}

bool isNewMessageTitle(const QString &title)
{
    return title == QStringView(newMessageTitleText);
}

QString nameInTitle(const QString &title)
{
    const qsizetype quote = title.indexOf(u'"');
    return quote < 0 ? QString() : title.sliced(quote + 1).chopped(quote + 1 < title.size() ? 1 : 0);
}

} // namespace corvane
