#include "composer/attachmentlist.h"

#include "composer/composertexts.h"
#include "core/texts.h"
#include "quillon/fault.h"
#include "quillon/forms/windowservices.h"
#include "quillon/hook.h"

#include <QDirIterator>
#include <QFileInfo>
#include <QIcon>
#include <QListWidget>
#include <QStorageInfo>

#include <cmath>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

constexpr int maximised = 3;
constexpr double octetsPerKilobyte = 1024.0;

QString nameOf(const QString &path)
{
    return path.section(u'/', -1);
}

qint64 sizeOf(const QString &path)
{
    const QFileInfo info(path);
    if (!info.isDir()) {
        return info.size();
    }
    qint64 size = 0;
    for (QDirIterator files(path, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories); files.hasNext();) {
        size += files.nextFileInfo().size();
    }
    return size;
}

/// The name and the size, whose ties are rounded to the even neighbour.
QString rowText(const QString &path)
{
    const auto kilobytes = static_cast<qint64>(std::nearbyint(static_cast<double>(sizeOf(path)) / octetsPerKilobyte));
    return u"%1 (%2 KB)"_s.arg(nameOf(path), QString::number(kilobytes));
}

/// Whether a folder is all of a disk: nobody means to send that.
bool isDriveRoot(const QString &path)
{
    const QString canonical = QFileInfo(path).canonicalFilePath();
    return canonical == u"/" || (!canonical.isEmpty() && QStorageInfo(canonical).rootPath() == canonical);
}

} // namespace

AttachmentList::AttachmentList(QListWidget *list, const quillon::QuillonSystem &system, Hooks hooks)
    : m_list(list), m_system(system), m_hooks(std::move(hooks))
{
    quillon::requireHook(m_hooks.changed, u"AttachmentList::changed"_s);
    quillon::requireHook(m_hooks.done, u"AttachmentList::done"_s);
}

QStringList AttachmentList::paths() const
{
    QStringList paths;
    for (int i = 0; i < m_list->count(); ++i) {
        paths.append(m_list->item(i)->data(PathRole).toString());
    }
    return paths;
}

void AttachmentList::setPaths(const QStringList &paths)
{
    m_list->clear();
    for (const QString &path : paths) {
        const QString key = nameOf(path);
        if (QFileInfo::exists(path) && !hasKey(key)) {
            add(path, key);
        }
    }
}

bool AttachmentList::hasKey(const QString &key) const
{
    for (int i = 0; i < m_list->count(); ++i) {
        if (m_list->item(i)->data(KeyRole).toString() == key) {
            return true;
        }
    }
    return false;
}

void AttachmentList::add(const QString &path, const QString &key)
{
    auto *row = new QListWidgetItem(quillon::QuillonWindows().DrawFileIcon(path), rowText(path), m_list);
    row->setData(PathRole, path);
    row->setData(KeyRole, key);
    row->setToolTip(path);
}

void AttachmentList::choose(const QString &path)
{
    if (paths().contains(path)) {
        return;
    }
    QString key = nameOf(path);
    if (hasKey(key)) {
        quillon::reportFault(u"another attachment has the name '"_s + key + u'\'');
        key.clear();
    }
    add(path, key);
    m_hooks.changed();
}

void AttachmentList::addFiles()
{
    const QStringList files = m_system.OpenFileDialog(
        QString::fromUtf16(selectFilesTitle), {{QString::fromUtf16(allFilesFilter), u"*.*"_s}}, QString(), true);
    for (const QString &file : files) {
        choose(file);
    }
    if (!files.isEmpty()) {
        m_hooks.done();
    }
}

void AttachmentList::addFolder()
{
    const QString folder = m_system.SelectFolderDialog(QString::fromUtf16(selectFolderTitle));
    if (folder.isEmpty()) {
        return;
    }
    if (isDriveRoot(folder)) {
        showMessage(u"DRIVE_ATT"_s, quillon::InformationBox);
        return;
    }
    choose(folder);
    m_hooks.done();
}

void AttachmentList::removeSelected()
{
    const QList<QListWidgetItem *> selected = m_list->selectedItems();
    if (!selected.isEmpty()) {
        qDeleteAll(selected);
        m_hooks.changed();
    }
    m_hooks.done();
}

void AttachmentList::clear()
{
    m_list->clear();
    m_hooks.changed();
    m_hooks.done();
}

void AttachmentList::openSelected() const
{
    const QList<QListWidgetItem *> selected = m_list->selectedItems();
    if (!selected.isEmpty()) {
        m_system.OpenDocument(selected.constFirst()->data(PathRole).toString(), maximised);
    }
    m_hooks.done();
}

} // namespace corvane
