#include "metadb/MetadataModel.h"

#include "metadb/Digester.h"

#include <algorithm>
#include <map>

namespace VemoKesConfigTools::metadb {

namespace {

/// Determines the depth and the number of values of each struct, visiting each only once.
class TypeChecker {
public:
    explicit TypeChecker(const SubsystemData& subsystem) : mSubsystem(subsystem) {
        for (const StructType& type : subsystem.structs) mTypes.emplace(type.name, Measured{&type});
    }

    std::optional<TypeFault> Run() {
        for (auto& [name, type] : mTypes) {
            Measure(type, 1);
            if (mFault) return mFault;
        }
        for (const KeyData& key : mSubsystem.keys) {
            const auto type = mTypes.find(key.type);
            if (type == mTypes.end() || type->second.values <= MAXIMUM_STRUCT_VALUES) continue;
            return TypeFault{&key, key.type,
                             "its struct " + key.type + " contains more than " +
                                 std::to_string(MAXIMUM_STRUCT_VALUES) + " values"};
        }
        return std::nullopt;
    }

private:
    struct Measured {
        const StructType* type;
        std::size_t depth = 0;   ///< 0 until known
        std::size_t values = 0;  ///< capped at one above the maximum, so that it cannot overflow
        bool open = false;       ///< being measured: found again, it contains itself
    };

    void Measure(Measured& measured, std::size_t above) {
        if (measured.open) return Fail(measured, "it contains itself");
        // Checked on the way down as well, to limit this recursion itself.
        if (above > MAXIMUM_STRUCT_DEPTH) return FailDepth(measured);
        if (measured.depth != 0) return;
        measured.open = true;
        std::size_t deepest = 0;
        std::size_t values = 0;
        for (const FieldData& field : measured.type->fields) {
            const auto inner = mTypes.find(field.type);
            if (inner == mTypes.end()) {
                ++values;
                continue;
            }
            Measure(inner->second, above + 1);
            if (mFault) return;
            deepest = std::max(deepest, inner->second.depth);
            values = std::min(values + inner->second.values, MAXIMUM_STRUCT_VALUES + 1);
        }
        measured.open = false;
        measured.depth = deepest + 1;
        measured.values = std::min(values, MAXIMUM_STRUCT_VALUES + 1);
        if (measured.depth > MAXIMUM_STRUCT_DEPTH) FailDepth(measured);
    }

    void Fail(const Measured& measured, std::string text) {
        mFault = TypeFault{nullptr, measured.type->name, std::move(text)};
    }
    void FailDepth(const Measured& measured) {
        Fail(measured, "it is nested more than " + std::to_string(MAXIMUM_STRUCT_DEPTH) + " levels deep");
    }

    const SubsystemData& mSubsystem;
    std::map<std::string, Measured, std::less<>> mTypes;
    std::optional<TypeFault> mFault;
};

}  // namespace

std::optional<TypeFault> FindTypeFault(const SubsystemData& subsystem) {
    return TypeChecker(subsystem).Run();
}

std::uint32_t DigestOf(const SubsystemData& subsystem) {
    Digester digest;
    for (const std::string* text : {&subsystem.name, &subsystem.alias, &subsystem.version, &subsystem.layer,
                                    &subsystem.variant, &subsystem.description, &subsystem.buildDate}) {
        digest.Add(*text);
    }
    digest.Count(subsystem.enums);
    for (const EnumType& type : subsystem.enums) {
        digest.Add(type.name);
        digest.Add(type.values);
    }
    digest.Count(subsystem.structs);
    for (const StructType& type : subsystem.structs) {
        digest.Add(type.name);
        digest.Count(type.fields);
        for (const FieldData& field : type.fields) {
            digest.Add(static_cast<const RecordData&>(field));
            digest.Add(std::int64_t{field.lsb});
            digest.Add(std::int64_t{field.width});
        }
    }
    digest.Count(subsystem.keys);
    for (const KeyData& key : subsystem.keys) {
        digest.Add(static_cast<const RecordData&>(key));
        digest.Add(std::int64_t{key.psid});
        digest.Count(key.indexes);
        for (const IndexData& index : key.indexes) digest.Add(index);
        digest.Count(key.defaults);
        for (const DefaultValue& value : key.defaults) {
            digest.Add(value.indexes);
            digest.Add(value.value);
        }
    }
    return digest.Sum();
}

}  // namespace VemoKesConfigTools::metadb
