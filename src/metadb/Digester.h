#pragma once

#include "metadb/MetadataModel.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>
#include <zlib.h>

namespace VemoKesConfigTools::metadb {

/// Computes a CRC-32 over records. The input is buffered, since most of the values are short. Each text is
/// preceded by its length, so that different lists never give the same input.
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

}  // namespace VemoKesConfigTools::metadb
