#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace KesBench {

/// A value as a text states it, in no format yet.
struct Value {
    enum class Kind { Integer, Enumerator, Text, Octets, Array, Struct };
    Kind kind = Kind::Integer;
    bool isHexadecimal = false;            ///< an integer is written so
    std::int64_t number = 0;               ///< of an integer
    std::string text;                      ///< of an enumerator, a text, or the octets themselves
    std::vector<std::int64_t> items;       ///< of an array, or of the array in a struct
    std::array<std::int64_t, 3> fields{};  ///< of a struct, the array stands behind the second
};

struct Entry {
    std::string name;
    std::string label;
    std::uint32_t type = 0;  ///< which of the types of its kind
    Value value;
};

/// A made-up configuration of this many keys over ten places, two each of five subsystems, with a metadata
/// database that knows just these keys, and the same data in other formats. Of ten keys five are integers,
/// one each an enumerator, a quoted text, octets, an array and a struct, in shuffled order; every third has a
/// comment line. The same number and seed give the same files everywhere. The files go with the workload.
class Workload {
public:
    static constexpr std::size_t PLACES = 10;
    static constexpr std::size_t SUBSYSTEMS = PLACES / 2;
    static constexpr const char* SYSTEM = "bench";
    static constexpr std::uint16_t CHIP_ID = 76;
    static constexpr std::array<const char*, SUBSYSTEMS> NAMES = {"curator", "bt", "wlan", "audio", "app"};

    enum class Format { Kes, Toml, Json, Libconfig };

    explicit Workload(std::size_t keys, std::uint64_t seed = 1);
    Workload(const Workload&) = delete;
    Workload& operator=(const Workload&) = delete;
    ~Workload();

    std::size_t Keys() const { return mKeys; }
    /// Makes the file of the format and gives its path.
    std::string Text(Format format) const;
    std::string Database() const { return Path("bench.db"); }
    std::string Path(const char* name) const { return (mFolder / name).string(); }

    Entry At(std::size_t key) const;
    /// The place of a key and what its subsystem numbers it, from 1.
    std::size_t PlaceOf(std::size_t key) const { return key * PLACES / mKeys; }
    std::uint32_t PsidOf(std::size_t key) const;
    /// A key near this one whose value is an integer that takes "7".
    std::size_t IntegerNear(std::size_t key) const;

private:
    void WriteDatabase() const;

    std::size_t mKeys;
    std::uint64_t mSeed;
    std::filesystem::path mFolder;
};

/// "bt1" and the like.
std::string PlaceName(std::size_t place);

}  // namespace KesBench
