// errno values as the Win32 error numbers that callers of the engine see,
// in one table.
#include <cerrno>

#include "platform/posix/system_errors.h"

namespace fe::platform {

uint32_t Win32ErrorFromErrno(int error) {
  switch (error) {
    case 0:
      return 0;
    case ENOENT:
      return 2;  // ERROR_FILE_NOT_FOUND
    case ENOTDIR:
      return 3;  // ERROR_PATH_NOT_FOUND
    case EMFILE:
    case ENFILE:
      return 4;  // ERROR_TOO_MANY_OPEN_FILES
    case EACCES:
    case EPERM:
    case EROFS:
      return 5;  // ERROR_ACCESS_DENIED
    case EBADF:
      return 6;  // ERROR_INVALID_HANDLE
    case ENOMEM:
      return 14;  // ERROR_OUTOFMEMORY
    case EXDEV:
      return 17;  // ERROR_NOT_SAME_DEVICE
    case EIO:
      return 30;  // ERROR_READ_FAULT
    case EBUSY:
    case ETXTBSY:
      return 32;  // ERROR_SHARING_VIOLATION
    case EEXIST:
      return 80;  // ERROR_FILE_EXISTS
    case EINVAL:
      return 87;  // ERROR_INVALID_PARAMETER
    case ENOSPC:
    case EDQUOT:
      return 112;  // ERROR_DISK_FULL
    case ENAMETOOLONG:
      return 206;  // ERROR_FILENAME_EXCED_RANGE
    case ENOTEMPTY:
      return 145;  // ERROR_DIR_NOT_EMPTY
    case EISDIR:
      return 5;  // opening a directory as a file is access denied on Windows
    default:
      return 1359;  // ERROR_INTERNAL_ERROR
  }
}

void SetLastErrorFromErrno() {
  SetLastErrorCode(Win32ErrorFromErrno(errno));
}

}  // namespace fe::platform
