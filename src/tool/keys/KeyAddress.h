#pragma once

#include "facade/FrameworkFacade.h"
#include "metadata/KeyValue.h"
#include "tool/keys/Session.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kes::tool {

/// A key number in decimal or, behind "0x", in hexadecimal.
std::optional<std::uint32_t> ParseKeyNumber(std::string_view text);

/// A key as it is given at the prompt: a name or a number, and the indexes of a table key, as in
/// "tx_power_limit.0.1".
struct KeyAddress {
    /// Throws `Failure` for a text that cannot be a key.
    explicit KeyAddress(const std::string& word);

    std::string text;  ///< as it was given
    std::string name;  ///< empty for a number
    std::optional<std::uint32_t> number;
    api::KeyValue::IndexList indexes;

    api::FrameworkFacade::IndexListRef IndexList() const {
        return std::make_shared<api::KeyValue::IndexList>(indexes);
    }
};

/// The options that say where a key lies.
struct PlaceOptions {
    std::string subsystem;
    std::string device;
    std::string store;
};

/// The places that the options leave. Throws `Failure` for words that mean none.
class PlaceFilter {
public:
    PlaceFilter(Session& session, const api::Chip& chip, const PlaceOptions& options);

    bool Takes(api::SubsystemTypes subsystem, std::int32_t device, std::int32_t store) const;
    bool Takes(const api::KeyValue& key) const {
        return Takes(key.SubsystemType(), key.DeviceId(), key.StoreId());
    }
    const std::vector<std::shared_ptr<api::Subsystem>>& Subsystems() const { return mSubsystems; }
    std::optional<std::int32_t> Device() const { return mDevice; }
    std::optional<std::int32_t> Store() const { return mStore; }

private:
    std::vector<std::shared_ptr<api::Subsystem>> mSubsystems;
    std::optional<std::int32_t> mDevice;
    std::optional<std::int32_t> mStore;
};

/// A key of one subsystem that an address may mean.
struct KeyCandidate {
    std::shared_ptr<api::Subsystem> subsystem;
    std::int32_t psid = 0;
    std::string name;                       ///< empty for a number that the metadata does not know
    std::shared_ptr<api::Metadata> record;  ///< null for such a number
};

/// The keys that an address may mean, one at most in each subsystem. A number may be a key that the metadata
/// does not know; throws `Failure` for a name that it does not know.
std::vector<KeyCandidate> FindCandidates(Session& session, const api::Chip& chip, const PlaceFilter& filter,
                                         const KeyAddress& address);

/// Throws `Failure` for indexes that a key is not to have, where the text format would take them: none, or
/// one beyond its range.
void CheckIndexes(const KeyCandidate& candidate, const KeyAddress& address);

/// The values that a configuration holds of the candidates, in the places of the filter.
std::vector<std::shared_ptr<api::KeyValue>> FindValues(api::FrameworkFacade& facade,
                                                       const std::vector<KeyCandidate>& candidates,
                                                       const PlaceFilter& filter, const KeyAddress& address);

/// "bt smem 1".
std::string PlaceText(api::SubsystemTypes subsystem, std::int32_t device, std::int32_t store);
std::string PlaceText(const api::KeyValue& key);

/// Name or number with its indexes, as a text has it.
std::string KeyText(const api::KeyValue& key);

/// Throws `Failure`: the key is in several places, which are listed with their values.
[[noreturn]] void FailNotUnique(const KeyAddress& address,
                                const std::vector<std::shared_ptr<api::KeyValue>>& values);

}  // namespace kes::tool
