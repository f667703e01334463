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

namespace {
thread_local ReasonCapture* current_capture = nullptr;
}  // namespace

void Record(std::string_view line) {
  if (current_capture != nullptr) current_capture->last_.assign(line.data(), line.size());
}

ReasonCapture::ReasonCapture() : outer_(current_capture) { current_capture = this; }

ReasonCapture::~ReasonCapture() { current_capture = outer_; }

void Error(std::string_view line) {
  std::cerr << line << std::endl;
  Record(line);
}

void Reason(std::string_view line) { Record(line); }

}  // namespace barcode_orv::log
