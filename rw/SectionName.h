#pragma once

// Names of section identifiers and platforms, as the section tree and the stop boxes show them.

#include <cstdint>
#include <optional>
#include <string_view>

namespace RW {

/// Nothing for an identifier that has no name.
std::optional<std::string_view> GetSectionName(std::uint32_t id);

/// Nothing for a platform that has no name.
std::optional<std::string_view> GetPlatformName(std::uint32_t platform);

}  // namespace RW
