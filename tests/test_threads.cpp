// The thread-safety promise: separate handles drawn from separate threads at once give
// the same bytes as a single thread, and the one process-wide result never tears. CI
// also runs this suite under ThreadSanitizer.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "barcode_ffi.h"
#include "support/c_api.h"
#include "support/samples.h"

namespace {

using barcode_orv::testing::HandlePtr;
using barcode_orv::testing::ImageData;
using barcode_orv::testing::kTypeSamples;
using barcode_orv::testing::MakeHandle;

constexpr int kThreads = 4;
constexpr int kRounds = 20;

struct Output {
  std::vector<uint8_t> png;
  std::string svg;
};

// PNG (with the text line) and SVG of every type's sample, drawn on fresh handles.
std::vector<Output> DrawEveryType() {
  std::vector<Output> outputs;
  for (const auto& sample : kTypeSamples) {
    HandlePtr raster = MakeHandle(sample.type);
    HandlePtr vector = MakeHandle(sample.type);
    if (!raster) {
      outputs.emplace_back();
      continue;
    }
    Output output;
    if (barcode_draw_1d(raster.get(), sample.text, 320, 120) != 0) output.png = ImageData(raster.get());
    barcode_set_output_format(vector.get(), "svg");
    if (barcode_draw_1d(vector.get(), sample.text, 320, 120) != 0) output.svg = barcode_get_svg(vector.get());
    outputs.push_back(std::move(output));
  }
  return outputs;
}

TEST(ThreadsTest, SeparateHandlesMatchSingleThreadedOutput) {
  const std::vector<Output> expected = DrawEveryType();
  int available = 0;
  for (const Output& output : expected) available += output.png.empty() ? 0 : 1;
  ASSERT_GE(available, 8);

  std::vector<int> mismatches(kThreads, 0);
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&expected, &mismatches, t] {
      for (int round = 0; round < kRounds; ++round) {
        const std::vector<Output> got = DrawEveryType();
        for (size_t i = 0; i < got.size(); ++i) {
          if (got[i].png != expected[i].png || got[i].svg != expected[i].svg) ++mismatches[t];
        }
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (int t = 0; t < kThreads; ++t) EXPECT_EQ(mismatches[t], 0) << "thread " << t;
}

TEST(ThreadsTest, CheckDigitWritesNeverTear) {
  const char* shared = barcode_calculate_check_digit_14("0950110153000");
  ASSERT_STREQ(shared, "3");
  // Concurrent calls share the one result; the sanitizer run checks the writes are locked.
  std::vector<int> moved(kThreads, 0);
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&moved, shared, t] {
      std::string input = "000000000000" + std::to_string(t);
      for (int i = 0; i < 2000; ++i) {
        input[i % 12] = static_cast<char>('0' + (i + t) % 10);
        if (barcode_calculate_check_digit_14(input.c_str()) != shared) ++moved[t];
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (int t = 0; t < kThreads; ++t) EXPECT_EQ(moved[t], 0) << "thread " << t;
  EXPECT_TRUE(std::strlen(shared) == 1 && shared[0] >= '0' && shared[0] <= '9') << shared;
}

}  // namespace
