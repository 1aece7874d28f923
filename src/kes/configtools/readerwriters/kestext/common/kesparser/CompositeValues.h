#pragma once

#include "kes/configtools/readerwriters/kestext/common/kesparser/CKesParser.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/CValue.h"

#include <memory>
#include <string>
#include <vector>

namespace VemoKesConfigTools {

class CStructField;

/// A braced list of items of one type. Its payloads stand side by side in the element.
class CArray final : public CValue {
public:
    using CValue::CValue;

    static bool Is(CTextReader& source) { return source.PeekChar() == '{'; }
    /// array ::= "{" value {"," value} "}"
    CParserError Parse() override;
    /// The same for a record that the caller has. Holds the number of items against the metadata.
    CParserError Parse(const IMetadata& metadata, CParseContext* context);
    CParserError Action(std::vector<IPayload*>& payloads, CParseContext* context,
                        const IMetadata& metadata) override;

private:
    CParserError ParseItem(const IMetadata& metadata, CParseContext* context);

    std::vector<std::unique_ptr<CValue>> mItems;
};

/// A braced list of one value for each field of a struct, in the order of the metadata. Makes one composite
/// payload.
class CStruct final : public CValue {
public:
    using CValue::CValue;

    static bool Is(CTextReader& source) { return source.PeekChar() == '{'; }
    /// struct ::= "{" value {"," value} "}"
    CParserError Parse() override;
    /// The same for a record that the caller has.
    CParserError Parse(const IMetadata& metadata, CParseContext* context);
    CParserError Action(std::vector<IPayload*>& payloads, CParseContext* context,
                        const IMetadata& metadata) override;

    /// The kind of integer that a bit field of the type "integer" takes.
    static KEYTYPE Width(const CStructField& field);
    /// The payload type of the items of an array field; false for a type that has none.
    static bool GetPayloadType(const std::string& typeName, PayloadTypeEnum& type);

private:
    CParserError ParseField(const CStructField& field, CParseContext* context);

    std::vector<std::unique_ptr<CValue>> mItems;
};

/// Numbers and octet strings between percent signs: the one form that needs no metadata.
class CRaw final : public CValue {
public:
    using CValue::CValue;

    static bool Is(CTextReader& source) { return source.PeekChar() == '%'; }
    /// raw ::= "%" {blank} {item {blank}} "%"     item ::= integer | octets
    /// In the subsystem bt, on all but four chips, the items are 16-bit integers only.
    CParserError Parse() override;
    CParserError Action(std::vector<IPayload*>& payloads, CParseContext* context,
                        const IMetadata& metadata) override;
    bool IsRaw() const override { return true; }

private:
    bool IsWordMode() const;
    std::unique_ptr<CValue> NewItem(bool wordMode);

    std::vector<std::unique_ptr<CValue>> mItems;
};

}  // namespace VemoKesConfigTools
