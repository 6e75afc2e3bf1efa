#pragma once

#include "model/preferences_port.h"

#include <set>
#include <string>

namespace tessarel::macos {

/// The user's defaults in the program's own domain. The copy of a rejected document is kept under the key
/// with ".rejected" at its end.
class MacPreferences : public PreferencesPort {
public:
    [[nodiscard]] std::optional<std::string> data(std::string_view key) override;
    void setData(std::string_view key, std::string_view bytes) override;
    void keepRejected(std::string_view key) override;

private:
    std::set<std::string, std::less<>> m_rejected;
};

} // namespace tessarel::macos
