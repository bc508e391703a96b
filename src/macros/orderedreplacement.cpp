#include "macros/orderedreplacement.h"

#include <QHash>
#include <QList>

#include <algorithm>

namespace corvane {

namespace {

// A chain of values that hold further keys is followed so far; a longer one is left to the plain way.
constexpr int deepestChain = 64;

bool isBrace(QChar c)
{
    return c == u'{' || c == u'}';
}

qsizetype nextBrace(QStringView text, qsizetype from)
{
    return std::find_if(text.begin() + std::min(from, text.size()), text.end(), isBrace) - text.begin();
}

bool isPlaceholder(QStringView key)
{
    return key.size() >= 2 && key.front() == u'{' && nextBrace(key, 1) == key.size() - 1 && key.back() == u'}';
}

/// Whether each "{" is closed by the next brace and no other "}" is there: nothing outside such a text can make a
/// placeholder together with a part of it.
bool hasPairsOnly(QStringView text)
{
    for (qsizetype at = nextBrace(text, 0); at < text.size(); at = nextBrace(text, at + 1)) {
        const qsizetype close = nextBrace(text, at + 1);
        if (text[at] != u'{' || close >= text.size() || text[close] != u'}') {
            return false;
        }
        at = close;
    }
    return true;
}

/// Replaces placeholders in one pass. Gives up where the order of the keys might matter in a way that it cannot see:
/// keys that are no placeholders, placeholders within braces, values with a brace alone.
class OnePass {
public:
    OnePass(const QStringList &keys, const ReplacementOf &valueOf) : m_valueOf(valueOf)
    {
        m_indexes.reserve(keys.size());
        for (qsizetype i = 0; i < keys.size(); ++i) {
            if (isPlaceholder(keys[i])) {
                m_indexes[keys[i]].append(i);
            } else if (!keys[i].isEmpty()) {
                m_givenUp = true;
            }
        }
    }

    /// The text with all keys behind @p index replaced, or nothing when it has given up.
    std::optional<QString> replaced(QStringView text, qsizetype index = -1)
    {
        QString result;
        qsizetype done = 0;
        bool inBraces = false;
        qsizetype at = nextBrace(text, 0);
        while (at < text.size() && !m_givenUp) {
            const qsizetype next = nextBrace(text, at + 1);
            const bool isPair = text[at] == u'{' && next < text.size() && text[next] == u'}';
            if (isPair) {
                if (const auto value = valueBehind(text.sliced(at, next + 1 - at), index)) {
                    m_givenUp = m_givenUp || inBraces;
                    result.reserve(text.size() + text.size() / 8);
                    result += text.sliced(done, at - done);
                    result += *value;
                    done = next + 1;
                    at = nextBrace(text, done);
                    inBraces = false;
                    continue;
                }
            }
            inBraces = text[at] == u'{';
            at = next;
        }
        if (m_givenUp) {
            return std::nullopt;
        }
        return done == 0 ? text.toString() : result += text.sliced(done);
    }

private:
    /// What @p key becomes by the keys behind @p index; nothing where it stays.
    std::optional<QString> valueBehind(QStringView key, qsizetype index)
    {
        const auto indexes = m_indexes.constFind(key);
        if (indexes == m_indexes.constEnd()) {
            return std::nullopt;
        }
        for (const qsizetype candidate : *indexes) {
            if (candidate <= index) {
                continue;
            }
            const auto known = m_values.constFind(candidate);
            if (known != m_values.constEnd()) {
                return *known;
            }
            const std::optional<QString> value = m_valueOf(candidate);
            if (!value) {
                continue; // this key stays, but the same key may come again
            }
            if (++m_depth > deepestChain || !hasPairsOnly(*value)) {
                m_givenUp = true;
            }
            const std::optional<QString> whole = m_givenUp ? std::nullopt : replaced(*value, candidate);
            --m_depth;
            if (whole) {
                m_values.insert(candidate, *whole);
            }
            return whole;
        }
        return std::nullopt;
    }

    const ReplacementOf &m_valueOf;
    QHash<QStringView, QList<qsizetype>> m_indexes; ///< by key, in their order
    QHash<qsizetype, QString> m_values;             ///< with the keys behind their own replaced
    int m_depth = 0;
    bool m_givenUp = false;
};

} // namespace

void replaceInOrder(QString &text, const QStringList &keys, const ReplacementOf &valueOf)
{
    if (const auto result = OnePass(keys, valueOf).replaced(text)) {
        text = *result;
        return;
    }
    for (qsizetype i = 0; i < keys.size(); ++i) {
        if (keys[i].isEmpty() || !text.contains(keys[i])) {
            continue;
        }
        if (const auto value = valueOf(i)) {
            text.replace(keys[i], *value);
        }
    }
}

} // namespace corvane
