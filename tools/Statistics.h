#pragma once

// The statistics report of a database, as text with "\n" line ends.

#include <string>

#include "database/TextureDatabase.h"

/// Deliberate: the grand total adds the running sum of each cache after every entry, so it grows faster than
/// the lines above it.
std::wstring StatisticsText(CTextureDatabase& database);
