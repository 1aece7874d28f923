#pragma once

#include "plugins/binary/CBinaryWriter.h"

#include <string>
#include <utility>
#include <vector>

namespace VemoKesConfigTools {

/// Writes a folder of chunk files, one for each place. Existing chunk files of places that the configuration
/// does not have are removed; other files are never touched. A reader finds all old files or all new ones,
/// even if the save was interrupted.
class CPackintWriter final : public CBinaryWriter {
public:
    explicit CPackintWriter(std::string folder) : mFolder(std::move(folder)) {}

protected:
    void Save(std::vector<EncodedPlace> places, CKesContext& context, std::string& subject) override;

private:
    std::string mFolder;
};

}  // namespace VemoKesConfigTools
