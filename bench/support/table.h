#pragma once

#include <string>
#include <vector>

namespace tessarel::bench {

/// A table for people and for the documentation: Markdown, first column to the left, the others to the right.
class Table {
public:
    explicit Table(std::vector<std::string> head);

    void add(std::vector<std::string> row);
    /// Writes it to the standard output under `title`, with an empty line after it.
    void print(const std::string& title) const;

private:
    std::vector<std::vector<std::string>> m_rows; // the head first
};

/// `value` with `digits` behind the point; "-" when it is not a number.
[[nodiscard]] std::string number(double value, int digits = 2);

} // namespace tessarel::bench
