// Throughput of the file operations on one large file (256 MiB unless
// FE_BENCH_FILE_MB says otherwise), each beside the same work done by an
// independent tool on the same file, the two taking turns over three rounds.
// Rates are of the original file's size.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "bench_support.h"
#include "file_encoder.h"

namespace {

using fe::bench::Compare;
using fe::bench::SecondsOf;
using fe::bench::Tool;

// FE_BENCH_ONLY=text runs only the rows whose name holds that text.
bool Selected(const char* what) {
  const char* only = std::getenv("FE_BENCH_ONLY");
  return only == nullptr || std::strstr(what, only) != nullptr;
}

// Ours and the tool take turns over three rounds; the best of each side
// is reported. Without a tool, ours alone, best of three.
void Row(const char* what, double megabytes, const std::function<bool()>& ours,
         const std::string& tool) {
  if (!Selected(what)) return;
  if (!tool.empty()) {
    Compare(
        what, megabytes, ours, [&] { return Tool(tool); }, tool);
    return;
  }
  double best = 1e9;
  bool ok = true;
  for (int round = 0; round < 3; ++round) {
    bool done = false;
    best = std::min(best, SecondsOf(ours, &done));
    ok &= done;
  }
  std::printf("%-26s %9.1f MB/s%s\n", what, megabytes / best, ok ? "" : " (FAILED)");
  std::fflush(stdout);
}

}  // namespace

int main() {
  const char* sizeText = std::getenv("FE_BENCH_FILE_MB");
  const size_t megabytes = sizeText ? std::strtoul(sizeText, nullptr, 10) : 256;
  const std::string folder = "/tmp/fe_file_bench";
  Tool("mkdir -p " + folder);
  const std::string source = folder + "/source.bin";
  const std::string middle = folder + "/middle";
  const std::string back = folder + "/back.bin";
  {
    // Half random bytes, half text-like runs: compressible, but not trivially.
    std::mt19937_64 random(1);
    std::vector<uint8_t> piece(1 << 20);
    std::ofstream file(source, std::ios::binary);
    for (size_t m = 0; m < megabytes; ++m) {
      for (size_t i = 0; i < piece.size(); ++i) {
        piece[i] = i % 2 ? static_cast<uint8_t>(random()) : static_cast<uint8_t>("bench "[i % 6]);
      }
      file.write(reinterpret_cast<const char*>(piece.data()),
                 static_cast<std::streamsize>(piece.size()));
    }
  }
  const double mb = static_cast<double>(megabytes) * 1.048576;
  std::printf("%zu MiB file; ours, then the independent tool on the same file\n\n", megabytes);
  const std::string py = "/usr/bin/python3 -c ";
  struct Encoding {
    const char* name;
    uint32_t number;
    std::string encodeTool;
    std::string decodeTool;
  } encodings[] = {
      {"uuencode", 3, "uuencode x < " + source + " > " + folder + "/t.uu",
       "uudecode -o " + folder + "/t.back " + folder + "/t.uu"},
      {"yEnc", 4,
       py + "\"import sabyenc3,sys;d=open('" + source + "','rb').read();open('" + folder +
           "/t.y','wb').write(sabyenc3.encode(d)[0])\"",
       ""},
      {"quoted-printable", 2,
       py + "\"import binascii;open('" + folder + "/t.qp','wb').write(binascii.b2a_qp(open('" +
           source + "','rb').read(),quotetabs=True))\"",
       py + "\"import binascii;open('" + folder + "/t.b','wb').write(binascii.a2b_qp(open('" +
           folder + "/t.qp','rb').read()))\""},
      {"Base32", 7, "basenc --base32 " + source + " > " + folder + "/t.b32",
       "basenc -d --base32 " + folder + "/t.b32 > " + folder + "/t.b"},
      {"Base85", 8,
       py + "\"import base64;open('" + folder + "/t.a85','wb').write(base64.a85encode(open('" +
           source + "','rb').read()))\"",
       py + "\"import base64;open('" + folder + "/t.b','wb').write(base64.a85decode(open('" +
           folder + "/t.a85','rb').read()))\""},
  };
  for (const Encoding& e : encodings) {
    Row((std::string("encode ") + e.name).c_str(), mb,
        [&] { return EncodeFileByType(source.c_str(), middle.c_str(), e.number) != 0; },
        e.encodeTool);
    Row((std::string("decode ") + e.name).c_str(), mb,
        [&] { return DecodeFileByType(middle.c_str(), back.c_str(), e.number) != 0; },
        e.decodeTool);
  }
  struct Method {
    const char* name;
    uint32_t type;
    const char* compressTool;  // level, source, output
    const char* expandTool;    // input, output
  } methods[] = {
      {"Deflate", 1,
       "/usr/bin/python3 -c \"import "
       "zlib,sys;open(sys.argv[3],'wb').write(zlib.compress(open(sys.argv[2],'rb').read(),int(sys."
       "argv[1])))\" %u %s %s",
       "/usr/bin/python3 -c \"import "
       "zlib,sys;open(sys.argv[2],'wb').write(zlib.decompress(open(sys.argv[1],'rb').read()))\" %s "
       "%s"},
      {"bzip2", 2, "bzip2 -%u -c %s > %s", "bzip2 -dc %s > %s"},
      // Files made here always carry a 16 MiB dictionary, which xz's low
      // presets shrink: xz gets the same, so the row compares coders, not
      // dictionaries.
      {"LZMA", 3, "xz --format=lzma --lzma1=preset=%u,dict=16MiB -c %s > %s",
       "xz --format=lzma -dc %s > %s"},
  };
  for (const Method& m : methods) {
    for (uint32_t level : {1u, 6u, 9u}) {
      char compressTool[512], expandTool[512];
      const std::string theirs = folder + "/t.packed";
      std::snprintf(compressTool, sizeof compressTool, m.compressTool, level, source.c_str(),
                    theirs.c_str());
      std::snprintf(expandTool, sizeof expandTool, m.expandTool, theirs.c_str(),
                    (folder + "/t.b").c_str());
      Row((std::string("compress ") + m.name + " level " + std::to_string(level)).c_str(), mb,
          [&] { return CompressFileByType(source.c_str(), middle.c_str(), m.type, level) != 0; },
          compressTool);
      Row((std::string("expand ") + m.name + " level " + std::to_string(level)).c_str(), mb,
          [&] { return ExpandFileByType(middle.c_str(), back.c_str(), m.type) != 0; }, expandTool);
    }
  }
  Tool("rm -rf " + folder);
  return 0;
}
