#pragma once

#include "plugins/binary/CBinaryWriter.h"

#include <string>
#include <utility>
#include <vector>

namespace VemoKesConfigTools {

/// Writes a configuration to the stores of a device, and makes those that are missing.
class CKldWriter final : public CBinaryWriter {
public:
    /// When it merges, keys of the configuration replace equal ones on the device and all others stay;
    /// otherwise the device holds the configuration and nothing else afterwards.
    CKldWriter(std::string connection, bool isMerging)
        : mConnection(std::move(connection)), mIsMerging(isMerging) {}

protected:
    void Save(std::vector<EncodedPlace> places, CKesContext& context, std::string& subject) override;

private:
    std::string mConnection;
    bool mIsMerging;
};

}  // namespace VemoKesConfigTools
