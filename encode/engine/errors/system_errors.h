// Windows system error numbers that the engine leaves in the last-error slot.
// They are the Win32 values on every platform, so callers see the same codes
// from the Windows and the Linux builds.
#pragma once

#include <cstdint>

namespace fe {

inline constexpr uint32_t kErrorFileNotFound = 2;
inline constexpr uint32_t kErrorPathNotFound = 3;
inline constexpr uint32_t kErrorAccessDenied = 5;
inline constexpr uint32_t kErrorInvalidData = 13;
inline constexpr uint32_t kErrorOutOfMemory = 14;
inline constexpr uint32_t kErrorSharingViolation = 32;
inline constexpr uint32_t kErrorFileExists = 80;
inline constexpr uint32_t kErrorInvalidParameter = 87;
inline constexpr uint32_t kErrorInsufficientBuffer = 122;
inline constexpr uint32_t kErrorInvalidName = 123;
inline constexpr uint32_t kErrorBadFileType = 222;
inline constexpr uint32_t kErrorFileTooLarge = 223;
inline constexpr uint32_t kErrorInvalidFlags = 1004;
inline constexpr uint32_t kErrorNoUnicodeTranslation = 1113;

}  // namespace fe
