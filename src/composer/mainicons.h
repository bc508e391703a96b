#pragma once

class QMainWindow;

namespace corvane {

/// Gives the toolbar, the buttons and the menu items of the main window their pictures.
void setMainIcons(QMainWindow *form);

} // namespace corvane
