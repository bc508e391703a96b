#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>

class QKeyEvent;
class QListView;
class QPlainTextEdit;

namespace corvane {

class PromptFilter;

/// A piece of a text by its place.
struct Token {
    qsizetype start = 0; ///< from 0
    QString text;
};

/// The token under a caret: from behind the last blank, comma or line end before @p caret up to the next one, or the
/// end. @p caret counts from 0 and lies within @p text.
[[nodiscard]] Token tokenAt(const QString &text, qsizetype caret);

/// Earlier recipients drop down below a box while one is typed into it: Up and Down choose, Enter or a click puts the
/// choice in place of the token at the caret, Esc hides the list.
class RecipientCompletion : public QObject {
    Q_OBJECT

public:
    struct Hooks {
        std::function<QStringList()> prompts; ///< the earlier recipients, in their order
        std::function<bool()> ready;          ///< false: what changes is no typing
    };

    /// @p list may serve several boxes, one at a time; its parent is an ancestor of @p box that it may cover.
    RecipientCompletion(QPlainTextEdit *box, QListView *list, Hooks hooks);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void offer();
    void place();
    bool handleKey(const QKeyEvent *event);
    void step(int by);
    /// Puts that row in place of the token.
    void take(int row);
    [[nodiscard]] Token token() const;
    [[nodiscard]] bool isServed() const;

    QPlainTextEdit *m_box;
    QListView *m_list;
    PromptFilter *m_filter;
    Hooks m_hooks;
    bool m_taking = false; ///< the change of the text is ours
};

} // namespace corvane
