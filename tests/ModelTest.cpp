// Contexts, payloads, elements, and configurations as observers of readers and sources of writers.

#include "messages/CTheMsgHnd.h"
#include "model/CConfigTransaction.h"
#include "model/IConfigReader.h"
#include "model/IConfigWriter.h"
#include "support/Dump.h"
#include "support/MemoryProvider.h"

#include <cstring>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <random>

namespace {

using namespace KesTest;

CKesContext PlaceContext(std::int32_t type, std::int32_t device, std::int32_t store) {
    CKesContext context;
    context.SetSubsystemType(type);
    context.SetDevice(device);
    context.SetStore(store);
    return context;
}

CElement* NewElement(std::uint32_t psid, std::uint8_t value, const std::vector<std::uint32_t>& indices = {}) {
    return new CIndexedElement(psid, "", indices, {new CUint8Payload(value)}, false);
}

/// A reader whose calls the test makes. It has stores on request.
struct FakeReader : IConfigReader, IStoreManager {
    ~FakeReader() override { ClearStoreList(stores); }
    void SetObserver(IConfigReaderObserver* /*observer*/) override {}
    void SetElementObserver(IConfigReaderElementObserver* observer) override { elements = observer; }
    void SetMetadataProvider(IMetadataProvider* /*provider*/) override {}
    bool Read(IConfigContext& /*context*/) override { return true; }
    void CreateStore(CStoreInfo& /*store*/, IConfigContext& /*context*/) override {}
    void RefreshStoreInfo(CStoreInfo& /*store*/, IConfigContext& /*context*/) override {}
    const std::list<CStoreInfo*>& GetStoresInfo(IConfigContext& /*context*/) override { return stores; }
    /// Makes the calls of a reader for one key.
    void Find(CChipConfig& config, CKesContext context, CElement* element) {
        config.OnSubsystemFound(*this, context);
        elements->OnElementFound(element, context);
    }
    void AddStore(IStoreManager::DEVICE device, std::uint16_t id, std::uint16_t order) {
        stores.push_back(new CStoreInfo(device, id, 0, -1, 0, order, false));
    }
    IConfigReaderElementObserver* elements = nullptr;
    std::list<CStoreInfo*> stores;
};

TEST(Context, FieldsAndTagsAreOneView) {
    CKesContext context;
    const std::pair<std::string_view, void (*)(CKesContext&)> setters[] = {
        {STR_SUBSYSTEM_TYPE, [](CKesContext& c) { c.SetSubsystemType(7); }},
        {STR_DEVICE, [](CKesContext& c) { c.SetDevice(7); }},
        {STR_STORE, [](CKesContext& c) { c.SetStore(7); }},
        {STR_ORDER, [](CKesContext& c) { c.SetOrder(7); }},
        {STR_LAYER_NUMBER, [](CKesContext& c) { c.SetLayerNumber(7); }},
        {STR_FILE_TYPE, [](CKesContext& c) { c.SetFileType(7); }},
    };
    for (const auto& [tag, set] : setters) {
        EXPECT_EQ(context.GetTag(tag), "") << tag;
        EXPECT_FALSE(context.TagMatches(tag, 0)) << tag << " is not 0 when it is not set";
        set(context);
        EXPECT_EQ(context.GetTag(tag), "7") << tag;
        EXPECT_TRUE(context.TagMatches(tag, 7) && context.TagMatches(tag, "7")) << tag;
        context.SetTag(tag, -1);
        EXPECT_TRUE(context.TagMatches(tag, -1)) << tag;
        context.SetTag(tag, "12");
        EXPECT_TRUE(context.TagMatches(tag, 12)) << tag;
        context.SetTag(tag, "12x");
        EXPECT_EQ(context.GetTag(tag), "") << tag << " holds numbers only";
    }
    context.SetTag(STR_CHIP, "sys");
    EXPECT_EQ(context.Chip(), "sys");
    context.SetTag(STR_DEVICE, 3);
    EXPECT_EQ(context.Device(), 3);
    context.SetTag(STR_DEVICE);
    EXPECT_EQ(context.Device(), -1);
    EXPECT_FALSE(context.TagMatches(STR_DEVICE, 3));
    EXPECT_FALSE(context.HasPlace());
}

TEST(Context, FreeTagsHoldTextNumbersAndLists) {
    CBaseContext context;
    context.SetTag("t", "007");
    EXPECT_TRUE(context.TagMatches("t", 7));
    EXPECT_FALSE(context.TagMatches("t", "7"));
    context.SetTag("t");
    EXPECT_EQ(context.GetTag("t"), "");
    EXPECT_FALSE(context.TagMatches("t", ""));
    EXPECT_FALSE(context.TagMatches("never set", 0));
    context.SetTags("l", "a,b,,c");
    EXPECT_EQ(context.GetTags("l"), (std::vector<std::string>{"a", "b", "", "c"}));
    EXPECT_TRUE(context.GetTags("never set").empty());
}

TEST(Context, ClonesAndParsedTextsAreWhole) {
    CKesContext context;
    context.Parse("device=2;;chip=sys;mode=dir;store=x;insertmode;layernumber=0;eq=a=b");
    EXPECT_EQ(context.Device(), 2);
    EXPECT_FALSE(context.HasStore());
    EXPECT_TRUE(context.TagMatches(STR_LAYER_NUMBER, 0));
    const std::unique_ptr<IConfigContext> clone(context.Clone());
    context.Parse("device;chip=other;mode=file");
    EXPECT_EQ(context.GetTag(STR_DEVICE), "");
    EXPECT_EQ(clone->Name(), context.Name());
    EXPECT_NE(dynamic_cast<CKesContext*>(clone.get()), nullptr);
    EXPECT_EQ(clone->GetTag(STR_DEVICE) + clone->GetTag(STR_CHIP) + clone->GetTag(STR_FILE_MODE) +
                  clone->GetTag("eq"),
              "2sysdira=b");
}

TEST(Payloads, KnowTheirTypeSizeAndBytes) {
    const auto bytes = [](const IPayload& payload) {
        std::string memory(payload.Length(), '?');
        EXPECT_EQ(payload.WriteToMem(memory.data(), payload.Length()), payload.Length());
        if (payload.Length() != 0) {
            EXPECT_EQ(payload.WriteToMem(memory.data(), payload.Length() - 1), 0U) << "too little room";
        }
        return DumpPayload(payload) + " " + payload.ToString() + " " + DumpBytes(memory);
    };
    EXPECT_EQ(bytes(CInt8Payload(-2)), "i8:-2 -2 \"<FE>\"");
    EXPECT_EQ(bytes(CInt16Payload(-2)), "i16:-2 -2 \"<FE><FF>\"");
    EXPECT_EQ(bytes(CInt32Payload(1)), "i32:1 1 \"<01><00><00><00>\"");
    EXPECT_EQ(bytes(CInt64Payload(1)), "i64:1 1 \"<01><00><00><00><00><00><00><00>\"");
    EXPECT_EQ(bytes(CUint8Payload(65)), "u8:65 65 \"A\"");
    EXPECT_EQ(bytes(CUint16Payload(0x4142)), "u16:16706 16706 \"BA\"");
    EXPECT_EQ(bytes(CUint32Payload(0x80000000)), "u32:2147483648 2147483648 \"<00><00><00><80>\"");
    EXPECT_EQ(bytes(CUint64Payload(0x41)), "u64:65 65 \"A<00><00><00><00><00><00><00>\"");
    EXPECT_EQ(bytes(CStringPayload("ab", true)), "\"ab\" ab \"ab\"");
    EXPECT_EQ(CStringPayload(std::string("a\0b", 3), true).Length(), 3U);
    EXPECT_EQ(bytes(CStringPayload("", true)), "\"\"  \"\"");
    EXPECT_EQ(bytes(CEnumPayload("ON", 66)), "ON(66) ON \"B<00><00><00>\"");
    EXPECT_EQ(CEnumPayload("ON", 66).GetValue(), 66);
    CComplexPayload composite(PAYLOAD_TYPE_STRUCT);
    composite.AddField(new CUint8Payload(65));
    composite.AddField(new CStringPayload("bc", true));
    EXPECT_EQ(bytes(composite), "struct{u8:65,\"bc\"} {65, bc} \"Abc\"");
}

TEST(Payloads, AreEqualWhenTypeAndValueAre) {
    const auto composite = [](PayloadTypeEnum type, std::uint8_t value) {
        auto made = std::make_unique<CComplexPayload>(type);
        made->AddField(new CUint8Payload(value));
        return made;
    };
    std::vector<std::unique_ptr<IPayload>> all;
    all.push_back(std::make_unique<CUint8Payload>(1));
    all.push_back(std::make_unique<CUint8Payload>(2));
    all.push_back(std::make_unique<CInt8Payload>(1));
    all.push_back(std::make_unique<CInt32Payload>(1));
    all.push_back(std::make_unique<CEnumPayload>("ON", 1));
    all.push_back(std::make_unique<CEnumPayload>("AN", 1));
    all.push_back(std::make_unique<CStringPayload>("1", true));
    all.push_back(composite(PAYLOAD_TYPE_UINT8, 1));
    all.push_back(composite(PAYLOAD_TYPE_STRUCT, 1));
    all.push_back(composite(PAYLOAD_TYPE_STRUCT, 2));
    for (const auto& left : all) {
        for (const auto& right : all) {
            EXPECT_EQ(*left == *right, left == right) << DumpPayload(*left) << " " << DumpPayload(*right);
        }
    }
    EXPECT_EQ(*composite(PAYLOAD_TYPE_STRUCT, 2), *all.back());
    EXPECT_TRUE(CUint8Payload(1) != CUint8Payload(2));
    EXPECT_TRUE(CEnumPayload("ON", 1) != static_cast<const IPayload&>(CInt32Payload(1)));
}

TEST(Elements, CompareByKeyAndPayloads) {
    const std::unique_ptr<CElement> plain(NewElement(5, 1));
    const std::unique_ptr<CElement> again(NewElement(5, 1));
    const std::unique_ptr<CElement> other(NewElement(5, 2));
    const std::unique_ptr<CElement> indexed(NewElement(5, 1, {0, 7}));
    EXPECT_TRUE(*plain == *again);
    EXPECT_TRUE(*plain != *other && plain->Same(*other));
    EXPECT_TRUE(*plain != *indexed && !plain->Same(*indexed));
    EXPECT_EQ(indexed->KeyString(), "5.0.7");
    EXPECT_EQ(indexed->Size(), 9U);
    EXPECT_FALSE(CElement().IsValid());
    EXPECT_FALSE(plain->HasChanged());
    plain->ClearPayload();
    EXPECT_TRUE(plain->HasChanged() && plain->Payloads().empty() && *plain != *again);
}

TEST(Elements, KeyStringsCanBeParsedAgain) {
    const struct {
        std::string text;
        bool good;
    } rows[] = {{"5", true},           {"5.0.7", true}, {"4294967295.4294967295", true},
                {"", false},           {"5.", false},   {".5", false},
                {"5..7", false},       {"5.x", false},  {"4294967296", false},
                {"- 5", false},        {" 5", false},   {"5 ", false},
                {"-2147483649", false}};
    for (const auto& row : rows) {
        std::uint32_t psid = 0;
        std::vector<std::uint32_t> indices;
        ASSERT_EQ(ParseKeyString(row.text, psid, indices), row.good) << row.text;
        if (row.good) {
            EXPECT_EQ(MakeKeyString(psid, indices), row.text);
        }
    }
    std::uint32_t psid = 0;
    std::vector<std::uint32_t> indices;
    EXPECT_TRUE(ParseKeyString("-2147483648.-1", psid, indices)) << "as hosts give large numbers";
    EXPECT_EQ(MakeKeyString(psid, indices), "2147483648.4294967295");
}

TEST(ChipConfig, PlacesAreInTheOrderOfFirstUse) {
    FakeReader reader;
    CChipConfig config;
    CKesContext context = PlaceContext(3, 15, 2);
    config.OnSubsystemFound(reader, context);
    const IConfigReaderElementObserver* first = reader.elements;
    reader.Find(config, PlaceContext(1, 15, 2), NewElement(5, 1));
    EXPECT_FALSE(config.HasElements(SUBSYSTEM_AUDIO));
    reader.Find(config, PlaceContext(3, 15, 1), NewElement(5, 2));
    config.OnSubsystemFound(reader, context);
    EXPECT_EQ(reader.elements, first);
    context.SetLayerNumber(0);
    reader.Find(config, context, NewElement(5, 3));
    context.SetTag(STR_DEVICE, 1);  // readers reuse the context; a place must keep a copy
    EXPECT_EQ(Dump(config), "[3/15/2] [1/15/2 5=u8:1] [3/15/1 5=u8:2] [3/15/2@0 5=u8:3]");
    EXPECT_TRUE(config.IsHeterogeneous());
    config.PrepareForChip(70);
    EXPECT_EQ(config.ChipId(), 70);
    EXPECT_FALSE(config.HasElements() || config.IsHeterogeneous());
    EXPECT_TRUE(config.Subsystems().empty() && config.Stores().empty());
    reader.Find(config, PlaceContext(3, 15, 1), NewElement(5, 4));
    EXPECT_EQ(Dump(config), "[3/15/1 5=u8:4]");
    EXPECT_FALSE(config.IsHeterogeneous());
}

TEST(ChipConfig, ElementsOfOneKeyAreReplacedAppendedAndRemoved) {
    CKesContext overwrite;
    CKesContext append;
    append.SetTag(STR_INSERT_MODE, STR_APPEND);
    CSubsystemConfig place(overwrite);
    for (const std::uint32_t psid : {5U, 6U}) place.OnElementFound(NewElement(psid, 1), overwrite);
    place.OnElementFound(NewElement(5, 1, {1}), overwrite);
    place.OnElementFound(NewElement(5, 2), append);
    place.OnElementFound(NewElement(5, 3), append);
    EXPECT_EQ(DumpElements(place), "5=u8:1; 6=u8:1; 5.1=u8:1; 5=u8:2; 5=u8:3");
    EXPECT_EQ(DumpElement(*place.Find(5, {})), "5=u8:3") << "the newest";
    place.OnElementFound(NewElement(5, 4), overwrite);
    EXPECT_EQ(DumpElements(place), "5=u8:4; 6=u8:1; 5.1=u8:1");
    place.OnElementFound(NewElement(6, 2), append);
    place.RemoveElement(6, nullptr);
    EXPECT_TRUE(place.ElementsIsEmpty(6));
    const std::vector<std::uint32_t> none, one = {1}, two = {2};
    place.RemoveElement(5, &two);
    place.RemoveElement(5, &none);
    EXPECT_EQ(DumpElements(place), "5.1=u8:1");
    EXPECT_FALSE(place.ElementsIsEmpty(5));
    place.RemoveElement(5, &one);
    EXPECT_TRUE(place.ElementsIsEmpty(5));
    place.OnElementFound(NewElement(5, 6), append);
    EXPECT_EQ(DumpElements(place), "5=u8:6");
}

/// A default in layer 0, a value without a layer, one in layer 2, and a key that only has a default.
void FillLayers(FakeReader& reader, CChipConfig& config) {
    CKesContext context = PlaceContext(3, 15, 1);
    reader.Find(config, context, NewElement(5, 100));
    context.SetLayerNumber(0);
    for (const std::uint32_t psid : {5U, 6U}) reader.Find(config, context, NewElement(psid, 0));
    context.SetLayerNumber(2);
    for (const std::uint32_t psid : {7U, 8U}) reader.Find(config, context, NewElement(psid, 2, {9}));
    context.SetLayerNumber(20);
    reader.Find(config, context, NewElement(8, 20));
}

/// Random sets, appends and removals give the same result as plain lists of values. Tried with few keys, so
/// that operations hit the same ones, and with many, so that the table grows and closes its gaps.
TEST(ChipConfig, KeysAreThoseAddedAndNotRemoved) {
    for (const std::uint32_t range : {5U, 3000U}) {
        CSubsystemConfig place(PlaceContext(SUBSYSTEM_BT, 15, 1));
        std::map<std::pair<std::uint32_t, std::vector<std::uint32_t>>, std::vector<int>> expected;
        std::mt19937 random(range);
        for (int step = 0; step < 20000; ++step) {
            const auto psid = static_cast<std::uint32_t>(16 * (1 + random() % range));
            const std::vector<std::uint32_t> indices(random() % 3, psid % 5);
            const int value = static_cast<int>(random() % 256);
            std::vector<int>& values = expected[{psid, indices}];
            CKesContext context;
            switch (random() % 4) {
                case 0:
                    place.RemoveElement(psid, &indices);
                    values.clear();
                    break;
                case 1:
                    context.SetTag(STR_INSERT_MODE, STR_APPEND);
                    place.OnElementFound(NewElement(psid, static_cast<std::uint8_t>(value), indices),
                                         context);
                    values.push_back(value);
                    break;
                default:
                    place.OnElementFound(NewElement(psid, static_cast<std::uint8_t>(value), indices),
                                         context);
                    values = {value};
            }
            const CElement* found = place.Find(psid, indices);
            ASSERT_EQ(found == nullptr, values.empty());
            if (found == nullptr) continue;
            ASSERT_EQ(found->Payloads().front()->ToString(), std::to_string(values.back()));
        }
        std::size_t count = 0;
        for (const auto& [key, values] : expected) count += values.size();
        EXPECT_EQ(place.Elements().size(), count);
    }
}

/// Whatever is done during a transaction: without a commit the configuration is as before and still works.
TEST(ChipConfig, AnUncommittedTransactionLeavesNoTrace) {
    FakeReader reader;
    CChipConfig config;
    std::mt19937 random(1);
    const auto change = [&](std::size_t steps) {
        for (std::size_t step = 0; step < steps; ++step) {
            CKesContext context = PlaceContext(static_cast<std::int32_t>(random() % 2), 15,
                                               static_cast<std::int32_t>(random() % 3));
            if (random() % 2 == 0) context.SetTag(STR_INSERT_MODE, STR_APPEND);
            const std::uint32_t psid = 1 + random() % 4;
            const std::vector<std::uint32_t> indices(random() % 2, 7);
            config.OnSubsystemFound(reader, context);
            auto& place = dynamic_cast<CSubsystemConfig&>(*reader.elements);
            if (random() % 3 == 0) {
                place.RemoveElement(psid, &indices);
            } else {
                place.OnElementFound(NewElement(psid, static_cast<std::uint8_t>(random()), indices), context);
            }
            if (random() % 8 != 0) continue;
            ClearStoreList(reader.stores);
            reader.AddStore(IStoreManager::DEVICE_EEPROM, static_cast<std::uint16_t>(random() % 3), 1);
            config.OnReadEnded(reader, context);
        }
    };
    const auto state = [&] {
        std::string text = Dump(config) + " " + DumpStores(config.Stores());
        for (const auto& [number, place] : config.Subsystems()) {
            for (std::uint32_t psid = 1; psid <= 4; ++psid) {
                text += place->ElementsIsEmpty(psid) ? " -" : " +";
                const CElement* newest = place->Find(psid, {});
                if (newest != nullptr) text += DumpElement(*newest);
            }
        }
        return text + (config.IsHeterogeneous() ? " mixed" : "");
    };
    for (int round = 0; round < 500; ++round) {
        if (round % 50 == 0) config.Clear();
        change(random() % 4);
        const std::string before = state();
        {
            const CConfigTransaction transaction(config);
            change(random() % 12);
        }
        ASSERT_EQ(state(), before) << "round " << round;
    }
}

TEST(ChipConfig, ACommittedTransactionAddsNoPlaceWithoutKeys) {
    FakeReader reader;
    CChipConfig config;
    CKesContext empty = PlaceContext(2, 15, 4);
    config.OnSubsystemFound(reader, empty);
    {
        CConfigTransaction transaction(config);
        reader.Find(config, PlaceContext(1, 15, 2), NewElement(5, 1));
        CKesContext other = PlaceContext(1, 15, 3);
        config.OnSubsystemFound(reader, other);
        reader.AddStore(IStoreManager::DEVICE_EEPROM, 2, 1);
        reader.AddStore(IStoreManager::DEVICE_EEPROM, 3, 2);
        config.OnReadEnded(reader, other);
        transaction.Commit();
    }
    EXPECT_EQ(Dump(config) + " " + DumpStores(config.Stores()), "[2/15/4] [1/15/2 5=u8:1] 15/2#1");
    reader.Find(config, PlaceContext(1, 15, 3), NewElement(5, 1));
    EXPECT_EQ(Dump(config), "[2/15/4] [1/15/2 5=u8:1] [1/15/3 5=u8:1]");
}

TEST(ChipConfig, LayersMatchTheQueriesForThem) {
    FakeReader reader;
    CChipConfig config;
    FillLayers(reader, config);
    constexpr std::int32_t NO_LAYER = -1;
    const struct {
        std::string key;
        std::int32_t layer, filter;
        std::string element;
    } rows[] = {
        {"5", NO_LAYER, -1, "5=u8:100"},
        {"6", NO_LAYER, -1, "none"},
        {"7.9", NO_LAYER, -1, "7.9=u8:2"},
        {"5", 0, -1, "5=u8:0"},
        {"5", 1, -1, "5=u8:100"},
        {"5", 65535, -1, "5=u8:100"},
        {"6", 1, -1, "none"},
        {"7.9", 0, -1, "none"},
        {"7.9", 1, -1, "none"},
        {"7.9", 2, -1, "7.9=u8:2"},
        {"7.9", 16, -1, "7.9=u8:2"},
        {"7", 2, -1, "none"},
        {"8", 16, -1, "none"},
        {"8", 20, -1, "8=u8:20"},
        {"5", 0, 15, "5=u8:100"},
        {"6", 0, 15, "6=u8:0"},
        {"7.9", 0, 15, "7.9=u8:2"},
        {"7.9", 0, 1, "none"},
        {"8", 0, 19, "none"},
        {"8", 0, 20, "8=u8:20"},
        {"8", 1, 65535, "8=u8:20"},
        {"6", NO_LAYER, 3, "6=u8:0"},
        {"x", 1, -1, "none"},
        {"99", 1, -1, "none"},
    };
    for (const auto& row : rows) {
        CKesContext question;
        question.SetSubsystemType(3);
        if (row.layer != NO_LAYER) question.SetLayerNumber(row.layer);
        if (row.filter >= 0) question.SetTag(STR_LAYER_FILTER, row.filter);
        const CElement& element = config.Element(row.key, question);
        EXPECT_EQ(element.IsValid() ? DumpElement(element) : "none", row.element)
            << row.key << " in layer " << row.layer << " with filter " << row.filter;
    }
    EXPECT_TRUE(config.HasElements(5, SUBSYSTEM_AUDIO, 0) && config.HasElements(5, SUBSYSTEM_AUDIO, 1));
    EXPECT_TRUE(config.HasElements(7, SUBSYSTEM_AUDIO, 16) && !config.HasElements(7, SUBSYSTEM_AUDIO, 0));
    EXPECT_FALSE(config.HasElements(6, SUBSYSTEM_AUDIO, 1) || config.HasElements(5, SUBSYSTEM_BT, 1));
}

TEST(ChipConfig, QueriesSelectSubsystemDeviceAndStore) {
    FakeReader reader;
    CChipConfig config;
    reader.Find(config, PlaceContext(3, 15, 1), NewElement(5, 1));
    reader.Find(config, PlaceContext(3, 1, 2), NewElement(5, 2));
    reader.Find(config, PlaceContext(1, 15, 1), NewElement(5, 3));
    const auto value = [&](const char* tags) {
        CKesContext question;
        question.Parse(tags);
        return DumpElement(config.Element(5, question));
    };
    EXPECT_EQ(value("subsystemtype=3"), "5=u8:2") << "the place that came last";
    EXPECT_EQ(value("subsystemtype=3;device=15"), "5=u8:1");
    EXPECT_EQ(value("subsystemtype=3;store=1"), "5=u8:1");
    EXPECT_EQ(value("subsystemtype=3;device=1;store=1"), "0=");
    EXPECT_EQ(value("subsystemtype=-1"), "5=u8:3");
    reader.Find(config, PlaceContext(3, 15, 1), NewElement(5, 4));
    reader.Find(config, PlaceContext(3, 1, 2), NewElement(6, 5));
    EXPECT_EQ(value("subsystemtype=3"), "5=u8:4") << "the place in which this key was written last";
    EXPECT_EQ(value("subsystemtype=3;device=1"), "5=u8:2");
    EXPECT_EQ(value("subsystemtype=2"), "0=");
}

TEST(ChipConfig, StoresAreThoseOfTheLastReadAndThoseKnownBefore) {
    CChipConfig config;
    CKesContext context;
    const auto read = [&](const std::vector<std::pair<IStoreManager::DEVICE, std::uint16_t>>& stores) {
        FakeReader reader;
        std::uint16_t order = 1;
        for (const auto& [device, id] : stores) reader.AddStore(device, id, order++);
        config.OnReadEnded(reader, context);
        return DumpStores(config.Stores());
    };
    constexpr auto OTP = IStoreManager::DEVICE_OTP;
    constexpr auto EEPROM = IStoreManager::DEVICE_EEPROM;
    EXPECT_EQ(read({{OTP, 2}, {EEPROM, 1}}), "1/2#1 15/1#2");
    EXPECT_EQ(read({{OTP, 3}, {EEPROM, 1}}), "1/3#1 1/2#1 15/1#2");
    EXPECT_EQ(read({{EEPROM, 5}, {OTP, 2}}), "1/2#2 1/3#1 15/5#1 15/1#2");
    EXPECT_EQ(read({}), "1/2#2 1/3#1 15/5#1 15/1#2");
    config.Clear();
    EXPECT_EQ(read({{EEPROM, 1}, {OTP, 1}}), "15/1#1 1/1#2") << "the reader's own order";
}

/// Records the calls of a traversal.
struct WriteRecorder final : IConfigWriter {
    void SetMetadataProvider(IMetadataProvider* /*provider*/) override {}
    void Begin(IConfigContext& /*context*/) override { calls += "begin"; }
    void End(IConfigContext& /*context*/) override { calls += " end"; }
    void BeginSubsystem(IConfigContext& context) override {
        const auto& place = dynamic_cast<CKesContext&>(context);
        calls += " [" + std::to_string(place.SubsystemType()) + "/" + std::to_string(place.Device()) + "/" +
                 std::to_string(place.Store()) + context.GetTag(STR_RAW_MODE);
    }
    void EndSubsystem(IConfigContext& /*context*/) override { calls += "]"; }
    void BeginElement(IConfigContext& context) override { calls += " (" + context.GetTag(STR_RAW_MODE); }
    void EndElement(IConfigContext& /*context*/) override { calls += ")"; }
    void WriteUid(std::uint32_t psid, IConfigContext& /*context*/) override { calls += std::to_string(psid); }
    void WriteHeaderInfo(const std::string& name, const void* value, std::uint32_t size,
                         IConfigContext& /*context*/) override {
        std::int32_t number = 0;
        EXPECT_EQ(size, sizeof number);
        std::memcpy(&number, value, sizeof number);
        calls += " " + name + std::to_string(number);
    }
    void WritePayload(IPayload& payload, IConfigContext& /*context*/) override {
        calls += " " + DumpPayload(payload);
        if (fails) {
            CTheMsgHnd::GetAppropriateHandler(CMessageHandler::GROUP_DEFAULT, "test", false)
                .SetErrorMsg(0, "disk full");
        }
    }
    std::string calls;
    bool fails = false;
};

TEST(ChipConfig, WritersAreDrivenThroughPlacesElementsAndPayloads) {
    FakeReader reader;
    CChipConfig config;
    CKesContext context;
    context.SetTag(STR_RAW_MODE, STR_TRUE);
    WriteRecorder empty;
    EXPECT_TRUE(config.Write(empty, context));
    EXPECT_EQ(empty.calls, "begin end");

    reader.Find(config, PlaceContext(3, 15, 1), NewElement(5, 1, {7, 8}));
    reader.Find(config, PlaceContext(1, 1, 2), NewElement(6, 2));
    auto* composite = new CComplexPayload(PAYLOAD_TYPE_STRUCT);
    composite->AddField(new CUint8Payload(4));
    reader.Find(config, PlaceContext(3, 15, 1),
                new CIndexedElement(4, "", {}, {new CUint8Payload(3), composite}, false));
    WriteRecorder writer;
    EXPECT_TRUE(config.Write(writer, context));
    EXPECT_EQ(writer.calls,
              "begin [3/15/1true (true5 index7 index8 u8:1) (true4 u8:3 struct{u8:4})] [1/1/2true (true6 "
              "u8:2)] end");
    EXPECT_EQ(context.GetTag(STR_DEVICE), "") << "the caller's context stays as it is";

    WriteRecorder failing;
    failing.fails = true;
    EXPECT_FALSE(config.Write(failing, context));
    EXPECT_EQ(failing.calls, writer.calls) << "a failure does not stop the walk";
    CTheMsgHnd::GetAppropriateHandler(CMessageHandler::GROUP_DEFAULT, "test", false)
        .ClearError(CMessageHandler::GROUP_DEFAULT);
}

}  // namespace
