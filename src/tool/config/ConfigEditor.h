#pragma once

#include "kes/configtools/readerwriters/kestext/common/textindex/EditText.h"
#include "tool/config/ConfigLoader.h"
#include "tool/keys/KeyAddress.h"

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace kes::tool {

enum class EditKind { Set, Add, Unset };

/// One key to be changed, and its new value.
struct Assignment {
    KeyAddress key;
    std::string value;
};

/// Where such a key lies, or is to go.
struct EditTarget {
    std::shared_ptr<api::Subsystem> subsystem;
    std::int32_t psid;
    VemoKesConfigTools::TextPlace place;
};

/// Whether a text names a place by a "file" line.
bool IsFilePlace(const VemoKesConfigTools::TextPlace& place);

/// Changes keys in the configuration that was loaded last.
class ConfigEditor {
public:
    /// `name` is how messages name the configuration.
    ConfigEditor(const Settings& settings, ConfigLoader& loader, std::string name)
        : mSettings(settings), mLoader(loader), mName(std::move(name)) {}

    /// The places of the keys. Throws `Failure` for what was asked wrongly.
    std::vector<EditTarget> FindTargets(EditKind kind, const PlaceOptions& place,
                                        const std::vector<Assignment>& assignments);
    /// Makes the changes. False when one of them is refused, with the reason printed; some others may have
    /// been made by then.
    bool Apply(EditKind kind, const std::vector<EditTarget>& targets,
               const std::vector<Assignment>& assignments);

private:
    EditTarget FindTarget(EditKind kind, const PlaceFilter& filter, const KeyAddress& address);
    EditTarget FindRoom(const PlaceFilter& filter, const KeyAddress& address,
                        const std::vector<KeyCandidate>& candidates);
    bool Change(EditKind kind, const EditTarget& target, const Assignment& assignment);
    bool ChangeByText(const EditTarget& target, const Assignment& assignment);
    bool EndInTheirLines(const std::vector<EditTarget>& targets, const std::vector<Assignment>& assignments);
    void Refuse(const std::string& text);

    const Settings& mSettings;
    ConfigLoader& mLoader;
    std::string mName;
};

}  // namespace kes::tool
