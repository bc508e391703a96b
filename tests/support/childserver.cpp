#include "support/childserver.h"

#include <QCoreApplication>
#include <QTcpServer>
#include <QTcpSocket>

using namespace Qt::StringLiterals;

namespace testsupport {

namespace {
constexpr int portTries = 10;
}

ChildServer::~ChildServer()
{
    if (m_process.state() == QProcess::NotRunning) {
        return;
    }
    m_process.closeWriteChannel();
    // microsocks does not read its input, so it is ended; the Python programs end with theirs.
    if (m_process.program().endsWith(u"microsocks"_s)) {
        m_process.kill();
    }
    if (!m_process.waitForFinished()) {
        m_process.kill();
        m_process.waitForFinished();
    }
}

bool ChildServer::startPython(const QString &script, const QStringList &arguments)
{
    m_process.start(u"/usr/bin/python3"_s, QStringList{u"" TEST_SUPPORT_DIR "/"_s + script} + arguments);
    const QByteArray port = waitForLine("PORT ");
    m_port = port.toUShort();
    if (m_port == 0) {
        m_fault += u"%1 did not start: "_s.arg(script);
    }
    return m_port != 0;
}

bool ChildServer::startMicrosocks(const QString &user, const QString &password)
{
    for (int i = 0; i < portTries; ++i) {
        {
            QTcpServer probe;
            probe.listen(QHostAddress::LocalHost);
            m_port = probe.serverPort();
        }
        QStringList arguments = {u"-i"_s, u"127.0.0.1"_s, u"-p"_s, QString::number(m_port)};
        if (!user.isEmpty()) {
            arguments += {u"-u"_s, user, u"-P"_s, password};
        }
        m_process.start(u"microsocks"_s, arguments);
        if (!m_process.waitForStarted()) {
            m_fault = m_process.errorString();
            return false;
        }
        // It says nothing when it listens: it does as soon as it can be reached, or else it has ended.
        while (m_process.state() == QProcess::Running) {
            QTcpSocket knock;
            knock.connectToHost(QHostAddress(QHostAddress::LocalHost), m_port);
            if (knock.waitForConnected()) {
                return true;
            }
            m_process.waitForFinished(1);
        }
    }
    m_fault = u"microsocks found no port"_s;
    return false;
}

QList<QByteArray> ChildServer::lines()
{
    m_output += m_process.readAllStandardOutput();
    QList<QByteArray> whole = m_output.split('\n');
    whole.removeLast(); // what has no line end yet
    return whole;
}

QByteArray ChildServer::waitForLine(const QByteArray &beginning)
{
    while (true) {
        const QList<QByteArray> known = lines();
        for (const QByteArray &line : known) {
            if (line.startsWith(beginning)) {
                return line.mid(beginning.size());
            }
        }
        if (m_process.state() == QProcess::NotRunning) {
            return {};
        }
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

} // namespace testsupport
