// The Version text read from a module's version resource.
#include <gtest/gtest.h>

#include <windows.h>

#include "version_text.h"

namespace fe::test {
namespace {

TEST(VersionText, ControlModuleHasItsFileVersion) {
  wchar_t path[MAX_PATH];
  ASSERT_GT(::GetEnvironmentVariableW(L"FE_CONTROL_MODULE", path, MAX_PATH), 0u);
  EXPECT_EQ(ocx::FileVersionText(path), L"12.0.0.1");
}

TEST(VersionText, EmptyForAModuleWithoutAVersionResource) {
  // This test program carries no version resource.
  wchar_t path[MAX_PATH];
  ASSERT_GT(::GetModuleFileNameW(nullptr, path, MAX_PATH), 0u);
  EXPECT_EQ(ocx::FileVersionText(path), L"");
  EXPECT_EQ(ocx::FileVersionText(L"C:\\no\\such\\module.dll"), L"");
}

}  // namespace
}  // namespace fe::test
