#pragma once

#include <QObject>

#include <vector>

class QMainWindow;
class QWidget;

namespace corvane {

/// The lists and palettes that lie over the window: a click anywhere else, a press on the toolbar, a change of tab and
/// a pick in a combo box hide them.
class PopUps : public QObject {
    Q_OBJECT

public:
    PopUps(QMainWindow *form, std::vector<QWidget *> popUps);

    void hide() const;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    std::vector<QWidget *> m_popUps;
};

} // namespace corvane
