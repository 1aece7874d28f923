#include "support/LyingDisk.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace KesTest {

namespace {

constexpr std::uint64_t ROOT = 1;

}  // namespace

LyingDisk::LyingDisk() {
    mNodes[ROOT].isFolder = true;
    MakeFolder("/d");
    BeginLog();
}

LyingDisk::Tree LyingDisk::Files() const {
    Tree tree;
    CollectTree(ROOT, "", tree);
    return tree;
}

void LyingDisk::CollectTree(Number folder, const std::string& path, Tree& tree) const {
    for (const auto& [name, number] : mNodes.at(folder).names) {
        const Node& node = mNodes.at(number);
        if (node.isFolder) {
            tree[path + "/" + name + "/"];
            CollectTree(number, path + "/" + name, tree);
        } else {
            tree[path + "/" + name] = node.content;
        }
    }
}

void LyingDisk::Put(const std::string& path, const std::string& content, std::uint32_t mode) {
    std::string name;
    const Number folder = FolderFor(path, name);
    const Number file = MakeNode(false);
    mNodes[file].content = content;
    mNodes[file].mode = mode;
    SetNames(folder, {{name, file}});
}

const std::string& LyingDisk::Content(const std::string& path) const { return mNodes.at(Find(path)).content; }

void LyingDisk::OnlySetsBits(const std::string& path, std::uint64_t begin, std::uint64_t end) {
    Node& node = mNodes.at(Find(path));
    node.setsBegin = begin;
    node.setsEnd = end;
}

void LyingDisk::BeginLog() {
    mBefore = mNodes;
    mLog.clear();
}

void LyingDisk::ForEachCut(std::mt19937& random, const std::function<void(LyingDisk& state)>& visit) const {
    constexpr std::size_t MOST_WHOLE = 12;
    constexpr std::size_t RANDOM_TRIES = 200;
    constexpr std::size_t SMALL_WRITE = 64;
    std::set<Tree> seen;
    const auto show = [&](Nodes nodes) {
        LyingDisk state;
        state.mNodes = std::move(nodes);
        state.mLast = mLast;
        state.mWords = mWords;
        if (!seen.insert(state.Files()).second) return;
        state.BeginLog();
        visit(state);
    };
    // The state after the first `count` changes, one of which may be incomplete.
    const auto build = [&](std::size_t count, const std::vector<std::size_t>& unsure,
                           const std::function<bool(std::size_t)>& isThere, std::size_t cut,
                           std::size_t bytes) {
        Nodes nodes = mBefore;
        std::size_t next = 0;
        for (std::size_t i = 0; i < count; ++i) {
            const bool isUnsure = next < unsure.size() && unsure[next] == i;
            if (isUnsure && !isThere(next++)) continue;
            Apply(nodes, mLog[i], i == cut ? bytes : mLog[i].bytes.size());
        }
        show(std::move(nodes));
    };
    for (std::size_t count = 0; count <= mLog.size(); ++count) {
        // A change is durable once its file or folder has been synced after it.
        std::vector<std::size_t> unsure;
        std::set<Number> synced;
        for (std::size_t i = count; i-- > 0;) {
            if (mLog[i].kind == Change::Kind::SYNC) {
                synced.insert(mLog[i].node);
            } else if (!synced.contains(mLog[i].node)) {
                unsure.push_back(i);
            }
        }
        std::ranges::reverse(unsure);
        const std::size_t none = mLog.size();
        if (unsure.size() <= MOST_WHOLE) {
            for (std::size_t set = 0; set < std::size_t{1} << unsure.size(); ++set)
                build(
                    count, unsure, [&](std::size_t n) { return ((set >> n) & 1U) != 0; }, none, 0);
        } else {
            for (std::size_t i = 0; i < RANDOM_TRIES; ++i) {
                const auto density = random() % 9;
                build(
                    count, unsure, [&](std::size_t) { return random() % 8 < density; }, none, 0);
            }
        }
        // Only part of the last write, with all or none of the others.
        if (count == 0 || mLog[count - 1].kind != Change::Kind::WRITE) continue;
        const std::size_t size = mLog[count - 1].bytes.size();
        std::set<std::size_t> cuts = {1, size / 2, size - 1};
        for (std::size_t i = 1; size <= SMALL_WRITE && i < size; ++i) cuts.insert(i);
        for (const std::size_t cut : cuts) {
            if (cut == 0 || cut >= size) continue;
            for (const bool others : {false, true})
                build(
                    count, unsure, [&](std::size_t n) { return others || unsure[n] == count - 1; }, count - 1,
                    cut);
        }
    }
}

void LyingDisk::FailAt(std::size_t call, int error, bool forEver) {
    mCalls = 0;
    mFailingCall = call;
    mError = error;
    mFailsForEver = forEver;
}

int LyingDisk::Fault() {
    if (mMostBytes != static_cast<std::size_t>(-1)) {
        mInterrupts = !mInterrupts;
        if (mInterrupts) return EINTR;
    }
    ++mCalls;
    const bool fails =
        mFailingCall != 0 && (mCalls == mFailingCall || (mFailsForEver && mCalls > mFailingCall));
    return fails ? mError : 0;
}

LyingDisk::Number LyingDisk::Find(const std::string& path) const {
    Number number = ROOT;
    for (std::size_t at = 1; at < path.size();) {
        const std::size_t end = std::min(path.find('/', at), path.size());
        const std::string name = path.substr(at, end - at);
        at = end + 1;
        if (name.empty()) continue;
        const Node& folder = mNodes.at(number);
        const auto found = folder.names.find(name);
        if (found == folder.names.end()) return 0;
        number = found->second;
    }
    return number;
}

LyingDisk::Number LyingDisk::FolderFor(const std::string& path, std::string& name) const {
    std::string trimmed = path;
    while (trimmed.ends_with('/')) trimmed.pop_back();
    const std::size_t slash = trimmed.find_last_of('/');
    name = trimmed.substr(slash + 1);
    return slash == std::string::npos ? 0 : Find(trimmed.substr(0, slash));
}

LyingDisk::Number LyingDisk::MakeNode(bool isFolder) {
    mNodes[++mLast].isFolder = isFolder;
    mNodes[mLast].modified = ++mClock;
    return mLast;
}

void LyingDisk::SetNames(Number folder, std::vector<std::pair<std::string, Number>> names, bool makesFolder) {
    Change change{Change::Kind::NAMES, folder, 0, {}, std::move(names), makesFolder};
    Apply(mNodes, change, 0);
    mLog.push_back(std::move(change));
}

void LyingDisk::Write(Node& node, std::uint64_t offset, std::string_view bytes) {
    if (node.content.size() < offset + bytes.size()) node.content.resize(offset + bytes.size());
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const std::uint64_t at = offset + i;
        const bool onlySets = at >= node.setsBegin && at < node.setsEnd;
        char& byte = node.content[at];
        byte = onlySets ? static_cast<char>(byte | bytes[i]) : bytes[i];
    }
}

void LyingDisk::Apply(Nodes& nodes, const Change& change, std::size_t bytes) {
    Node& node = nodes[change.node];
    if (change.kind == Change::Kind::WRITE)
        Write(node, change.offset, std::string_view(change.bytes).substr(0, bytes));
    for (const auto& [name, number] : change.names) {
        if (number == 0) {
            node.names.erase(name);
        } else {
            node.names[name] = number;
            const auto [at, isNew] = nodes.try_emplace(number);
            if (isNew) at->second.isFolder = change.makesFolder;
        }
    }
}

int LyingDisk::Open(const std::string& path, files::OpenFor use) {
    if (const int error = Fault(); error != 0) return -error;
    const bool isNew = use == files::OpenFor::NEW_PRIVATE || use == files::OpenFor::NEW_SHARED;
    Number number = Find(path);
    if (number != 0 && isNew) return -EEXIST;
    if (number == 0) {
        if (!isNew && use != files::OpenFor::TRUNCATING) return -ENOENT;
        std::string name;
        const Number folder = FolderFor(path, name);
        if (folder == 0) return -ENOENT;
        number = MakeNode(false);
        mNodes[number].mode = use == files::OpenFor::NEW_PRIVATE ? 0600 : 0644;
        // Syncing the folder makes a new file durable along with its name.
        SetNames(folder, {{name, number}});
    }
    if (use == files::OpenFor::TRUNCATING) mNodes[number].content.clear();
    mHandles[++mLastHandle] = {number, 0};
    return mLastHandle;
}

int LyingDisk::Close(int handle) { return mHandles.erase(handle) == 1 ? 0 : -EBADF; }

std::int64_t LyingDisk::ReadAt(int handle, std::uint64_t offset, char* bytes, std::size_t size) {
    if (const int error = Fault(); error != 0) return -error;
    const std::string& content = mNodes.at(mHandles.at(handle).node).content;
    if (offset >= content.size()) return 0;
    const std::size_t came = Transfer(std::min<std::size_t>(size, content.size() - offset));
    std::memcpy(bytes, content.data() + offset, came);
    return static_cast<std::int64_t>(came);
}

std::int64_t LyingDisk::ReadNext(int handle, char* bytes, std::size_t size) {
    OpenHandle& open = mHandles.at(handle);
    const std::int64_t came = ReadAt(handle, open.position, bytes, size);
    if (came > 0) open.position += static_cast<std::uint64_t>(came);
    return came;
}

std::int64_t LyingDisk::WriteAt(int handle, std::uint64_t offset, const char* bytes, std::size_t size) {
    if (const int error = Fault(); error != 0) return -error;
    const std::size_t some = std::min<std::uint64_t>(Transfer(size), mRoom);
    if (some == 0 && size != 0) return -ENOSPC;
    mRoom -= some;
    const Number number = mHandles.at(handle).node;
    Change change{Change::Kind::WRITE, number, offset, std::string(bytes, some), {}, false};
    Apply(mNodes, change, some);
    mNodes[number].modified = ++mClock;
    mLog.push_back(std::move(change));
    return static_cast<std::int64_t>(some);
}

std::int64_t LyingDisk::WriteNext(int handle, const char* bytes, std::size_t size) {
    OpenHandle& open = mHandles.at(handle);
    const std::int64_t written = WriteAt(handle, open.position, bytes, size);
    if (written > 0) open.position += static_cast<std::uint64_t>(written);
    return written;
}

int LyingDisk::Sync(int handle) {
    if (const int error = Fault(); error != 0) return -error;
    mLog.push_back({Change::Kind::SYNC, mHandles.at(handle).node, 0, {}, {}, false});
    return 0;
}

files::FileStatus LyingDisk::StatusOfNode(Number number) const {
    const Node& node = mNodes.at(number);
    files::FileStatus status;
    status.kind = node.isFolder ? files::FileKind::FOLDER : files::FileKind::REGULAR;
    status.device = reinterpret_cast<std::uint64_t>(this);
    status.inode = number;
    status.size = node.content.size();
    status.mode = node.mode;
    status.modified = node.modified;
    return status;
}

int LyingDisk::Status(int handle, files::FileStatus& status) {
    status = StatusOfNode(mHandles.at(handle).node);
    return 0;
}

int LyingDisk::StatusOf(const std::string& path, bool /*follow*/, files::FileStatus& status) {
    const Number number = Find(path);
    if (number == 0) return -ENOENT;
    status = StatusOfNode(number);
    return 0;
}

int LyingDisk::SetOwner(int /*handle*/, std::uint32_t /*owner*/, std::uint32_t /*group*/) { return 0; }

int LyingDisk::SetMode(int handle, std::uint32_t mode) {
    mNodes.at(mHandles.at(handle).node).mode = mode;
    return 0;
}

int LyingDisk::Attributes(int /*handle*/, std::vector<std::pair<std::string, std::string>>& /*attributes*/) {
    return 0;
}

int LyingDisk::SetAttribute(int /*handle*/, const std::string& /*name*/, const std::string& /*value*/) {
    return 0;
}

int LyingDisk::Rename(const std::string& from, const std::string& to) {
    if (const int error = Fault(); error != 0) return -error;
    std::string fromName;
    std::string toName;
    const Number folder = FolderFor(from, fromName);
    if (folder == 0 || FolderFor(to, toName) != folder) return -EXDEV;
    const Number number = Find(from);
    if (number == 0) return -ENOENT;
    SetNames(folder, {{toName, number}, {fromName, 0}});
    return 0;
}

int LyingDisk::Remove(const std::string& path) {
    if (const int error = Fault(); error != 0) return -error;
    std::string name;
    const Number folder = FolderFor(path, name);
    if (Find(path) == 0) return -ENOENT;
    SetNames(folder, {{name, 0}});
    return 0;
}

int LyingDisk::RemoveFolder(const std::string& path) {
    const Number number = Find(path);
    if (number == 0) return -ENOENT;
    if (!mNodes.at(number).names.empty()) return -ENOTEMPTY;
    return Remove(path);
}

int LyingDisk::MakeFolder(const std::string& path) {
    if (const int error = Fault(); error != 0) return -error;
    if (Find(path) != 0) return -EEXIST;
    std::string name;
    const Number folder = FolderFor(path, name);
    if (folder == 0) return -ENOENT;
    SetNames(folder, {{name, MakeNode(true)}}, /*makesFolder=*/true);
    return 0;
}

int LyingDisk::List(const std::string& path, std::vector<std::string>& names) {
    if (const int error = Fault(); error != 0) return -error;
    const Number number = Find(path);
    if (number == 0) return -ENOENT;
    for (const auto& [name, node] : mNodes.at(number).names) names.push_back(name);
    return 0;
}

int LyingDisk::ReadLink(const std::string& /*path*/, std::string& /*target*/) { return -EINVAL; }

int LyingDisk::TryLock(int /*handle*/, files::LockMode /*mode*/) { return 0; }

std::string LyingDisk::RandomWord() {
    std::string word = std::to_string(++mWords);
    return std::string(8 - word.size(), 'x') + word;
}

}  // namespace KesTest
