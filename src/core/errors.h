// The one error that deliberately leaves the C interface.
#pragma once

#include <stdexcept>

namespace barcode_orv {

// A payload that no symbol size of the symbology can hold (QR Code beyond version 40).
// Every other failure is reported through a 0 or empty result; this one is rethrown to
// the caller of the draw function, which is documented in the public header.
class SymbolCapacityError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace barcode_orv
