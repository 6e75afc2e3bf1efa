// SPDX-License-Identifier: MIT

#include "support/table.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace tessarel::bench {

namespace {

std::string line(const std::vector<std::string>& cells, const std::vector<std::size_t>& widths) {
    std::string text = "|";
    for (std::size_t column = 0; column < cells.size(); ++column) {
        const std::string padding(widths[column] - cells[column].size(), ' ');
        text.append(" ").append(column == 0 ? cells[column] + padding : padding + cells[column]).append(" |");
    }
    return text;
}

std::string rule(const std::vector<std::size_t>& widths) {
    std::string text = "|";
    for (std::size_t column = 0; column < widths.size(); ++column)
        text.append(widths[column] + 1, '-').append(column == 0 ? "-|" : ":|");
    return text;
}

} // namespace

Table::Table(std::vector<std::string> head) : m_rows{std::move(head)} {}

void Table::add(std::vector<std::string> row) {
    m_rows.push_back(std::move(row));
}

void Table::print(const std::string& title) const {
    std::vector<std::size_t> widths(m_rows.front().size());
    for (const auto& row : m_rows)
        for (std::size_t column = 0; column < row.size(); ++column)
            widths[column] = std::max(widths[column], row[column].size());
    std::printf("%s\n\n%s\n%s\n", title.c_str(), line(m_rows.front(), widths).c_str(), rule(widths).c_str());
    for (std::size_t row = 1; row < m_rows.size(); ++row)
        std::printf("%s\n", line(m_rows[row], widths).c_str());
    std::printf("\n");
    std::fflush(stdout);
}

std::string number(double value, int digits) {
    if (!std::isfinite(value))
        return "-";
    std::vector<char> text(64);
    std::snprintf(text.data(), text.size(), "%.*f", digits, value);
    return text.data();
}

} // namespace tessarel::bench
