#pragma once

#include <QAbstractListModel>
#include <QStringList>

#include <vector>

namespace corvane {

/// Those input prompts that contain a token anywhere, in the order of the list; case counts, and an empty token is in
/// all of them. They are looked for as far as they are asked for, so that a long list costs a key press next to
/// nothing.
class PromptFilter : public QAbstractListModel {
    Q_OBJECT

public:
    using QAbstractListModel::QAbstractListModel;

    /// Looks anew. @p prompts are shared, not copied.
    void setToken(const QStringList &prompts, const QString &token);
    /// Finds all that there are, for whoever wants the last one.
    void findAll();

    [[nodiscard]] QString row(int index) const;

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] bool canFetchMore(const QModelIndex &parent) const override;
    void fetchMore(const QModelIndex &parent) override;

private:
    /// The next matches, at most that many.
    [[nodiscard]] std::vector<int> find(std::size_t most);
    void append(const std::vector<int> &found);

    QStringList m_prompts;
    QString m_token;
    std::vector<int> m_rows;  ///< indexes of the prompts that are found
    qsizetype m_searched = 0; ///< how many prompts were looked at
};

} // namespace corvane
