#include "metadb/MetadataModel.h"

#include "metadb/Digester.h"

#include <algorithm>
#include <map>

namespace VemoKesConfigTools::metadb {

namespace {

/// Finds how deep each struct goes, and one that holds itself.
class DepthFinder {
public:
    explicit DepthFinder(const SubsystemData& subsystem) {
        for (const StructType& type : subsystem.structs) mTypes.emplace(type.name, Visit{&type});
    }

    std::optional<TypeFault> Run() {
        for (const auto& [name, visit] : mTypes) {
            Depth(name, 1);
            if (!mFault.text.empty()) return mFault;
        }
        return std::nullopt;
    }

private:
    struct Visit {
        const StructType* type;
        std::size_t depth = 0;  ///< 0 until it is known
        bool open = false;
    };

    std::size_t Depth(std::string_view name, std::size_t above) {
        const auto found = mTypes.find(name);
        if (found == mTypes.end() || !mFault.text.empty()) return 0;
        Visit& visit = found->second;
        if (visit.open) return Fail(visit, "it holds itself");
        if (above > MAXIMUM_STRUCT_DEPTH) return FailDepth(visit);
        if (visit.depth == 0) {
            visit.open = true;
            std::size_t deepest = 0;
            for (const FieldData& field : visit.type->fields) {
                deepest = std::max(deepest, Depth(field.type, above + 1));
            }
            visit.open = false;
            visit.depth = deepest + 1;
            if (visit.depth > MAXIMUM_STRUCT_DEPTH) return FailDepth(visit);
        }
        return visit.depth;
    }

    std::size_t Fail(const Visit& visit, std::string text) {
        if (mFault.text.empty()) mFault = {visit.type->name, std::move(text)};
        return 0;
    }
    std::size_t FailDepth(const Visit& visit) {
        return Fail(visit, "it is nested more than " + std::to_string(MAXIMUM_STRUCT_DEPTH) + " deep");
    }

    std::map<std::string, Visit, std::less<>> mTypes;
    TypeFault mFault;
};

}  // namespace

std::optional<TypeFault> FindTypeFault(const SubsystemData& subsystem) {
    return DepthFinder(subsystem).Run();
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
