#pragma once

#include <QString>

#include <functional>
#include <map>

class QWidget;

namespace quillon {

/// Set on a form that was unloaded and only waits to be deleted.
inline constexpr char unloadedProperty[] = "unloaded";

/// All forms by name. A form is loaded on first touch, can be asked whether it is loaded, and is made anew, with its
/// design values, after it was unloaded. One that the screen is too small for scrolls, see ScrollingForm.
class FormRegistry {
public:
    using Factory = std::function<QWidget *()>;

    FormRegistry();
    ~FormRegistry();
    FormRegistry(const FormRegistry &) = delete;
    FormRegistry &operator=(const FormRegistry &) = delete;

    /// Tells how a form is made. The registry owns what the factory gives.
    void add(const QString &name, Factory factory);

    /// The form of that name, loaded if need be; nullptr with a fault when no such form is known.
    QWidget *form(const QString &name);
    template <typename Form> Form *as(const QString &name) { return qobject_cast<Form *>(form(name)); }

    [[nodiscard]] bool isLoaded(const QString &name) const;
    /// Closes the form and lets it go; safe while an event of that form is being handled, even one that waits in a
    /// nested event loop. The same happens when the user closes it. A form that refuses its close event stays loaded.
    /// One not loaded is no error.
    void unload(const QString &name);

private:
    struct Entry;
    std::map<QString, Entry> m_forms;
};

} // namespace quillon
