#include "composer/mainwindowmessage.h"

#include "composer/accountfields.h"
#include "composer/attachmentlist.h"
#include "composer/contentviews.h"
#include "composer/controltext.h"
#include "composer/richeditor.h"
#include "quillon/text/lineends.h"

#include <QAbstractButton>
#include <QAction>
#include <QComboBox>
#include <QDateEdit>
#include <QLineEdit>
#include <QPlainTextEdit>

namespace corvane {

MainWindowMessage::MainWindowMessage(const MainControls &controls, const Rules &rules)
    : m_controls(controls), m_rules(rules)
{
}

QString MainWindowMessage::text(Field field) const
{
    QWidget *holder = m_controls.holderOf(field);
    // A field of one line holds one line, even when several were pasted into it.
    if (const auto *combo = qobject_cast<QComboBox *>(holder)) {
        return quillon::onOneLine(combo->currentText());
    }
    if (const auto *box = qobject_cast<QPlainTextEdit *>(holder)) {
        return textOf(box);
    }
    if (const auto *line = qobject_cast<QLineEdit *>(holder)) {
        return quillon::onOneLine(line->text());
    }
    return m_controls.dhe->documentHtml();
}

void MainWindowMessage::setText(Field field, const QString &text)
{
    QWidget *holder = m_controls.holderOf(field);
    if (auto *combo = qobject_cast<QComboBox *>(holder)) {
        setComboText(combo, text);
        if (field == Field::Account) {
            m_rules.account.follow(); // the same address may have another record by now
        }
    } else if (auto *box = qobject_cast<QPlainTextEdit *>(holder)) {
        const QString lines = quillon::withCrLf(text);
        if (textOf(box) != lines) { // the same text is no change
            box->setPlainText(lines);
        }
    } else if (auto *line = qobject_cast<QLineEdit *>(holder)) {
        line->setText(text);
    } else {
        m_controls.dhe->setDocumentHtml(text);
    }
}

bool MainWindowMessage::isActual(Choice choice) const
{
    return m_controls.opt[static_cast<std::size_t>(choice) * 2]->isChecked();
}

void MainWindowMessage::setActual(Choice choice, bool actual)
{
    m_controls.opt[static_cast<std::size_t>(choice) * 2 + (actual ? 0 : 1)]->setChecked(true);
}

QDate MainWindowMessage::customDate() const
{
    return m_controls.date->date();
}

QTime MainWindowMessage::customTime() const
{
    return m_controls.time->time();
}

void MainWindowMessage::setCustomDateTime(const QDate &date, const QTime &time)
{
    m_controls.date->setDate(date);
    m_controls.time->setTime(time);
}

Message::Format MainWindowMessage::format() const
{
    return m_rules.views.format();
}

void MainWindowMessage::setFormat(Format format)
{
    m_rules.views.setFormat(format);
}

Message::Priority MainWindowMessage::priority() const
{
    if (m_controls.menosh[0]->isChecked()) {
        return Priority::High;
    }
    return m_controls.menosh[1]->isChecked() ? Priority::Normal : Priority::Low;
}

void MainWindowMessage::setPriority(Priority priority)
{
    m_controls.menosh[static_cast<std::size_t>(priority)]->setChecked(true);
}

bool MainWindowMessage::oneByOne() const
{
    return m_controls.menfb->isChecked();
}

void MainWindowMessage::setOneByOne(bool on)
{
    m_controls.menfb->setChecked(on);
}

bool MainWindowMessage::receipt() const
{
    return m_controls.mentr->isChecked();
}

void MainWindowMessage::setReceipt(bool on)
{
    m_controls.mentr->setChecked(on);
}

QStringList MainWindowMessage::attachmentPaths() const
{
    return m_rules.attachments.paths();
}

void MainWindowMessage::setAttachmentPaths(const QStringList &paths)
{
    m_rules.attachments.setPaths(paths);
}

int MainWindowMessage::encodingCount() const
{
    return m_controls.cbb[3]->count();
}

void MainWindowMessage::selectEncoding(int index)
{
    m_controls.cbb[3]->setCurrentIndex(index);
}

QString MainWindowMessage::selectedEncoding() const
{
    return m_controls.cbb[3]->currentText();
}

} // namespace corvane
