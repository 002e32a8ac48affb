// The About box, shown for real: a second thread finds the dialog, reads its
// texts, optionally has a screenshot taken, and closes it with OK.
#include <windows.h>

#include <process.h>

#include <string>
#include <vector>

#include "control_fixture.h"

namespace fe::test {
namespace {

struct DialogSeen {
  std::wstring caption;
  std::vector<std::wstring> texts;
  bool found = false;
};

BOOL CALLBACK CollectText(HWND child, LPARAM parameter) {
  wchar_t text[256] = {};
  ::GetWindowTextW(child, text, 256);
  reinterpret_cast<DialogSeen*>(parameter)->texts.push_back(text);
  return TRUE;
}

unsigned __stdcall WatchForDialog(void* parameter) {
  auto* seen = static_cast<DialogSeen*>(parameter);
  for (int attempt = 0; attempt < 200 && !seen->found; ++attempt) {
    HWND dialog = ::FindWindowW(nullptr, L"About Orvane");
    if (dialog == nullptr) {
      ::Sleep(50);
      continue;
    }
    seen->found = true;
    wchar_t caption[128] = {};
    ::GetWindowTextW(dialog, caption, 128);
    seen->caption = caption;
    ::EnumChildWindows(dialog, CollectText, reinterpret_cast<LPARAM>(seen));
    // The test runner may ask for a picture of the dialog.
    wchar_t shot[MAX_PATH] = {};
    if (::GetEnvironmentVariableW(L"FE_ABOUT_SCREENSHOT_SIGNAL", shot, MAX_PATH) > 0) {
      ::CloseHandle(::CreateFileW(shot, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
      ::Sleep(1500);
    }
    ::PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDOK, 0), 0);
  }
  return 0;
}

class AboutBox : public ControlTest {};

TEST_F(AboutBox, ShowsCaptionTextsAndVersion) {
  DialogSeen seen;
  const auto watcher =
      reinterpret_cast<HANDLE>(_beginthreadex(nullptr, 0, WatchForDialog, &seen, 0, nullptr));
  ASSERT_EQ(control_->Method(L"About", {}), S_OK);
  ::WaitForSingleObject(watcher, INFINITE);
  ::CloseHandle(watcher);
  ASSERT_TRUE(seen.found) << "the About box did not appear";
  EXPECT_EQ(seen.caption, L"About Orvane");
  BSTR version = nullptr;
  ASSERT_EQ(encoder_->get_Version(&version), S_OK);
  const std::vector<std::wstring> expected = {L"File Encoding and Compression Control",
                                              std::wstring(L"Version ") + version, L"OK"};
  ::SysFreeString(version);
  for (const std::wstring& text : expected) {
    EXPECT_NE(std::find(seen.texts.begin(), seen.texts.end(), text), seen.texts.end())
        << text.c_str();
  }
  EXPECT_EQ(seen.texts.size(), 4u);  // the notice line too
}

}  // namespace
}  // namespace fe::test
