#include "bench/Subject.h"

#include <fstream>
#include <optional>
#include <sstream>
#include <toml++/toml.h>

namespace KesBench {

namespace {

class TomlSubject final : public Subject {
public:
    void Load(const std::string& path) override { mRoot = toml::parse(ReadFile(path)); }
    void Clear() override { mRoot.clear(); }
    std::size_t Keys() const override {
        std::size_t keys = 0;
        for (const auto& [name, place] : mRoot) keys += place.as_table()->size();
        return keys;
    }
    std::string Get(std::size_t prepared) override {
        const Address& address = mAddresses[prepared];
        std::ostringstream text;
        text << *mRoot.get_as<toml::table>(address.place)->get_as<std::int64_t>(address.name);
        return text.str();
    }
    void Set(std::size_t prepared, const std::string& text) override {
        const Address& address = mAddresses[prepared];
        const toml::table line = toml::parse("value = " + text);
        mRoot.get_as<toml::table>(address.place)->insert_or_assign(address.name, *line.get("value"));
    }
    void Save(const std::string& path) override {
        std::ofstream file(path);
        file << mRoot;
    }
    void Prepare(const Workload& workload, const std::vector<std::size_t>& keys) override {
        mAddresses = AddressesOf(workload, keys);
    }
    Workload::Format Format() const override { return Workload::Format::Toml; }

private:
    toml::table mRoot;
    std::vector<Address> mAddresses;
};

}  // namespace

std::unique_ptr<Subject> MakeToml(const Workload& /*workload*/) { return std::make_unique<TomlSubject>(); }

}  // namespace KesBench
