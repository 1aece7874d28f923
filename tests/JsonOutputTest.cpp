// The documents of --json: their fields are part of the interface of the command.

#include "support/Files.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

using Json = nlohmann::json;
using KesTest::Outcome;
using KesTest::RunKes;
using KesTest::TempFolder;

namespace {

Json Document(std::vector<std::string> arguments, int code = 0) {
    arguments.emplace_back("--json");
    const Outcome outcome = RunKes(arguments);
    EXPECT_EQ(outcome.code, code) << outcome.err;
    EXPECT_EQ(outcome.err.empty(), code == 0) << outcome.err;
    Json document = Json::parse(outcome.out, nullptr, /*allow_exceptions=*/false);
    EXPECT_EQ(document.value("format", 0), 1) << outcome.out;
    return document;
}

TEST(JsonOutput, ListsChipsSubsystemsAndKeys) {
    EXPECT_EQ(Document({"chips"})["results"][3]["label"], "ostrell_205_1_1");
    const Json subsystems = Document({"subsystems", "--chip", "ostrell_520_2_3"});
    EXPECT_EQ(subsystems["system"], "ostrell_520_2_3");
    std::size_t count = 0;
    for (const Json& subsystem : subsystems["results"]) count += subsystem["keys"].get<std::size_t>();
    const Json keys = Document({"keys"});
    EXPECT_EQ(keys["results"].size(), count);
    EXPECT_EQ(Document({"keys", "antenna_diversity"})["results"], Json::parse(R"([{
        "subsystem": "wlan", "number": 8222, "name": "antenna_diversity", "label": "Antenna choice",
        "type": "uint8"}])"));
    EXPECT_EQ(Document({"keys", "no such thing"}, 1)["results"], Json::array());
}

TEST(JsonOutput, DescribesKeys) {
    const Json document = Document({"describe", "tx_power_limit", "nobody", "0x1001"}, 1);
    ASSERT_EQ(document["results"].size(), 2U) << "the others are told all the same";
    EXPECT_EQ(document["results"][1]["name"], "bd_addr");
    EXPECT_EQ(document["results"][0], Json::parse(R"({
        "subsystem": "wlan", "number": 8219, "name": "tx_power_limit", "label": "Conducted power limit",
        "type": "int8", "minimum": 0, "maximum": 92, "units": "0.25 dBm", "format": "signed_decimal",
        "indexes": [
            {"name": "band", "minimum": 0, "maximum": 2, "choices": [
                {"name": "BAND_2G4", "value": 0}, {"name": "BAND_5G", "value": 1}, {"name": "BAND_6G", "value": 2}]},
            {"name": "antenna", "minimum": 0, "maximum": 1}],
        "defaults": {"0.0": "72", "0.1": "70", "1.0": "68"}, "access": "read and write",
        "description": "At the pin. The antenna gain is taken off by the firmware.", "uid": 27,
        "example": "tx_power_limit.0.0 = 0"})"));
}

TEST(JsonOutput, TellsWhetherADatabaseIsGood) {
    EXPECT_EQ(Document({"metadata", "check", KesTest::EXAMPLE_DATABASE})["results"], Json::array());
    const TempFolder folder;
    const std::string bad = folder.Write("bad.db", "this is no database, and long enough to be looked at");
    const Outcome outcome = RunKes({"metadata", "check", "--json", bad});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_EQ(Json::parse(outcome.out)["results"],
              Json::array({{{"severity", "error"}, {"message", bad + ": file is not a database"}}}));
}

}  // namespace
