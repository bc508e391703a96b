#include "macros/macrocatalogue.h"

#include "macros/placeholders.h"
#include "quillon/fault.h"
#include "quillon/files/linefile.h"

#include <array>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

constexpr int seedBelow = 10;

struct Predefined {
    const char16_t *key;
    const char16_t *category;
    const char16_t *kind;
};

constexpr std::array<Predefined, 20> predefined = {{
    {recipientFirstName, u"Recipient Information", u"D"},
    {recipientLastName, u"Recipient Information", u"D"},
    {recipientFullName, u"Recipient Information", u"D"},
    {recipientAddress, u"Recipient Information", u"D"},
    {longDate, u"Sending Date and Time", u"D"},
    {shortDate, u"Sending Date and Time", u"D"},
    {longTime, u"Sending Date and Time", u"D"},
    {shortTime, u"Sending Date and Time", u"D"},
    {longDateAndTime, u"Sending Date and Time", u"D"},
    {shortDateAndTime, u"Sending Date and Time", u"D"},
    {myFirstName, u"My Information", u"U"},
    {myLastName, u"My Information", u"U"},
    {myFullName, u"My Information", u"U"},
    {myAddress, u"My Information", u"U"},
    {u"{My Website}", u"My Information", u"U"},
    {u"{My Company Name}", u"My Information", u"U"},
    {u"{My Tel No.}", u"My Information", u"U"},
    {u"{My Mobile Phone}", u"My Information", u"U"},
    {u"{My Fax No.}", u"My Information", u"U"},
    {u"{My Bank Account}", u"My Information", u"U"},
}};

} // namespace

QStringList predefinedMacroLines()
{
    QStringList lines;
    for (const Predefined &macro : predefined) {
        const QString blankText = u" "_s;
        lines.append(QStringList{QString::fromUtf16(macro.key), blankText, QString::fromUtf16(macro.category),
                                 QString::fromUtf16(macro.kind)}
                         .join(u'\t'));
    }
    return lines;
}

void seedMacros(const ApplicationGlobals &globals)
{
    // A file that cannot be read tells nothing of its lines, so nothing is added to them.
    const quillon::LineFile file(globals.paths.macrosFile);
    if (file.readable() && file.count() < seedBelow) {
        globals.lines.AppendLines(globals.paths.macrosFile, predefinedMacroLines());
    }
}

QStringList macroMenuCaptions(const ApplicationGlobals &globals)
{
    QStringList captions;
    const QStringList lines = globals.lines.ReadLines(globals.paths.macrosFile);
    for (const QString &line : lines) {
        const QStringList fields = line.split(u'\t');
        if (fields.size() <= MacroKind) {
            quillon::reportFault(u"a macro's line is too short: '"_s + line + u'\'');
        } else if (!fields.at(MacroText).trimmed().isEmpty() || fields.at(MacroKind) != "U"_L1) {
            captions.append(fields.at(MacroKey));
        }
    }
    return captions;
}

} // namespace corvane
