#pragma once

#include <QPlainTextEdit>

namespace corvane {

/// The lines of @p text as entries of a recipient box: trimmed, without the empty ones, parted by a comma and a blank.
[[nodiscard]] QString linesAsEntries(const QString &text);

/// A box for recipients: one row high in the layout, several lines of text; Tab moves on. Several lines that are
/// pasted, and all that is dropped, become entries parted by ", "; a single line is pasted as it is. What
/// is very long comes in lines that end behind a comma.
class RecipientBox : public QPlainTextEdit {
    Q_OBJECT

public:
    explicit RecipientBox(QWidget *parent = nullptr);

protected:
    [[nodiscard]] bool canInsertFromMimeData(const QMimeData *source) const override;
    void insertFromMimeData(const QMimeData *source) override;
    void dropEvent(QDropEvent *event) override;

private:
    /// Puts entries where the cursor is, with a separator on each side that has none.
    void insertEntries(const QString &entries);
};

} // namespace corvane
