// SPDX-License-Identifier: MIT

#include "fuzz/input.h"
#include "model/settings/settings_codec.h"
#include "model/settings/settings_merge.h"

#include <cstddef>
#include <cstdint>
#include <string>

using namespace tessarel;

/// Reads two documents from the input, which a NUL byte separates.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Input input(data, size);
    const std::string document = input.until('\0');
    const auto ours = decodeSettings(document);
    if (!ours)
        return 0;
    const auto written = encodeSettings(*ours, document);
    fuzz::require(written.has_value(), "settings that were read can be written");
    fuzz::require(decodeSettings(*written) == ours, "settings that are written are read the same");
    fuzz::require(encodeSettings(*ours, *written) == written, "writing the same settings changes nothing");

    const auto theirs = decodeSettings(input.rest());
    if (!theirs)
        return 0;
    fuzz::require(merged(*ours, *ours, *theirs) == *theirs, "without a change here, theirs stay");
    fuzz::require(merged(*theirs, *ours, *ours) == *ours, "the same change on both sides is made once");
    const AppSettings both = merged(AppSettings{}, *ours, *theirs);
    fuzz::require(encodeSettings(both).has_value(), "merged settings can be written");
    return 0;
}
