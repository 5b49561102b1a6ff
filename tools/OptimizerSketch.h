#pragma once

// How different two byte strings are, told as early as possible. A sketch is a short summary of a string; two
// sketches give a bound that the difference is never below, so that unlike strings are told apart by their
// sketches and none that is alike is missed. Pure.

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/// What is counted: bytes that differ, or the sum of the absolute differences of the bytes.
enum class DifferenceMeasure { DifferingBytes, AbsoluteSum };

/// True when two strings of one length differ by less than `limit`. The counting stops as soon as that is
/// known, and does not wrap.
bool DifferByLess(std::span<const std::byte> a, std::span<const std::byte> b, DifferenceMeasure measure,
                  std::uint64_t limit);

/// Words of a sketch: enough for a limit like this to be reached by unlike strings of `bytes` bytes.
std::size_t SketchWords(std::uint64_t bytes, std::uint64_t limit);

/// One word for each of `words.size()` parts of nearly the same length.
void FillSketch(std::span<const std::byte> bytes, DifferenceMeasure measure, std::span<std::uint32_t> words);

/// False only when the strings of these sketches, of one length, differ by `limit` or more.
bool MayDifferByLess(std::span<const std::uint32_t> a, std::span<const std::uint32_t> b,
                     DifferenceMeasure measure, std::uint64_t limit);

/// A number for each sketch: those of one number may belong to strings that differ by less than `limit`,
/// those of different numbers never do. Sketches are compared only where `groups` has the same number for
/// both. By either measure such strings differ in fewer than `limit` bytes; so of `limit` parts of them at
/// least one is the same.
std::vector<std::uint32_t> RelateSketches(std::span<const std::vector<std::uint32_t>> sketches,
                                          std::span<const std::uint32_t> groups, std::uint64_t limit);
