#pragma once

#include <QString>
#include <QWidget>

#include <array>

namespace quillon {

/// Gives controls and actions of a form their array names back: Designer's code generator turns the object name
/// "txt(0)" into "txt_0_".
void adoptArrayNames(QWidget *form);

/// The controls `name(0)` to `name(N-1)` of a form; a member that the form does not have is nullptr.
template <typename Control, std::size_t N>
std::array<Control *, N> controlArray(const QWidget *form, const QString &name)
{
    std::array<Control *, N> controls{};
    for (std::size_t i = 0; i < N; ++i) {
        controls[i] = form->findChild<Control *>(QStringLiteral("%1(%2)").arg(name).arg(i));
    }
    return controls;
}

} // namespace quillon
