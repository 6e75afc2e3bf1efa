// SPDX-License-Identifier: MIT

#include "model/json.h"

#include "model/json_tokens.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

namespace tessarel {
namespace {

/// Returns whether all numbers in `value` are finite. The library would write null for any other number.
bool isFinite(const Json& value) {
    if (value.is_structured())
        return std::ranges::all_of(value, isFinite);
    return !value.is_number_float() || std::isfinite(value.get<double>());
}

/// Returns whether `token` is a number that no double can hold. Only the library converts numbers, because
/// the C library does so by its locale.
bool isTooLargeNumber(std::string_view token) {
    const bool mayBe = token.size() > std::numeric_limits<double>::max_exponent10 ||
                       token.find_first_of("eE") != std::string_view::npos;
    return mayBe && isJsonNumber(token) && !Json::accept(token);
}

/// A document in which every number fits into a double.
struct ReadableDocument {
    std::string text;
    /// Which of the document's numbers, counted from 0, have been replaced by 0 because they are too large.
    std::vector<std::size_t> replaced;
};

/// Replaces the numbers at which the library would give up.
ReadableDocument readable(std::string_view document) {
    ReadableDocument made;
    std::size_t numbers = 0;
    const char* copied = document.data();
    JsonTokens tokens(document);
    for (std::string_view token = tokens.next(); !token.empty(); token = tokens.next()) {
        if (isTooLargeNumber(token)) {
            made.text.append(copied, token.data()).append("0");
            made.replaced.push_back(numbers);
            copied = token.data() + token.size();
        }
        if (token.front() == '-' || (token.front() >= '0' && token.front() <= '9'))
            ++numbers;
    }
    made.text.append(copied, document.data() + document.size());
    return made;
}

/// Builds the value of a document from the library's events.
class ValueBuilder : public Json::json_sax_t {
public:
    /// `replaced` are the numbers, counted from 0, that stand for others too large for a double.
    explicit ValueBuilder(const std::vector<std::size_t>& replaced) : m_replaced(replaced) {}

    /// Returns the value. Call it once.
    [[nodiscard]] Json take() { return std::move(m_root); }

    bool null() override { return add(nullptr); }
    bool boolean(bool value) override { return add(value); }
    bool number_integer(std::int64_t value) override { return addNumber(value); }
    bool number_unsigned(std::uint64_t value) override { return addNumber(value); }
    bool number_float(double value, const std::string& /*text*/) override { return addNumber(value); }
    bool string(std::string& value) override { return add(std::move(value)); }
    bool binary(Json::binary_t& /*value*/) override { return false; }
    bool start_object(std::size_t /*size*/) override { return open(Json::object()); }
    bool key(std::string& name) override {
        m_member = &(*m_open.back())[std::move(name)];
        return true;
    }
    bool end_object() override { return close(); }
    bool start_array(std::size_t /*size*/) override { return open(Json::array()); }
    bool end_array() override { return close(); }
    bool parse_error(std::size_t /*position*/, const std::string& /*token*/,
                     const Json::exception& /*error*/) override {
        return false;
    }

private:
    /// Returns where the next value belongs.
    Json& place() {
        if (m_open.empty())
            return m_root;
        if (m_open.back()->is_object())
            return *m_member;
        return m_open.back()->emplace_back();
    }

    bool add(Json value) {
        place() = std::move(value);
        return true;
    }

    bool addNumber(Json value) {
        const bool isReplaced = m_nextReplaced < m_replaced.size() && m_replaced[m_nextReplaced] == m_numbers;
        ++m_numbers;
        if (!isReplaced)
            return add(std::move(value));
        ++m_nextReplaced;
        return add(Json::value_t::binary); // the library reads this type from other formats only
    }

    bool open(Json empty) {
        if (m_open.size() == kDeepestJson)
            return false;
        Json& value = place();
        value = std::move(empty);
        m_open.push_back(&value);
        return true;
    }

    bool close() {
        m_open.pop_back();
        return true;
    }

    const std::vector<std::size_t>& m_replaced;
    std::size_t m_nextReplaced = 0;
    std::size_t m_numbers = 0;
    Json m_root;
    std::vector<Json*> m_open; ///< the arrays and objects that are not complete yet, outermost first
    Json* m_member = nullptr;  ///< the member of the innermost object whose name was read last
};

/// Reads the tokens of one value, up to the comma or brace after it. Returns its text.
std::string takeValue(JsonTokens& tokens, std::string_view& after) {
    std::string text;
    std::size_t depth = 0;
    for (std::string_view token = tokens.next();; token = tokens.next()) {
        if (depth == 0 && (token == "," || token == "}")) {
            after = token;
            return text;
        }
        if (token == "{" || token == "[")
            ++depth;
        else if (token == "}" || token == "]")
            --depth;
        text += token;
    }
}

} // namespace

std::optional<Json> readJson(std::string_view document) {
    if (document.find('\0') != std::string_view::npos) // for the library it would end the document
        return std::nullopt;
    const ReadableDocument made = readable(document);
    ValueBuilder builder(made.replaced);
    if (!Json::sax_parse(made.text, &builder))
        return std::nullopt;
    return builder.take();
}

std::optional<JsonMembers> readJsonMembers(std::string_view document) {
    const auto root = readJson(document);
    if (!root || !root->is_object())
        return std::nullopt;
    JsonMembers members;
    JsonTokens tokens(document.substr(document.find('{') + 1));
    for (std::string_view token = tokens.next(); token != "}";) {
        const std::string name = Json::parse(token).get<std::string>();
        (void)tokens.next(); // the colon
        members[name] = takeValue(tokens, token);
        if (token == ",")
            token = tokens.next();
    }
    return members;
}

std::optional<std::string> writeJsonMembers(const JsonMembers& members) {
    std::string document = "{";
    for (const auto& [name, value] : members) {
        const auto written = writeJson(name);
        if (!written)
            return std::nullopt;
        document += (document.size() > 1 ? "," : "") + *written + ":" + value;
    }
    return document + "}";
}

std::optional<std::string> writeJson(const Json& value) {
    if (!isFinite(value))
        return std::nullopt;
    try {
        return value.dump();
    } catch (const Json::type_error&) { // thrown for text that is not UTF-8
        return std::nullopt;
    }
}

} // namespace tessarel
