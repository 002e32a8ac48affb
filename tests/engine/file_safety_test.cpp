// Users' files are never lost: temporary files are exclusive, conflicting
// opens of one file by any name fail as on Windows, results replace a file
// only by an atomic rename of the unchanged source, and cleanup removes only
// what the call created.
#include <gtest/gtest.h>

#ifndef _WIN32
#include <sys/stat.h>
#include <unistd.h>
#endif

#include <atomic>
#include <filesystem>
#include <set>
#include <thread>
#include <vector>

#include "platform/platform.h"
#include "scoped_variable.h"
#include "temp_folder.h"
#include "test_support.h"
#ifndef _WIN32
#include "small_mount.h"
#endif

namespace fe::test {
namespace {

namespace fs = std::filesystem;
using platform::FileOpen;

class FileSafety : public testing::Test {
 protected:
  TempFolder folder_;
};

TEST_F(FileSafety, TemporaryNamesAreNeverShared) {
  constexpr int kThreads = 8, kEach = 30;
  std::vector<std::vector<std::string>> names(kThreads);
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      for (int i = 0; i < kEach; ++i) {
        char name[260];
        if (CreateTempFileName(folder_.Folder().c_str(), nullptr, name)) names[t].push_back(name);
      }
    });
  }
  for (auto& thread : threads)
    thread.join();
  std::set<std::string> distinct;
  size_t total = 0;
  for (const auto& list : names) {
    total += list.size();
    distinct.insert(list.begin(), list.end());
  }
  EXPECT_EQ(distinct.size(), total);
  EXPECT_GT(total, 0u);
}

TEST_F(FileSafety, EightThreadsCompressingInPlaceInOneFolder) {
  constexpr int kThreads = 8, kRounds = 20;
  std::atomic<int> wrong{0}, done{0};
  for (int round = 0; round < kRounds; ++round) {
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
      threads.emplace_back([&, t] {
        const Bytes data = RandomBytes(3000 + 100 * t, static_cast<uint32_t>(round * 8 + t));
        const std::string path = folder_.Write("f" + std::to_string(t), data);
        // Within one millisecond the temporary names can run out, and then
        // a call fails cleanly; what never happens is a success with
        // another file's data, or a failure that touched the file.
        if (!CompressFileByType(path.c_str(), nullptr, 1 + t % 3, 0)) {
          if (TempFolder::Read(path) != data) ++wrong;
          return;
        }
        ++done;
        const std::string check = folder_.Path("check" + std::to_string(t));
        if (!ExpandFileByType(path.c_str(), check.c_str(), 0) || TempFolder::Read(check) != data) {
          ++wrong;
        }
        fs::remove(check);
        if (ExpandFileByType(path.c_str(), "", 0) && TempFolder::Read(path) != data) ++wrong;
      });
    }
    for (auto& thread : threads)
      thread.join();
  }
  EXPECT_EQ(wrong.load(), 0);
  EXPECT_GT(done.load(), kThreads * kRounds / 2);
  EXPECT_EQ(folder_.Count(), 8u);  // no temporary file left behind
}

TEST_F(FileSafety, BitSixteenCodingFromEightThreads) {
  std::atomic<int> wrong{0}, done{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < 8; ++t) {
    threads.emplace_back([&, t] {
      for (int i = 0; i < 20; ++i) {
        const Bytes data = RandomBytes(2000, static_cast<uint32_t>(t * 100 + i));
        const std::string in = folder_.Write("in" + std::to_string(t), data);
        const std::string mid = folder_.Path("mid" + std::to_string(t));
        const std::string out = folder_.Path("out" + std::to_string(t));
        fs::remove(out);
        if (EncodeFileByType(in.c_str(), mid.c_str(),
                             static_cast<uint32_t>(fileEncodeUucode) | fileEncodeCompressed) &&
            DecodeFileByType(mid.c_str(), out.c_str(),
                             static_cast<uint32_t>(fileDecodeUucode) | fileDecodeCompressed)) {
          ++done;
          if (TempFolder::Read(out) != data) ++wrong;
        }
        if (TempFolder::Read(in) != data) ++wrong;
      }
    });
  }
  for (auto& thread : threads)
    thread.join();
  EXPECT_EQ(wrong.load(), 0);
  EXPECT_GT(done.load(), 0);  // the rest ran out of names within a millisecond, cleanly
}

TEST_F(FileSafety, ConflictingOpensOfOneFileFailWithSharingViolation) {
  const std::string path = folder_.Write("d.txt", ToBytes("data"));
  const platform::FileHandle reader = platform::OpenFile(path.c_str(), FileOpen::kRead);
  ASSERT_NE(reader, platform::kInvalidFile);
  const platform::FileHandle second = platform::OpenFile(path.c_str(), FileOpen::kRead);
  EXPECT_NE(second, platform::kInvalidFile);  // reading is shared
  platform::CloseFile(second);
  const std::string alias = folder_.Folder() + "/./d.txt";
  EXPECT_EQ(platform::OpenFile(alias.c_str(), FileOpen::kCreate), platform::kInvalidFile);
  EXPECT_EQ(EngineGetLastError(), 32u);
  EXPECT_EQ(ToString(TempFolder::Read(path)), "data");
  platform::CloseFile(reader);
  EXPECT_EQ(platform::OpenFile(folder_.Folder().c_str(), FileOpen::kRead), platform::kInvalidFile);
  EXPECT_EQ(EngineGetLastError(), 5u);
}

// Every other spelling of the source as output: refused, the source kept.
std::vector<std::string> Aliases(const TempFolder& folder) {
  std::vector<std::string> aliases = {folder.Folder() + "/./d.txt",
                                      folder.Folder() + "/sub/../d.txt"};
#ifndef _WIN32
  fs::create_symlink(folder.Path("d.txt"), folder.Path("link.txt"));
  fs::create_hard_link(folder.Path("d.txt"), folder.Path("hard.txt"));
  aliases.push_back(folder.Path("link.txt"));
  aliases.push_back(folder.Path("hard.txt"));
#endif
  return aliases;
}

TEST_F(FileSafety, OutputNamingTheSourceByAnotherSpellingIsRefused) {
  const Bytes data = RandomBytes(5000, 3);
  const std::string source = folder_.Write("d.txt", data);
  fs::create_directory(folder_.Path("sub"));
  for (const std::string& alias : Aliases(folder_)) {
    for (uint32_t type : {1u, 2u, 3u}) {
      EngineSetLastError(0);
      EXPECT_FALSE(CompressFileByType(source.c_str(), alias.c_str(), type, 0)) << alias;
      EXPECT_EQ(EngineGetLastError(), 32u) << alias;
      EXPECT_FALSE(ExpandFileByType(source.c_str(), alias.c_str(), type)) << alias;
    }
    for (uint32_t encoding : {2u, 3u, 4u, 7u, 8u}) {
      EngineSetLastError(0);
      EXPECT_FALSE(EncodeFileByType(source.c_str(), alias.c_str(), encoding)) << alias;
      EXPECT_EQ(EngineGetLastError(), 32u) << encoding << " " << alias;
      EXPECT_FALSE(DecodeFileByType(source.c_str(), alias.c_str(), encoding)) << alias;
    }
    ASSERT_EQ(TempFolder::Read(source), data) << alias;
  }
}

#ifndef _WIN32

TEST_F(FileSafety, InPlaceResultKeepsThePermissions) {
  const std::string path = folder_.Write("p.txt", RandomBytes(4000, 5));
  ::chmod(path.c_str(), 0640);
  ASSERT_TRUE(CompressFileByType(path.c_str(), nullptr, 3, 1));
  struct stat info;
  ASSERT_EQ(::stat(path.c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 07777, 0640u);
}

TEST_F(FileSafety, ReadOnlySourceIsNotReplaced) {
  const Bytes data = RandomBytes(4000, 6);
  const std::string path = folder_.Write("r.txt", data);
  ::chmod(path.c_str(), 0444);
  for (uint32_t type : {1u, 2u, 3u}) {
    EngineSetLastError(0);
    EXPECT_FALSE(CompressFileByType(path.c_str(), nullptr, type, 0));
    EXPECT_EQ(EngineGetLastError(), 5u);
  }
  EXPECT_EQ(TempFolder::Read(path), data);
  EXPECT_EQ(folder_.Count(), 1u);
}

TEST_F(FileSafety, ReplacementYieldsToAFileChangedMeanwhile) {
  const std::string target = folder_.Write("t.txt", ToBytes("original"));
  platform::FileIdentity read;
  ASSERT_TRUE(platform::IdentifyPath(target.c_str(), &read));
  // Another program renames its own file over the target...
  const std::string theirs = folder_.Write("theirs.txt", ToBytes("their data"));
  fs::rename(theirs, target);
  const std::string result = folder_.Write("result.tmp", ToBytes("result"));
  EXPECT_FALSE(platform::ReplaceFileAtomically(result.c_str(), target.c_str(), read));
  EXPECT_EQ(EngineGetLastError(), 32u);
  EXPECT_EQ(ToString(TempFolder::Read(target)), "their data");
  // ...or appends to it.
  ASSERT_TRUE(platform::IdentifyPath(target.c_str(), &read));
  std::ofstream(target, std::ios::app) << " and more";
  EXPECT_FALSE(platform::ReplaceFileAtomically(result.c_str(), target.c_str(), read));
  EXPECT_EQ(ToString(TempFolder::Read(target)), "their data and more");
  // Unchanged, it is replaced.
  ASSERT_TRUE(platform::IdentifyPath(target.c_str(), &read));
  EXPECT_TRUE(platform::ReplaceFileAtomically(result.c_str(), target.c_str(), read));
  EXPECT_EQ(ToString(TempFolder::Read(target)), "result");
}

TEST_F(FileSafety, ReplacementAcrossFileSystemsGoesThroughACopyBesideTheTarget) {
  const std::string shm = "/dev/shm";
  struct stat a, b;
  if (::stat(shm.c_str(), &a) != 0 || ::stat(folder_.Folder().c_str(), &b) != 0 ||
      a.st_dev == b.st_dev) {
    GTEST_SKIP() << "no second file system to move across";
  }
  const std::string from = shm + "/fe_safety_" + std::to_string(::getpid());
  std::ofstream(from) << "moved";
  const std::string target = folder_.Write("x.txt", ToBytes("old"));
  ::chmod(target.c_str(), 0604);
  platform::FileIdentity read;
  ASSERT_TRUE(platform::IdentifyPath(target.c_str(), &read));
  ASSERT_TRUE(platform::ReplaceFileAtomically(from.c_str(), target.c_str(), read));
  EXPECT_EQ(ToString(TempFolder::Read(target)), "moved");
  EXPECT_FALSE(TempFolder::Exists(from));
  EXPECT_EQ(folder_.Count(), 1u);
  struct stat info;
  ASSERT_EQ(::stat(target.c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 07777, 0604u);
}

TEST_F(FileSafety, InPlaceOnAPathLongerThan259Characters) {
  std::string deep = folder_.Folder();
  while (deep.size() < 300)
    deep += "/" + std::string(40, 'd');
  fs::create_directories(deep);
  const Bytes data = RandomBytes(3000, 8);
  const std::string path = deep + "/long.txt";
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(data.data()), static_cast<std::streamsize>(data.size()));
  if (CompressFileByType(path.c_str(), nullptr, 1, 0)) {
    EXPECT_TRUE(ExpandFileByType(path.c_str(), nullptr, 1));
  }
  // Whatever the outcome, the file holds its data.
  EXPECT_EQ(TempFolder::Read(path), data);
}

TEST_F(FileSafety, FailureCleanupLeavesDevicesAndLinkTargetsAlone) {
  // A truncated zlib stream: expansion fails after writing part of it.
  const Bytes packed = [] {
    Bytes data(200000, 'x');
    for (size_t i = 0; i < data.size(); i += 7)
      data[i] = static_cast<uint8_t>(i);
    uint32_t length = static_cast<uint32_t>(data.size());
    Bytes out(length);
    DeflateBuffer(data.data(), static_cast<int32_t>(data.size()), out.data(), &length);
    out.resize(length / 2);
    return out;
  }();
  const std::string source = folder_.Write("cut.z", packed);
  const std::string fifo = folder_.Path("pipe");
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  EXPECT_FALSE(ExpandFileByType(source.c_str(), fifo.c_str(), 7));
  EXPECT_TRUE(TempFolder::Exists(fifo));
  const std::string target = folder_.Write("target.bin", ToBytes("keep me"));
  fs::create_symlink(target, folder_.Path("out-link"));
  EXPECT_FALSE(ExpandFileByType(source.c_str(), folder_.Path("out-link").c_str(), 1));
  EXPECT_TRUE(fs::is_symlink(folder_.Path("out-link")));
  EXPECT_TRUE(TempFolder::Read(target).empty());  // no partial data left in it
}

TEST_F(FileSafety, YencFailuresLeaveThePlatformsCode) {
  const std::string out = folder_.Path("out.yenc");
  EngineSetLastError(0);
  EXPECT_FALSE(YencodeFile(folder_.Path("missing").c_str(), out.c_str()));
  EXPECT_EQ(EngineGetLastError(), 2u);
  EngineSetLastError(0);
  EXPECT_FALSE(YencodeFile(folder_.Folder().c_str(), out.c_str()));
  EXPECT_EQ(EngineGetLastError(), 5u);
  EXPECT_FALSE(TempFolder::Exists(out));
  EngineSetLastError(0);
  EXPECT_FALSE(YdecodeFile(folder_.Path("missing").c_str(), out.c_str()));
  EXPECT_EQ(EngineGetLastError(), 2u);
  const std::string in = folder_.Write("in", ToBytes("abc"));
  EngineSetLastError(0);
  EXPECT_FALSE(YencodeFile(in.c_str(), (folder_.Path("no/such/dir/x")).c_str()));
  EXPECT_EQ(EngineGetLastError(), 2u);  // ENOENT, as Linux reports a missing folder
}

TEST_F(FileSafety, YencRefusesFilesOfTwoGibibytesOrMore) {
  const std::string big = folder_.Path("sparse.bin");
  { std::ofstream(big).put('x'); }
  std::error_code error;
  fs::resize_file(big, 3ull << 30, error);
  if (error) GTEST_SKIP() << "no sparse 3 GiB file here: " << error.message();
  const std::string out = folder_.Path("big.yenc");
  EngineSetLastError(0);
  EXPECT_FALSE(YencodeFile(big.c_str(), out.c_str()));
  EXPECT_EQ(EngineGetLastError(), 223u);
  EXPECT_FALSE(TempFolder::Exists(out));
}

#define REQUIRE_MOUNT(mount) \
  if (!(mount).Mounted()) GTEST_SKIP() << "cannot mount a small tmpfs here: " << (mount).WhyNot()

TEST_F(FileSafety, BitSixteenWithAFullTemporaryFolderReportsDiskFull) {
  SmallMount temporary(256);
  REQUIRE_MOUNT(temporary);
  temporary.Fill();
  const ScopedVariable tmp("TMP", temporary.Folder().c_str());
  const Bytes data = RandomBytes(100000, 11);
  const std::string in = folder_.Write("in.bin", data);
  const std::string out = folder_.Path("out.uu");
  EngineSetLastError(0);
  EXPECT_FALSE(EncodeFileByType(in.c_str(), out.c_str(),
                                static_cast<uint32_t>(fileEncodeUucode) | fileEncodeCompressed));
  EXPECT_EQ(EngineGetLastError(), 112u);
  EXPECT_FALSE(TempFolder::Exists(out));
  EXPECT_EQ(TempFolder::Read(in), data);
}

TEST_F(FileSafety, InPlaceOnALongPathWithAFullDestinationKeepsTheSource) {
  SmallMount destination(512);
  REQUIRE_MOUNT(destination);
  std::string deep = destination.Folder();
  while (deep.size() < 300)
    deep += "/" + std::string(40, 'd');
  fs::create_directories(deep);
  const Bytes data = RandomBytes(100000, 12);
  const std::string path = deep + "/long.bin";
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(data.data()), static_cast<std::streamsize>(data.size()));
  destination.Fill();
  // The result is made in the temporary folder, on another file system; the
  // copy beside the source cannot be written.
  EngineSetLastError(0);
  EXPECT_FALSE(CompressFileByType(path.c_str(), nullptr, 1, 0));
  EXPECT_EQ(EngineGetLastError(), 112u);
  EXPECT_EQ(TempFolder::Read(path), data);
  size_t entries = 0;
  for (const auto& entry : fs::directory_iterator(deep)) {
    (void)entry;
    ++entries;
  }
  EXPECT_EQ(entries, 1u);
}

TEST_F(FileSafety, ReadOnlySourceFolderReportsAccessDenied) {
  SmallMount folder(256);
  REQUIRE_MOUNT(folder);
  const Bytes data = RandomBytes(4000, 13);
  const std::string path = folder.Path("r.txt");
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(data.data()), static_cast<std::streamsize>(data.size()));
  if (!folder.MakeReadOnly()) GTEST_SKIP() << "cannot remount read-only here";
  for (uint32_t type : {1u, 2u, 3u}) {
    EngineSetLastError(0);
    EXPECT_FALSE(CompressFileByType(path.c_str(), nullptr, type, 0)) << type;
    EXPECT_EQ(EngineGetLastError(), 5u) << type;
  }
  EngineSetLastError(0);
  EXPECT_FALSE(EncodeFileByType(folder_.Write("in", data).c_str(), folder.Path("out").c_str(),
                                fileEncodeBase32));
  EXPECT_EQ(EngineGetLastError(), 5u);
  EXPECT_EQ(TempFolder::Read(path), data);
}

TEST_F(FileSafety, YencOnAFullDiskOrReadOnlyFolderLeavesTheCodeAndNoOutput) {
  SmallMount disk(256);
  REQUIRE_MOUNT(disk);
  const std::string in = folder_.Write("in.bin", RandomBytes(600000, 15));
  const std::string encoded = folder_.Path("in.yenc");
  ASSERT_TRUE(YencodeFile(in.c_str(), encoded.c_str()));
  disk.Fill();
  EngineSetLastError(0);
  EXPECT_FALSE(YencodeFile(in.c_str(), disk.Path("out.yenc").c_str()));
  EXPECT_EQ(EngineGetLastError(), 112u);
  EXPECT_FALSE(TempFolder::Exists(disk.Path("out.yenc")));
  EngineSetLastError(0);
  EXPECT_FALSE(YdecodeFile(encoded.c_str(), disk.Path("out.bin").c_str()));
  EXPECT_EQ(EngineGetLastError(), 112u);
  EXPECT_FALSE(TempFolder::Exists(disk.Path("out.bin")));
  if (!disk.MakeReadOnly()) GTEST_SKIP() << "cannot remount read-only here";
  EngineSetLastError(0);
  EXPECT_FALSE(YencodeFile(in.c_str(), disk.Path("ro.yenc").c_str()));
  EXPECT_EQ(EngineGetLastError(), 5u);
}

// Another program changes the source while it is being compressed in place:
// renames its own file over it, or appends to it. Its data must win.
class ChangedDuringTheCall : public FileSafety {
 protected:
  // Runs `change` as soon as the call has reserved its temporary file.
  template <typename Change>
  bool CompressWhileChanging(const std::string& source, uint32_t type, Change change) {
    std::atomic<bool> stop{false};
    std::thread watcher([&] {
      while (!stop) {
        std::error_code ignored;
        for (const auto& entry : fs::directory_iterator(folder_.Folder(), ignored)) {
          if (entry.path().filename().string().rfind("~r", 0) == 0) {
            change();
            return;
          }
        }
        std::this_thread::yield();
      }
    });
    const bool result = CompressFileByType(source.c_str(), nullptr, type, 9);
    stop = true;
    watcher.join();
    return result;
  }

  static Bytes Slow(size_t size) {
    Bytes data = RandomBytes(size, 14);
    for (size_t i = 0; i < size; i += 3)
      data[i] = 'a';
    return data;
  }
};

TEST_F(ChangedDuringTheCall, RenameOverTheSourceKeepsTheirFile) {
  const std::string source = folder_.Write("s.bin", Slow(8 << 20));
  const std::string theirs = folder_.Write("theirs", ToBytes("their data"));
  EngineSetLastError(0);
  EXPECT_FALSE(CompressWhileChanging(source, 2, [&] { fs::rename(theirs, source); }));
  EXPECT_EQ(EngineGetLastError(), 32u);
  EXPECT_EQ(ToString(TempFolder::Read(source)), "their data");
  EXPECT_EQ(folder_.Count(), 1u);
}

TEST_F(ChangedDuringTheCall, AppendingDuringLzmaCompressionKeepsTheAppendedFile) {
  const Bytes data = Slow(1 << 20);
  const std::string source = folder_.Write("s.bin", data);
  EngineSetLastError(0);
  EXPECT_FALSE(CompressWhileChanging(
      source, 3, [&] { std::ofstream(source, std::ios::binary | std::ios::app) << "tail"; }));
  EXPECT_EQ(EngineGetLastError(), 32u);
  Bytes expected = data;
  for (char c : std::string("tail"))
    expected.push_back(static_cast<uint8_t>(c));
  EXPECT_EQ(TempFolder::Read(source), expected);
  EXPECT_EQ(folder_.Count(), 1u);
}

#endif  // !_WIN32

}  // namespace
}  // namespace fe::test
