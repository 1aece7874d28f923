#pragma once

#include "plugins/binary/CBinaryWriter.h"

#include <string>
#include <utility>
#include <vector>

namespace VemoKesConfigTools {

/// Writes a configuration to the EEPROM of a device, replacing its whole content. `STR_EEPROM_SIZE_EXP` gives
/// its size as a power of two and `STR_EEPROM_I2C_MASK` the bus address mask in its header; an existing image
/// must match them. Tags that are not set are not checked. A blank chip is formatted.
class CEepromWriter final : public CBinaryWriter {
public:
    explicit CEepromWriter(std::string connection) : mConnection(std::move(connection)) {}

protected:
    void Save(std::vector<EncodedPlace> places, CKesContext& context, std::string& subject) override;

private:
    std::string mConnection;
};

}  // namespace VemoKesConfigTools
