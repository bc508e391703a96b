#include "records/signaturerecords.h"

#include "quillon/fault.h"
#include "quillon/files/linefile.h"
#include "quillon/files/safefile.h"
#include "quillon/files/textcoding.h"
#include "quillon/files/writeoutcome.h"
#include "records/recordfields.h"
#include "records/recordtexts.h"
#include "records/signaturefiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <algorithm>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

constexpr int numberedNames = 1000;
constexpr mode_t folderMode = S_IRWXU;

/// signs.dll in memory, with the files of texts that belong to its lines.
struct Signatures {
    explicit Signatures(const ApplicationGlobals &globals)
        : lines(globals.paths.signsFile), names(namesOf(lines)), files(globals.paths.signs, names)
    {
    }

    static QStringList namesOf(const quillon::LineFile &lines)
    {
        QStringList names;
        names.reserve(lines.count());
        for (qsizetype i = 0; i < lines.count(); ++i) {
            names.append(recordField(lines.at(i), SignatureName));
        }
        return names;
    }

    /// The name as its line has it: an older program may have kept one that would be written otherwise today.
    [[nodiscard]] QString key(const QString &name) const { return names.contains(name) ? name : signatureNameOf(name); }

    /// The path in the first line of that name; nothing when there is no such line.
    [[nodiscard]] std::optional<QString> path(const QString &name) const
    {
        const qsizetype index = names.indexOf(name);
        return index < 0 ? std::nullopt : std::optional(recordField(lines.at(index), SignaturePath));
    }

    /// Whether signs.dll may be rewritten; tells it when it may not.
    [[nodiscard]] bool writable(const QString &path) const
    {
        if (!lines.readable()) {
            quillon::tellNotRewritten(path);
        }
        return lines.readable();
    }

    qsizetype removeLines(const QSet<QString> &doomed)
    {
        return lines.removeIf(
            [&doomed](const QString &line) { return doomed.contains(recordField(line, SignatureName)); });
    }

    quillon::LineFile lines;
    QStringList names;
    SignatureFiles files;
};

/// The octets of a text; a NUL is no letter of one.
QByteArray octetsOf(const QString &text)
{
    QString letters = text;
    return quillon::guardedFromMark(quillon::encodeText(letters.remove(QChar(u'\0'))));
}

/// The octets of a file that holds text of that size at most; a missing file gives an empty array.
std::optional<QByteArray> textOctets(const QString &path, qint64 limit)
{
    auto octets = quillon::readWholeFile(path, limit);
    if (octets && !quillon::isUtf16(*octets) && octets->contains('\0')) {
        quillon::reportFault(u"there is no text in '"_s + path + u'\'');
        octets.reset();
    }
    return octets;
}

bool add(const ApplicationGlobals &globals, const QString &typed, const QString &path,
         const std::optional<QByteArray> &text)
{
    const QString name = signatureNameOf(typed);
    const Signatures present(globals);
    if (!present.writable(globals.paths.signsFile) || name.isEmpty()) {
        quillon::reportFault(u"cannot add the signature '"_s + typed + u'\'');
        return false;
    }
    const bool shared = present.files.isOfAnother(name, name); // where names of two cases are one file
    if (!shared && !present.names.contains(name) && !present.files.setAside(name)) {
        return false; // the text of an earlier signature is still in its place
    }
    if (text && !shared) {
        present.files.write(name, *text); // where there can be none, the signature stands without it
    }
    return globals.lines.AppendLine(globals.paths.signsFile, recordLine({name, path})) &&
           globals.lines.LineExists(globals.paths.signsFile, recordLine({name, path}));
}

/// Stores a text unless it is what stands there. False when it could not be stored, though there is a place for it.
bool storeText(const SignatureFiles &files, const QString &name, const QString &text)
{
    const QByteArray octets = octetsOf(text);
    if (const QString found = files.present(name); !found.isEmpty()) {
        const auto present = textOctets(found, signatureTextLimit);
        if (!present) {
            quillon::tellNotRewritten(found);
            return false;
        }
        if (found == files.target(name) && *present == octets) {
            quillon::tellWritten(found);
            return true;
        }
    }
    return files.write(name, octets) || files.target(name).isEmpty();
}

bool modify(const ApplicationGlobals &globals, const QString &given, const QString &text, const QString &givenPath)
{
    Signatures present(globals);
    const QString name = present.key(given);
    const QString path = fieldText(givenPath);
    const bool known = present.names.contains(name);
    if (!present.writable(globals.paths.signsFile) || (name.isEmpty() && !known) ||
        (path.isEmpty() && !givenPath.isEmpty())) {
        quillon::reportFault(u"cannot change the signature '"_s + given + u'\'');
        return false;
    }
    if (path.isEmpty() && !storeText(present.files, name, text)) {
        return false;
    }
    present.removeLines({name});
    present.lines.append(name + u'\t' + path);
    if (!present.lines.saveIfChanged()) {
        return false;
    }
    if (!path.isEmpty()) {
        present.files.removeAllThatBeginWith(name);
    }
    return true;
}

bool rename(const ApplicationGlobals &globals, const QString &given, const QString &typed)
{
    Signatures present(globals);
    const QString name = present.key(given);
    const QString newName = signatureNameOf(typed);
    const qsizetype index = present.names.indexOf(name);
    if (!present.writable(globals.paths.signsFile) || index < 0 || newName == name) {
        return index >= 0;
    }
    if (newName.isEmpty() || present.names.contains(newName)) {
        quillon::reportFault(u"cannot rename the signature '"_s + name + u"' to '"_s + newName + u'\'');
        return false;
    }
    const QString path = recordField(present.lines.at(index), SignaturePath);
    const bool stored = !present.files.present(name).isEmpty();
    QStringList fields = present.lines.at(index).split(u'\t');
    fields[SignatureName] = newName;
    present.lines.replace(index, fields.join(u'\t'));
    const SignatureFiles::Move text(present.files, name, newName);
    if (!present.lines.save()) {
        text.takeBack();
        return false;
    }
    text.finish();
    quillon::tellDeleted(present.files.target(name)); // where nobody will write any more
    if (!stored && !path.trimmed().isEmpty() && !present.files.isOfAnother(newName, name)) {
        present.files.remove(newName); // a text that was left there would be taken for the signature's
    }
    return true;
}

bool clear(const ApplicationGlobals &globals)
{
    const QString &folder = globals.paths.signs;
    const QFileInfo info(folder);
    if (info.isDir() && !info.isSymLink()) {
        // First of all nothing is listed any more, so that no name is left without its text.
        quillon::writeWholeFile(globals.paths.signsFile, {});
        if (QDir(folder).removeRecursively()) {
            quillon::tellDeleted(folder);
        } else {
            quillon::reportFault(u"cannot delete all of '"_s + folder + u'\'');
        }
    } else {
        QFile::remove(folder); // a link goes, what it leads to is not the program's
    }
    if (::mkdir(QFile::encodeName(folder).constData(), folderMode) != 0 && !QFileInfo(folder).isDir()) {
        quillon::reportFault(u"cannot make the folder '"_s + folder + u'\'');
    }
    return quillon::writeWholeFile(globals.paths.signsFile, {});
}

} // namespace

QString signatureNameOf(const QString &typed)
{
    return quillon::decodeLine(quillon::encodeText(fieldText(typed)));
}

QStringList signatureNames(const ApplicationGlobals &globals)
{
    return Signatures::namesOf(quillon::LineFile(globals.paths.signsFile));
}

QString newSignatureName(const QStringList &taken)
{
    const auto numbered = [](int number) { return QString::fromUtf16(numberedSignature) + QString::number(number); };
    if (taken.isEmpty()) {
        return numbered(0);
    }
    const QSet<QString> names(taken.cbegin(), taken.cend());
    for (int number = 1; number <= numberedNames; ++number) {
        if (QString name = numbered(number); !names.contains(name)) {
            return name;
        }
    }
    return {};
}

QString signatureFile(const ApplicationGlobals &globals, const QString &name)
{
    return SignatureFiles(globals.paths.signs, {}).target(name);
}

bool SaveSignatureRecord(const ApplicationGlobals &globals, SignatureChange change, const QString &name,
                         const QString &newName, const QString &text, const QString &path)
{
    switch (change) {
    case SignatureChange::Add:
        return add(globals, newName, path, text.isEmpty() ? std::nullopt : std::optional(octetsOf(text)));
    case SignatureChange::Modify:
        return modify(globals, name, text, path);
    case SignatureChange::Rename:
        return rename(globals, name, newName);
    case SignatureChange::Delete:
        return deleteSignatures(globals, {name});
    case SignatureChange::Clear:
        return clear(globals);
    }
    return true;
}

bool addSignature(const ApplicationGlobals &globals, const QString &name)
{
    return add(globals, name, {}, QByteArray());
}

bool deleteSignatures(const ApplicationGlobals &globals, const QStringList &names)
{
    Signatures present(globals);
    QSet<QString> doomed;
    const QSet<QString> known(present.names.cbegin(), present.names.cend());
    for (const QString &name : names) {
        doomed.insert(known.contains(name) ? name : signatureNameOf(name));
    }
    if (!present.writable(globals.paths.signsFile)) {
        return false;
    }
    if (present.removeLines(doomed) == 0) {
        return true;
    }
    if (!present.lines.save()) {
        return false;
    }
    for (const QString &name : std::as_const(doomed)) {
        if (known.contains(name)) {
            present.files.remove(name);
        }
    }
    return true;
}

SignatureContent signatureContent(const ApplicationGlobals &globals, const QString &name)
{
    const Signatures present(globals);
    SignatureContent content;
    const std::optional<QString> path = present.path(name);
    content.found = path.has_value();
    content.readable = present.lines.readable();
    if (!content.found) {
        return content;
    }
    if (!path->trimmed().isEmpty()) {
        content.path = *path;
        return content;
    }
    if (const QString file = present.files.present(name); !file.isEmpty()) {
        const auto octets = textOctets(file, signatureEditLimit);
        content.readable = octets.has_value();
        content.text = quillon::decodeText(octets.value_or(QByteArray()));
    }
    return content;
}

SignatureText signatureText(const ApplicationGlobals &globals, const QString &name)
{
    const Signatures present(globals);
    SignatureText result;
    QString file = present.files.present(name);
    if (!QFileInfo(file).isFile()) {
        file = present.path(name).value_or(QString());
        if (!QFileInfo(file).isFile()) {
            return result;
        }
        result.html = file.endsWith(".htm"_L1, Qt::CaseInsensitive) || file.endsWith(".html"_L1, Qt::CaseInsensitive);
    }
    const auto octets = textOctets(file, signatureTextLimit);
    result.found = octets.has_value();
    result.text = quillon::decodeText(octets.value_or(QByteArray()));
    return result;
}

} // namespace corvane
