#pragma once

#include "model/CStoreInfo.h"
#include "model/CSubsystemConfig.h"

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace VemoKesConfigTools {

/// What a configuration and its places share: the running number of their writes and, while a
/// `CConfigTransaction` lives, what the changes since its beginning took away. Private to the model.
class CChangeLog {
public:
    CChangeLog() = default;
    CChangeLog(const CChangeLog&) = delete;
    CChangeLog& operator=(const CChangeLog&) = delete;

    std::uint64_t NextWriteNumber() { return ++mWrites; }

    bool IsOpen() const { return mOpen; }
    void Open() { mOpen = true; }
    /// Forgets what was kept.
    void Close();
    /// Keeps what a change of a key took.
    void Record(CSubsystemConfig::KeyChange change) { mKeyChanges.push_back(std::move(change)); }
    /// Takes the changes of keys back, the newest first.
    void UndoKeys();

    /// The places that came since the beginning, in their order.
    std::vector<CSubsystemConfig*> newPlaces;
    /// The stores at the beginning, once a read has changed them.
    std::optional<std::vector<CStoreInfo>> storesBefore;

private:
    std::uint64_t mWrites = 0;
    bool mOpen = false;
    std::vector<CSubsystemConfig::KeyChange> mKeyChanges;
};

}  // namespace VemoKesConfigTools
