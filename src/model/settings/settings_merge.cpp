// SPDX-License-Identifier: MIT

#include "model/settings/settings_merge.h"

#include "model/settings/settings_members.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace tessarel {
namespace {

const std::string& identity(const Layout& layout) {
    return layout.name;
}

const std::string& identity(const std::string& identifier) {
    return identifier;
}

template <typename T>
auto findSame(T& list, const typename T::value_type& item) {
    return std::ranges::find_if(list, [&](const auto& other) { return identity(other) == identity(item); });
}

template <typename T>
bool hasDuplicates(const std::vector<T>& list) {
    return std::ranges::any_of(list, [&](const T& item) { return &*findSame(list, item) != &item; });
}

/// Applies our changes to `theirs`, for each type of a setting.
struct Merge {
    template <typename T>
    static void apply(const T& before, const T& ours, T& theirs) {
        if (!(ours == before))
            theirs = ours;
    }

    static void apply(const std::vector<Zone>& before, const std::vector<Zone>& ours,
                      std::vector<Zone>& theirs) {
        const bool isOneEdit =
            before.size() == ours.size() && theirs.size() == ours.size() && changes(before, ours) == 1;
        if (!isOneEdit)
            return apply<std::vector<Zone>>(before, ours, theirs);
        const auto [was, is] = std::ranges::mismatch(before, ours);
        theirs[static_cast<std::size_t>(is - ours.begin())] = *is;
    }

    template <typename T>
    static void apply(const std::map<std::string, T, std::less<>>& before,
                      const std::map<std::string, T, std::less<>>& ours,
                      std::map<std::string, T, std::less<>>& theirs) {
        for (const auto& [name, value] : before)
            if (!ours.contains(name))
                theirs.erase(name);
        for (const auto& [name, value] : ours) {
            const auto old = before.find(name);
            if (old == before.end() || !(old->second == value))
                theirs.insert_or_assign(name, value);
        }
    }

    static void apply(const std::vector<Layout>& before, const std::vector<Layout>& ours,
                      std::vector<Layout>& theirs) {
        applyToList(before, ours, theirs);
    }

    static void apply(const std::vector<std::string>& before, const std::vector<std::string>& ours,
                      std::vector<std::string>& theirs) {
        applyToList(before, ours, theirs);
    }

private:
    static std::size_t changes(const std::vector<Zone>& before, const std::vector<Zone>& ours) {
        std::size_t count = 0;
        for (std::size_t i = 0; i < ours.size(); ++i)
            count += before[i] == ours[i] ? 0U : 1U;
        return count;
    }

    template <typename T>
    static void applyToList(const std::vector<T>& before, const std::vector<T>& ours,
                            std::vector<T>& theirs) {
        // Without a change by others the result is our list, in our order.
        if (theirs == before || hasDuplicates(before) || hasDuplicates(ours) || hasDuplicates(theirs))
            return apply<std::vector<T>>(before, ours, theirs);
        std::erase_if(theirs, [&](const T& item) {
            return findSame(before, item) != before.end() && findSame(ours, item) == ours.end();
        });
        for (const T& item : ours) {
            const auto old = findSame(before, item);
            if (old != before.end() && *old == item)
                continue;
            const auto present = findSame(theirs, item);
            if (present == theirs.end())
                theirs.push_back(item);
            else
                *present = item;
        }
    }
};

} // namespace

AppSettings merged(const AppSettings& before, const AppSettings& ours, AppSettings theirs) {
    forEachSetting([&](const char* /*name*/, auto member) {
        Merge::apply(before.*member, ours.*member, theirs.*member);
    });
    return theirs;
}

} // namespace tessarel
