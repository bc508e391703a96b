#pragma once

#include "quillon/forms/contentarea.h"

class QMainWindow;

namespace corvane {

/// The middle of the main window. It takes what its fields need at least, so that nothing scrolls; only where the
/// screen has no room for that, the window may be smaller and the fields scroll.
class CentralArea : public quillon::ContentArea {
public:
    /// Takes the place of the window's central widget and holds it.
    explicit CentralArea(QMainWindow *window);

    [[nodiscard]] QSize minimumSizeHint() const override;

private:
    QMainWindow *m_window;
};

} // namespace corvane
