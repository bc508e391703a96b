#include "composer/recipientbox.h"

#include <QDropEvent>
#include <QMimeData>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

const QString separator = u", "_s;

/// What is to be inserted, as text: of links to addresses (RFC 6068) the addresses.
QString textOf(const QMimeData *source)
{
    QStringList addresses;
    const QList<QUrl> urls = source->urls();
    for (const QUrl &url : urls) {
        if (url.scheme() == "mailto"_L1) {
            addresses.append(url.path(QUrl::FullyDecoded));
        }
    }
    return addresses.isEmpty() ? source->text() : addresses.join(u'\n');
}

bool hasLines(const QString &text)
{
    return text.trimmed().contains(u'\n') || text.trimmed().contains(u'\r');
}

/// A line of a megabyte would be laid out anew, as a whole, at every key: behind a comma a line end parts entries as
/// well as a blank does.
QString inShortLines(const QString &text)
{
    constexpr qsizetype longLine = 8000;
    constexpr qsizetype shortLine = 4000;
    if (text.size() <= longLine) {
        return text;
    }
    QString lines;
    lines.reserve(text.size() + text.size() / shortLine);
    qsizetype length = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar letter = text.at(i);
        lines.append(letter);
        length = letter == u'\n' ? 0 : length + 1;
        if (letter == u',' && length >= shortLine) {
            lines.append(u'\n');
            length = 0;
            if (i + 1 < text.size() && text.at(i + 1) == u' ') {
                ++i;
            }
        }
    }
    return lines;
}

} // namespace

QString linesAsEntries(const QString &text)
{
    QStringList entries;
    QString lines = text;
    lines.replace(u'\r', u'\n');
    for (const QString &line : lines.split(u'\n')) {
        QString entry = line.trimmed();
        while (entry.endsWith(u',')) { // the next separator is ours
            entry = entry.chopped(1).trimmed();
        }
        if (!entry.isEmpty()) {
            entries.append(entry);
        }
    }
    return entries.join(separator);
}

RecipientBox::RecipientBox(QWidget *parent) : QPlainTextEdit(parent)
{
    setTabChangesFocus(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
}

bool RecipientBox::canInsertFromMimeData(const QMimeData *source) const
{
    return source->hasUrls() || QPlainTextEdit::canInsertFromMimeData(source);
}

void RecipientBox::insertFromMimeData(const QMimeData *source)
{
    const QString text = textOf(source);
    if (hasLines(text)) {
        insertEntries(linesAsEntries(text));
    } else {
        insertPlainText(inShortLines(text));
    }
}

void RecipientBox::dropEvent(QDropEvent *event)
{
    if (event->source() == this || event->source() == viewport()) {
        QPlainTextEdit::dropEvent(event); // what is moved within the box stays as it is
        return;
    }
    // Not amid the text: a drop is one more entry, wherever in the row it falls.
    moveCursor(QTextCursor::End);
    insertEntries(linesAsEntries(textOf(event->mimeData())));
    event->setDropAction(Qt::CopyAction);
    event->accept();
    setFocus();
}

void RecipientBox::insertEntries(const QString &entries)
{
    if (entries.isEmpty()) {
        return;
    }
    QTextCursor cursor = textCursor();
    cursor.beginEditBlock();
    cursor.removeSelectedText();
    const QString text = toPlainText();
    const QString before = text.first(cursor.position()).trimmed();
    const QString after = text.sliced(cursor.position()).trimmed();
    if (!before.isEmpty() && !before.endsWith(u',')) {
        cursor.insertText(separator);
    }
    cursor.insertText(inShortLines(entries));
    if (!after.isEmpty() && !after.startsWith(u',')) {
        cursor.insertText(separator);
    }
    cursor.endEditBlock();
    setTextCursor(cursor);
}

} // namespace corvane
