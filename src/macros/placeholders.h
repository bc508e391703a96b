#pragma once

#include <QString>
#include <QStringView>

#include <optional>

namespace corvane {

// The placeholders that mean something to the program, braces included; they are the same in every language, and exact
// in case.
inline constexpr char16_t recipientFirstName[] = u"{First Name of The Recipient}";
inline constexpr char16_t recipientLastName[] = u"{Last Name of The Recipient}";
inline constexpr char16_t recipientFullName[] = u"{Full Name of The Recipient}";
inline constexpr char16_t recipientAddress[] = u"{Email Address of The Recipient}";
inline constexpr char16_t longDate[] = u"{Long Date}";
inline constexpr char16_t shortDate[] = u"{Short Date}";
inline constexpr char16_t longTime[] = u"{Long Time}";
inline constexpr char16_t shortTime[] = u"{Short Time}";
inline constexpr char16_t longDateAndTime[] = u"{Long Date and Time}";
inline constexpr char16_t shortDateAndTime[] = u"{Short Date and Time}";
inline constexpr char16_t myFirstName[] = u"{My First Name}";
inline constexpr char16_t myLastName[] = u"{My Last Name}";
inline constexpr char16_t myFullName[] = u"{My Full Name}";
inline constexpr char16_t myAddress[] = u"{My Email Address}";

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
