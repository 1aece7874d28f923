#pragma once

#include "plugins/image/CImageReader.h"

#include <string>
#include <utility>

namespace VemoKesConfigTools {

/// Reads the store sets of a device. `STR_STORESET_FILTER` selects one by its device number: 15 selects
/// everything that is in no other set; an empty value, -1 and 7 select everything.
class CIspReader final : public CImageReader {
public:
    explicit CIspReader(std::string connection) : CImageReader(std::move(connection), ImageFamily::Isp) {}

protected:
    PlaceFilter FilterOf(const CKesContext& context) const override;
};

}  // namespace VemoKesConfigTools
