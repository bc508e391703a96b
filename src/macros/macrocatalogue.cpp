#include "macros/macrocatalogue.h"

#include "macros/macrotexts.h"
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
    {recipientFirstName, recipientInformation, u"D"},
    {recipientLastName, recipientInformation, u"D"},
    {recipientFullName, recipientInformation, u"D"},
    {recipientAddress, recipientInformation, u"D"},
    {longDate, sendingMoment, u"D"},
    {shortDate, sendingMoment, u"D"},
    {longTime, sendingMoment, u"D"},
    {shortTime, sendingMoment, u"D"},
    {longDateAndTime, sendingMoment, u"D"},
    {shortDateAndTime, sendingMoment, u"D"},
    {myFirstName, myInformation, u"U"},
    {myLastName, myInformation, u"U"},
    {myFullName, myInformation, u"U"},
    {myAddress, myInformation, u"U"},
    {myWebsite, myInformation, u"U"},
    {myCompany, myInformation, u"U"},
    {myTelephone, myInformation, u"U"},
    {myMobilePhone, myInformation, u"U"},
    {myFax, myInformation, u"U"},
    {myBankAccount, myInformation, u"U"},
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
