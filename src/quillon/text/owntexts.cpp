#include "quillon/text/owntexts.h"

#include <QHash>

#include <utility>

namespace quillon {

namespace {

TextSource *source = nullptr;

/// What was looked up since the last change.
QHash<const OwnText *, QString> &found()
{
    static QHash<const OwnText *, QString> texts;
    return texts;
}

} // namespace

TextSource *setTextSource(TextSource *next)
{
    found().clear();
    return std::exchange(source, next);
}

void refreshTexts()
{
    if (source && source->hasChanged()) {
        found().clear();
    }
}

QString ownText(const OwnText &what)
{
    const auto known = found().constFind(&what);
    if (known != found().constEnd()) {
        return *known;
    }
    QString text = source ? source->text(QString::fromUtf16(what.section), QString::fromUtf16(what.key)) : QString();
    if (text.trimmed().isEmpty()) {
        text = QString::fromUtf16(what.english); // a fault without a word would help nobody
    }
    found().insert(&what, text);
    return text;
}

} // namespace quillon
