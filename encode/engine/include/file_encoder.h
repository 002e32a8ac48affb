/*
 * FileEncoder engine: the public C interface.
 *
 * Every operation reports failure through its return value (0, -1 or a
 * negative count, as documented below) and leaves a code in the calling
 * thread's last-error slot: either a control code 0x80040000 | N with N from
 * ErrorCodes, or a Windows system error number (87 invalid parameter,
 * 122 insufficient buffer, 14 out of memory, 13 invalid data, ...). Read it
 * with EngineGetLastError() right after the failing call.
 */
#ifndef FILE_ENCODER_H
#define FILE_ENCODER_H

#include <stdint.h>
#ifndef __cplusplus
#include <uchar.h>
#endif

#if defined(FE_ENGINE_SHARED) && !defined(_WIN32)
#define FE_API __attribute__((visibility("default")))
#else
#define FE_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* The full form of a control error number N, as stored as last error. */
#define FE_CONTROL_ERROR(n) (0x80040000u | (uint32_t)(n))

/* The control's type library declares the same enumerations below; a
 * program that includes the header generated from it first gets them from
 * there. */
#ifndef __FileEncoderCtl_LIBRARY_DEFINED__

/* The control's error numbers N; the code stored as last error is
 * FE_CONTROL_ERROR(N) = 0x80040000 | N. */
typedef enum ErrorCodes {
#define FE_ERROR_MESSAGE(number, text)
#define FE_ERROR_CODE(name, number, text) name = number,
#include "file_encoder_errors.inc"
#undef FE_ERROR_CODE
#undef FE_ERROR_MESSAGE
} ErrorCodes;

/* Encoding numbers of EncodeBuffer and DecodeBuffer (bits 0-15 of flags)
 * and the flag bits above them; one enumeration so that they combine freely. */
enum EncoderDataConstants {
  dataEncodeDefault = 0,
  dataEncodeBase64 = 1,
  dataEncodeQuoted = 2,
  dataEncodeURL = 3,
  dataEncodeUTF7 = 4,
  dataEncodeUTF8 = 5,
  dataEncodeBase58 = 6,
  dataEncodeBase32 = 7,
  dataEncodeBase85 = 8,
  dataEncodeZ85 = 9,

  dataDecodeDefault = 0,
  dataDecodeBase64 = 1,
  dataDecodeQuoted = 2,
  dataDecodeURL = 3,
  dataDecodeUTF7 = 4,
  dataDecodeUTF8 = 5,
  dataDecodeBase58 = 6,
  dataDecodeBase32 = 7,
  dataDecodeBase85 = 8,
  dataDecodeZ85 = 9,

  fileEncodeCompressed = 65536, /* compress before encoding */
  fileDecodeCompressed = 65536, /* expand after decoding */
  dataEncodeWrapLines = 131072  /* Base64 and Base32: 72-column CR LF lines */
};

/* File encodings of EncodeFileByType and DecodeFileByType (bits 0-15 of
 * flags; 0 and 1 are refused, files take Base64 through EncodeBuffer). */
enum EncoderFileConstants {
  fileEncodeDefault = 0,
  fileEncodeBase64 = 1,
  fileEncodeQuoted = 2,
  fileEncodeUucode = 3,
  fileEncodeYencode = 4,
  fileEncodeBase58 = 6,
  fileEncodeBase32 = 7,
  fileEncodeBase85 = 8,

  fileDecodeDefault = 0,
  fileDecodeBase64 = 1,
  fileDecodeQuoted = 2,
  fileDecodeUucode = 3,
  fileDecodeYencode = 4,
  fileDecodeBase58 = 6,
  fileDecodeBase32 = 7,
  fileDecodeBase85 = 8
};

/* Methods of CompressFileByType and ExpandFileByType. */
enum EncoderCompressionConstants {
  fileCompressionUnknown = 0, /* expansion only: detect from the first two bytes */
  fileCompressionDeflate = 1, /* a zlib stream */
  fileCompressionDefault = 1,
  fileCompressionBzip2 = 2,
  fileCompressionBurrowsWheeler = 2,
  fileCompressionLzma = 3 /* LZMA-alone: 13-byte header, then the raw stream */
};

/* Checks of CompareFiles; bits may be combined. */
enum EncoderCompareConstants {
  fileCompareDefault = 0, /* contents, or only the digest when one is given */
  fileCompareContents = 1,
  fileCompareCreated = 2,
  fileCompareModified = 4,
  fileCompareMD5 = 256,
  fileCompareSHA1 = 512,
  fileCompareSHA256 = 1024
};

/* Options of ConvertTextFile; bits may be combined. */
enum EncoderConvertConstants {
  fileConvertUnicode = 1,   /* detect the source: byte-order mark, then content */
  fileConvertNormalize = 2, /* rewrite line endings */
  fileConvertPreserve = 4,  /* keep the input's times and attributes */
  fileConvertUtf8Bom = 8,   /* a byte-order mark before UTF-8 output */
  fileConvertNoBom = 16,    /* no byte-order mark before UTF-16 output */
  fileConvertStrict = 32,   /* refuse invalid or unmappable characters (1113) */
  fileCOnvertValidate = 256 /* convert only to check (spelled so since its first release) */
};

#endif /* __FileEncoderCtl_LIBRARY_DEFINED__ */

/* ---- Last error and messages ---- */

/* The calling thread's last-error code (the Win32 slot on Windows). */
FE_API uint32_t EngineGetLastError(void);
FE_API void EngineSetLastError(uint32_t code);

/* Writes the message text of a code (a control code in its full form, or a
 * system error number) into buffer, NUL-terminated and cut to size - 1
 * characters; a code without text reads "Undefined control error (0x...)".
 * Returns the length written, or -1 when buffer is null or size below 1. */
FE_API int32_t FormatErrorMessage(uint32_t code, char* buffer, int32_t size);

/* ---- Data encoding dispatch ---- */

/* Encodes inputLength bytes (UTF-16 code units for UTF-7 and UTF-8) into
 * output, NUL-terminated. Returns the number of characters, -1 on failure
 * (a buffer too small included: no result is ever cut short silently,
 * except that UTF-7 and UTF-8 stop at a full buffer without a NUL).
 *
 * outputSize for n input bytes, NUL included: Base64 needs at least
 * 4 * ceil(n / 3) + 5 and Base32 8 * ceil(n / 5) + 8 (with
 * dataEncodeWrapLines, 2 more for each started 72-character line and 2 for
 * the final line end); Base58 and Base85 are bounded by 138 * n / 100 + 2
 * and 5 * ceil(n / 4) + 1, Z85 (n a multiple of 4) by 5 * n / 4 + 1,
 * quoted-printable by 3 * n + 2 and URL by 3 * n + 1 (without
 * dataEncodeWrapLines). */
FE_API int32_t EncodeBuffer(const void* input, int32_t inputLength, char* output,
                            int32_t outputSize, uint32_t flags);

/* Decodes the NUL-terminated text into output (UTF-16 code units for UTF-7
 * and UTF-8, outputSize counting code units). Returns the count produced,
 * -1 on failure. The output is not NUL-terminated, except that the UTF-7 and
 * UTF-8 rows convert the text's terminating NUL as well and count it: "Hi"
 * gives 3 code units, the last one 0. */
FE_API int32_t DecodeBuffer(const char* text, void* output, int32_t outputSize, uint32_t flags);

/* ---- Base64 ---- */

typedef struct Base64State {
  uint32_t phase;    /* encoder: 0-3 in a group, 4 CR due, 5 LF due; decoder: sextets seen */
  uint32_t column;   /* encoder: characters on the current line */
  uint32_t saved[4]; /* bytes (encoder) or sextets (decoder) of the group in progress */
} Base64State;

/* Streaming encoder; zero the state before the first chunk. The chunk leaves
 * the last character of its final group to Base64EncodeFinish, which writes
 * at most 5 characters (padding, then CR LF when wrap is set) and no NUL. */
FE_API int32_t Base64EncodeChunk(const uint8_t* input, int32_t length, char* output,
                                 int32_t capacity, Base64State* state, int wrap);
FE_API int32_t Base64EncodeFinish(Base64State* state, char* output, int wrap);
FE_API int32_t Base64DecodeChunk(const char* text, int32_t length, uint8_t* output,
                                 int32_t capacity, Base64State* state);

/* One-shot pair without line breaks. */
FE_API int32_t Base64Encode(const uint8_t* input, int32_t length, char* output, int32_t outputSize);
FE_API int32_t Base64Decode(const char* text, uint8_t* output, int32_t outputSize);

/* ---- Quoted-printable and URL ---- */

typedef struct QpDecodeState {
  uint32_t phase; /* 0 text, 1 after '=', 2 after '=' and a digit, 3 after '=' and a line end */
  uint16_t high;
  uint16_t low;
} QpDecodeState;

/* output must hold capacity + 2 bytes: the capacity check covers only the
 * first character of an escape. Not NUL-terminated. */
FE_API int32_t QpEncode(const uint8_t* input, int32_t length, char* output, int32_t capacity,
                        int wrap);
FE_API int32_t QpDecodeChunk(const char* text, int32_t length, uint8_t* output, int32_t capacity,
                             QpDecodeState* state);

/* length -1 means NUL-terminated; output must hold capacity + 1 bytes for the
 * terminator. */
FE_API int32_t UrlEncode(const uint8_t* input, int32_t length, char* output, int32_t capacity);
FE_API int32_t UrlDecode(const char* text, int32_t length, uint8_t* output, int32_t capacity);

/* ---- Base32, Base58, Base85, Z85 ---- */

typedef struct Base32State {
  uint64_t accumulator;
  int32_t bits;
  uint32_t column;
} Base32State;

FE_API int32_t Base32EncodeChunk(const uint8_t* input, int32_t length, char* output,
                                 int32_t capacity, Base32State* state, int wrap);
FE_API int32_t Base32EncodeFinish(Base32State* state, char* output, int32_t capacity, int wrap);
FE_API int32_t Base32DecodeChunk(const char* text, int32_t length, uint8_t* output,
                                 int32_t capacity, Base32State* state);

/* The encoders' capacity counts the terminating NUL they write (a result of
 * capacity characters or more fails); the decoders write no NUL and their
 * capacity counts bytes. */
FE_API int32_t Base58Encode(const uint8_t* input, int32_t length, char* output, int32_t capacity);
FE_API int32_t Base58Decode(const char* text, uint8_t* output, int32_t capacity);

FE_API int32_t Base85Encode(const uint8_t* input, int32_t length, char* output, int32_t capacity);
FE_API int32_t Base85Decode(const char* text, int32_t length, uint8_t* output, int32_t capacity);

FE_API int32_t Z85Encode(const uint8_t* input, int32_t length, char* output, int32_t capacity);
FE_API int32_t Z85Decode(const char* text, uint8_t* output, int32_t capacity);

/* ---- Encryption: AES-256-CBC, zero IV, PKCS#7, key from the password ---- */

/* *outputLength: the capacity on entry, the bytes written on return (0 on
 * failure). Non-zero on success, which also clears the last error. An empty
 * input gives an empty output. */
FE_API int EncryptBuffer(const char* password, const uint8_t* input, uint32_t inputLength,
                         uint8_t* output, uint32_t* outputLength);
FE_API int DecryptBuffer(const char* password, const uint8_t* input, uint32_t inputLength,
                         uint8_t* output, uint32_t* outputLength);

/* Cipher text is Base64 without padding. Capacities count the terminator.
 * EncryptText returns the length of the cipher text, 0 on failure (and for
 * an empty plain text, which succeeds with an empty cipher text and a last
 * error of 0). DecryptText returns the string length of plainText after the
 * call: on failure the buffer is left as it was, so the result is whatever
 * it held before (0 for a buffer starting with a NUL); only the last error
 * tells success (0) from failure (13 bad cipher text or wrong password,
 * 122 buffer too small, 87 null arguments, 14 out of memory). Clear it
 * before the call. */
FE_API int32_t EncryptText(const char* password, const char* plainText, int32_t reserved,
                           char* cipherText, int32_t cipherCapacity);
FE_API int32_t DecryptText(const char* password, const char* cipherText, char* plainText,
                           int32_t plainCapacity);

/* ---- Paths and temporary files (at most 260 characters) ----
 * Buffer sizes, terminator included: GetDriveDirectory, CombinePath,
 * GetTempDirectory and CreateTempFileName write at most 260 bytes;
 * GetFullPathFromName and GetPathDirectory up to 261. */

/* Frees what an operation below allocated when given no output buffer. */
FE_API void EngineFree(void* block);

/* 1 for A to 26 for Z; 0 when the current directory has no drive letter
 * (always on Linux). */
FE_API int32_t GetCurrentDrive(void);
/* The current directory of a drive (0: the process's) into buffer[260];
 * returns its length, 0 on failure. */
FE_API uint32_t GetDriveDirectory(int32_t drive, char* buffer);
/* Resolves "." and ".." segments in place; Windows also turns '/' into '\'. */
FE_API char* NormalizePath(char* path);
/* Each returns output, allocated (EngineFree) when null, or null on failure. */
FE_API char* CombinePath(const char* base, const char* name, char* output);
FE_API char* GetFullPathFromName(const char* name, char* output);
FE_API char* GetPathDirectory(const char* name, char* output);
/* TMP, else TEMP, else the Windows directory's TEMP (on Linux /tmp). */
FE_API char* GetTempDirectory(char* buffer);
/* Reserves an empty file "~rXXXXX.tmp" in directory (null: the temporary
 * directory) and writes its full name into output[260]. */
FE_API char* CreateTempFileName(const char* directory, const char* reserved, char* output);

/* ---- File compression ---- */

/* type: 1 Deflate (zlib stream), 2 bzip2, 3 LZMA-alone; expansion also takes
 * 0, which detects the method from the first two bytes. level: 0 the
 * method's default, 1-9. With output null, empty or naming the source, the
 * source is replaced (through a temporary file beside it). Non-zero on
 * success. */
FE_API int CompressFileByType(const char* source, const char* output, uint32_t type,
                              uint32_t level);
FE_API int ExpandFileByType(const char* source, const char* output, uint32_t type);

/* ---- File encoding ---- */

/* flags: bits 0-15 the file encoding (2 quoted-printable, 3 uuencode, 4 yEnc,
 * 6 Base58, 7 Base32, 8 Base85; 0 and 1 are refused), bit 16 compress with
 * Deflate before encoding / expand after decoding. Non-zero on success. */
FE_API int EncodeFileByType(const char* inputName, const char* outputName, uint32_t flags);
FE_API int DecodeFileByType(const char* inputName, const char* outputName, uint32_t flags);

/* The file codecs themselves: (input, output), non-zero on success. */
FE_API int QpEncodeFile(const char* inputName, const char* outputName);
FE_API int QpDecodeFile(const char* inputName, const char* outputName);
FE_API int UuencodeFile(const char* inputName, const char* outputName);
FE_API int UudecodeFile(const char* inputName, const char* outputName);
FE_API int YencodeFile(const char* inputName, const char* outputName);
FE_API int YdecodeFile(const char* inputName, const char* outputName);
FE_API int Base32EncodeFile(const char* inputName, const char* outputName);
FE_API int Base32DecodeFile(const char* inputName, const char* outputName);
FE_API int Base58EncodeFile(const char* inputName, const char* outputName);
FE_API int Base58DecodeFile(const char* inputName, const char* outputName);
FE_API int Base85EncodeFile(const char* inputName, const char* outputName);
FE_API int Base85DecodeFile(const char* inputName, const char* outputName);

/* The value of the hexadecimal digits at the start of text; 0xFFFFFFFF for
 * a null text. */
FE_API uint32_t ParseHex32(const char* text);

/* ---- Data compression (zlib stream, level 9) ---- */

/* With output: *length is the capacity on entry and the compressed length on
 * return. With output null: *length receives the size the stream would have.
 * Returns non-zero on success. Neither records a code of its own. */
FE_API int DeflateBuffer(const uint8_t* input, int32_t inputLength, uint8_t* output,
                         uint32_t* length);
FE_API int InflateBuffer(const uint8_t* input, int32_t inputLength, uint8_t* output,
                         uint32_t* length);

/* ---- File encryption ---- */

/* Encrypts or decrypts a whole file with the buffer cipher (the same bytes
 * as EncryptBuffer/DecryptBuffer). The result replaces the output, which may
 * be the input itself, only when the whole file went through. A null
 * password keys with the identifier alone. Non-zero on success (last error
 * 0); 13 for a wrong password or a damaged file. */
FE_API int EncryptFileData(const char* password, const char* inputPath, const char* outputPath);
FE_API int DecryptFileData(const char* password, const char* inputPath, const char* outputPath);

/* ---- File comparison and digests ---- */

/* Compares file1 with file2 (or null) by the EncoderCompareConstants in
 * options, and file1 with a hexadecimal digest (or null). Non-zero when all
 * checks pass (last error 0); otherwise the control code of the first
 * failing check is the last error. */
FE_API int CompareFiles(const char* file1, const char* file2, uint32_t options, const char* digest);

/* The digest of a whole file as uppercase hexadecimal text into output (at
 * least 65 characters). Returns the number of digits (32, 40 or 64), 0 on
 * failure. */
FE_API int32_t GetFileDigestMD5(const char* path, char* output);
FE_API int32_t GetFileDigestSHA1(const char* path, char* output);
FE_API int32_t GetFileDigestSHA256(const char* path, char* output);

/* ---- Tokens and UUIDs ---- */

/* A UUID as its four fields; the text prints them as numbers. */
typedef struct EncoderUuid {
  uint32_t first;
  uint16_t second;
  uint16_t third;  /* holds the version nibble */
  uint8_t last[8]; /* last[0] holds the variant bits */
} EncoderUuid;

/* Version 7: the Unix time in milliseconds and random bits. Version 8:
 * random bits, with customValue as the first field unless it is 0.
 * Non-zero on success. */
FE_API int CreateUuid7Record(EncoderUuid* record);
FE_API int CreateUuid8Record(EncoderUuid* record, int32_t customValue);
/* The 36-character lowercase text of a record (all zeros for null) into
 * output (at least 37 characters). Returns 36, or 0 for a null output. */
FE_API int32_t FormatUuid(const EncoderUuid* record, char* output);
/* A random token of bitLength bits (0 means 128; rounded up to a power of
 * two from 64 to 4096) as Base58 (encodingType 0 or 6), Base64 (1) or
 * Base32 (7) without padding, Base32 in lowercase, or Base85 (8), into
 * output (at least 1025 characters). Returns its length, 0 on failure. */
FE_API int32_t CreateTokenText(int32_t bitLength, int32_t encodingType, char* output);

/* ---- UTF-8 ---- */

/* Whether bytes are well-formed UTF-8, judged up to the first zero byte
 * (count < 0: up to it in any case) after an optional byte-order mark.
 * Non-zero when valid (last error 0); else last error 13 when invalid, 4306
 * when nothing is left to check, 87 for null bytes. */
FE_API int Utf8Validate(const uint8_t* bytes, int32_t count);

/* ---- Text filters ----
 * Each filter has an 8-bit form over UTF-8 text (inputLength -1: up to the
 * terminator) and a wide form over terminated UTF-16 text. */

/* HTML to plain text with CR LF line ends. Returns the bytes written without
 * the terminator; with a null output or a capacity of 0, the length the
 * result would have. Last error 0 on success, 87 for bad arguments or an
 * input above 64 MiB, 232 for an empty input, 14 when memory runs out. */
FE_API int32_t FilterHtmlText(const char* input, int32_t inputLength, char* output,
                              int32_t outputCapacity);
FE_API int32_t FilterHtmlWide(const char16_t* input, char16_t* output, int32_t outputCapacity);

/* Markdown to plain text with LF line ends. Returns the full length of the
 * result, which is written (and terminated) as far as the capacity allows;
 * a null output asks for the length. */
FE_API int32_t FilterMarkdownText(const char* input, int32_t inputLength, char* output,
                                  int32_t outputCapacity);
FE_API int32_t FilterMarkdownWide(const char16_t* input, char16_t* output, int32_t outputCapacity);

/* A plain skeleton of a text: controls, invisible and private characters,
 * accents and pictographs removed, look-alikes replaced by ASCII, the ends
 * trimmed. Returns its length; it is written (terminated) only when the
 * capacity exceeds it, else 0 is returned. A null output or a capacity of 0
 * asks for the length. */
FE_API int32_t FilterUnicodeWide(const char16_t* input, char16_t* output, int32_t outputCapacity);
FE_API int32_t FilterUnicodeText(const char* input, int32_t inputLength, char* output,
                                 int32_t outputCapacity);
/* 1 when the text holds a character used to spoof text, else 0. */
FE_API int IsConfusableWide(const char16_t* input);
FE_API int IsConfusableText(const char* input, int32_t inputLength);

/* Line-ending modes of ConvertTextFile, beside EncoderConvertConstants;
 * any of them turns fileConvertNormalize on. In CR mode a line end that
 * closes a 4096-byte chunk is dropped. */
#define FE_CONVERT_LINE_END_CRLF 0x1000u
#define FE_CONVERT_LINE_END_LF 0x2000u
#define FE_CONVERT_LINE_END_CR 0x4000u

/* Re-encodes a text file from one code page to another (0 or 3: the ANSI
 * code page; 1200/1201: UTF-16 little/big endian) through a temporary file
 * that replaces the output only when the whole file converted. A failed
 * conversion leaves its temporary file in the temporary folder. Non-zero on
 * success (last error 0). */
FE_API int ConvertTextFile(const char* inputName, uint32_t sourceCodePage, const char* outputName,
                           uint32_t destinationCodePage, uint32_t options);

#ifdef __cplusplus
}
#endif

#endif /* FILE_ENCODER_H */
