#pragma once

// What the commands that import have in common: the options about names that exist already, and the counts
// that they print.

#include <string>

#include "cli/Session.h"
#include "tools/ImportClash.h"

/// Throws CUsageError when both options are given.
void RefuseBoth(const CArguments& arguments, const std::wstring& one, const std::wstring& other);
/// --replace, --skip or neither; throws CUsageError for both.
ClashAnswer ReadClashAnswer(const CArguments& arguments);
void WriteImportCounts(const CSession& session, const ImportCounts& counts);
