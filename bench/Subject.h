#pragma once

#include "bench/Workload.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace KesBench {

/// A library that is measured: this one, or one that a user could pick instead. All do the same with a
/// workload, each in its usual way.
class Subject {
public:
    Subject() = default;
    Subject(const Subject&) = delete;
    Subject& operator=(const Subject&) = delete;
    virtual ~Subject() = default;

    /// Reads the file and keeps its content in place of what there was.
    virtual void Load(const std::string& path) = 0;
    virtual void Clear() = 0;
    /// How many keys are held: proof that all was read.
    virtual std::size_t Keys() const = 0;
    /// A value as text. The key is one of those that `Prepare` was told.
    virtual std::string Get(std::size_t prepared) = 0;
    /// Takes a value from its text.
    virtual void Set(std::size_t prepared, const std::string& text) = 0;
    virtual void Save(const std::string& path) = 0;
    /// The integers that `Get` and `Set` will ask for: name of the place, and of the key.
    virtual void Prepare(const Workload& workload, const std::vector<std::size_t>& keys) = 0;
    virtual Workload::Format Format() const = 0;
};

/// What most subjects find a value by.
struct Address {
    std::string place;
    std::string name;
};
std::vector<Address> AddressesOf(const Workload& workload, const std::vector<std::size_t>& keys);

/// The whole file.
std::string ReadFile(const std::string& path);

std::unique_ptr<Subject> MakeKes(const Workload& workload);
std::unique_ptr<Subject> MakeToml(const Workload& workload);
std::unique_ptr<Subject> MakeNlohmann(const Workload& workload);
std::unique_ptr<Subject> MakeRapidJson(const Workload& workload);
std::unique_ptr<Subject> MakeLibconfig(const Workload& workload);

}  // namespace KesBench
