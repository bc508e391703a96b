#pragma once

#include "core/globals.h"

#include <QMultiHash>
#include <QSet>
#include <QString>
#include <QStringList>

#include <optional>

namespace corvane {

/// The files in which the texts of signatures are stored. A file is found without regard to the case of its name, as
/// all files of the program are, unless another signature has just that name: two signatures whose names differ only in
/// case never get into each other's file.
class SignatureFiles {
public:
    /// @p names are those of all signatures.
    SignatureFiles(QString folder, const QStringList &names);

    /// Where the text of that signature belongs; empty for a name that a file name cannot hold.
    [[nodiscard]] QString target(const QString &name) const;
    /// Where the text of that signature stands: its target(), or, for a name that a file name cannot hold, a file of
    /// another kind of name. Under it the text that the signature had under its former name, where it stays, is found
    /// and waits for the next name, whatever becomes of the former one.
    [[nodiscard]] QString place(const QString &name) const;
    /// What is there for that signature, of whatever kind; empty when there is nothing.
    [[nodiscard]] QString present(const QString &name) const;

    /// Writes the text of that signature, whole or not at all; true when it then stands there.
    bool write(const QString &name, const QByteArray &octets) const;
    void remove(const QString &name) const;
    /// Takes what stands in the place of @p name, and belongs to no signature, out of the way of a new one: a text goes
    /// on under a name of its own in the folder, an empty file is deleted. False when it could not.
    [[nodiscard]] bool setAside(const QString &name) const;
    /// Whether what stands in the place of @p newName is the text of a signature other than @p name: a file system that
    /// knows no case gives names that differ in it one file.
    [[nodiscard]] bool isOfAnother(const QString &newName, const QString &name) const;
    /// Deletes all stored texts whose names begin with this one, and this one's.
    void removeAllThatBeginWith(const QString &name) const;

    /// Moves a text to the name that its signature gets, in two steps with the change of signs.dll between them: at any
    /// moment the text stands at least under the name that signs.dll holds.
    class Move {
    public:
        /// Puts the text of @p name in the place of @p newName too. What stands there without a signature is set aside.
        Move(const SignatureFiles &files, const QString &name, const QString &newName);
        /// signs.dll holds the new name.
        void finish() const;
        /// signs.dll holds the old name.
        void takeBack() const;

    private:
        enum class How {
            Nothing, ///< there is no text, or its place is another signature's
            Linked,  ///< it stands under both names
            Later    ///< the file system knows no second names
        };
        [[nodiscard]] bool makeRoom(const SignatureFiles &files, const QString &name, const QString &newName);

        const SignatureFiles &m_files;
        QString m_from;
        QString m_to;
        bool m_waits = false;  ///< from now on it waits for a name that can have a file
        bool m_waited = false; ///< it has done so
        How m_how = How::Nothing;
    };

private:
    [[nodiscard]] const QStringList &listing() const;
    /// Deletes the other names in the folder that a text has and that belong to no signature.
    void dropOtherNames(const QString &path) const;

    QString m_folder;
    QStringList m_names;
    QSet<QString> m_own; ///< the exact file names that belong to signatures
    mutable std::optional<QStringList> m_listing;
    mutable QMultiHash<QString, QString> m_byCase; ///< file names by their case-folded form
};

} // namespace corvane
