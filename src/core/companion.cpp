#include "core/companion.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace corvane {

namespace {

constexpr int minimised = 6;

const QString companion = u"CorvaneS.exe"_s;

} // namespace

void Companion::restart()
{
    m_restart.start(endAndStart());
}

quillon::Task<> Companion::endAndStart()
{
    co_await m_globals.system.EndProcess(companion);
    start();
    if (m_restarted) {
        m_restarted->settle();
    }
}

void Companion::start() const
{
    const QString path = m_globals.programFolder + u'/' + companion;
    if (QFileInfo(path).isFile()) {
        m_globals.system.OpenTarget(path, minimised, m_stopOnFault ? QStringList{u"/D"_s} : QStringList());
    }
}

quillon::Task<> Companion::takeLeave(bool stop)
{
    if (stop) {
        m_restart.end();
        co_await m_globals.system.EndProcess(companion);
    } else if (m_restart.isUnderWay()) {
        quillon::Pending<> restarted;
        m_restarted = restarted.settler();
        co_await restarted;
    }
}

} // namespace corvane
