// Numbers in SVG documents: fixed notation with two decimals.
#pragma once

#include <string>

namespace barcode_orv {

// Appends `value` with two decimals: the bytes std::to_chars gives in fixed notation with
// precision 2, several times faster for the values a drawing has.
void AppendFixed2(std::string& out, double value);

}  // namespace barcode_orv
