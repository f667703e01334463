// Zint (an independent encoder library) as a reference time, when it is installed. Kept
// in its own translation unit: zint.h defines BARCODE_* macros that clash with the enum
// names of barcode_ffi.h.
#pragma once

#include <string>

namespace barcode_orv::bench {

// Encodes `text` as EAN-13 and writes the PNG file `path` (Zint 2.11 has no in-memory
// PNG output); false when Zint reports an error.
bool ZintEan13Png(const std::string& text, const std::string& path);

}  // namespace barcode_orv::bench
