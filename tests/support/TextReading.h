#pragma once

// One read of a text into a configuration, with all its results.

#include "kes/configtools/readerwriters/kestext/common/kesparser/CKesConfigReader.h"
#include "messages/CTheMsgHnd.h"
#include "support/Dump.h"
#include "support/MemoryProvider.h"

#include <sstream>
#include <string>

namespace KesTest {

/// Collects the reports of the message service during its lifetime. Clears the error store first.
class Messages final : public CMessageHandlerObserver {
public:
    Messages() {
        Handler().ClearError(CMessageHandler::GROUP_DEFAULT);
        CTheMsgHnd::AddObserver(*this);
    }
    ~Messages() override {
        CTheMsgHnd::RemoveObserver(*this);
        Handler().ClearError(CMessageHandler::GROUP_DEFAULT);
    }
    void OnStatus(std::int32_t level, const std::string& text) override {
        statuses += std::to_string(level) + " " + text + "\n";
    }
    /// `LINE:COLUMN #CODE TEXT: KEY DETAIL`
    void OnFinding(const TextFinding& finding) override {
        if (!findings.empty()) findings += " | ";
        findings += std::to_string(finding.line) + ":" + std::to_string(finding.column) + " #" +
                    std::to_string(finding.code) + " " + finding.Message();
    }
    static CMessageHandler& Handler() {
        return CTheMsgHnd::GetAppropriateHandler(CMessageHandler::GROUP_DEFAULT, "test", false);
    }
    static std::string LastError() {
        std::int16_t number = 0;
        std::string text;
        CMessageHandler::GroupEnum group = CMessageHandler::GROUP_DEFAULT;
        return Handler().LastError(number, text, group) ? std::to_string(number) + " " + text : std::string();
    }
    std::string statuses;
    std::string findings;
};

/// The keys used by text tests: one for each form of value, in all subsystems.
inline MemoryProvider& TextKeys() {
    static MemoryProvider& provider = []() -> MemoryProvider& {
        static MemoryProvider made;
        made.AddSubsystem("curator", "cur");
        made.AddSubsystem("bt");
        made.AddSubsystem("bt");  // a second firmware of one subsystem
        made.AddSubsystem("audio");
        made.AddSubsystem("gnss");  // has no number in the format
        made.AddChip("sys_1_0", "70");
        made.AddChip("sys_arm", "75");
        constexpr std::int64_t U32 = 0xFFFFFFFF;
        made.Key(0, "no_number", "uint8");
        made.Key(1, "u8", "uint8").Range(0, 255);
        made.Key(2, "u16", "uint16").Range(0, 65535);
        made.Key(3, "u32", "uint32").Range(0, U32);
        made.Key(4, "u64", "uint64");
        made.Key(5, "i8", "int8");
        made.Key(6, "i16", "int16");
        made.Key(7, "i32", "int32");
        made.Key(8, "i64", "int64");
        made.Key(9, "whole", "integer").Range(-5, 5);
        made.Key(10, "small", "uint8").Range(1, 3);
        made.Key(11, "three", "uint16").Range(3, 3);
        made.Key(12, "positive", "int32").Range(0, 100);
        made.Key(13, "blob", "octet_string").Range(0, 3);
        made.Key(14, "pair", "octet_string").Range(2, 2);
        made.Key(15, "dev_name", "octet_string").Format("unicode_string").Range(0, 8);
        made.Key(16, "bd_addr", "octet_string").Format("mac_addr").Range(6, 6);
        made.Key(17, "mode", "MODE").Enum({{"MODE_A", 0}, {"MODE_FAST", 3}, {"MODE-X", 70000}});
        made.Key(18, "odd", "octet_string").Format("other");
        made.Key(19, "words", "uint16").Range(0, 65535).Array(1, 3);
        made.Key(20, "two", "uint8").Array(2, 2);
        made.Key(21, "modes", "MODE").Enum({{"MODE_A", 0}}).Array(1, 2);
        made.Key(22, "names", "octet_string").Format("unicode_string").Range(0, 8).Array(1, 2);
        made.Key(4660, "rf_gain", "uint8").Range(0, 255);
        made.Key(4661, "rf_table", "int8").Indexes(2);
        made.Key(4662, "rf_offset", "int8").Indexes(1);
        made.Key(4663, "bt_only", "uint8").In(SUBSYSTEM_BT);
        made.Key(4664, "differs", "uint8").In(SUBSYSTEM_BT);
        made.Key(4664, "differs", "int8").Indexes(1).In(SUBSYSTEM_CURATOR);
        made.Key(4665, "audio15x", "uint8");
        made.Key(4666, "audio16", "uint8");
        made.Key(4667, "bt", "uint8");
        made.Key(4668, "store", "uint8");
        made.Key(4669, "store1", "uint8");
        return made;
    }();
    return provider;
}

struct Reading {
    bool good = false;
    std::string dump;
    std::string stores;
    std::string findings;
    std::string statuses;
    std::string error;
};

/// Reads into `config` with the context, which keeps the place at the end of the text.
inline Reading Read(const std::string& text, CChipConfig& config, CKesContext& context,
                    IMetadataProvider& provider = TextKeys()) {
    const Messages messages;
    std::istringstream stream(text);
    CKesConfigReader reader(&stream);
    reader.SetMetadataProvider(&provider);
    reader.SetObserver(&config);
    Reading reading;
    reading.good = reader.Read(context);
    reading.dump = Dump(config);
    reading.stores = DumpStores(config.Stores());
    reading.findings = messages.findings;
    reading.statuses = messages.statuses;
    reading.error = Messages::LastError();
    return reading;
}

inline CKesContext OverwriteContext() {
    CKesContext context;
    context.SetChip("sys_1_0");
    context.SetTag(STR_INSERT_MODE, STR_OVERWRITE);
    return context;
}

inline Reading Read(const std::string& text, IMetadataProvider& provider = TextKeys()) {
    CChipConfig config;
    CKesContext context = OverwriteContext();
    return Read(text, config, context, provider);
}

/// Places, followed by "!" and the findings if there are any.
inline std::string Outcome(const Reading& reading) {
    if (reading.findings.empty()) return reading.dump;
    return reading.dump + (reading.dump.empty() ? "! " : " ! ") + reading.findings;
}

/// The result of lines that follow `file=audio` and start at line 2, without the text about that place.
inline std::string OutcomeInAudio(const std::string& lines) {
    std::string outcome = Outcome(Read("file=audio\n" + lines));
    static const std::string place = "[3/15/1";
    if (outcome.compare(0, place.size(), place) != 0) return outcome;
    const std::size_t end = outcome.rfind(']');
    std::string rest = outcome.substr(0, end).substr(place.size()) + outcome.substr(end + 1);
    return rest.empty() ? rest : rest.substr(1);
}

}  // namespace KesTest
