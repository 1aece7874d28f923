#include "bench/Subject.h"

#include <fstream>
#include <nlohmann/json.hpp>

namespace KesBench {

namespace {

class NlohmannSubject final : public Subject {
public:
    void Load(const std::string& path) override { mRoot = nlohmann::json::parse(ReadFile(path)); }
    void Clear() override { mRoot = nullptr; }
    std::size_t Keys() const override {
        std::size_t keys = 0;
        for (const auto& place : mRoot) keys += place.size();
        return keys;
    }
    std::string Get(std::size_t prepared) override {
        const Address& address = mAddresses[prepared];
        return mRoot.at(address.place).at(address.name).dump();
    }
    void Set(std::size_t prepared, const std::string& text) override {
        const Address& address = mAddresses[prepared];
        mRoot[address.place][address.name] = nlohmann::json::parse(text);
    }
    void Save(const std::string& path) override {
        std::ofstream file(path);
        file << mRoot.dump(1);
    }
    void Prepare(const Workload& workload, const std::vector<std::size_t>& keys) override {
        mAddresses = AddressesOf(workload, keys);
    }
    Workload::Format Format() const override { return Workload::Format::Json; }

private:
    nlohmann::json mRoot;
    std::vector<Address> mAddresses;
};

}  // namespace

std::unique_ptr<Subject> MakeNlohmann(const Workload& /*workload*/) {
    return std::make_unique<NlohmannSubject>();
}

}  // namespace KesBench
