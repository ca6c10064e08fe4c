// The 84 flags that triggers test, with the captions that name them.
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace kelpa {

struct FlagTable {
    static constexpr int kCount = 84;
    std::array<bool, kCount> value{};
    std::array<std::string, kCount> caption;
    // Changes with every write, so that the dialog can follow.
    std::uint64_t revision = 0;

    void reset() {
        for (int i = 0; i < kCount; ++i) {
            value[static_cast<std::size_t>(i)] = false;
            caption[static_cast<std::size_t>(i)] = std::to_string(i);
        }
        ++revision;
    }
    void set(int i, bool on) {
        value[static_cast<std::size_t>(i)] = on;
        ++revision;
    }
    void setCaption(int i, std::string text) {
        caption[static_cast<std::size_t>(i)] = std::move(text);
        ++revision;
    }
};

}  // namespace kelpa
