#pragma once

#include "quillon/system/prompts.h"

#include <QList>
#include <QStringList>

#include <functional>
#include <optional>
#include <variant>

/// Answers prompts from a queue of expectations, in force while it lives. A prompt that is not the next one expected,
/// and one that is left over at the end, fail the running test. What was shown is kept in log().
class ExpectedPrompts : public quillon::Prompts {
public:
    /// @p fail is told each failure; without it the running Qt test fails.
    explicit ExpectedPrompts(std::function<void(const QString &)> fail = {});
    ~ExpectedPrompts() override;
    ExpectedPrompts(const ExpectedPrompts &) = delete;
    ExpectedPrompts &operator=(const ExpectedPrompts &) = delete;

    /// A box with this message key, or, for a text without a key, with this whole text. Without @p value any value, or
    /// none, is accepted in front of it. @p whileShown runs before the answer, as a user's doings behind the box.
    ExpectedPrompts &expectBox(const QString &keyOrText, int style, quillon::BoxAnswer answer = quillon::BoxAnswer::Ok,
                               const std::optional<QString> &value = std::nullopt,
                               const std::function<void()> &whileShown = {});
    /// An input box with this key, or this prompt where it has no key; without @p offered any default is accepted.
    ExpectedPrompts &expectInput(const QString &keyOrPrompt, const std::optional<QString> &offered,
                                 const QString &answer);
    /// File dialogs; without @p title any title is accepted.
    ExpectedPrompts &expectFiles(const QStringList &answer, const std::optional<QString> &title = std::nullopt);
    ExpectedPrompts &expectSave(const QString &answer, const std::optional<QString> &title = std::nullopt);
    ExpectedPrompts &expectFolder(const QString &answer, const std::optional<QString> &title = std::nullopt);
    ExpectedPrompts &expectColor(long answer);
    /// A modal form; @p run may load and drive the real one, or do what its user would have changed.
    ExpectedPrompts &expectForm(const QString &form, int tab = -1, const std::function<void()> &run = {});

    /// Everything that was shown, in order: "box KEY style 48: text", "input KEY [default]: prompt", "files title",
    /// "save title", "folder title", "color", "form name tab 1".
    [[nodiscard]] QStringList log() const { return m_log; }
    /// The requests of the file dialogs that were shown, to look at their filters and default paths.
    [[nodiscard]] QList<quillon::FileRequest> fileRequests() const { return m_fileRequests; }
    /// The boxes that were shown, to look at what stands below their texts.
    [[nodiscard]] QList<quillon::BoxRequest> boxRequests() const { return m_boxRequests; }
    /// What is still expected, in the notation of log() as far as it is known.
    [[nodiscard]] QStringList leftOver() const;

    quillon::BoxAnswer box(const quillon::BoxRequest &request) override;
    QString input(const quillon::InputRequest &request) override;
    QStringList openFiles(const quillon::FileRequest &request) override;
    QString saveFile(const quillon::FileRequest &request) override;
    QString selectFolder(const QString &title) override;
    long chooseColor() override;
    void showModalForm(const QString &form, int tab) override;

private:
    enum class Kind { Box, Input, Files, Save, Folder, Color, Form };

    struct Expectation {
        Kind kind;
        std::optional<QString> name;   ///< key, text, title or form
        std::optional<QString> detail; ///< value of a box, default of an input box
        int number = 0;                ///< style or tab
        std::variant<std::monostate, quillon::BoxAnswer, QString, QStringList, long> answer;
        std::function<void()> run;
    };

    /// What was shown, in the terms of an expectation.
    struct Shown {
        Kind kind;
        QString name;
        QString otherName; ///< also matches, such as a box's text beside its key
        QString detail;
        int number = 0;
    };

    ExpectedPrompts &expect(Expectation next);
    /// Takes the next expectation if it is the one for what was shown; otherwise fails the test.
    std::optional<Expectation> take(const Shown &shown, const QString &line);
    static QString describe(const Expectation &expectation);

    QList<Expectation> m_expected;
    QStringList m_log;
    QList<quillon::FileRequest> m_fileRequests;
    QList<quillon::BoxRequest> m_boxRequests;
    std::function<void(const QString &)> m_fail;
    quillon::Prompts *m_before;
};
