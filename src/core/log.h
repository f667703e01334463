// The library's two output channels: progress lines on standard output (silenced by
// BARCODE_ORV_QUIET=1) and error lines on standard error (never silenced).
#pragma once

#include <string_view>

namespace barcode_orv::log {

// True when BARCODE_ORV_QUIET=1 was set when the library first printed.
bool Quiet();

// Writes `line` and a line feed to standard output unless quiet.
void Progress(std::string_view line);

// Writes `line` and a line feed to standard error.
void Error(std::string_view line);

}  // namespace barcode_orv::log
