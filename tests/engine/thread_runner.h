// Runs a function on a second thread and waits for it (std::thread is not
// available with the win32 thread model of the Windows toolchain).
#pragma once

#include <functional>

#ifdef _WIN32
#include <windows.h>
#else
#include <thread>
#endif

namespace fe::test {

inline void RunOnAnotherThread(std::function<void()> work) {
#ifdef _WIN32
  HANDLE thread = CreateThread(
      nullptr, 0,
      [](LPVOID parameter) -> DWORD {
        (*static_cast<std::function<void()>*>(parameter))();
        return 0;
      },
      &work, 0, nullptr);
  WaitForSingleObject(thread, INFINITE);
  CloseHandle(thread);
#else
  std::thread(work).join();
#endif
}

}  // namespace fe::test
