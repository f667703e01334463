#include "core/log.h"

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <iostream>

namespace barcode_orv::log {

namespace {

// BARCODE_ORV_QUIET=1 at the first print is the initial value; SetQuiet overrides it.
std::atomic<bool>& QuietFlag() {
  static std::atomic<bool> quiet = [] {
    const char* value = std::getenv("BARCODE_ORV_QUIET");
    return value != nullptr && std::strcmp(value, "1") == 0;
  }();
  return quiet;
}

}  // namespace

bool Quiet() { return QuietFlag().load(std::memory_order_relaxed); }

void SetQuiet(bool quiet) { QuietFlag().store(quiet, std::memory_order_relaxed); }

void Progress(std::string_view line) {
  if (Quiet()) return;
  std::cout << line << '\n';
}

namespace {
thread_local ReasonCapture* current_capture = nullptr;
}  // namespace

void Record(std::string_view line, bool printed) {
  if (current_capture == nullptr) return;
  current_capture->last_.assign(line.data(), line.size());
  current_capture->last_printed_ = printed;
}

ReasonCapture::ReasonCapture() : outer_(current_capture) { current_capture = this; }

ReasonCapture::~ReasonCapture() { current_capture = outer_; }

namespace {
std::atomic<bool> error_lines{true};
}  // namespace

bool ErrorLines() { return error_lines.load(std::memory_order_relaxed); }

void SetErrorLines(bool on) { error_lines.store(on, std::memory_order_relaxed); }

void Error(std::string_view line) {
  if (ErrorLines()) std::cerr << line << std::endl;
  Record(line, true);
}

void Reason(std::string_view line) { Record(line, false); }

void PrintError(std::string_view line) {
  if (ErrorLines()) std::cerr << line << std::endl;
}

void Debug(std::string_view line) {
  if (Quiet()) return;
  std::cerr << line << '\n';
}

}  // namespace barcode_orv::log
