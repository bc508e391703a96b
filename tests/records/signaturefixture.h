#pragma once

#include "records/signaturerecords.h"
#include "support/treefixture.h"

#include <QFileInfo>

#include <sys/stat.h>

/// Signatures in a data tree that each test gets anew.
class SignatureFixture : protected TreeFixture {
protected:
    [[nodiscard]] QByteArray list() const { return contentOf(globals().paths.signsFile); }
    void setList(const QByteArray &octets) const { writeFile(globals().paths.signsFile, octets); }
    [[nodiscard]] QString file(const QString &name) const
    {
        return globals().paths.signs + QStringLiteral("/sign_") + name + QStringLiteral(".dll");
    }
    [[nodiscard]] QByteArray stored(const QString &name) const { return contentOf(file(name)); }
    void store(const QString &name, const QByteArray &octets) const { writeFile(file(name), octets); }
    /// The names of all that lies in the folder beside signs.dll.
    [[nodiscard]] QStringList storedFiles() const
    {
        QStringList files = QDir(globals().paths.signs)
                                .entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot | QDir::Hidden);
        files.removeOne(QStringLiteral("signs.dll"));
        return files;
    }

    bool save(corvane::SignatureChange change, const QString &name, const QString &newName, const QString &text = {},
              const QString &path = {}) const
    {
        return corvane::SaveSignatureRecord(globals(), change, name, newName, text, path);
    }
    void modify(const QString &name, const QString &text, const QString &path = {}) const
    {
        save(corvane::SignatureChange::Modify, name, {}, text, path);
    }
};

/// What a whole write replaces.
inline ino_t node(const QString &path)
{
    struct stat status {};
    ::lstat(QFile::encodeName(path).constData(), &status);
    return status.st_ino;
}

inline mode_t modeOf(const QString &path)
{
    struct stat status {};
    ::lstat(QFile::encodeName(path).constData(), &status);
    return status.st_mode & 07777U;
}
