#include "quillon/forms/formregistry.h"

#include "quillon/fault.h"
#include "quillon/forms/scrollingform.h"

#include <QAbstractEventDispatcher>
#include <QEvent>
#include <QPointer>
#include <QThread>
#include <QTimer>
#include <QWidget>

#include <memory>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace quillon {

namespace {

/// Deletes a form that was unloaded, once nothing can be running in it any more. Qt's own deferred deletion is not
/// enough: a handler of the form that waits in a nested event loop would lose the form under its feet. Only an
/// outermost event loop that is about to wait is sure to have no handler on the stack.
class Grave : public QObject {
public:
    explicit Grave(QWidget *form) : m_form(form)
    {
        if (QAbstractEventDispatcher *dispatcher = QAbstractEventDispatcher::instance()) {
            connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, this, &Grave::clear);
        }
        // A form that is gone does nothing any more, whenever its memory goes.
        const QList<QTimer *> timers = form->findChildren<QTimer *>();
        for (QTimer *timer : timers) {
            timer->stop();
        }
        form->setObjectName(QString());
        form->setProperty(unloadedProperty, true);
    }
    ~Grave() override { delete m_form; }

    [[nodiscard]] bool empty() const { return m_form.isNull(); }

private:
    void clear()
    {
        if (QThread::currentThread()->loopLevel() <= 1) {
            delete m_form;
        }
    }

    QPointer<QWidget> m_form;
};

} // namespace

struct FormRegistry::Entry {
    /// Sees the form close, however it was asked to, and takes it out of the registry unless the form refused.
    class Watcher : public QObject {
    public:
        explicit Watcher(Entry *entry) : m_entry(entry) {}

        bool eventFilter(QObject *watched, QEvent *event) override
        {
            if (event->type() != QEvent::Close || watched != m_entry->form) {
                return false;
            }
            watched->event(event);
            if (event->isAccepted()) {
                m_entry->bury();
            }
            return true;
        }

    private:
        Entry *m_entry;
    };

    void bury()
    {
        if (form.isNull()) {
            return;
        }
        form->removeEventFilter(watcher.get());
        std::erase_if(graves, [](const std::unique_ptr<Grave> &grave) { return grave->empty(); });
        graves.push_back(std::make_unique<Grave>(std::exchange(form, nullptr)));
    }

    Factory factory;
    QPointer<QWidget> form;
    bool loading = false;
    std::unique_ptr<Watcher> watcher = std::make_unique<Watcher>(this);
    std::vector<std::unique_ptr<Grave>> graves;
};

FormRegistry::FormRegistry() = default;

FormRegistry::~FormRegistry()
{
    for (auto &[name, entry] : m_forms) {
        delete entry.form;
    }
}

void FormRegistry::add(const QString &name, Factory factory)
{
    m_forms[name].factory = std::move(factory);
}

QWidget *FormRegistry::form(const QString &name)
{
    const auto found = m_forms.find(name);
    if (found == m_forms.end()) {
        reportFault(u"no form is called '"_s + name + u'\'');
        return nullptr;
    }
    Entry &entry = found->second;
    if (entry.form.isNull()) {
        if (entry.loading) {
            reportFault(u"the form '"_s + name + u"' was asked for while it was being made"_s);
            return nullptr;
        }
        entry.loading = true;
        entry.form = entry.factory();
        entry.loading = false;
        if (entry.form.isNull()) {
            reportFault(u"the form '"_s + name + u"' could not be made"_s);
            return nullptr;
        }
        entry.form->setObjectName(name);
        // The registry decides when a form goes.
        entry.form->setAttribute(Qt::WA_DeleteOnClose, false);
        entry.form->installEventFilter(entry.watcher.get());
        new ScrollingForm(entry.form);
    }
    return entry.form;
}

bool FormRegistry::isLoaded(const QString &name) const
{
    const auto found = m_forms.find(name);
    return found != m_forms.end() && !found->second.form.isNull();
}

void FormRegistry::unload(const QString &name)
{
    const auto found = m_forms.find(name);
    if (found != m_forms.end() && !found->second.form.isNull()) {
        found->second.form->close();
    }
}

} // namespace quillon
