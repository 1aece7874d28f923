#include "model/IMetadataDetail.h"

namespace VemoKesConfigTools {

const IMetadataDetail::FieldList& IMetadataDetail::Fields() const {
    static const FieldList none;
    return none;
}

}  // namespace VemoKesConfigTools
