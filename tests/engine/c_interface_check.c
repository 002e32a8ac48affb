/* Compiled as C with the public header's folder as the only include path:
 * the header must stand on its own. */
#include "file_encoder.h"

int CInterfaceCheck(void) {
  return EncodeFileByType("in", "out", fileEncodeUucode | fileEncodeCompressed) +
         CompressFileByType("in", 0, fileCompressionLzma, 0) + (int)ovErrorInvalidParameter;
}
