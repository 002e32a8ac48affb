// Registration and unregistration, through the module's own entry points.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "com_client.h"
#include "file_encoder_h.h"

namespace fe::test {
namespace {

std::wstring GuidText(REFGUID guid) {
  wchar_t text[40] = {};
  ::StringFromGUID2(guid, text, 40);
  return text;
}

bool KeyExists(const std::wstring& key) {
  HKEY handle = nullptr;
  if (::RegOpenKeyExW(HKEY_CLASSES_ROOT, key.c_str(), 0, KEY_READ, &handle) != ERROR_SUCCESS) {
    return false;
  }
  ::RegCloseKey(handle);
  return true;
}

std::wstring Value(const std::wstring& key, const wchar_t* name = nullptr) {
  wchar_t data[1024] = {};
  DWORD size = sizeof data;
  if (::RegGetValueW(HKEY_CLASSES_ROOT, key.c_str(), name, RRF_RT_REG_SZ, nullptr, data, &size) !=
      ERROR_SUCCESS) {
    return L"<missing>";
  }
  return data;
}

// The module under test: the path comes from FE_CONTROL_MODULE.
class Registration : public testing::Test {
 protected:
  void SetUp() override {
    wchar_t path[MAX_PATH] = {};
    ASSERT_GT(::GetEnvironmentVariableW(L"FE_CONTROL_MODULE", path, MAX_PATH), 0u);
    module_ = ::LoadLibraryW(path);
    ASSERT_NE(module_, nullptr);
    path_ = path;
  }
  void TearDown() override {
    // Leave the control registered for the other tests.
    Call("DllRegisterServer");
    ::FreeLibrary(module_);
  }
  HRESULT Call(const char* entry) {
    auto function = reinterpret_cast<HRESULT(STDAPICALLTYPE*)()>(::GetProcAddress(module_, entry));
    return function ? function() : E_FAIL;
  }

  HMODULE module_ = nullptr;
  std::wstring path_;
  const std::wstring class_key_ = L"CLSID\\" + GuidText(CLSID_FileEncoder);
};

TEST_F(Registration, WritesEveryEntry) {
  ASSERT_EQ(Call("DllRegisterServer"), S_OK);
  const std::wstring clsid = GuidText(CLSID_FileEncoder);
  EXPECT_EQ(Value(L"Orvane.FileEncoder.12"), L"Orvane File Encoding Control 12.0");
  EXPECT_EQ(Value(L"Orvane.FileEncoder.12\\CLSID"), clsid);
  EXPECT_EQ(Value(L"Orvane.FileEncoder"), L"Orvane File Encoding Control 12.0");
  EXPECT_EQ(Value(L"Orvane.FileEncoder\\CLSID"), clsid);
  EXPECT_EQ(Value(L"Orvane.FileEncoder\\CurVer"), L"Orvane.FileEncoder.12");
  EXPECT_EQ(Value(class_key_), L"Orvane File Encoding Control 12.0");
  EXPECT_EQ(Value(class_key_ + L"\\ProgID"), L"Orvane.FileEncoder.12");
  EXPECT_EQ(Value(class_key_ + L"\\VersionIndependentProgID"), L"Orvane.FileEncoder");
  EXPECT_TRUE(KeyExists(class_key_ + L"\\Programmable"));
  EXPECT_TRUE(KeyExists(class_key_ + L"\\Control"));
  EXPECT_TRUE(KeyExists(class_key_ + L"\\Insertable"));
  EXPECT_EQ(Value(class_key_ + L"\\InprocServer32", L"ThreadingModel"), L"Apartment");
  const std::wstring server = Value(class_key_ + L"\\InprocServer32");
  EXPECT_NE(server.find(L"FileEncoder.ocx"), std::wstring::npos) << server;
  EXPECT_EQ(Value(class_key_ + L"\\ToolboxBitmap32"), server + L", 202");
  EXPECT_EQ(Value(class_key_ + L"\\MiscStatus"), L"0");
  EXPECT_EQ(Value(class_key_ + L"\\MiscStatus\\1"), L"132497");
  EXPECT_EQ(Value(class_key_ + L"\\TypeLib"), GuidText(LIBID_FileEncoderCtl));
  EXPECT_EQ(Value(class_key_ + L"\\Version"), L"1.0");
  EXPECT_TRUE(KeyExists(L"TypeLib\\" + GuidText(LIBID_FileEncoderCtl)));
}

TEST_F(Registration, UnregistrationLeavesNoKeys) {
  ASSERT_EQ(Call("DllRegisterServer"), S_OK);
  ASSERT_EQ(Call("DllUnregisterServer"), S_OK);
  EXPECT_FALSE(KeyExists(L"Orvane.FileEncoder.12"));
  EXPECT_FALSE(KeyExists(L"Orvane.FileEncoder"));
  EXPECT_FALSE(KeyExists(class_key_));
  EXPECT_FALSE(KeyExists(L"TypeLib\\" + GuidText(LIBID_FileEncoderCtl)));
  EXPECT_FALSE(KeyExists(L"Interface\\" + GuidText(IID_IFileEncoder)));
  // The CLSID key belongs to the system and stays.
  EXPECT_TRUE(KeyExists(L"CLSID"));
  IDispatch* object = nullptr;
  EXPECT_NE(Dispatch::Create(L"Orvane.FileEncoder", &object), S_OK);
  // Unregistering twice is harmless.
  EXPECT_EQ(Call("DllUnregisterServer"), S_OK);
}

TEST_F(Registration, ClassKeyIsReplacedWhole) {
  ASSERT_EQ(Call("DllRegisterServer"), S_OK);
  HKEY stray = nullptr;
  ASSERT_EQ(::RegCreateKeyExW(HKEY_CLASSES_ROOT, (class_key_ + L"\\Stray").c_str(), 0, nullptr, 0,
                              KEY_WRITE, nullptr, &stray, nullptr),
            ERROR_SUCCESS);
  ::RegCloseKey(stray);
  ASSERT_EQ(Call("DllRegisterServer"), S_OK);
  EXPECT_FALSE(KeyExists(class_key_ + L"\\Stray"));
}

TEST_F(Registration, ModuleCanUnloadOnlyWhenNoObjectLives) {
  IDispatch* object = nullptr;
  ASSERT_EQ(Dispatch::Create(L"Orvane.FileEncoder", &object), S_OK);
  EXPECT_EQ(Call("DllCanUnloadNow"), S_FALSE);
  object->Release();
  EXPECT_EQ(Call("DllCanUnloadNow"), S_OK);
}

}  // namespace
}  // namespace fe::test
