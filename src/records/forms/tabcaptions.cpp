#include "records/forms/tabcaptions.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QRadioButton>
#include <QTabWidget>

using namespace Qt::StringLiterals;

namespace corvane {

void keepCaptions(QWidget *form)
{
    const QList<QWidget *> controls = form->findChildren<QWidget *>();
    for (QWidget *control : controls) {
        if (const auto *button = qobject_cast<QAbstractButton *>(control)) {
            control->setProperty(captionTag, button->text());
        } else if (const auto *label = qobject_cast<QLabel *>(control)) {
            control->setProperty(captionTag, label->text());
        } else if (const auto *box = qobject_cast<QGroupBox *>(control)) {
            control->setProperty(captionTag, box->title());
        }
    }
}

void showMnemonicsOfTab(const QTabWidget *tabs, int present)
{
    for (int tab = 0; tab < tabs->count(); ++tab) {
        const QList<QAbstractButton *> buttons = tabs->widget(tab)->findChildren<QAbstractButton *>();
        for (QAbstractButton *button : buttons) {
            if (!qobject_cast<QCheckBox *>(button) && !qobject_cast<QRadioButton *>(button)) {
                continue;
            }
            const QString caption = button->property(captionTag).toString();
            button->setText(tab == present ? caption : QString(caption).remove(u'&'));
        }
    }
}

} // namespace corvane
