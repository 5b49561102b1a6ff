#pragma once

// What the commands that export pictures have in common: the counts that they print.

#include <string>

#include "cli/Session.h"
#include "tools/ExportPictures.h"

/// The counts as JSON when that is asked for, else `line`.
void WriteExportCounts(const CSession& session, const ExportCounts& counts, const std::wstring& line);
