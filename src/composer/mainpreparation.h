#pragma once

class QMainWindow;

namespace corvane {

/// Makes what the design of the main window lacks, and sets what it cannot say, before its controls are collected.
void prepareMainControls(QMainWindow *form);

} // namespace corvane
