#pragma once

#include "plugins/binary/CBinaryWriter.h"

#include <string>
#include <utility>
#include <vector>

namespace VemoKesConfigTools {

/// Writes a configuration to the store sets of a device: those for which it has places are replaced, the
/// others are unchanged. With `STR_RESET_DEVICE_AFTER` the device is requested to reset.
class CIspWriter final : public CBinaryWriter {
public:
    explicit CIspWriter(std::string connection) : mConnection(std::move(connection)) {}

protected:
    void Save(std::vector<EncodedPlace> places, CKesContext& context, std::string& subject) override;

private:
    std::string mConnection;
};

}  // namespace VemoKesConfigTools
