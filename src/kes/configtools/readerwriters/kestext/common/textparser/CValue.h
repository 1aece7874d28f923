#pragma once

#include "kes/configtools/readerwriters/kestext/common/textparser/CParseContext.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/CTokenString.h"
#include "model/IMetadata.h"
#include "model/IPayload.h"

#include <cstdint>
#include <vector>

namespace VemoKesConfigTools {

/// The base of all values. `Parse` reads the text and checks syntax and the limits of the token's own type;
/// `Action` then holds the result against the key's metadata and appends payloads, which belong to the
/// vector's owner. Both are called once, in this order.
class CValue : public CTokenString {
public:
    CValue(CTextReader* source, CParseContext* context) : CTokenString(source), mpParseContext(context) {}

    virtual CParserError Parse() = 0;
    virtual CParserError Action(std::vector<IPayload*>& payloads, CParseContext* context,
                                const IMetadata& metadata) = 0;
    /// Removes the key of `mpMetadata` with these indices from the configuration.
    virtual CParserError RemoveElement(const std::vector<std::uint32_t>& indices);
    /// Whether nothing is left on the line.
    virtual bool IsEmptyValue() { return mpSource->AtLineEnd(); }
    /// Whether the value can stand without metadata, under a key number.
    virtual bool IsRaw() const { return false; }

    CParseContext* mpParseContext;
    const IMetadata* mpMetadata = nullptr;  ///< set by the line parser before `Parse`; not owned
};

/// Payloads that nobody has taken over yet.
class COwnedPayloads {
public:
    COwnedPayloads() = default;
    COwnedPayloads(const COwnedPayloads&) = delete;
    COwnedPayloads& operator=(const COwnedPayloads&) = delete;
    ~COwnedPayloads() { Clear(); }

    std::vector<IPayload*>& List() { return mList; }
    void Clear() {
        for (const IPayload* payload : mList) delete payload;
        mList.clear();
    }
    /// They have a new owner.
    void Release() { mList.clear(); }

private:
    std::vector<IPayload*> mList;
};

/// What an `Action` adds to an error about a range: " must be LO" or " must be between LO and HI
/// (val=VALUE)".
std::string RangeDetail(std::int64_t lo, std::int64_t hi, const std::string& value);

}  // namespace VemoKesConfigTools
