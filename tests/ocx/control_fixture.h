// A freshly created control, reached both by name (IDispatch) and through
// its interfaces.
#pragma once

#include <gtest/gtest.h>

#include "com_client.h"
#include "file_encoder_h.h"

namespace fe::test {

class ControlTest : public testing::Test {
 protected:
  void SetUp() override {
    IDispatch* object = nullptr;
    ASSERT_EQ(Dispatch::Create(L"Orvane.FileEncoder", &object), S_OK);
    control_ = std::make_unique<Dispatch>(object);
    ASSERT_EQ(object->QueryInterface(IID_IFileEncoder, reinterpret_cast<void**>(&encoder_)), S_OK);
  }
  void TearDown() override {
    if (encoder_ != nullptr) encoder_->Release();
  }

  LONG GetLong(const wchar_t* name) {
    Variant value;
    EXPECT_EQ(control_->Get(name, value.get()), S_OK) << name;
    return value->vt == VT_I4 ? value->lVal : -999999;
  }

  std::unique_ptr<Dispatch> control_;
  IFileEncoder* encoder_ = nullptr;
};

}  // namespace fe::test
