// Record lines: a file of any octets is read, changed by key and grown, and the lines that are not meant stay.

#include "check.h"
#include "quillon/files/quillonlines.h"

#include <QFile>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const QTemporaryDir folder;
    const QString path = folder.filePath(u"records.dll"_s);
    {
        QFile file(path);
        mustHold(file.open(QIODevice::WriteOnly));
        mustHold(file.write(reinterpret_cast<const char *>(data), static_cast<qint64>(size)) ==
                 static_cast<qint64>(size));
    }

    const quillon::QuillonLines lines;
    const QStringList before = lines.ReadLines(path);
    mustHold(lines.CountLines(path) == before.size());

    // A line that no input holds: it is longer than any.
    const QString added = u"added\t"_s + QString(static_cast<qsizetype>(size) + 1, u'x');
    lines.AppendLine(path, added);
    mustHold(lines.LineExists(path, added));
    mustHold(lines.ReadLines(path).size() >= before.size());

    lines.ReplaceLine(path, added, u"replaced"_s, QString(), 0);
    mustHold(!lines.LineExists(path, added));
    lines.DeleteLineByKey(path, u"replaced"_s, QString(), 0);
    QStringList expected = before;
    expected.removeAll(u"replaced"_s);
    mustHold(lines.ReadLines(path) == expected);

    if (!before.isEmpty()) {
        const QString key = before.first().section(u'\t', 0, 0);
        lines.DeleteLineByKey(path, key, u"\t"_s, 0);
        const QStringList left = lines.ReadLines(path);
        for (const QString &line : left) {
            mustHold(line.section(u'\t', 0, 0) != key);
        }
    }
    return 0;
}
