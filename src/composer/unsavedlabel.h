#pragma once

#include <QLabel>

class QStatusBar;

namespace corvane {

class UnsavedFiles;

/// Says in the status bar which file could not be written; hidden while all is saved. A long line is cut at its end
/// where there is no room, since a failed write must not make the window wider.
class UnsavedLabel : public QLabel {
    Q_OBJECT

public:
    /// Stands in front of the last panel of @p bar, to which it belongs; @p files outlives it.
    UnsavedLabel(QStatusBar *bar, const UnsavedFiles &files);

    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void follow();

    const UnsavedFiles &m_files;
};

} // namespace corvane
