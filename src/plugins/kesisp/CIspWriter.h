#pragma once

#include "plugins/binary/CBinaryWriter.h"

#include <string>
#include <utility>
#include <vector>

namespace VemoKesConfigTools {

/// Writes a configuration to the store sets of a device: those in which it has a place are replaced, the
/// others stay. With `STR_RESET_DEVICE_AFTER` the device is asked for a reset.
class CIspWriter final : public CBinaryWriter {
public:
    explicit CIspWriter(std::string connection) : mConnection(std::move(connection)) {}

protected:
    void Save(std::vector<EncodedPlace> places, CKesContext& context, std::string& subject) override;

private:
    std::string mConnection;
};

}  // namespace VemoKesConfigTools
