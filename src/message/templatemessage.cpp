#include "message/templatemessage.h"

#include "message/templatefiles.h"
#include "quillon/mail/encodinglist.h"

namespace corvane {

TemplateMessage::TemplateMessage(const ApplicationGlobals &globals, const QString &name)
    : m_globals(globals), m_name(name)
{
    for (const quillon::EncodingEntry &entry : quillon::offeredEncodings(globals.text.GetEncodingList())) {
        encodings.append(entry.format());
    }
    LoadTemplate(globals, name, *this);
    pblnChanged = false;
}

void TemplateMessage::save()
{
    writeTemplate(m_globals, m_name, !isListed(m_globals, m_name), *this, [] {});
    pblnChanged = false;
}

} // namespace corvane
