#pragma once

#include "kes/configtools/readerwriters/kestext/common/kesparser/CKesParser.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/CPlainCursor.h"

#include <vector>

namespace VemoKesConfigTools {

class CComplexPayload;
class CStructField;

/// Reads a value in its usual form straight from the text: without tokens, and payload by payload as it goes.
/// It takes only what the value tokens would take, with the same payloads; whatever else there is, an error
/// or a form that is rare, it refuses without a word and leaves to them.
class CPlainValue {
public:
    /// The payloads go behind those of the list, which owns them.
    CPlainValue(CPlainCursor& cursor, std::vector<IPayload*>& payloads)
        : mCursor(cursor), mPayloads(payloads) {}

    /// Reads the value of a key. After a refusal, cursor and list stand anywhere.
    bool Read(const IMetadata& metadata);

private:
    bool ReadScalar(KEYTYPE type, const IMetadata& metadata);
    template <typename T>
    bool ReadInteger(T& value);
    template <typename T>
    bool ReadIntegerValue(const IMetadata& metadata);
    bool ReadEnum(const IMetadata& metadata);
    bool ReadOctets(const IMetadata& metadata);
    bool ReadQuoted(const IMetadata& metadata);
    bool ReadArray(const IMetadata& metadata);
    bool ReadStruct(const IMetadata& metadata);
    bool ReadField(const CStructField& field, CComplexPayload& outer);
    template <typename T>
    bool ReadBitFieldValue(const CStructField& field);
    bool ReadBitField(const CStructField& field);

    CPlainCursor& mCursor;
    std::vector<IPayload*>& mPayloads;
};

}  // namespace VemoKesConfigTools
