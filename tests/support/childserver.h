#pragma once

#include <QByteArray>
#include <QList>
#include <QProcess>
#include <QStringList>

namespace testsupport {

/// A server in a process of its own. It ends with this object, which closes its standard input and waits for it.
class ChildServer {
public:
    ChildServer() = default;
    ~ChildServer();
    ChildServer(const ChildServer &) = delete;
    ChildServer &operator=(const ChildServer &) = delete;

    /// Starts one of the Python programs of this folder with Debian's own interpreter. They listen on a port that the
    /// system chooses and print "PORT n" first; true when that has come.
    bool startPython(const QString &script, const QStringList &arguments);

    /// Starts microsocks, which cannot choose a port itself: one that was free a moment ago is tried, and another if
    /// somebody was faster. @p user empty: no login.
    bool startMicrosocks(const QString &user = {}, const QString &password = {});

    [[nodiscard]] quint16 port() const { return m_port; }

    /// The lines printed after the first, those that have come by now.
    [[nodiscard]] QList<QByteArray> lines();

    /// Runs the event loop until a line that begins so has come, and gives the rest of it; null when the process ended
    /// before.
    QByteArray waitForLine(const QByteArray &beginning);

    [[nodiscard]] QString fault() { return m_fault + QString::fromUtf8(m_process.readAllStandardError()); }

private:
    QProcess m_process;
    QByteArray m_output;
    quint16 m_port = 0;
    QString m_fault;
};

} // namespace testsupport
