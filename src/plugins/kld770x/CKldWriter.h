#pragma once

#include "plugins/binary/CBinaryWriter.h"

#include <string>
#include <utility>
#include <vector>

namespace VemoKesConfigTools {

/// Writes a configuration to the stores of a device and creates missing ones.
class CKldWriter final : public CBinaryWriter {
public:
    /// With merging, keys of the configuration replace the same keys on the device and all others stay.
    /// Without, the device contains only the configuration afterwards.
    CKldWriter(std::string connection, bool isMerging)
        : mConnection(std::move(connection)), mIsMerging(isMerging) {}

protected:
    void Save(std::vector<EncodedPlace> places, CKesContext& context, std::string& subject) override;

private:
    std::string mConnection;
    bool mIsMerging;
};

}  // namespace VemoKesConfigTools
