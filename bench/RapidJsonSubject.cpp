#include "bench/Subject.h"

#include <fstream>
#include <rapidjson/document.h>
#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>
#include <stdexcept>

namespace KesBench {

namespace {

rapidjson::Value& Member(rapidjson::Value& object, const std::string& name) {
    const rapidjson::Value key(name.data(), static_cast<rapidjson::SizeType>(name.size()));
    return object.FindMember(key)->value;
}

class RapidJsonSubject final : public Subject {
public:
    void Load(const std::string& path) override {
        rapidjson::Document root;
        const std::string text = ReadFile(path);
        root.Parse(text.data(), text.size());
        if (root.HasParseError()) throw std::runtime_error("the workload has errors");
        mRoot.Swap(root);
    }
    void Clear() override {
        rapidjson::Document nothing;
        mRoot.Swap(nothing);
    }
    std::size_t Keys() const override {
        std::size_t keys = 0;
        for (const auto& place : mRoot.GetObject()) keys += place.value.MemberCount();
        return keys;
    }
    std::string Get(std::size_t prepared) override {
        rapidjson::StringBuffer text;
        rapidjson::Writer<rapidjson::StringBuffer> writer(text);
        At(prepared).Accept(writer);
        return {text.GetString(), text.GetSize()};
    }
    void Set(std::size_t prepared, const std::string& text) override {
        rapidjson::Document value(&mRoot.GetAllocator());
        value.Parse(text.data(), text.size());
        At(prepared) = value.Move();
    }
    void Save(const std::string& path) override {
        rapidjson::StringBuffer text;
        rapidjson::PrettyWriter<rapidjson::StringBuffer> writer(text);
        writer.SetIndent(' ', 1);
        mRoot.Accept(writer);
        std::ofstream file(path);
        file.write(text.GetString(), static_cast<std::streamsize>(text.GetSize()));
    }
    void Prepare(const Workload& workload, const std::vector<std::size_t>& keys) override {
        mAddresses = AddressesOf(workload, keys);
    }
    Workload::Format Format() const override { return Workload::Format::Json; }

private:
    rapidjson::Value& At(std::size_t prepared) {
        const Address& address = mAddresses[prepared];
        return Member(Member(mRoot, address.place), address.name);
    }
    rapidjson::Document mRoot;
    std::vector<Address> mAddresses;
};

}  // namespace

std::unique_ptr<Subject> MakeRapidJson(const Workload& /*workload*/) {
    return std::make_unique<RapidJsonSubject>();
}

}  // namespace KesBench
