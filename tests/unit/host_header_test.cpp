#include "app/channel/channel.h"
#include "app/report/host_header.h"
#include "tests/unit/support/capture.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>

namespace korvex {
namespace {

class HostHeader : public testing::Test {
protected:
  ~HostHeader() override {
    gDsmVersion = nullptr;
    gDsmVersionText[0] = '\0';
    gRequestedDsm[0] = '\0';
  }

  /// What stands behind `label` on its line of the generation-2 header.
  static std::string Field(const std::string& label) {
    const std::string header = "\n" + Capture(PrintHostHeaderV2).out;
    const std::size_t start = header.find("\n" + label);
    if (start == std::string::npos) {
      return "(no such line)";
    }
    const std::size_t text = start + 1 + label.size();
    return header.substr(text, header.find('\n', text) - text);
  }
};

TEST_F(HostHeader, DriverVersionIsCutToItsFields) {
  struct Row {
    DsmVersion version;
    const char* text;
  };
  const Row rows[] = {
      {{6, 1, 7601, 65535}, "06.01.7601.6553"},
      {{3, 2, 1, 0}, "03.02.0001.0000"},
      {{0, 0, 0, 0}, "00.00.0000.0000"},
      {{4294967295U, 100, 10000, 99999}, "42.10.1000.9999"},
  };
  for (const Row& row : rows) {
    DsmVersion version = row.version;
    gDsmVersion = &version;
    EXPECT_EQ(Field("DSM Version = "), row.text);
  }
}

TEST_F(HostHeader, WhatIsNotKnownIsNotAvailable) {
  EXPECT_EQ(Field("DSM Version = "), "N/A");
  EXPECT_EQ(Field("DSM Name    = "), "N/A");
  std::strcpy(gRequestedDsm, "ABCDEFGHIJ");
  EXPECT_EQ(Field("DSM Name    = "), "ABCDEFGHIJ");
}

} // namespace
} // namespace korvex
