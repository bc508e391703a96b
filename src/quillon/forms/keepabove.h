#pragma once

class QWidget;

namespace quillon {

/// Tells the window manager that a form of the registry, which has no parent, belongs above the window @p below, and
/// goes into the background and comes back along with it. Nothing happens where there is no such window yet.
void keepAbove(QWidget *form, const QWidget *below);

} // namespace quillon
