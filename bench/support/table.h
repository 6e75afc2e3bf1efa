// SPDX-License-Identifier: MIT

#pragma once

#include <string>
#include <vector>

namespace tessarel::bench {

/// A Markdown table. The first column is left-aligned, the others are right-aligned.
class Table {
public:
    explicit Table(std::vector<std::string> head);

    void add(std::vector<std::string> row);
    /// Prints the table to the standard output, below `title` and followed by an empty line.
    void print(const std::string& title) const;

private:
    std::vector<std::vector<std::string>> m_rows; // the header comes first
};

/// Returns `value` with `digits` decimal places, or "-" if it is not finite.
[[nodiscard]] std::string number(double value, int digits = 2);

} // namespace tessarel::bench
