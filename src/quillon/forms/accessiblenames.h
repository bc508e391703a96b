#pragma once

class QWidget;

namespace quillon {

/// Gives every control of a form that has a tool tip, but no name of its own for screen readers, the text of its label,
/// or else its own caption or tool tip. To be called after captions and tips were read.
void setAccessibleNames(QWidget *form);

} // namespace quillon
