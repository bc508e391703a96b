#pragma once

#include <QPlainTextEdit>

namespace corvane {

/// A box for recipients: one row high in the layout, several lines of text; Tab moves on.
class RecipientBox : public QPlainTextEdit {
    Q_OBJECT

public:
    explicit RecipientBox(QWidget *parent = nullptr);
};

} // namespace corvane
