#include "macros/myinformation.h"

#include "macros/macrocatalogue.h"
#include "macros/macrorow.h"
#include "macros/placeholders.h"
#include "quillon/files/safefile.h"
#include "quillon/files/textcoding.h"
#include "quillon/files/writeoutcome.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

/// Fills one macro if the first line that begins with it has a blank text; true when it did.
bool fill(QList<QByteArray> &lines, const char16_t *placeholder, const QString &value)
{
    const QString macro = QString::fromUtf16(placeholder);
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

void SyncMyInformation(const ApplicationGlobals &globals, const QString &name, const QString &address)
{
    const auto bytes = quillon::readWholeFile(globals.paths.macrosFile);
    if (!bytes) {
        quillon::tellNotRewritten(globals.paths.macrosFile);
        return; // what cannot be read is not rewritten
    }
    const QStringList words = name.split(u' ', Qt::SkipEmptyParts);
    QList<QByteArray> lines = quillon::splitLines(*bytes);
    bool changed = fill(lines, myFirstName, words.value(0));
    changed |= fill(lines, myLastName, words.value(words.size() - 1));
    changed |= fill(lines, myFullName, name);
    changed |= fill(lines, myAddress, address);
    if (changed) {
        quillon::writeWholeFile(globals.paths.macrosFile, quillon::joinLines(lines));
    }
}

} // namespace corvane
