// The control tests run in a single-threaded apartment, as scripts do.
#include <windows.h>

#include <objbase.h>

#include <gtest/gtest.h>

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  ::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  const int result = RUN_ALL_TESTS();
  ::CoUninitialize();
  return result;
}
