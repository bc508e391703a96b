// Changes signatures until it is killed, and tells each change; the test looks at what is then on the disk.
#include "core/datatree.h"
#include "quillon/files/safefile.h"
#include "records/signaturerecords.h"

#include <QString>

#include <cstdio>

using namespace Qt::StringLiterals;
using corvane::SignatureChange;

int main(int count, char **values)
{
    if (count != 3) {
        return 2;
    }
    corvane::ApplicationGlobals globals;
    globals.paths = corvane::dataPathsBelow(QString::fromLocal8Bit(values[1]), QString());
    const QString outside = QString::fromLocal8Bit(values[2]);
    quillon::setTemporaryFolder(globals.paths.root);
    const auto save = [&globals](SignatureChange change, const QString &name, const QString &text,
                                 const QString &path) {
        corvane::SaveSignatureRecord(globals, change, name, change == SignatureChange::Rename ? text : QString(), text,
                                     path);
        std::putchar('.');
        std::fflush(stdout);
    };
    for (int i = 0;; ++i) {
        const QString mark = QString::number(i);
        save(SignatureChange::Modify, u"typed"_s, mark + QString(4000, u'x') + mark, {});
        save(SignatureChange::Modify, u"switched"_s, {}, outside);
        save(SignatureChange::Modify, u"switched"_s, mark + QString(4000, u'x') + mark, {});
        save(SignatureChange::Rename, u"one"_s, u"other"_s, {});
        save(SignatureChange::Rename, u"other"_s, u"one"_s, {});
    }
}
