#include "macros/macrocatalogue.h"

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
    {u"{First Name of The Recipient}", u"Recipient Information", u"D"},
    {u"{Last Name of The Recipient}", u"Recipient Information", u"D"},
    {u"{Full Name of The Recipient}", u"Recipient Information", u"D"},
    {u"{Email Address of The Recipient}", u"Recipient Information", u"D"},
    {u"{Long Date}", u"Sending Date and Time", u"D"},
    {u"{Short Date}", u"Sending Date and Time", u"D"},
    {u"{Long Time}", u"Sending Date and Time", u"D"},
    {u"{Short Time}", u"Sending Date and Time", u"D"},
    {u"{Long Date and Time}", u"Sending Date and Time", u"D"},
    {u"{Short Date and Time}", u"Sending Date and Time", u"D"},
    {u"{My First Name}", u"My Information", u"U"},
    {u"{My Last Name}", u"My Information", u"U"},
    {u"{My Full Name}", u"My Information", u"U"},
    {u"{My Email Address}", u"My Information", u"U"},
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
