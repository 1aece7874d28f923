#pragma once

#include "messages/CMessageHandlerObserver.h"
#include "tool/config/ConfigReport.h"
#include "tool/keys/Session.h"

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kes::tool {

/// Helps with findings: what the metadata allows, and the near words. Says nothing that the message says.
class FindingNotes {
public:
    explicit FindingNotes(Session& session) : mSession(session) {}

    /// Adds notes, near words and the misspelt word to the record of a finding. `line` is the line of the
    /// text; empty when it is not known, or goes on from the line before.
    void Add(const api::Chip& chip, const VemoKesConfigTools::TextFinding& said, std::string_view line,
             Finding& finding);

private:
    struct Known {
        std::shared_ptr<api::Subsystem> subsystem;
        std::vector<std::shared_ptr<api::Metadata>> keys;
    };
    /// The key of a finding with its details, null when it is not known.
    std::shared_ptr<api::Metadata> FindKey(const api::Chip& chip,
                                           const VemoKesConfigTools::TextFinding& said);
    const std::vector<Known>& KeysOf(const api::Chip& chip);
    void AddNearKeys(const api::Chip& chip, const VemoKesConfigTools::TextFinding& said,
                     std::string_view line, Finding& finding);
    void AddPlace(const api::Chip& chip, const VemoKesConfigTools::TextFinding& said, std::string_view line,
                  Finding& finding);
    void AddValue(const api::Chip& chip, const VemoKesConfigTools::TextFinding& said, std::string_view line,
                  Finding& finding);

    Session& mSession;
    std::map<std::string, std::vector<Known>> mKeys;  ///< by system version label; asked for once
};

}  // namespace kes::tool
