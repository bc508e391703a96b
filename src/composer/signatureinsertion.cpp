#include "composer/signatureinsertion.h"

#include "composer/editcommands.h"
#include "composer/menuitemarray.h"
#include "quillon/forms/windowservices.h"
#include "quillon/mail/htmltext.h"

#include <QAction>
#include <QMenu>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

using Field = Message::Field;

const QString defaultMark = u" (default)"_s;

/// A signature as plain text: of an HTML document what is read on its page.
QString plainTextOf(const SignatureText &signature)
{
    if (!signature.html) {
        return signature.text;
    }
    // Not by Qt's reader of HTML, which takes minutes for elements that stand deep in each other.
    const QString text = quillon::textOfHtml(signature.text, quillon::HtmlExtras::LeftOut);
    return text.endsWith("\r\n"_L1) ? text.chopped(2) : text; // the end of the page is no line of its own
}

} // namespace

SignatureInsertion::SignatureInsertion(QMenu *menu, QAction *base, Message &message, Window &window, EditCommands &edit,
                                       Find find)
    : QObject(menu), m_menu(menu), m_base(base), m_message(message), m_window(window), m_edit(edit),
      m_find(std::move(find))
{
}

void SignatureInsertion::setMenu(const QStringList &names, const QString &defaultName)
{
    QStringList captions;
    for (const QString &name : names) {
        captions.append(!name.isEmpty() && name == defaultName ? name + defaultMark : name);
    }
    rebuildItemArray(m_menu, m_base, captions);
    const QList<QAction *> items = itemArray(m_menu, m_base);
    for (const QAction *item : items) {
        connect(item, &QAction::triggered, this, [this, item] { insert(itemCaption(item)); });
    }
    m_menu->setEnabled(!captions.isEmpty());
}

void SignatureInsertion::insert(const QString &caption)
{
    // A name that itself ends like the mark of the default is looked up without that end.
    const QString name = caption.endsWith(defaultMark) ? caption.chopped(defaultMark.size()) : caption;
    m_window.setFocus(Field::PlainContent);
    const SignatureText signature = m_find(name);
    const QString text = plainTextOf(signature);
    if (!text.isEmpty()) {
        quillon::QuillonWindows().SetClipboardText(text);
        m_edit.paste();
    }
}

void SignatureInsertion::addAutomatic(const SettingsMemory &settings, bool plain, bool rich)
{
    const QString &name = settings.text(Setting::DefaultSignature);
    if (!settings.isNotFalse(Setting::AutoAddSignature) || name.trimmed().isEmpty()) {
        return;
    }
    const SignatureText signature = m_find(name);
    if (signature.found && plain) {
        m_message.setText(Field::PlainContent, plainTextOf(signature));
    }
    if (signature.found && rich) {
        m_message.setText(Field::RichContent, signature.text);
    }
}

} // namespace corvane
