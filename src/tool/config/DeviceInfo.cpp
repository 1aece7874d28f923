#include "tool/config/DeviceInfo.h"

#include "plugins/image/ImageFormat.h"
#include "tool/output/Printable.h"
#include "tool/output/Table.h"

#include <iostream>
#include <string>
#include <vector>

namespace kes::tool {

namespace {

using namespace VemoKesConfigTools;

const char* WordOf(BankState state) {
    switch (state) {
        case BankState::Current:
            return "current";
        case BankState::Previous:
            return "previous";
        case BankState::Empty:
            return "empty";
        case BankState::Damaged:
            break;
    }
    return "damaged";
}

Json StoreRecordOf(ImageFamily family, const StoreDetails& store) {
    Json banks = Json::array();
    for (const BankInfo& bank : store.banks)
        banks.push_back({{"half", bank.half}, {"sequence", bank.sequence}, {"state", WordOf(bank.state)}});
    return {{"device", NameOfMemory(family, store.device)},
            {"store", store.id},
            {"size", store.bankSize},
            {"free", store.free},
            {"application", store.applicationId},
            {"paired", store.paired},
            {"automatic", store.automatic},
            {"takes_every_id", store.takesEveryId},
            {"takes_other_places", store.takesOtherPlaces},
            {"places", store.placeCount},
            {"banks", std::move(banks)}};
}

/// "3 current, 2 previous", of a pair one half behind the other.
std::string BankWords(const Json& store) {
    std::string text;
    int half = 0;
    for (const Json& bank : store["banks"]) {
        if (!text.empty()) text += bank["half"] == half ? ", " : "; ";
        half = bank["half"];
        if (bank["sequence"] != 0) text += bank["sequence"].dump() + " ";
        text += bank["state"].get<std::string>();
    }
    return text.empty() ? "-" : text;
}

/// How a store came to be.
std::string Origin(const Json& store) {
    if (store["takes_every_id"] || store["takes_other_places"]) return "fixed";
    return store["automatic"] ? "automatic" : "created";
}

void PrintStores(const Json& stores) {
    Table table({"DEVICE", "STORE", "SIZE", "FREE", "APPLICATION", "PAIRED", "ORIGIN", "PLACES", "BANKS"});
    for (const Json& store : stores) {
        const bool isForAll = store["takes_every_id"] || store["takes_other_places"];
        table.Add({store["device"], isForAll ? "all" : store["store"].dump(), store["size"].dump(),
                   store["free"].dump(), store["application"].dump(), store["paired"] ? "yes" : "no",
                   Origin(store), store["places"].dump(), BankWords(store)});
    }
    table.Print(std::cout);
}

}  // namespace

Json InfoDocument(const std::string& device, const ImageInfo& info) {
    Json document = JsonDocument("device info");
    document["file"] = device;
    document["family"] = NameOf(info.family);
    document["chip"] = info.chipId;
    document["system"] = info.systemLabel;
    document["size"] = info.size;
    document["i2c_mask"] = info.i2cMask;
    document["resets"] = info.resets;
    Json& memories = document["memories"] = Json::array();
    for (const MemoryDetails& memory : info.memories) {
        memories.push_back({{"device", NameOfMemory(info.family, memory.device)},
                            {"size", memory.size},
                            {"free", memory.free},
                            {"one_time_programmable", memory.oneTimeProgrammable}});
    }
    Json& results = document["results"] = Json::array();
    for (const StoreDetails& store : info.stores) results.push_back(StoreRecordOf(info.family, store));
    return document;
}

void PrintInfo(const Json& document) {
    const bool anyChip = document["chip"] == 0;
    const std::string system = document["system"];
    std::cout << "family " << document["family"].get<std::string>() << ", chip "
              << (anyChip ? "any" : document["chip"].dump()) << ", system "
              << (system.empty() ? "any" : Printable(system)) << '\n'
              << document["size"] << " bytes, I2C mask " << document["i2c_mask"] << ", resets asked for "
              << document["resets"] << "\n\n";
    Table memories({"MEMORY", "SIZE", "FREE"});
    for (const Json& memory : document["memories"])
        memories.Add({memory["device"], memory["size"].dump(), memory["free"].dump()});
    memories.Print(std::cout);
    if (document["results"].empty()) return;
    std::cout << '\n';
    PrintStores(document["results"]);
}

}  // namespace kes::tool
