#include "core/log.h"

#include <cstdlib>
#include <cstring>
#include <iostream>

namespace barcode_orv::log {

bool Quiet() {
  static const bool quiet = [] {
    const char* value = std::getenv("BARCODE_ORV_QUIET");
    return value != nullptr && std::strcmp(value, "1") == 0;
  }();
  return quiet;
}

void Progress(std::string_view line) {
  if (Quiet()) return;
  std::cout << line << '\n';
}

void Error(std::string_view line) { std::cerr << line << std::endl; }

}  // namespace barcode_orv::log
