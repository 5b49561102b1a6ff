#pragma once

// The build number: a day count by which the program and its libraries tell whether they fit together.

#include <cstdint>
#include <string>

/// The build number of the program, computed from its build date: 415.
std::uint32_t BuildNumber();
/// The same from any date text such as "Jan 28 2014"; 0 for a text that is no such date.
std::uint32_t BuildNumberOf(const std::string& date);
