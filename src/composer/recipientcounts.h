#pragma once

#include <QObject>
#include <QTimer>

#include <array>

class QAction;
class QLabel;
class QPlainTextEdit;
class QWidget;

namespace corvane {

/// Tells how many recipients there are: each box in its tool tip, and a quiet line below them, where more than one
/// would get the same mail, how many see each other's addresses.
class RecipientCounts : public QObject {
    Q_OBJECT

public:
    struct Controls {
        std::array<QPlainTextEdit *, 3> boxes; ///< To, CC, BCC
        QLabel *line;
        QWidget *instead;  ///< behind it, the command that makes it needless
        QAction *oneByOne; ///< menfb
    };

    explicit RecipientCounts(const Controls &controls);

    /// Takes the boxes' tool tips as they are now for the texts that the counts follow.
    void adoptTips();

private:
    void count();
    void showLine();

    Controls m_controls;
    std::array<QString, 3> m_tips;
    std::array<qsizetype, 3> m_counts{};
    QTimer m_rest; ///< until the typing rests: a long list is not cut up anew for each letter
};

} // namespace corvane
