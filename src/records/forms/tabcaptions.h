#pragma once

class QTabWidget;
class QWidget;

namespace corvane {

/// Property of a control that keeps its caption with the mnemonic.
inline constexpr char captionTag[] = "Tag";

/// Keeps the captions of all controls of a form in their tags.
void keepCaptions(QWidget *form);

/// Leaves mnemonics to the tick boxes and options of the present tab: those of the other tabs lose the "&" from their
/// captions, since a hidden control would catch its key; those of this one get their kept captions back.
void showMnemonicsOfTab(const QTabWidget *tabs, int present);

} // namespace corvane
