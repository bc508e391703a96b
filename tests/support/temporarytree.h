#pragma once

#include "core/datatree.h"
#include "core/globals.h"
#include "core/settings.h"
#include "core/texts.h"
#include "quillon/fault.h"
#include "quillon/files/safefile.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

/// A data tree of its own for one test: the user's and the shared application data folders lie in a temporary folder.
class TemporaryTree {
public:
    TemporaryTree()
    {
        qputenv("XDG_DATA_HOME", QFile::encodeName(userFolder()));
        qputenv("XDG_DATA_DIRS", QFile::encodeName(sharedFolder()));
        QDir().mkpath(userFolder());
        QDir().mkpath(sharedFolder());
        globals.paths = corvane::dataPathsBelow(userFolder(), sharedFolder());
        globals.programFolder = m_folder.filePath(QStringLiteral("program"));
        QDir().mkpath(globals.programFolder);
        corvane::setLanguageFolder(globals.programFolder);
    }
    ~TemporaryTree()
    {
        quillon::setTemporaryFolder(QString());
        corvane::setLanguageFolder(QString());
    }
    TemporaryTree(const TemporaryTree &) = delete;
    TemporaryTree &operator=(const TemporaryTree &) = delete;

    /// Makes the folders and files, and loads the settings as a first start does.
    void prepare()
    {
        corvane::PrepareDataFolder(globals);
        corvane::UpgradeOldData(globals);
        corvane::prepareSettings(globals);
    }

    /// Turns the use of proxies on, with a default one or none, in memory.
    void useProxy(const QString &record)
    {
        globals.settings.set(corvane::Setting::ProxyUse, QStringLiteral("True"));
        globals.settings.set(corvane::Setting::DefaultProxy, record);
    }

    [[nodiscard]] QString path(const QString &name = QString()) const { return m_folder.filePath(name); }
    [[nodiscard]] QString userFolder() const { return path(QStringLiteral("user")); }
    [[nodiscard]] QString sharedFolder() const { return path(QStringLiteral("shared")); }

    corvane::ApplicationGlobals globals;

private:
    QTemporaryDir m_folder;
};

/// The octets of a file; a null array when it is not there.
inline QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() + QByteArray("") : QByteArray();
}

inline void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(bytes) != bytes.size()) {
        qFatal("cannot write %s", qPrintable(path));
    }
}
