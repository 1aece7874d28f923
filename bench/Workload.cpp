#include "bench/Workload.h"

#include "metadb/MetadataDatabase.h"

#include <cstdio>
#include <fstream>
#include <stdexcept>
#include <string_view>
#include <unistd.h>
#include <utility>

namespace KesBench {

namespace {

namespace metadb = VemoKesConfigTools::metadb;
using Kind = Value::Kind;

/// Numbers of one seed, the same with every library and on every machine.
class Random {
public:
    explicit Random(std::uint64_t seed) : mState(seed) {}
    std::uint64_t Next() {
        std::uint64_t z = mState += 0x9E3779B97F4A7C15ULL;
        z = (z ^ (z >> 30U)) * 0xBF58476D1CE4E5B9ULL;
        z = (z ^ (z >> 27U)) * 0x94D049BB133111EBULL;
        return z ^ (z >> 31U);
    }
    std::size_t Below(std::size_t n) { return static_cast<std::size_t>(Next() % n); }
    std::size_t Between(std::size_t lo, std::size_t hi) { return lo + Below(hi - lo + 1); }

private:
    std::uint64_t mState;
};

struct IntegerType {
    const char* name;
    const char* format;
    std::int64_t min;
    std::int64_t max;
};
constexpr IntegerType INTEGERS[] = {
    {"uint8", "hexadecimal", 0, 255},           {"uint8", "unsigned_decimal", 0, 127},
    {"uint16", "unsigned_decimal", 0, 10000},   {"uint16", "hexadecimal", 0, 65535},
    {"uint32", "unsigned_decimal", 0, 1000000}, {"int16", "signed_decimal", -1000, 1000},
    {"int32", "signed_decimal", -100, 100000},  {"uint32", "hexadecimal", 0, 0xFFFFFFFF},
};
constexpr const char* ENUMERATORS[] = {"off",     "on",         "automatic", "low_power",
                                       "boosted", "calibrated", "test_mode", "factory"};
constexpr const char* SUBJECTS[] = {"rf_tx", "rf_rx", "clock", "sleep", "scan", "link", "audio", "gpio"};
constexpr const char* ASPECTS[] = {"power_limit", "gain_offset", "timeout_ms", "threshold",
                                   "retry_count", "channel_map", "trim_value", "mode_select"};
constexpr const char* WORDS[] = {"ostrell", "headset", "gateway", "left", "right", "north", "lab", "unit"};
constexpr std::size_t TYPES = 4;  ///< enum types and struct types of a subsystem

std::size_t EnumeratorsOf(std::size_t type) { return 3 + type; }

std::vector<std::int64_t> SmallNumbers(Random& random, std::size_t lo, std::size_t hi) {
    std::vector<std::int64_t> numbers(random.Between(lo, hi));
    for (std::int64_t& number : numbers) number = static_cast<std::int64_t>(random.Below(250));
    return numbers;
}

/// Half of ten keys are integers; which of the ten, is shuffled.
Kind KindOf(std::size_t key, std::uint64_t seed) {
    std::array kinds = {Kind::Integer,    Kind::Integer, Kind::Integer, Kind::Integer, Kind::Integer,
                        Kind::Enumerator, Kind::Text,    Kind::Octets,  Kind::Array,   Kind::Struct};
    Random random(seed * 31 + key / kinds.size());
    for (std::size_t i = kinds.size(); i > 1; --i) std::swap(kinds[i - 1], kinds[random.Below(i)]);
    return kinds[key % kinds.size()];
}

Value MakeValue(Kind kind, std::uint32_t& type, Random& random) {
    Value value;
    value.kind = kind;
    switch (kind) {
        case Kind::Integer: {
            type = static_cast<std::uint32_t>(random.Below(std::size(INTEGERS)));
            const IntegerType& integer = INTEGERS[type];
            value.isHexadecimal = std::string_view(integer.format) == "hexadecimal";
            value.number = static_cast<std::int64_t>(random.Below(100));
            break;
        }
        case Kind::Enumerator:
            type = static_cast<std::uint32_t>(random.Below(TYPES));
            value.text = ENUMERATORS[random.Below(EnumeratorsOf(type))];
            break;
        case Kind::Text:
            while (value.text.size() < 18)
                value.text.append(WORDS[random.Below(std::size(WORDS))]).append(" ");
            value.text.resize(random.Between(16, 20), '#');
            break;
        case Kind::Octets:
            value.text.resize(random.Between(6, 16));
            for (char& octet : value.text) octet = static_cast<char>(random.Below(256));
            break;
        case Kind::Array:
            value.items = SmallNumbers(random, 4, 8);
            break;
        case Kind::Struct:
            type = static_cast<std::uint32_t>(random.Below(TYPES));
            for (std::int64_t& field : value.fields) field = static_cast<std::int64_t>(random.Below(100));
            value.items = SmallNumbers(random, 2, 4);
            break;
    }
    return value;
}

std::string TypeName(const char* kind, std::size_t type) { return kind + std::to_string(type + 1) + "_t"; }

metadb::KeyData MakeKey(const Entry& entry, std::int32_t uid, std::uint32_t psid) {
    metadb::KeyData key;
    key.uid = uid;
    key.psid = psid;
    key.name = entry.name;
    key.label = entry.label;
    key.description = "Sets the " + entry.label + ". Takes effect with the next start of the subsystem.";
    key.access = "read_write";
    key.type = "octet_string";
    key.max = 64;
    switch (entry.value.kind) {
        case Kind::Integer:
            key.type = INTEGERS[entry.type].name;
            key.format = INTEGERS[entry.type].format;
            key.min = INTEGERS[entry.type].min;
            key.max = INTEGERS[entry.type].max;
            break;
        case Kind::Enumerator:
            key.type = TypeName("mode", entry.type);
            break;
        case Kind::Text:
            key.format = "unicode_string";
            break;
        case Kind::Octets:
            break;
        case Kind::Array:
            key.type = "uint8";
            key.format = "unsigned_decimal";
            key.max = 255;
            key.isArray = true;
            key.arrayMin = 1;
            key.arrayMax = 16;
            break;
        case Kind::Struct:
            key.type = TypeName("limits", entry.type);
            break;
    }
    return key;
}

metadb::FieldData MakeField(const char* name, const char* type, std::int64_t max, std::int32_t uid,
                            bool isArray) {
    metadb::FieldData field;
    field.uid = uid;
    field.name = name;
    field.type = type;
    field.format = "unsigned_decimal";
    field.max = max;
    field.access = "read_write";
    field.isArray = isArray;
    field.arrayMin = isArray ? 1 : 0;
    field.arrayMax = isArray ? 8 : 0;
    return field;
}

void AddTypes(metadb::SubsystemData& subsystem, std::int32_t& uid) {
    for (std::size_t type = 0; type < TYPES; ++type) {
        metadb::EnumType enumeration{TypeName("mode", type), {}};
        for (std::size_t i = 0; i < EnumeratorsOf(type); ++i)
            enumeration.values.emplace_back(ENUMERATORS[i], static_cast<std::int32_t>(i));
        subsystem.enums.push_back(std::move(enumeration));
        metadb::StructType structure{TypeName("limits", type), {}};
        structure.fields.push_back(MakeField("lowest", "uint8", 255, ++uid, false));
        structure.fields.push_back(MakeField("highest", "uint16", 65535, ++uid, false));
        structure.fields.push_back(MakeField("steps", "uint8", 255, ++uid, true));
        structure.fields.push_back(MakeField("flags", "uint32", 0xFFFF, ++uid, false));
        subsystem.structs.push_back(std::move(structure));
    }
}

}  // namespace

Workload::Workload(std::size_t keys, std::uint64_t seed) : mKeys(keys), mSeed(seed) {
    static int made = 0;
    mFolder = std::filesystem::temp_directory_path() /
              ("kes-bench-" + std::to_string(getpid()) + "-" + std::to_string(++made));
    std::filesystem::create_directory(mFolder);
    WriteDatabase();
}

Workload::~Workload() {
    std::error_code ignored;
    std::filesystem::remove_all(mFolder, ignored);
}

Entry Workload::At(std::size_t key) const {
    Random random(mSeed * 0x9E3779B97F4A7C15ULL + key);
    const char* const subject = SUBJECTS[random.Below(std::size(SUBJECTS))];
    const char* const aspect = ASPECTS[random.Below(std::size(ASPECTS))];
    Entry entry;
    entry.name = std::string(subject) + "_" + aspect + "_" + std::to_string(PsidOf(key));
    entry.label = std::string(subject) + " " + aspect + " " + std::to_string(PsidOf(key));
    entry.value = MakeValue(KindOf(key, mSeed), entry.type, random);
    return entry;
}

std::uint32_t Workload::PsidOf(std::size_t key) const {
    // The first key of the subsystem is the first whose place is not before its two places.
    const std::size_t place = PlaceOf(key) / 2 * 2;
    return static_cast<std::uint32_t>(key - (place * mKeys + PLACES - 1) / PLACES + 1);
}

std::size_t Workload::IntegerNear(std::size_t key) const {
    for (std::size_t i = 0; i < mKeys; ++i) {
        const std::size_t candidate = (key + i) % mKeys;
        if (KindOf(candidate, mSeed) == Kind::Integer) return candidate;
    }
    throw std::logic_error("no key is an integer");
}

void Workload::WriteDatabase() const {
    metadb::SystemData system;
    system.label = SYSTEM;
    system.chipId = CHIP_ID;
    std::int32_t uid = 0;
    std::size_t key = 0;
    for (std::size_t i = 0; i < SUBSYSTEMS; ++i) {
        metadb::SubsystemData& subsystem = system.subsystems.emplace_back();
        subsystem.name = NAMES[i];
        AddTypes(subsystem, uid);
        for (; key < mKeys && PlaceOf(key) / 2 == i; ++key)
            subsystem.keys.push_back(MakeKey(At(key), ++uid, PsidOf(key)));
    }
    std::ofstream(Database(), std::ios::binary) << metadb::SerializeDatabase({system});
}

std::string PlaceName(std::size_t place) {
    return Workload::NAMES[place / 2] + std::to_string(place % 2 + 1);
}

}  // namespace KesBench
