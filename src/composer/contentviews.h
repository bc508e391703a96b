#pragma once

#include "message/message.h"

#include <QObject>

#include <functional>

class QAbstractButton;
class QAction;
class QWidget;

namespace corvane {

/// Which of the two worlds of the content is shown: the plain box, or the tabs of the rich editor with their bar. The
/// two option buttons hold the choice; menu items follow it.
class ContentViews : public QObject {
    Q_OBJECT

public:
    struct Views {
        QAbstractButton *rich;  ///< opt(8)
        QAbstractButton *plain; ///< opt(9)
        QAction *menor;
        QAction *menop;
        QWidget *tabs;          ///< sst
        QWidget *formattingBar; ///< fra(3)
        QWidget *plainBox;      ///< utbContent
    };

    /// @p onRich tells the commands of the rich editor whether they can be used.
    ContentViews(const Views &views, std::function<void(bool)> onRich);

    void setFormat(Message::Format format);
    [[nodiscard]] Message::Format format() const;

private:
    void show();

    Views m_views;
    std::function<void(bool)> m_onRich;
};

} // namespace corvane
