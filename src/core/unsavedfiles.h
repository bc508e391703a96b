#pragma once

#include "quillon/files/writeoutcome.h"

#include <QDateTime>
#include <QList>
#include <QObject>
#include <QString>

namespace corvane {

/// The files whose last write failed, so that what the window shows of them is not on the disk. It listens to the
/// writes of the whole process while it lives.
class UnsavedFiles : public QObject {
    Q_OBJECT

public:
    UnsavedFiles();
    ~UnsavedFiles() override;

    /// How many there are.
    [[nodiscard]] qsizetype count() const { return m_files.size(); }
    /// A line that names the one that failed last, why, and how many more there are; empty when all is saved.
    [[nodiscard]] QString text() const;
    /// Path, reason and moment of each, the one that failed last in front, a line each.
    [[nodiscard]] QString details() const;

Q_SIGNALS:
    /// One more or one less, or one has failed anew.
    void changed();

private:
    struct File {
        QString path;
        QString reason;
        QDateTime moment;
    };

    void written(const QString &path, const QString &reason);

    QList<File> m_files; ///< the one that failed last at the end
    quillon::WriteListener m_before;
};

} // namespace corvane
