#pragma once

#include <QRandomGenerator>
#include <QString>

/// A text of up to @p longest characters out of every corner of Unicode that codings trip over: plain letters, blanks,
/// controls, marks of encoded words, letters of two, three and four octets, a byte-order mark.
inline QString randomText(QRandomGenerator &random, int longest)
{
    static const QString marks = QStringLiteral(" \t\r\n=?_\"\\<>,;:()@.%'*=?utf-8?q?x?=");
    QString text;
    const int length = random.bounded(longest + 1);
    while (text.size() < length) {
        switch (random.bounded(9)) {
        case 0:
        case 1:
        case 2:
            text += QChar(u'a' + random.bounded(26));
            break;
        case 3:
            text += marks[random.bounded(static_cast<int>(marks.size()))];
            break;
        case 4:
            text += QChar(random.bounded(0x20));
            break;
        case 5:
            text += QChar(0x7F + random.bounded(0x180));
            break;
        case 6:
            text += QChar(0x800 + random.bounded(0xD000));
            break;
        case 7:
            text += QChar(0xE000 + random.bounded(0x2000));
            break;
        default: {
            const auto code = static_cast<char32_t>(0x10000 + random.bounded(0x100000));
            text += QString::fromUcs4(&code, 1);
        }
        }
    }
    return text;
}
