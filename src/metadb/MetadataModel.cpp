#include "metadb/MetadataModel.h"

#include <algorithm>
#include <array>
#include <map>
#include <zlib.h>

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

/// Feeds records to a CRC-32, many at once, since most of what they hold is short. Each text has its length
/// in front, so that no two lists read alike.
class Digester {
public:
    void Add(std::string_view text) {
        Add(static_cast<std::int64_t>(text.size()));
        mPending.append(text);
        if (mPending.size() >= BLOCK) Flush();
    }
    void Add(const std::string& text) { Add(std::string_view(text)); }
    void Add(std::int64_t number) {
        std::array<char, 8> bytes{};
        auto rest = static_cast<std::uint64_t>(number);
        for (char& byte : bytes) {
            byte = static_cast<char>(rest & 0xFFU);
            rest >>= 8U;
        }
        mPending.append(bytes.data(), bytes.size());
    }
    void Add(const NamedValues& values) {
        Add(static_cast<std::int64_t>(values.size()));
        for (const auto& [name, value] : values) {
            Add(name);
            Add(std::int64_t{value});
        }
    }
    void Add(const RecordData& record) {
        for (const std::string* text :
             {&record.name, &record.type, &record.label, &record.description, &record.descriptionInternal,
              &record.format, &record.units, &record.access, &record.oid, &record.source}) {
            Add(*text);
        }
        for (const std::int64_t number :
             {std::int64_t{record.uid}, record.min, record.max, std::int64_t{record.isInternal},
              std::int64_t{record.isArray}, record.arrayMin, record.arrayMax}) {
            Add(number);
        }
    }
    void Add(const IndexData& index) {
        Add(index.name);
        Add(index.min);
        Add(index.max);
        Add(std::int64_t{index.isEnum});
        Add(index.values);
    }
    template <typename Item>
    void Count(const std::vector<Item>& items) {
        Add(static_cast<std::int64_t>(items.size()));
    }
    std::uint32_t Sum() {
        Flush();
        return static_cast<std::uint32_t>(mSum);
    }

private:
    static constexpr std::size_t BLOCK = 16UL * 1024UL;

    void Flush() {
        mSum = crc32_z(mSum, reinterpret_cast<const Bytef*>(mPending.data()), mPending.size());
        mPending.clear();
    }

    std::string mPending;
    uLong mSum = crc32_z(0, nullptr, 0);
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
