#include "support/expectedprompts.h"

#include <QTest>

#include <utility>

using namespace Qt::StringLiterals;
using quillon::BoxAnswer;

ExpectedPrompts::ExpectedPrompts(std::function<void(const QString &)> fail)
    : m_fail(std::move(fail)), m_before(quillon::setPrompts(this))
{
    if (!m_fail) {
        m_fail = [](const QString &what) { QTest::qFail(qPrintable(what), __FILE__, __LINE__); };
    }
}

ExpectedPrompts::~ExpectedPrompts()
{
    quillon::setPrompts(m_before);
    // A test that has failed already leaves prompts over because it broke off.
    if (!m_expected.isEmpty() && !QTest::currentTestFailed()) {
        m_fail(u"expected, but not shown: "_s + leftOver().join(u"; "_s));
    }
}

ExpectedPrompts &ExpectedPrompts::expect(Expectation next)
{
    m_expected.append(std::move(next));
    return *this;
}

ExpectedPrompts &ExpectedPrompts::expectBox(const QString &keyOrText, int style, BoxAnswer answer,
                                            const std::optional<QString> &value,
                                            const std::function<void()> &whileShown)
{
    return expect({Kind::Box, keyOrText, value, style, answer, whileShown});
}

ExpectedPrompts &ExpectedPrompts::expectInput(const QString &keyOrPrompt, const std::optional<QString> &offered,
                                              const QString &answer)
{
    return expect({Kind::Input, keyOrPrompt, offered, 0, answer, {}});
}

ExpectedPrompts &ExpectedPrompts::expectFiles(const QStringList &answer, const std::optional<QString> &title)
{
    return expect({Kind::Files, title, std::nullopt, 0, answer, {}});
}

ExpectedPrompts &ExpectedPrompts::expectSave(const QString &answer, const std::optional<QString> &title)
{
    return expect({Kind::Save, title, std::nullopt, 0, answer, {}});
}

ExpectedPrompts &ExpectedPrompts::expectFolder(const QString &answer, const std::optional<QString> &title)
{
    return expect({Kind::Folder, title, std::nullopt, 0, answer, {}});
}

ExpectedPrompts &ExpectedPrompts::expectColor(long answer)
{
    return expect({Kind::Color, std::nullopt, std::nullopt, 0, answer, {}});
}

ExpectedPrompts &ExpectedPrompts::expectForm(const QString &form, int tab, const std::function<void()> &run)
{
    return expect({Kind::Form, form, std::nullopt, tab, std::monostate(), run});
}

QString ExpectedPrompts::describe(const Expectation &expectation)
{
    const QString name = expectation.name.value_or(u"(any)"_s);
    switch (expectation.kind) {
    case Kind::Box:
        return u"box %1 style %2"_s.arg(name).arg(expectation.number) +
               (expectation.detail ? u" value '"_s + *expectation.detail + u'\'' : QString());
    case Kind::Input:
        return u"input "_s + name + (expectation.detail ? u" ["_s + *expectation.detail + u']' : QString());
    case Kind::Files:
        return u"files "_s + name;
    case Kind::Save:
        return u"save "_s + name;
    case Kind::Folder:
        return u"folder "_s + name;
    case Kind::Color:
        return u"color"_s;
    case Kind::Form:
        return u"form %1 tab %2"_s.arg(name).arg(expectation.number);
    }
    return {};
}

QStringList ExpectedPrompts::leftOver() const
{
    QStringList lines;
    for (const Expectation &expectation : m_expected) {
        lines.append(describe(expectation));
    }
    return lines;
}

std::optional<ExpectedPrompts::Expectation> ExpectedPrompts::take(const Shown &shown, const QString &line)
{
    m_log.append(line);
    if (m_expected.isEmpty()) {
        m_fail(u"nothing was expected, but shown was: "_s + line);
        return std::nullopt;
    }
    const Expectation &next = m_expected.constFirst();
    const bool sameName =
        !next.name || *next.name == shown.name || (!shown.otherName.isNull() && *next.name == shown.otherName);
    if (next.kind != shown.kind || !sameName || next.number != shown.number ||
        (next.detail && *next.detail != shown.detail)) {
        m_fail(u"expected was: "_s + describe(next) + u", but shown was: "_s + line);
        return std::nullopt;
    }
    return m_expected.takeFirst();
}

BoxAnswer ExpectedPrompts::box(const quillon::BoxRequest &request)
{
    m_boxRequests.append(request);
    const QString line = u"box %1 style %2: "_s.arg(request.Key).arg(request.Style) + request.Text;
    const bool keyless = request.Key.isEmpty();
    const auto expected = take({Kind::Box, keyless ? request.Text : request.Key, keyless ? QString() : request.Text,
                                request.Value, request.Style},
                               line);
    if (!expected) {
        // As if the user had refused, so that a failing test does no more harm.
        switch (request.Style & 15) {
        case 1:
        case 3:
            return BoxAnswer::Cancel;
        case 4:
            return BoxAnswer::No;
        default:
            return BoxAnswer::Ok;
        }
    }
    if (expected->run) {
        expected->run();
    }
    return std::get<BoxAnswer>(expected->answer);
}

QString ExpectedPrompts::input(const quillon::InputRequest &request)
{
    const bool keyless = request.Key.isEmpty();
    const auto expected = take(
        {Kind::Input, keyless ? request.Prompt : request.Key, keyless ? QString() : request.Prompt, request.Default},
        u"input %1 ["_s.arg(request.Key) + request.Default + u"]: "_s + request.Prompt);
    return expected ? std::get<QString>(expected->answer) : QString();
}

QStringList ExpectedPrompts::openFiles(const quillon::FileRequest &request)
{
    m_fileRequests.append(request);
    const auto expected = take({Kind::Files, request.Title, {}, {}}, u"files "_s + request.Title);
    return expected ? std::get<QStringList>(expected->answer) : QStringList();
}

QString ExpectedPrompts::saveFile(const quillon::FileRequest &request)
{
    m_fileRequests.append(request);
    const auto expected = take({Kind::Save, request.Title, {}, {}}, u"save "_s + request.Title);
    return expected ? std::get<QString>(expected->answer) : QString();
}

QString ExpectedPrompts::selectFolder(const QString &title)
{
    const auto expected = take({Kind::Folder, title, {}, {}}, u"folder "_s + title);
    return expected ? std::get<QString>(expected->answer) : QString();
}

long ExpectedPrompts::chooseColor()
{
    const auto expected = take({Kind::Color, {}, {}, {}}, u"color"_s);
    return expected ? std::get<long>(expected->answer) : -1;
}

void ExpectedPrompts::showModalForm(const QString &form, int tab)
{
    const auto expected = take({Kind::Form, form, {}, {}, tab}, u"form %1 tab %2"_s.arg(form).arg(tab));
    if (expected && expected->run) {
        expected->run();
    }
}
