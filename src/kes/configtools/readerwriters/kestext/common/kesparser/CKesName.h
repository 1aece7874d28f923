#pragma once

#include "kes/configtools/readerwriters/kestext/common/textparser/CName.h"

#include <cstdint>
#include <string>

namespace VemoKesConfigTools {

/// A key of the format: completes name or number from the metadata, reads the indexes of a table key, and
/// brings the place of its line to the context and the observer.
class CKesName : public CName {
public:
    using CName::CName;

    /// key ::= name-or-number {index}
    /// The number of indexes is compared with the metadata when there is at least one.
    CParserError Parse() override;
    /// Sets the context to the place of the line, announces it, and looks the key up there.
    CParserError Action() override;

private:
    CParserError LookupPSID(const std::string& name, std::uint32_t& id);
    CParserError LookupName(std::uint32_t id, std::string& name);
};

}  // namespace VemoKesConfigTools
