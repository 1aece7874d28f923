#include "bench/Subject.h"

#include <libconfig.h++>

namespace KesBench {

namespace {

class LibconfigSubject final : public Subject {
public:
    void Load(const std::string& path) override {
        auto config = std::make_unique<libconfig::Config>();
        config->readFile(path.c_str());
        mpConfig = std::move(config);
    }
    void Clear() override { mpConfig = std::make_unique<libconfig::Config>(); }
    std::size_t Keys() const override {
        const libconfig::Setting& root = mpConfig->getRoot();
        std::size_t keys = 0;
        for (int i = 0; i < root.getLength(); ++i) keys += static_cast<std::size_t>(root[i].getLength());
        return keys;
    }
    std::string Get(std::size_t prepared) override { return std::to_string(static_cast<int>(At(prepared))); }
    void Set(std::size_t prepared, const std::string& text) override {
        libconfig::Config line;
        line.readString("value = " + text + ";");
        At(prepared) = static_cast<int>(line.getRoot()["value"]);
    }
    void Save(const std::string& path) override { mpConfig->writeFile(path.c_str()); }
    void Prepare(const Workload& workload, const std::vector<std::size_t>& keys) override {
        mAddresses = AddressesOf(workload, keys);
    }
    Workload::Format Format() const override { return Workload::Format::Libconfig; }

private:
    libconfig::Setting& At(std::size_t prepared) {
        const Address& address = mAddresses[prepared];
        return mpConfig->getRoot()[address.place.c_str()][address.name.c_str()];
    }
    std::unique_ptr<libconfig::Config> mpConfig = std::make_unique<libconfig::Config>();
    std::vector<Address> mAddresses;
};

}  // namespace

std::unique_ptr<Subject> MakeLibconfig(const Workload& /*workload*/) {
    return std::make_unique<LibconfigSubject>();
}

}  // namespace KesBench
