#pragma once

// How a section reads in a section tree.

#include <string>

#include "base/File.h"
#include "rw/Node.h"

/// "Struct (0x18, 4 bytes) ": the section's name, where its body stands in the file, its size; behind that
/// the text of a String section in quotes.
std::wstring SectionCaption(RW::CNode& node, const IFile* file);
