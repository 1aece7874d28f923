// `kes device`: what it makes, what it tells, and what it refuses.

#include "support/Files.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <string>

using namespace KesTest;
using Json = nlohmann::json;

namespace {

bool Holds(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

Json Info(const TempFolder& folder, const std::string& device) {
    const Outcome outcome = RunShell(folder, "kes device info --json " + device);
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    Json document = Json::parse(outcome.out, nullptr, /*allow_exceptions=*/false);
    EXPECT_FALSE(document.is_discarded()) << outcome.out;
    return document;
}

TEST(Device, TellsWhatItWasMadeWith) {
    const TempFolder folder;
    const char* lines[] = {
        "kes device create eeprom:e --size 4096 --i2c-mask 0x3 --chip ostrell_310_1_7",
        "kes device create kld:k --size 1M --memory otp=1K --memory smem=8K --memory mtp=4K --memory "
        "eeprom=8K",
        "kes device create-store kld:k --device smem --store 4 --size 1K --paired --application 7",
        "kes device create-store kld:k --device mtp --store 0x5 --size 512",
        "printf 'version=ostrell_520_2_3\nsubsystem=bt\ndevice=mtp\nstore=6\nmax_acl_links=1\n' | "
        "kes convert - kld:k",
    };
    for (const char* line : lines) EXPECT_EQ(RunShell(folder, line).code, 0) << line;
    Json document = Info(folder, "eeprom:e");
    EXPECT_EQ(document["command"], "device info");
    EXPECT_EQ(document["family"], "eeprom");
    EXPECT_EQ(document["system"], "ostrell_310_1_7");
    EXPECT_EQ(document["size"], 4096);
    EXPECT_EQ(document["i2c_mask"], 3);
    EXPECT_EQ(std::filesystem::file_size(folder / "e"), 4096U);

    document = Info(folder, "kld:k");
    EXPECT_EQ(document["chip"], 0);
    EXPECT_EQ(document["system"], "ostrell_520_2_3");
    Json sizes;
    for (const Json& memory : document["memories"]) sizes[std::string(memory["device"])] = memory["size"];
    EXPECT_EQ(sizes, Json::parse(R"({"otp": 1024, "smem": 8192, "mtp": 4096, "eeprom": 8192})"));
    Json stores;
    for (Json store : document["results"]) {
        store.erase("free");
        stores[store["device"].get<std::string>() + store["store"].dump()] = store;
    }
    ASSERT_EQ(stores.size(), 4U);
    EXPECT_EQ(stores["smem4"], Json::parse(R"({"device": "smem", "store": 4, "size": 1024, "application": 7,
        "paired": true, "automatic": false, "takes_every_id": false, "takes_other_places": false, "places": 0,
        "banks": [{"half": 0, "sequence": 0, "state": "empty"}, {"half": 0, "sequence": 0, "state": "empty"},
                  {"half": 1, "sequence": 0, "state": "empty"}, {"half": 1, "sequence": 0, "state": "empty"}]})"));
    EXPECT_EQ(stores["mtp5"]["automatic"], false);
    EXPECT_EQ(stores["mtp6"]["automatic"], true);
    EXPECT_EQ(stores["mtp6"]["places"], 1);
    EXPECT_EQ(stores["mtp6"]["banks"][0]["state"], "current");
    EXPECT_EQ(stores["eeprom0"]["takes_other_places"], true);

    const std::string text = RunShell(folder, "kes device info kld:k").out;
    for (const char* part : {"family kld, chip any, system ostrell_520_2_3\n1048576 bytes", "\nsmem    8192 ",
                             "\nsmem    4      1024  ", "  7            yes     created", "automatic  1 "})
        EXPECT_TRUE(Holds(text, part)) << part << "\n" << text;
    EXPECT_TRUE(Holds(RunShell(folder, "kes stores kld:k").out, "DEVICE  STORE  SIZE  FREE"));
}

TEST(Device, RefusesWithTheReason) {
    const TempFolder folder;
    folder.Write("text", "no image, and not blank\n");
    folder.Write("blank", std::string(2048, '\xFF'));
    const struct {
        const char* line;
        int code;
        const char* message;
    } rows[] = {
        {"kes device create eeprom:blank --size 2K", 0, ""},
        {"kes device create kld:k --size 16K", 0, ""},
        {"kes device create-store kld:k --device smem --store 1 --size 256", 0, ""},
        {"kes device create eeprom:blank --size 2K", 1, "a device image already exists"},
        {"kes device create eeprom:text --size 2K", 1, "text: a file already exists"},
        {"kes device create eeprom:new --size 16", 1, "eeprom:new: error: "},
        {"kes device create eeprom:no/new --size 2K", 3, "no/new: No such file or directory"},
        {"kes device create eeprom:new", 2, "--size"},
        {"kes device create new --size 2K", 2, "\"new\" is no device"},
        {"kes device create eeprom:new --size 2G", 2, "\"2G\" is no size"},
        {"kes device create eeprom:new --size K", 2, "\"K\" is no size"},
        {"kes device create eeprom:new --size 4096M", 2, "\"4096M\" is no size"},
        {"kes device create eeprom:new --size -1", 2, "-1"},
        {"kes device create kld:new --size 16K --memory otp", 2, "NAME=SIZE"},
        {"kes device create kld:new --size 16K --memory rom=1K", 2, "has a memory \"rom\""},
        {"kes device create kld:new --size 16K --memory otp=1K", 1, "kld:new: error: "},
        {"kes device create kld:new --size 16K --i2c-mask 1", 2, "--i2c-mask is for eeprom:"},
        {"kes device create eeprom:new --size 2K --i2c-mask x", 2, "\"x\" is no mask"},
        {"kes device create eeprom:new --size 2K --chip none", 2, "unknown chip \"none\""},
        {"kes device info eeprom:k", 1, "is an image of the family kld; write kld:k"},
        {"kes device info eeprom:text", 1, "eeprom:text: error: "},
        {"kes device info eeprom:missing", 3, "unable to open the file"},
        {"kes device create-store eeprom:blank --device smem --store 2 --size 256", 2, "on kld:... only"},
        {"kes device create-store kld:k --device rom --store 2 --size 256", 2, "rom"},
        {"kes device create-store kld:k --device smem --store 1 --size 256", 1,
         "store smem 1 already exists"},
        {"kes device create-store kld:k --device smem --store 2 --size 1M", 3, "bytes of its memory, "},
        {"kes device create-store kld:k --device smem --store 70000 --size 256", 2, "\"70000\" is no store"},
        {"kes device create-store kld:k --device mtp --store 2 --size 256 --paired", 2, "--paired is for"},
        {"kes device create-store kld:missing --device smem --store 2 --size 256", 3, "unable to open"},
        {"kes device create-store kld:k --device smem --store 2 --size 256 --plugins .", 3, "no plug-in"},
        {"kes device create eeprom:text --size 2K --force", 0, ""},
    };
    for (const auto& row : rows) {
        const Outcome outcome = RunShell(folder, row.line);
        EXPECT_EQ(outcome.code, row.code) << row.line << "\n" << outcome.err;
        EXPECT_TRUE(*row.message == '\0' ? outcome.err.empty() : Holds(outcome.err, row.message))
            << row.line << "\n"
            << outcome.err;
    }
    EXPECT_FALSE(std::filesystem::exists(folder / "new"));
    EXPECT_EQ(Info(folder, "eeprom:text")["size"], 2048) << "replaced";
}

}  // namespace
