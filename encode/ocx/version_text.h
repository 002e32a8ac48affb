// The text of the Version property.
#pragma once

#include <string>

namespace fe::ocx {

// The file version of a module as "a.b.c.d" (each part a 16-bit number) in
// the thread's ANSI code page; empty when the file has no version resource.
std::wstring FileVersionText(const std::wstring& path);

}  // namespace fe::ocx
