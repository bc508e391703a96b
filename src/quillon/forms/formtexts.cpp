#include "quillon/forms/formtexts.h"

#include "quillon/files/settingsfile.h"
#include "quillon/forms/accessiblenames.h"

#include <QAbstractButton>
#include <QAction>
#include <QGroupBox>
#include <QLabel>
#include <QMenu>
#include <QTabWidget>
#include <QWidget>

using namespace Qt::StringLiterals;

namespace quillon {

namespace {

/// The tab widget that shows @p page, or nullptr. The page's parent is the stack inside the tab widget.
QTabWidget *tabsOf(QWidget *page)
{
    QWidget *stack = page->parentWidget();
    auto *tabs = stack ? qobject_cast<QTabWidget *>(stack->parentWidget()) : nullptr;
    return tabs && tabs->indexOf(page) >= 0 ? tabs : nullptr;
}

void setCaption(QObject *control, const QString &caption)
{
    if (auto *label = qobject_cast<QLabel *>(control)) {
        label->setText(caption);
    } else if (auto *button = qobject_cast<QAbstractButton *>(control)) {
        button->setText(caption);
    } else if (auto *box = qobject_cast<QGroupBox *>(control)) {
        box->setTitle(caption);
    } else if (auto *menu = qobject_cast<QMenu *>(control)) {
        menu->setTitle(caption);
    } else if (auto *action = qobject_cast<QAction *>(control)) {
        action->setText(caption);
    } else if (auto *page = qobject_cast<QWidget *>(control)) {
        if (QTabWidget *tabs = tabsOf(page)) {
            tabs->setTabText(tabs->indexOf(page), caption);
        }
    }
}

void setTip(QObject *control, const QString &tip)
{
    if (auto *action = qobject_cast<QAction *>(control)) {
        action->setToolTip(tip);
    } else if (auto *widget = qobject_cast<QWidget *>(control)) {
        if (QTabWidget *tabs = tabsOf(widget)) {
            tabs->setTabToolTip(tabs->indexOf(widget), tip);
        } else {
            widget->setToolTip(tip);
        }
    }
}

} // namespace

void applyMenuSection(QObject *root, const QString &section, const QString &path)
{
    const SettingsFile texts(path);
    QList<QObject *> objects = root->findChildren<QObject *>();
    objects.append(root);
    for (QObject *object : std::as_const(objects)) {
        const bool isMenu = qobject_cast<QMenu *>(object) || qobject_cast<QAction *>(object);
        if (isMenu && !object->objectName().isEmpty() && texts.contains(section, object->objectName())) {
            setCaption(object, texts.value(section, object->objectName()));
        }
    }
}

void QuillonFormTexts::ApplyControlTexts(QWidget *form, const QString &path) const
{
    const SettingsFile texts(path);
    const QString section = form->objectName();
    if (texts.contains(section, section)) {
        form->setWindowTitle(texts.value(section, section));
    }
    const QList<QObject *> controls = form->findChildren<QObject *>();
    for (QObject *control : controls) {
        const QString name = control->objectName();
        if (name.isEmpty()) {
            continue;
        }
        if (texts.contains(section, name)) {
            setCaption(control, texts.value(section, name));
        }
        if (texts.contains(section, name + u".tip"_s)) {
            setTip(control, texts.value(section, name + u".tip"_s));
        }
        if (auto *widget = qobject_cast<QWidget *>(control); widget && texts.contains(section, name + u".name"_s)) {
            widget->setAccessibleName(texts.value(section, name + u".name"_s));
        }
    }
    setAccessibleNames(form);
}

void QuillonFormTexts::ApplyMenuTexts(QWidget *form, const QString &path) const
{
    applyMenuSection(form, form->objectName(), path);
}

} // namespace quillon
