// Extended Channel Interpretations (AIM ECI): the character sets a 2D symbol may declare
// and the text's conversion into them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace barcode_orv::internal {

inline constexpr int kEciNone = -1;
inline constexpr int kEciMax = 999999;

// The iconv name of the character set ECI `eci` assigns, or null for an ECI without one
// (user-defined, binary, or unassigned): such an ECI carries the bytes as they are.
const char* EciCharset(int eci);

// "" when `eci` can be declared, else why not.
std::string EciProblem(int eci);

// `text` (UTF-8, or Shift_JIS when it is not valid UTF-8) in the character set of `eci`;
// false, with `problem` set, when a character has no form there.
bool ConvertForEci(const std::string& text, int eci, std::vector<uint8_t>& bytes, std::string& problem);

}  // namespace barcode_orv::internal
