#pragma once

#include <QIcon>
#include <QString>

namespace corvane {

/// Makes the pictures that are built into the program available: ":/icons/<name>.svg", ":/corvane.svg", ":/splash.svg".
/// May be called more than once.
void initResources();

/// The line drawing of that name in the text colour of the palette in force, so that it is seen on light and on dark.
/// A name that is not there gives an icon that draws nothing.
[[nodiscard]] QIcon themeIcon(const QString &name);

} // namespace corvane
