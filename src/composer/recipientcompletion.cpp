#include "composer/recipientcompletion.h"

#include "composer/promptfilter.h"
#include "quillon/hook.h"

#include <QKeyEvent>
#include <QListView>
#include <QPlainTextEdit>
#include <QScopedValueRollback>
#include <QTextBlock>

#include <algorithm>
#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

constexpr int twipsPerPixel = 15; // at the normal font
constexpr int listWidth = 4600 / twipsPerPixel;
constexpr int listHeight = 1800 / twipsPerPixel;
constexpr int rightMargin = 500 / twipsPerPixel;

constexpr std::array separators{u' ', u',', u'\n'};

/// The list's model, which the first box that it serves brings.
PromptFilter *filterOf(QListView *list)
{
    auto *filter = qobject_cast<PromptFilter *>(list->model());
    if (!filter) {
        filter = new PromptFilter(list);
        list->setModel(filter);
        list->setUniformItemSizes(true);
        list->setFocusPolicy(Qt::NoFocus); // typing goes on in the box
    }
    return filter;
}

} // namespace

Token tokenAt(const QString &text, qsizetype caret)
{
    Token token;
    qsizetype end = text.size();
    for (const char16_t separator : separators) {
        if (caret > 0) {
            token.start = std::max(token.start, text.lastIndexOf(separator, caret - 1) + 1);
        }
    }
    for (const char16_t separator : separators) {
        if (const qsizetype found = text.indexOf(separator, token.start); found >= 0) {
            end = std::min(end, found);
        }
    }
    token.text = text.sliced(token.start, end - token.start);
    return token;
}

RecipientCompletion::RecipientCompletion(QPlainTextEdit *box, QListView *list, Hooks hooks)
    : QObject(box), m_box(box), m_list(list), m_filter(filterOf(list)), m_hooks(std::move(hooks))
{
    quillon::requireHook(m_hooks.prompts, u"RecipientCompletion::prompts"_s);
    quillon::requireHook(m_hooks.ready, u"RecipientCompletion::ready"_s);
    m_box->installEventFilter(this);
    connect(m_box, &QPlainTextEdit::textChanged, this, &RecipientCompletion::offer);
    connect(m_list, &QListView::clicked, this, [this](const QModelIndex &index) {
        if (isServed()) {
            take(index.row());
        }
    });
}

/// The token within the caret's line: a line end parts tokens too, and a long text need not be gone through.
Token RecipientCompletion::token() const
{
    const QTextCursor cursor = m_box->textCursor();
    Token token = tokenAt(cursor.block().text(), cursor.positionInBlock());
    token.start += cursor.block().position();
    return token;
}

/// The list belongs to the box that is being typed in.
bool RecipientCompletion::isServed() const
{
    return m_box->hasFocus();
}

void RecipientCompletion::offer()
{
    // What fills the box from elsewhere is nobody's typing.
    if (m_taking || !isServed() || !m_hooks.ready()) {
        return;
    }
    m_filter->setToken(m_hooks.prompts(), token().text);
    if (m_filter->rowCount() == 0) {
        m_list->hide();
        return;
    }
    m_list->setCurrentIndex(m_filter->index(0));
    m_list->scrollToTop();
    place();
    m_list->show();
    m_list->raise();
}

void RecipientCompletion::place()
{
    const QTextCursor cursor = m_box->textCursor();
    const QFontMetrics metrics(m_box->font());
    const int typed = metrics.horizontalAdvance(cursor.block().text().first(cursor.positionInBlock()));
    const int row = metrics.lineSpacing();
    const int width = std::min(std::max(listWidth, metrics.averageCharWidth() * 44), m_box->width());
    const int height = std::max(listHeight, 7 * row);
    int left = typed % std::max(1, m_box->width() - rightMargin);
    left = std::min(left, m_box->width() - width); // it ends with the box
    m_list->setGeometry(
        QRect(m_box->mapTo(m_list->parentWidget(), QPoint(left, m_box->height())), QSize(width, height)));
}

bool RecipientCompletion::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_box && event->type() == QEvent::KeyPress && handleKey(static_cast<QKeyEvent *>(event))) {
        return true;
    }
    if (watched == m_box && event->type() == QEvent::FocusOut &&
        static_cast<QFocusEvent *>(event)->reason() != Qt::PopupFocusReason) {
        m_list->hide();
    }
    return QObject::eventFilter(watched, event);
}

/// Whether the key is used up.
bool RecipientCompletion::handleKey(const QKeyEvent *event)
{
    if ((event->modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier) {
        return false;
    }
    const bool open = m_list->isVisible() && m_filter->rowCount() > 0;
    switch (event->key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
        step(event->key() == Qt::Key_Up ? -1 : 1);
        return false; // the caret moves as well
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (open && m_list->currentIndex().isValid()) {
            take(m_list->currentIndex().row());
            return true;
        }
        return false;
    case Qt::Key_Escape:
        m_list->hide();
        return open;
    default:
        return false;
    }
}

void RecipientCompletion::step(int by)
{
    if (m_filter->rowCount() == 0) {
        return;
    }
    int row = m_list->currentIndex().row() + by;
    if (row < 0 || (row >= m_filter->rowCount() && m_filter->canFetchMore({}))) {
        m_filter->findAll(); // the last row, or the next one, is yet to be found
    }
    const int rows = m_filter->rowCount();
    row = row < 0 ? rows - 1 : row >= rows ? 0 : row;
    m_list->setCurrentIndex(m_filter->index(row));
}

void RecipientCompletion::take(int row)
{
    const QScopedValueRollback taking(m_taking, true);
    const Token present = token();
    QTextCursor cursor = m_box->textCursor();
    cursor.setPosition(static_cast<int>(present.start));
    cursor.setPosition(static_cast<int>(present.start + present.text.size()), QTextCursor::KeepAnchor);
    cursor.insertText(m_filter->row(row));
    m_box->setTextCursor(cursor);
    m_list->hide();
}

} // namespace corvane
