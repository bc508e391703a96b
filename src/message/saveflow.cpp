#include "message/saveflow.h"

#include "message/messagetexts.h"
#include "message/templatename.h"

#include <algorithm>

namespace corvane {

bool isBlank(const Message &message, const QString &bodyText)
{
    using Field = Message::Field;
    for (const Field field : {Field::To, Field::CC, Field::BCC, Field::Subject}) {
        if (!message.text(field).trimmed().isEmpty()) {
            return false;
        }
    }
    return bodyText.trimmed().isEmpty();
}

QString proposedName(const QString &title, const QString &subject)
{
    QString name = nameInTitle(title);
    if (isNewMessageTitle(title)) {
        name = subject.trimmed().isEmpty() ? QString::fromUtf16(nameOfNamelessTemplate) : subject.trimmed();
    }
    return withoutForbiddenCharacters(name);
}

NameAnswer decideName(const QString &answer, const QString &name, const QString &proposed, const QStringList &listed)
{
    if (answer.isEmpty()) {
        return NameAnswer::End;
    }
    const bool known = std::any_of(listed.begin(), listed.end(), [&name](const QString &line) {
        return line.trimmed().toLower() == name.trimmed().toLower();
    });
    if (!known) {
        return NameAnswer::New;
    }
    return name == proposed ? NameAnswer::Overwrite : NameAnswer::Ask;
}

} // namespace corvane
