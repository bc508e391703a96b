#include "core/texts.h"

#include "quillon/files/settingsfile.h"

#include <QCoreApplication>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {
QString chosenFolder;
}

QString languageFolder()
{
    return chosenFolder.isEmpty() ? QCoreApplication::applicationDirPath() : chosenFolder;
}

void setLanguageFolder(const QString &folder)
{
    chosenFolder = folder;
}

QString LookupText(const QString &key)
{
    return quillon::SettingsFile(languageFolder() + u"/tips.dll"_s).value(u"Message & Text"_s, key);
}

QString formText(const QString &form, const QString &key, const QString &standard)
{
    const quillon::SettingsFile texts(languageFolder() + u"/tips.dll"_s);
    return texts.contains(form, key) ? texts.value(form, key) : standard;
}

quillon::BoxAnswer showMessage(const QString &key, int style, const std::optional<QString> &value)
{
    const QString text = LookupText(key);
    const QString whole = value ? u'\'' + *value + u"' "_s + text : text;
    return quillon::prompts().box({key, whole, value.value_or(QString()), style});
}

quillon::Pending<quillon::BoxAnswer> messageShown(const QString &key, int style, const std::optional<QString> &value)
{
    return quillon::fromEventLoop([key, style, value] { return showMessage(key, style, value); });
}

quillon::Pending<quillon::BoxAnswer> textShown(const QString &text, int style, const QString &key)
{
    return quillon::fromEventLoop([text, style, key] { return quillon::prompts().box({key, text, QString(), style}); });
}

quillon::BoxAnswer showText(const QString &text, int style)
{
    return quillon::prompts().box({QString(), text, QString(), style});
}

} // namespace corvane
