#pragma once

#include "macros/macrotexts.h"

#include <QString>
#include <QStringView>

#include <optional>

namespace corvane {

/// What the four placeholders of a recipient stand for.
struct RecipientValues {
    RecipientValues() = default;
    /// First and last name are the first and last piece of the full name, which is cut at single blanks: they may be
    /// empty.
    RecipientValues(const QString &name, const QString &email);

    QString fullName;
    QString address;
    QString firstName;
    QString lastName;
};

/// The value of one of the recipient's placeholders, which may be empty; nothing for any other key.
[[nodiscard]] std::optional<QString> recipientText(QStringView placeholder, const RecipientValues &values);

} // namespace corvane
