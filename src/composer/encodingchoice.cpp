#include "composer/encodingchoice.h"

#include "composer/controltext.h"
#include "composer/menuitemarray.h"
#include "core/settingkeys.h"
#include "quillon/mail/encodinglist.h"

#include <QAction>
#include <QActionGroup>
#include <QComboBox>
#include <QEvent>
#include <QLineEdit>
#include <QMenu>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

/// The display name of the default encoding, whatever the boxes hold.
QString standardName()
{
    const QStringView code = settingRow(Setting::Encoding).standard;
    for (const quillon::EncodingEntry &entry : quillon::offeredEncodings(quillon::encodingList())) {
        if (entry.Code == code) {
            return entry.Name;
        }
    }
    return {};
}

} // namespace

EncodingChoice::EncodingChoice(QComboBox *shown, QComboBox *hidden, QMenu *menu, QAction *base)
    : QObject(menu), m_shown(shown), m_hidden(hidden), m_menu(menu), m_base(base)
{
    // Picked from the list only; a message may still bring a name that is not in it.
    m_shown->lineEdit()->setReadOnly(true);
    m_shown->lineEdit()->installEventFilter(this);
    connect(m_shown, &QComboBox::editTextChanged, this, &EncodingChoice::mark);
    connect(m_menu, &QMenu::triggered, this, [this](const QAction *item) {
        setComboText(m_shown, itemCaption(item));
        mark(itemCaption(item));
    });
}

void EncodingChoice::fill(const QString &entries)
{
    QStringList pairs;
    QStringList names;
    for (const quillon::EncodingEntry &entry : quillon::offeredEncodings(entries)) {
        pairs.append(entry.format());
        names.append(entry.Name);
    }
    m_hidden->clear();
    m_hidden->addItems(pairs);
    setComboList(m_shown, names);
    rebuildItemArray(m_menu, m_base, names);
    auto *group = new QActionGroup(m_menu);
    group->setExclusionPolicy(QActionGroup::ExclusionPolicy::ExclusiveOptional); // a radio mark, or none
    for (QAction *item : itemArray(m_menu, m_base)) {
        item->setCheckable(true);
        group->addAction(item);
    }
    mark(m_shown->currentText());
}

QString EncodingChoice::displayName(const QString &code)
{
    if (code.isEmpty()) {
        return standardName();
    }
    for (int i = 0; i < m_hidden->count(); ++i) {
        m_hidden->setCurrentIndex(i);
        const auto entry = quillon::EncodingEntry::parse(m_hidden->currentText());
        if (entry && entry->Code == code) {
            return entry->Name;
        }
    }
    return {};
}

bool EncodingChoice::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::MouseButtonRelease && m_shown->isEnabled()) {
        m_shown->showPopup(); // there is nothing to type here
        return true;
    }
    return QObject::eventFilter(watched, event);
}

void EncodingChoice::mark(const QString &name)
{
    for (QAction *item : itemArray(m_menu, m_base)) {
        item->setChecked(itemCaption(item) == name);
    }
}

} // namespace corvane
