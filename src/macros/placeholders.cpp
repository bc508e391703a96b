#include "macros/placeholders.h"

namespace corvane {

RecipientValues::RecipientValues(const QString &name, const QString &email)
    : fullName(name), address(email), firstName(name.section(u' ', 0, 0)), lastName(name.section(u' ', -1))
{
}

std::optional<QString> recipientText(QStringView placeholder, const RecipientValues &values)
{
    struct Meaning {
        const char16_t *placeholder;
        QString RecipientValues::*value;
    };
    static constexpr Meaning meanings[] = {
        {recipientFirstName, &RecipientValues::firstName},
        {recipientLastName, &RecipientValues::lastName},
        {recipientFullName, &RecipientValues::fullName},
        {recipientAddress, &RecipientValues::address},
    };
    for (const Meaning &meaning : meanings) {
        if (placeholder == QStringView(meaning.placeholder)) {
            return values.*meaning.value;
        }
    }
    return std::nullopt;
}

} // namespace corvane
