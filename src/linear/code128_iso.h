// Code 128 with the symbol values ISO/IEC 15417 assigns in all three code sets, FNC1,
// SHIFT and the fewest symbol characters: the encoder behind symbols that every reader
// must decode (GS1-128). The Code128 class keeps its own set-A mapping.
#pragma once

#include <cstdint>
#include <vector>

namespace barcode_orv::internal {

// FNC1 in a character list; the other entries are ASCII codes 0 to 127.
constexpr int kCode128Fnc1 = -1;

// Symbol values from start to stop (check character included) of the shortest symbol for
// `chars`: among all start sets, code-set latches and shifts, the fewest symbol characters.
// Throws std::runtime_error for an empty list or a character outside ASCII.
std::vector<int32_t> Iso15417Values(const std::vector<int>& chars);

}  // namespace barcode_orv::internal
