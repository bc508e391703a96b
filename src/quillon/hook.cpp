#include "quillon/hook.h"

#include <QtGlobal>

using namespace Qt::StringLiterals;

namespace quillon {

void reportMissingHook(const QString &name)
{
    qWarning("hook not set: %s", qUtf8Printable(name));
    reportFault(u"hook not set: "_s + name);
}

} // namespace quillon
