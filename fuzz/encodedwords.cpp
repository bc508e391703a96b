// Whatever stands in a subject: decoding ends, and what was encoded comes back.

#include "quillon/mail/charset.h"
#include "quillon/mail/encodedword.h"
#include "quillon/mail/subjectcodec.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArrayView octets(data, static_cast<qsizetype>(size));
    const QString text = QString::fromUtf8(octets);
    const QString decoded = quillon::decodeEncodedWords(text);
    const QString charset = QStringLiteral("utf-8");
    const quillon::SubjectCodec codec;
    for (const QString &subject : {text, decoded, quillon::withoutLoneSurrogates(QString::fromLatin1(octets))}) {
        const QString encoded = codec.Encode(subject, charset);
        for (const QChar c : encoded) {
            if (c < u' ' || c > u'~') {
                std::abort();
            }
        }
        if (codec.Decode(encoded, charset) != quillon::withoutLoneSurrogates(subject)) {
            std::abort();
        }
    }
    for (const QByteArray &word : quillon::encodedWords(text)) {
        if (word.size() > quillon::longestEncodedWord) {
            std::abort();
        }
    }
    return 0;
}
