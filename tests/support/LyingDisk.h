#pragma once

#include "files/Disk.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace KesTest {

namespace files = VemoKesConfigTools::files;

/// A disk in memory that fails on request and records every change, so that every state can be built in which
/// a power cut may leave a real disk: changes that were not synced may be present or not, in any combination,
/// and a write may be incomplete.
class LyingDisk final : public files::IDisk {
public:
    /// The contents of files by path; the paths of folders end in "/".
    using Tree = std::map<std::string, std::string>;

    /// A disk with an empty folder "/d".
    LyingDisk();

    // For tests.
    Tree Files() const;
    void Put(const std::string& path, const std::string& content, std::uint32_t mode = 0644);
    const std::string& Content(const std::string& path) const;
    /// From now on bits in the bytes of a file from `begin` to `end` can only be set, as in
    /// one-time-programmable memory.
    void OnlySetsBits(const std::string& path, std::uint64_t begin, std::uint64_t end);

    /// Makes the current state durable and starts a new log of changes.
    void BeginLog();
    std::size_t LoggedChanges() const { return mLog.size(); }
    /// Calls `visit` once for each distinct state that a power cut can leave, at any moment since `BeginLog`.
    /// For up to 12 changes that were not synced, all combinations are tried; for more, a random sample.
    void ForEachCut(std::mt19937& random, const std::function<void(LyingDisk& state)>& visit) const;

    /// Makes the call with this number, counted from 1, fail; with `forEver` all later ones too.
    void FailAt(std::size_t call, int error, bool forEver);
    std::size_t Calls() const { return mCalls; }
    void ResetCalls() { mCalls = 0; }
    /// Limits each call to a few bytes and interrupts every other one.
    void BeSlow(std::size_t most) { mMostBytes = most; }
    /// The number of bytes that can be written before the disk is full.
    void Room(std::uint64_t bytes) { mRoom = bytes; }

    int Open(const std::string& path, files::OpenFor use) override;
    int Close(int handle) override;
    std::int64_t ReadAt(int handle, std::uint64_t offset, char* bytes, std::size_t size) override;
    std::int64_t ReadNext(int handle, char* bytes, std::size_t size) override;
    std::int64_t WriteAt(int handle, std::uint64_t offset, const char* bytes, std::size_t size) override;
    std::int64_t WriteNext(int handle, const char* bytes, std::size_t size) override;
    int Sync(int handle) override;
    int Status(int handle, files::FileStatus& status) override;
    int StatusOf(const std::string& path, bool follow, files::FileStatus& status) override;
    int SetOwner(int handle, std::uint32_t owner, std::uint32_t group) override;
    int SetMode(int handle, std::uint32_t mode) override;
    int Attributes(int handle, std::vector<std::pair<std::string, std::string>>& attributes) override;
    int SetAttribute(int handle, const std::string& name, const std::string& value) override;
    int Rename(const std::string& from, const std::string& to) override;
    int Remove(const std::string& path) override;
    int RemoveFolder(const std::string& path) override;
    int MakeFolder(const std::string& path) override;
    int List(const std::string& path, std::vector<std::string>& names) override;
    int ReadLink(const std::string& path, std::string& target) override;
    int TryLock(int handle, files::LockMode mode) override;
    std::string LockHolder(int handle) override { return "somebody " + std::to_string(handle); }
    void Sleep(std::uint32_t /*milliseconds*/) override {}
    std::string TemporaryFolder() override { return "/d"; }
    std::string RandomWord() override;

private:
    using Number = std::uint64_t;  // of a file or folder

    struct Node {
        bool isFolder = false;
        std::string content;
        std::map<std::string, Number> names;  ///< of a folder
        std::uint32_t mode = 0644;
        std::int64_t modified = 0;
        std::uint64_t setsBegin = 0;
        std::uint64_t setsEnd = 0;
    };
    using Nodes = std::map<Number, Node>;

    /// A change of a file's bytes, of names in a folder, or a sync.
    struct Change {
        enum class Kind { WRITE, NAMES, SYNC } kind;
        Number node;  ///< the file or folder
        std::uint64_t offset = 0;
        std::string bytes;
        std::vector<std::pair<std::string, Number>> names;  ///< changed entries; 0 removes a name
        bool makesFolder = false;                           ///< for a name that is new
    };

    struct OpenHandle {
        Number node;
        std::uint64_t position = 0;
    };

    /// The number of the file or folder at a path; 0 if there is none.
    Number Find(const std::string& path) const;
    Number FolderFor(const std::string& path, std::string& name) const;
    Number MakeNode(bool isFolder);
    void SetNames(Number folder, std::vector<std::pair<std::string, Number>> names, bool makesFolder = false);
    static void Apply(Nodes& nodes, const Change& change, std::size_t bytes);
    static void Write(Node& node, std::uint64_t offset, std::string_view bytes);
    /// The error number for this call; 0 for none.
    int Fault();
    std::size_t Transfer(std::size_t size) const { return std::min(size, mMostBytes); }
    void CollectTree(Number folder, const std::string& path, Tree& tree) const;
    files::FileStatus StatusOfNode(Number number) const;

    Nodes mNodes;
    Number mLast = 1;  // the root
    std::map<int, OpenHandle> mHandles;
    int mLastHandle = 2;
    std::int64_t mClock = 0;
    Nodes mBefore;  ///< the durable state when the log was started
    std::vector<Change> mLog;
    std::size_t mCalls = 0;
    std::size_t mFailingCall = 0;
    int mError = 0;
    bool mFailsForEver = false;
    bool mInterrupts = false;
    std::size_t mMostBytes = static_cast<std::size_t>(-1);
    std::uint64_t mRoom = static_cast<std::uint64_t>(-1);
    std::uint64_t mWords = 0;
};

}  // namespace KesTest
