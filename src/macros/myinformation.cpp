#include "macros/myinformation.h"

#include "macros/macrocatalogue.h"
#include "macros/macrorow.h"
#include "quillon/files/safefile.h"
#include "quillon/files/textcoding.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

/// Fields of an account's line that say who sends. The room of the records knows them all, but it calls this one.
constexpr int senderNameField = 6;
constexpr int senderAddressField = 7;

/// Fills one macro if the first line that begins with it has a blank text; true when it did.
bool fill(QList<QByteArray> &lines, const QString &macro, const QString &value)
{
    const auto found = std::find_if(lines.cbegin(), lines.cend(), [&](const QByteArray &line) {
        return quillon::decodeLine(line).startsWith(macro);
    });
    if (found == lines.cend() || !macroRowOf(quillon::decodeLine(*found)).text.trimmed().isEmpty()) {
        return false;
    }
    lines.removeIf([&](const QByteArray &line) {
        const MacroRow row = macroRowOf(quillon::decodeLine(line));
        return row.macro == macro && row.text.trimmed().isEmpty(); // a second line with a text is the user's own
    });
    lines.append(quillon::encodeText(macroLineOf({macro, value, QString::fromUtf16(myInformation)})));
    return true;
}

} // namespace

void SyncMyInformation(const ApplicationGlobals &globals)
{
    const QStringList record = globals.settings.smtp[0].split(u'\t');
    if (record.size() <= senderAddressField) {
        return;
    }
    const auto bytes = quillon::readWholeFile(globals.paths.macrosFile);
    if (!bytes) {
        return; // what cannot be read is not rewritten
    }
    const QString &name = record.at(senderNameField);
    const QStringList words = name.split(u' ', Qt::SkipEmptyParts);
    QList<QByteArray> lines = quillon::splitLines(*bytes);
    bool changed = fill(lines, u"{My First Name}"_s, words.value(0));
    changed |= fill(lines, u"{My Last Name}"_s, words.value(words.size() - 1));
    changed |= fill(lines, u"{My Full Name}"_s, name);
    changed |= fill(lines, u"{My Email Address}"_s, record.at(senderAddressField));
    if (changed) {
        quillon::writeWholeFile(globals.paths.macrosFile, quillon::joinLines(lines));
    }
}

} // namespace corvane
