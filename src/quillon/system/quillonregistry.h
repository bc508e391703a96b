#pragma once

#include <QString>

namespace quillon {

/// Named values in a tree of keys, as old systems keep them. Here they lie in one settings file, which exists only when
/// a file was named; without one, reading gives "" and writing does nothing.
class QuillonRegistry {
public:
    enum Hive { CurrentUser, Machine };
    enum Type { Text = 1, Number = 4 };

    /// The value as text; "" when it is not there. An empty @p name is the key's default value.
    [[nodiscard]] QString ReadValue(Hive hive, const QString &keyPath, const QString &name) const;
    void WriteValue(Hive hive, const QString &keyPath, const QString &name, Type type, const QString &value) const;
    /// Deletes a key with all its values. One that is not there is no fault.
    void DeleteKey(Hive hive, const QString &keyPath) const;

    /// The file that holds the values of every registry object; empty: none.
    static void setFile(const QString &path);
};

} // namespace quillon
