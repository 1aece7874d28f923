#pragma once

#include "plugins/binary/CBinaryWriter.h"

#include <string>
#include <utility>
#include <vector>

namespace VemoKesConfigTools {

/// Writes a configuration to the EEPROM of a device, in place of all that it held. `STR_EEPROM_SIZE_EXP` says
/// how large it is, as a power of two, and `STR_EEPROM_I2C_MASK` what its header says of the bus; without
/// them it is as it is. A blank chip is formatted.
class CEepromWriter final : public CBinaryWriter {
public:
    explicit CEepromWriter(std::string connection) : mConnection(std::move(connection)) {}

protected:
    void Save(std::vector<EncodedPlace> places, CKesContext& context, std::string& subject) override;

private:
    std::string mConnection;
};

}  // namespace VemoKesConfigTools
