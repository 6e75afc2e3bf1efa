// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <string_view>

namespace tessarel {

/// Walks through the tokens of a JSON document, valid or not: strings with their quotes, numbers and other
/// words, and single characters. White space between them is skipped.
class JsonTokens {
public:
    explicit JsonTokens(std::string_view document) : m_rest(document) {}

    /// Returns the next token; empty at the end of the document.
    [[nodiscard]] std::string_view next();

private:
    std::string_view m_rest;
};

/// Returns whether `token` is a number by the grammar of JSON, of any size.
[[nodiscard]] bool isJsonNumber(std::string_view token);

} // namespace tessarel
