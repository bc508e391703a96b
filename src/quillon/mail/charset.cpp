#include "quillon/mail/charset.h"

#include <QHash>
#include <QStringDecoder>
#include <QSysInfo>

#include <algorithm>
#include <array>
#include <cerrno>
#include <iconv.h>
#include <memory>
#include <string_view>

namespace quillon {

namespace {

constexpr qsizetype longestCharsetName = 40;
constexpr qsizetype mostConverters = 32;

const char *wideCharset()
{
    return QSysInfo::ByteOrder == QSysInfo::LittleEndian ? "UTF-16LE" : "UTF-16BE";
}

bool isUtf8(const QByteArray &charset)
{
    return charset == "utf-8" || charset == "utf8";
}

/// Keeps options such as "//IGNORE" out of what iconv is asked for.
bool isCharsetName(const QByteArray &name)
{
    return !name.isEmpty() && name.size() <= longestCharsetName && std::all_of(name.begin(), name.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' || c == '_' || c == '.' || c == ':' ||
               c == '+';
    });
}

class Converter {
public:
    Converter(const char *to, const char *from) : m_handle(iconv_open(to, from)) {}
    ~Converter()
    {
        if (isOpen()) {
            iconv_close(m_handle);
        }
    }
    Converter(const Converter &) = delete;
    Converter &operator=(const Converter &) = delete;

    [[nodiscard]] bool isOpen() const { return m_handle != reinterpret_cast<iconv_t>(-1); }

    /// Nothing when an octet is invalid or a character is missing in the target. Whether one was only approximated
    /// shows when the result is decoded.
    std::optional<QByteArray> convert(const char *input, qsizetype size)
    {
        iconv(m_handle, nullptr, nullptr, nullptr, nullptr);
        QByteArray output(size * 2 + 16, Qt::Uninitialized);
        char *in = const_cast<char *>(input); // iconv takes a writable pointer and does not write
        auto inLeft = static_cast<size_t>(size);
        char *out = output.data();
        auto outLeft = static_cast<size_t>(output.size());
        bool flushing = false;
        for (;;) {
            const size_t result = flushing ? iconv(m_handle, nullptr, nullptr, &out, &outLeft)
                                           : iconv(m_handle, &in, &inLeft, &out, &outLeft);
            if (result == static_cast<size_t>(-1)) {
                if (errno != E2BIG) {
                    return std::nullopt;
                }
                const qsizetype used = out - output.data();
                output.resize(output.size() * 2);
                out = output.data() + used;
                outLeft = static_cast<size_t>(output.size() - used);
                continue;
            }
            if (flushing) {
                output.truncate(out - output.data());
                return output;
            }
            flushing = true;
        }
    }

private:
    iconv_t m_handle;
};

/// Opening a converter costs far more than using it, so those in use are kept; @p key tells direction and charset.
Converter *converter(const QByteArray &key, const char *to, const char *from)
{
    thread_local QHash<QByteArray, std::shared_ptr<Converter>> converters;
    if (const auto found = converters.constFind(key); found != converters.constEnd()) {
        return found->get();
    }
    auto opened = std::make_shared<Converter>(to, from);
    if (!opened->isOpen()) {
        return nullptr;
    }
    if (converters.size() >= mostConverters) {
        converters.clear();
    }
    return converters.insert(key, opened)->get();
}

Converter *encoderFor(const QByteArray &charset)
{
    return isCharsetName(charset) ? converter('>' + charset, charset.constData(), wideCharset()) : nullptr;
}

Converter *decoderFor(const QByteArray &charset)
{
    return isCharsetName(charset) ? converter('<' + charset, wideCharset(), charset.constData()) : nullptr;
}

/// The charset that many readers use when a mail names the first one; its octets have to mean the same there. The
/// Windows sets that are read for ISO 8859 and TIS-620 differ only in place of C1 controls, which are never written.
struct Twin {
    const char *name;
    const char *readAs;
};
constexpr std::array twins{
    Twin{"gb2312", "gbk"}, Twin{"shift_jis", "cp932"}, Twin{"euc-jp", "euc-jp-ms"},
    Twin{"euc-kr", "uhc"}, Twin{"big5", "cp950"},      Twin{"big5", "big5-hkscs"},
};

/// Characters whose octets readers of one charset take for different characters, by the tables that they follow: the
/// editions of GB 18030, the vendors' additions to Big5, the two lineages of JIS tables.
struct Disputed {
    const char *name;
    std::u16string_view characters;
};
constexpr std::array disputed{
    Disputed{"big5",
             u"\u2551\u2552\u2553\u2554\u2555\u2556\u2557\u2558\u2559\u255A\u255B\u255C\u255D\u255F\u2560\u2562"
             u"\u2563\u2564\u2565\u2566\u2567\u2568\u2569\u256B\u256C\u58BB\u5AFA\u6052\u7881\u7CA7\u88CF\u92B9"},
    Disputed{"euc-jp", u"\uFF5E"},
    Disputed{"euc-kr", u"\u3164"},
    Disputed{"gb18030", u"\u1E3F\u9FB4\u9FB5\u9FB6\u9FB7\u9FB8\u9FB9\u9FBA\u9FBB"
                        u"\uFE10\uFE11\uFE12\uFE13\uFE14\uFE15\uFE16\uFE17\uFE18\uFE19"},
    Disputed{"iso-2022-jp", u"\u00A2\u00A3\u00A5\u00AC\u2016\u203E\u2212\u301C"},
};

/// Whether readers would agree on @p text. Private characters and C1 controls mean nothing outside Unicode.
bool isUndisputed(const QString &text, const QByteArray &charset)
{
    const auto *const known =
        std::find_if(disputed.begin(), disputed.end(), [&charset](const Disputed &d) { return charset == d.name; });
    const std::u16string_view doubtful = known == disputed.end() ? std::u16string_view() : known->characters;
    return std::none_of(text.begin(), text.end(), [doubtful](QChar c) {
        const char16_t code = c.unicode();
        return code >= 0x80 &&
               ((code < 0xA0) || (code >= 0xE000 && code < 0xF900) || doubtful.find(code) != std::u16string_view::npos);
    });
}

/// Charsets with one octet to each character; where a converter composes accents (Windows-1255 and 1258), another
/// number of octets shows that a reader without that skill would get other characters.
bool isSingleByte(const QByteArray &charset)
{
    return charset.startsWith("iso-8859-") || charset.startsWith("windows-") || charset.startsWith("koi8-") ||
           charset.startsWith("cp125") || charset == "tis-620" || charset == "us-ascii";
}

bool decodesTo(const QByteArray &bytes, const QByteArray &charset, const QString &text)
{
    Converter *const decoder = decoderFor(charset);
    if (decoder == nullptr) {
        return true; // a reader's charset that this system lacks cannot be asked
    }
    const std::optional<QByteArray> wide = decoder->convert(bytes.constData(), bytes.size());
    return wide && wide->size() == text.size() * 2 &&
           std::equal(wide->begin(), wide->end(), reinterpret_cast<const char *>(text.constData()));
}

} // namespace

bool isKnownCharset(const QByteArray &charset)
{
    const QByteArray name = charset.toLower();
    return isUtf8(name) || (encoderFor(name) != nullptr && decoderFor(name) != nullptr);
}

QString withoutLoneSurrogates(const QString &text)
{
    QString result = text; // shared until something has to change
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (!text[i].isSurrogate()) {
            continue;
        }
        if (text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
            ++i;
        } else {
            result[i] = QChar(QChar::ReplacementCharacter);
        }
    }
    return result;
}

std::optional<QByteArray> encodeStrictly(const QString &text, const QByteArray &charset)
{
    const QByteArray name = charset.toLower();
    if (isUtf8(name)) {
        return withoutLoneSurrogates(text).toUtf8();
    }
    Converter *const encoder = encoderFor(name);
    if (encoder == nullptr || !isUndisputed(text, name)) {
        return std::nullopt;
    }
    std::optional<QByteArray> bytes =
        encoder->convert(reinterpret_cast<const char *>(text.constData()), text.size() * 2);
    if (!bytes || (isSingleByte(name) && bytes->size() != text.size()) || !decodesTo(*bytes, name, text)) {
        return std::nullopt;
    }
    for (const Twin &twin : twins) {
        if (name == twin.name && !decodesTo(*bytes, twin.readAs, text)) {
            return std::nullopt;
        }
    }
    return bytes;
}

std::optional<QString> decodeStrictly(QByteArrayView bytes, const QByteArray &charset)
{
    const QByteArray name = charset.toLower();
    if (isUtf8(name)) {
        QStringDecoder decoder(QStringConverter::Utf8, QStringConverter::Flag::ConvertInitialBom);
        QString text = decoder(bytes);
        // A character that is cut off at the end shows as an error only when something else follows it.
        text += decoder(QByteArrayView("", 1));
        if (decoder.hasError()) {
            return std::nullopt;
        }
        text.chop(1);
        return text;
    }
    // Most who say Shift_JIS mean the vendors' table; what is written here reads the same in both.
    Converter *const decoder = decoderFor(name == "shift_jis" ? "cp932" : name);
    if (decoder == nullptr) {
        return std::nullopt;
    }
    const std::optional<QByteArray> wide = decoder->convert(bytes.data(), bytes.size());
    if (!wide || wide->size() % 2 != 0) {
        return std::nullopt;
    }
    QString text(wide->size() / 2, Qt::Uninitialized);
    std::copy(wide->begin(), wide->end(), reinterpret_cast<char *>(text.data()));
    return text;
}

} // namespace quillon
