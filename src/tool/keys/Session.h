#pragma once

#include "metadata/NetMetadataProvider.h"
#include "tool/keys/Settings.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kes::tool {

namespace api = VEMO::Kes::ConfigurationTools;

/// The library, started on the plug-ins and the database of the options. Throws `Failure` when a plug-in is
/// missing or the database is not what it should be. One at a time.
class Session {
public:
    explicit Session(const Settings& settings);
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    ~Session();

    api::NetMetadataProvider& Metadata() { return *mMetadata; }
    const std::string& Database() const { return mDatabase; }
    const std::vector<std::shared_ptr<api::Chip>>& Chips() const { return mChips; }

    /// The chip of this label; for an empty one the first of the database. Throws `Failure`.
    std::shared_ptr<api::Chip> FindChip(const std::string& label) const;
    /// The same, null when there is none of this label.
    std::shared_ptr<api::Chip> TryChip(const std::string& label) const;
    std::vector<std::shared_ptr<api::Subsystem>> Subsystems(const api::Chip& chip);
    /// The keys of a subsystem, by number.
    std::vector<std::shared_ptr<api::Metadata>> Keys(const api::Chip& chip, const api::Subsystem& subsystem);
    /// The key of this number, or of this name without one; null when the subsystem has none.
    std::shared_ptr<api::Metadata> FindKey(const api::Chip& chip, const api::Subsystem& subsystem,
                                           const std::string& name, std::optional<std::uint32_t> number);
    /// Completes the record of a key with its enumerators and fields, unless it has them.
    void LoadDetails(const api::Chip& chip, const std::shared_ptr<api::Subsystem>& subsystem,
                     const std::shared_ptr<api::Metadata>& key);
    /// The names of all keys of a chip.
    std::vector<std::string> KeyNames(const api::Chip& chip);

private:
    void FailOnError() const;

    std::string mDatabase;
    std::optional<api::NetMetadataProvider> mMetadata;
    std::vector<std::shared_ptr<api::Chip>> mChips;
};

/// Refuses a path that cannot pass the library unchanged. Throws `Failure`.
void CheckUtf8(const std::string& path);

/// The text of a host string that may be null.
std::string Text(const api::HostString& text);

}  // namespace kes::tool
