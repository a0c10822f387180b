#pragma once

#include "platform/com.h"
#include "tests/unit/support/fake_wmi.h"
#include "tests/unit/support/traced.h"
#include "wmi/orb_wmi_connection.h"
#include "wmi/trace_text.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace korvex {

/// Tests over a WMI service of their own; whatever keeps an object of it alive fails.
class WmiTest : public ::testing::Test {
protected:
  void SetUp() override {
    ASSERT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
    m_wmi = std::make_unique<FakeWmi>();
  }
  void TearDown() override {
    m_connection.CloseConnection();
    m_wmi.reset();
    EXPECT_EQ(gFakeObjectsAlive, 0);
    CoUninitialize();
  }

  void Connect() { ASSERT_EQ(m_connection.Initialize(L"root\\WMI"), kWmiSuccess); }

  static std::string Digits(const void* pointer) { return PointerText(pointer).c_str(); }

  std::unique_ptr<FakeWmi> m_wmi;
  OrbWmiConnection m_connection;
};

} // namespace korvex
