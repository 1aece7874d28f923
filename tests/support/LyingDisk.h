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

/// A disk in memory that fails on request and records every change, so that each state can be
/// built in which a power cut might leave a real one: what was not synced may be there or not, in any
/// combination, and a write may be there in part.
class LyingDisk final : public files::IDisk {
public:
    /// The files by their paths, folders with a "/" at the end; their contents.
    using Tree = std::map<std::string, std::string>;

    /// A disk with an empty folder "/d".
    LyingDisk();

    // For tests.
    Tree Files() const;
    void Put(const std::string& path, const std::string& content, std::uint32_t mode = 0644);
    const std::string& Content(const std::string& path) const;
    /// From here on the bytes of a file from `begin` to `end` only gain bits, as one-time-programmable
    /// memory.
    void OnlySetsBits(const std::string& path, std::uint64_t begin, std::uint64_t end);

    /// Takes what is there as what is on the disk, and forgets how it came there.
    void BeginLog();
    std::size_t LoggedChanges() const { return mLog.size(); }
    /// Calls `visit` once for each distinct state that a power cut can leave, at any moment since `BeginLog`.
    /// Combinations of up to 12 changes that were not synced are all tried, of more `random` chooses some.
    void ForEachCut(std::mt19937& random, const std::function<void(LyingDisk& state)>& visit) const;

    /// Lets the call of this number, from 1, fail, and all later ones too if `forEver`.
    void FailAt(std::size_t call, int error, bool forEver);
    std::size_t Calls() const { return mCalls; }
    void ResetCalls() { mCalls = 0; }
    /// Transfers at most some bytes a call, and interrupts every other one.
    void BeSlow(std::size_t most) { mMostBytes = most; }
    /// How many bytes can be written before the disk is full.
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
        std::vector<std::pair<std::string, Number>> names;  ///< new meanings; 0 takes a name away
        bool makesFolder = false;                           ///< where a name is that of something new
    };

    struct OpenHandle {
        Number node;
        std::uint64_t position = 0;
    };

    /// The number of what a path names; 0 when it is nothing.
    Number Find(const std::string& path) const;
    Number FolderFor(const std::string& path, std::string& name) const;
    Number MakeNode(bool isFolder);
    void SetNames(Number folder, std::vector<std::pair<std::string, Number>> names, bool makesFolder = false);
    static void Apply(Nodes& nodes, const Change& change, std::size_t bytes);
    static void Write(Node& node, std::uint64_t offset, std::string_view bytes);
    /// An error number for this call, 0 for none.
    int Fault();
    std::size_t Transfer(std::size_t size) const { return std::min(size, mMostBytes); }
    void CollectTree(Number folder, const std::string& path, Tree& tree) const;
    files::FileStatus StatusOfNode(Number number) const;

    Nodes mNodes;
    Number mLast = 1;  // the root
    std::map<int, OpenHandle> mHandles;
    int mLastHandle = 2;
    std::int64_t mClock = 0;
    Nodes mBefore;  ///< what was on the disk when the log began
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
