#pragma once

#include "model/IMetadataDetail.h"

#include <utility>

namespace VemoKesConfigTools {

/// The detail of a simple key: nothing.
class KES_API CMetadataDetailSimple final : public IMetadataDetail {};

/// The enumerators of an enum key.
class KES_API CMetadataDetailEnum final : public IMetadataDetail {
public:
    explicit CMetadataDetailEnum(EnumMap enums) : mEnums(std::move(enums)) {}
    const EnumMap* Enums() const override { return &mEnums; }

private:
    EnumMap mEnums;
};

/// The fields of a struct key, not owned: their provider keeps them.
class KES_API CMetadataDetailStruct final : public IMetadataDetail {
public:
    explicit CMetadataDetailStruct(FieldList fields) : mFields(std::move(fields)) {}
    const FieldList& Fields() const override { return mFields; }

private:
    FieldList mFields;
};

}  // namespace VemoKesConfigTools
