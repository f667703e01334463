// The command-line tool: outputs, options reaching the library, exit statuses.
#include <gtest/gtest.h>

#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

#include "support/png_image.h"
#include "support/zxing_decode.h"

#ifdef BARCODE_ORV_CLI

namespace barcode_orv {
namespace {

struct RunResult {
  int status = -1;
  std::string out;  // standard output and standard error together
};

RunResult RunCli(const std::string& arguments) {
  const std::string command = std::string("BARCODE_ORV_QUIET=1 '") + BARCODE_ORV_CLI + "' " + arguments + " 2>&1";
  RunResult result;
  FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) return result;
  std::array<char, 4096> buffer{};
  size_t count = 0;
  while ((count = fread(buffer.data(), 1, buffer.size(), pipe)) > 0) result.out.append(buffer.data(), count);
  const int status = pclose(pipe);
  result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return result;
}

std::vector<uint8_t> ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

TEST(CliTest, WritesPngThatDecodes) {
  const std::string path = ::testing::TempDir() + "cli_code128.png";
  const RunResult run = RunCli("--width 400 --no-text code128 'Cli-128 test' -o '" + path + "'");
  ASSERT_EQ(run.status, 0) << run.out;
  const testing::Decoded decoded = testing::DecodePngBarcode(ReadFile(path), testing::Symbology::kCode128);
  EXPECT_TRUE(decoded.ok);
  EXPECT_EQ(decoded.text, "Cli-128 test");
}

TEST(CliTest, RetailGs1AndConvenienceSymbolsDecode) {
  const struct {
    std::string arguments;
    testing::Symbology reader;
    std::string text;
  } cases[] = {
      {"jan13 4901234567894+12", testing::Symbology::kEAN13, "4901234567894 12"},
      {"--extended-guard 0 upce 0123456", testing::Symbology::kUPCE, "01234565"},
      {"--width 500 gs1-128 '(01)04912345678904(10)AB'", testing::Symbology::kCode128, "010491234567890410AB"},
      {"--draw convenience --width 600 --height 240 gs1-128 9191234512345678901234567890123425013102500",
       testing::Symbology::kCode128, "91912345123456789012345678901234250131025001"},
  };
  for (const auto& c : cases) {
    const std::string path = ::testing::TempDir() + "cli_retail.png";
    const RunResult run = RunCli(c.arguments + " -o '" + path + "'");
    ASSERT_EQ(run.status, 0) << run.out;
    const testing::Decoded decoded = testing::DecodePngBarcode(ReadFile(path), c.reader);
    EXPECT_TRUE(decoded.ok && decoded.text == c.text) << c.arguments << " read " << decoded.text;
  }
}

TEST(CliTest, TypeNumbersAndNamesAreTheSame) {
  const RunResult by_name = RunCli("--format svg code93 ABC");
  const RunResult by_number = RunCli("--format=svg 1 ABC");
  ASSERT_EQ(by_name.status, 0);
  EXPECT_EQ(by_name.out, by_number.out);
  EXPECT_EQ(by_name.out.rfind("<?xml", 0), 0U);
}

TEST(CliTest, OptionsReachTheLibrary) {
  const RunResult svg = RunCli("--format svg --fg 10,20,30 --show-start-stop 0 --text-even-spacing 0 code39 AB");
  ASSERT_EQ(svg.status, 0);
  EXPECT_NE(svg.out.find("fill=\"rgb(10,20,30)\" text-anchor=\"middle\" dominant-baseline=\"hanging\">AB</text>"),
            std::string::npos)
      << svg.out;
  const RunResult qr = RunCli("--data-uri --format jpeg --error-correction H qr hello");
  ASSERT_EQ(qr.status, 0);
  EXPECT_EQ(qr.out.rfind("data:image/jpeg;base64,iVBOR", 0), 0U);
}

TEST(CliTest, FailuresExitNonZeroWithTheLibrarysMessage) {
  const std::pair<std::string, std::string> failures[] = {
      {"code39 'A*B'", "[Code39] Invalid character in CODE39: '*' is reserved for start/stop code"},
      {"--code-mode C code128 123", "[Code128] Not 2-digit at pos=2"},
      {"--error-correction H qr '" + std::string(1300, 'x') + "'", "Data too long for QR Code."},
      {"--code-size 10x10 datamatrix 1234567", "[DataMatrix] Data too long for 10x10: 4 codewords, capacity 3"},
      {"--columns 31 pdf417 ABC", "[PDF417] Columns must be 1 to 30, or 0 for automatic: 31"},
  };
  for (const auto& [arguments, message] : failures) {
    const RunResult run = RunCli(arguments + " -o /dev/null");
    EXPECT_EQ(run.status, 1) << arguments;
    EXPECT_NE(run.out.find(message), std::string::npos) << run.out;
  }
  EXPECT_EQ(RunCli("nosuch ABC").status, 2);
  EXPECT_EQ(RunCli("--width wide code39 ABC").status, 2);
  EXPECT_EQ(RunCli("code39").status, 2);
  // A type the build leaves out, as --list names it.
  const RunResult list = RunCli("--list");
  const size_t missing = list.out.find("  no  ");
  if (missing != std::string::npos) {
    const size_t line = list.out.rfind('\n', missing) + 1;
    const std::string name = list.out.substr(line + 6, list.out.find(' ', line + 6) - line - 6);
    const RunResult planned = RunCli(name + " ABC");
    EXPECT_EQ(planned.status, 1) << name;
    EXPECT_NE(planned.out.find("not provided by this build"), std::string::npos) << name;
  }
}

TEST(CliTest, HelpAndListDescribeTheTool) {
  const RunResult help = RunCli("--help");
  EXPECT_EQ(help.status, 0);
  for (const char* option : {"--fit-width", "--code-mode", "--error-correction", "--string-encoding", "--data-uri"}) {
    EXPECT_NE(help.out.find(option), std::string::npos) << option;
  }
  const RunResult list = RunCli("--list");
  EXPECT_EQ(list.status, 0);
  EXPECT_NE(list.out.find("qr                yes"), std::string::npos) << list.out;
  EXPECT_NE(list.out.find("datamatrix        yes"), std::string::npos) << list.out;
  EXPECT_NE(list.out.find("pdf417            yes"), std::string::npos) << list.out;
}

}  // namespace
}  // namespace barcode_orv

#endif  // BARCODE_ORV_CLI
