#pragma once

#include <QToolButton>

namespace corvane {

/// A command in the midst of a text: it looks like a link, and is reached and pressed like any button.
class LinkButton : public QToolButton {
    Q_OBJECT

public:
    explicit LinkButton(QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace corvane
