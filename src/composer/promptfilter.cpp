#include "composer/promptfilter.h"

#include <limits>

namespace corvane {

namespace {

constexpr std::size_t rowsAtOnce = 200; // some thirty times what is seen

} // namespace

void PromptFilter::setToken(const QStringList &prompts, const QString &token)
{
    beginResetModel();
    m_prompts = prompts;
    m_token = token;
    m_searched = 0;
    m_rows.clear();
    m_rows = find(rowsAtOnce);
    endResetModel();
}

void PromptFilter::findAll()
{
    append(find(std::numeric_limits<std::size_t>::max()));
}

std::vector<int> PromptFilter::find(std::size_t most)
{
    std::vector<int> found;
    for (; m_searched < m_prompts.size() && found.size() < most; ++m_searched) {
        if (m_token.isEmpty() || m_prompts.at(m_searched).contains(m_token)) {
            found.push_back(static_cast<int>(m_searched));
        }
    }
    return found;
}

void PromptFilter::append(const std::vector<int> &found)
{
    if (!found.empty()) {
        const int first = rowCount();
        beginInsertRows({}, first, first + static_cast<int>(found.size()) - 1);
        m_rows.insert(m_rows.end(), found.begin(), found.end());
        endInsertRows();
    }
}

QString PromptFilter::row(int index) const
{
    return index >= 0 && index < rowCount() ? m_prompts.at(m_rows.at(static_cast<std::size_t>(index))) : QString();
}

int PromptFilter::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

QVariant PromptFilter::data(const QModelIndex &index, int role) const
{
    return index.isValid() && role == Qt::DisplayRole ? QVariant(row(index.row())) : QVariant();
}

bool PromptFilter::canFetchMore(const QModelIndex &parent) const
{
    return !parent.isValid() && m_searched < m_prompts.size();
}

void PromptFilter::fetchMore(const QModelIndex &parent)
{
    if (!parent.isValid()) {
        append(find(rowsAtOnce));
    }
}

} // namespace corvane
