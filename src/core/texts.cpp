#include "core/texts.h"

#include "quillon/files/settingsfile.h"
#include "quillon/text/owntexts.h"

#include <QCoreApplication>
#include <QFile>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

QString chosenFolder;

/// tips.dll as the source of sentences: read when it is needed first, and again once it is another file or has changed.
class LanguageFile : public quillon::TextSource {
public:
    QString text(const QString &section, const QString &key) override
    {
        if (!m_texts) {
            m_seen = look();
            m_texts.emplace(m_seen.path);
        }
        return m_texts->value(section, key);
    }

    bool hasChanged() override
    {
        if (!m_texts || look() == m_seen) {
            return false;
        }
        m_texts.reset();
        return true;
    }

private:
    /// What tells one state of the file from another.
    struct Sight {
        QString path;
        ino_t node = 0;
        off_t size = -1;
        time_t seconds = 0;
        long nanoseconds = 0;
        friend bool operator==(const Sight &, const Sight &) = default;
    };

    static Sight look()
    {
        Sight sight{languageFolder() + u"/tips.dll"_s};
        struct stat status {};
        if (::stat(QFile::encodeName(sight.path).constData(), &status) == 0) {
            sight.node = status.st_ino;
            sight.size = status.st_size;
            sight.seconds = status.st_mtim.tv_sec;
            sight.nanoseconds = status.st_mtim.tv_nsec;
        }
        return sight;
    }

    Sight m_seen;
    std::optional<quillon::SettingsFile> m_texts;
};

} // namespace

QString languageFolder()
{
    return chosenFolder.isEmpty() ? QCoreApplication::applicationDirPath() : chosenFolder;
}

void setLanguageFolder(const QString &folder)
{
    chosenFolder = folder;
    quillon::refreshTexts();
}

void useLanguageTexts()
{
    static LanguageFile file;
    quillon::setTextSource(&file);
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

quillon::Pending<quillon::BoxAnswer> messageShownWith(const QString &details, const QString &key, int style)
{
    return quillon::fromEventLoop([details, key, style] {
        return quillon::prompts().box({key, LookupText(key), QString(), style, details});
    });
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
