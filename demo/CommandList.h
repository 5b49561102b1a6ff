#pragma once

// The commands that turn the pictures into a database: one a line, in the order in which they are to run.

#include <string>
#include <vector>

#include "demo/catalogue/Catalogue.h"

namespace Demo {

/// Where a picture's file stands below the folder of all pictures, with "/" as separator.
std::string PicturePath(const Picture& picture);

/// Each line is a command of mavrel-cli without the database, which belongs behind its first word. Words are
/// separated by single blanks and hold none.
std::vector<std::string> DatabaseCommands(const std::vector<Picture>& pictures);

}  // namespace Demo
