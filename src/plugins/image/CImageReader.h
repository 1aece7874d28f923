#pragma once

#include "plugins/binary/CBinaryReader.h"
#include "plugins/image/ImageFormat.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace VemoKesConfigTools {

/// Reads a device image of one family.
class CImageReader : public CBinaryReader {
public:
    CImageReader(std::string connection, ImageFamily family)
        : mConnection(std::move(connection)), mFamily(family) {}

protected:
    using PlaceFilter = std::function<bool(const BinaryPlace&)>;

    /// Selects the places to read; all of them unless a family overrides it. Throws `Refusal`.
    virtual PlaceFilter FilterOf(const CKesContext& context) const;

    std::vector<EncodedPlace> Collect(CKesContext& context, std::string& subject) override;

private:
    std::string mConnection;
    ImageFamily mFamily;
};

}  // namespace VemoKesConfigTools
