#include "plugins/sqlite/SqliteProvider.h"

#include "messages/CTheMsgHnd.h"
#include "model/CKesContext.h"
#include "model/CReaderWriterFactory.h"
#include "model/SubsystemNames.h"

#include <algorithm>
#include <array>
#include <optional>
#include <sstream>
#include <typeinfo>
#include <utility>

namespace VemoKesConfigTools {

namespace {

const CLoadedSubsystem& Nothing() {
    static const CLoadedSubsystem nothing{metadb::SubsystemData{}};
    return nothing;
}

/// Stores an error unless it is already the newest one: reading a configuration queries every key, and one
/// error is enough.
void Report(const std::string& text) {
    CMessageHandler& handler =
        CTheMsgHnd::GetAppropriateHandler(CMessageHandler::GROUP_DEFAULT, "CSqliteProvider", false);
    std::int16_t number = 0;
    std::string last;
    CMessageHandler::GroupEnum group = CMessageHandler::GROUP_DEFAULT;
    if (handler.LastError(number, last, group) && last == text) return;
    handler.SetErrorMsg(0, text);
}

}  // namespace

/// A system with its subsystems. A slot holds the records of one, loaded on demand, or the reason why loading
/// failed, which is not tried again.
struct CSqliteProvider::System {
    struct Slot {
        std::unique_ptr<CLoadedSubsystem> loaded;
        std::string fault;
    };

    explicit System(metadb::SystemData data) {
        for (metadb::SubsystemData& subsystem : data.subsystems) {
            names.push_back(subsystem.name);
            const auto& info =
                owned.emplace_back(std::make_unique<CSqliteSubsystemInfo>(std::move(subsystem)));
            infos.push_back(info.get());
        }
        data.subsystems.clear();
        chip = std::make_unique<CSqliteChipInfo>(std::move(data));
    }

    std::unique_ptr<CSqliteChipInfo> chip;
    std::vector<std::string> names;
    std::vector<std::unique_ptr<CSqliteSubsystemInfo>> owned;
    std::vector<const ISubsystemInfo*> infos;
    std::array<Slot, std::size(SUBSYSTEM_NAMES)> slots;  ///< by subsystem type
};

/// What opening the file returned.
struct CSqliteProvider::Content {
    std::optional<metadb::MetadataDatabase> database;
    std::string fault;  ///< why there is no database
    std::vector<std::unique_ptr<System>> systems;
    std::vector<const IChipInfo*> chips;
};

CSqliteProvider::CSqliteProvider(const std::string& path) : mPath(path) { Open(); }

CSqliteProvider::~CSqliteProvider() = default;

CSqliteProvider::Content& CSqliteProvider::Open() {
    if (!mpContent) {
        mpContent = std::make_unique<Content>();
        try {
            mpContent->database.emplace(mPath);
            for (const metadb::SystemData& data : mpContent->database->Systems()) {
                const auto& system = mpContent->systems.emplace_back(std::make_unique<System>(data));
                mpContent->chips.push_back(system->chip.get());
            }
        } catch (const metadb::DatabaseError& error) {
            mpContent->fault = error.what();
        }
    }
    if (!mpContent->fault.empty()) Report(mpContent->fault);
    return *mpContent;
}

CSqliteProvider::System* CSqliteProvider::FindSystem(IConfigContext& context) {
    const std::string label = context.GetTag(STR_CHIP);
    for (const std::unique_ptr<System>& system : Open().systems) {
        if (system->chip->Label() == label) return system.get();
    }
    return nullptr;
}

const CLoadedSubsystem& CSqliteProvider::Find(IConfigContext& context) {
    // Fast path for the library's own context, whose members need no lookup of tags by name.
    if (typeid(context) == typeid(CKesContext)) {
        const auto& place = static_cast<const CKesContext&>(context);
        const auto type = static_cast<std::uint32_t>(place.SubsystemType());
        if (mpLastSystem != nullptr && type < mpLastSystem->slots.size() && place.Chip() == mLastChip) {
            if (const auto& loaded = mpLastSystem->slots[type].loaded) return *loaded;
        }
    }
    System* system = FindSystem(context);
    for (std::size_t type = 0; system != nullptr && type < std::size(SUBSYSTEM_NAMES); ++type) {
        const auto number = static_cast<std::int32_t>(type);
        if (context.TagMatches(STR_SUBSYSTEM_TYPE, number)) return Load(*system, number);
    }
    return Nothing();
}

const CLoadedSubsystem& CSqliteProvider::Load(System& system, std::int32_t type) {
    const std::string name(SUBSYSTEM_NAMES[static_cast<std::size_t>(type)]);
    if (std::ranges::find(system.names, name) == system.names.end()) return Nothing();
    System::Slot& slot = system.slots[static_cast<std::size_t>(type)];
    if (!slot.loaded && slot.fault.empty()) {
        try {
            slot.loaded =
                std::make_unique<CLoadedSubsystem>(mpContent->database->Load(system.chip->Label(), name));
        } catch (const metadb::DatabaseError& error) {
            slot.fault = error.what();
        }
    }
    if (!slot.fault.empty()) {
        Report(slot.fault);
        return Nothing();
    }
    mLastChip = system.chip->Label();
    mpLastSystem = &system;
    return *slot.loaded;
}

const std::map<std::int32_t, const IMetadata*>& CSqliteProvider::MetadataList(IConfigContext& context,
                                                                              bool /*load*/) {
    return Find(context).List();
}

const IMetadata& CSqliteProvider::MetadataByUid(std::uint32_t uid, IConfigContext& context,
                                                bool /*details*/) {
    return Find(context).ByUid(uid);
}

const IMetadata& CSqliteProvider::MetadataByPsid(std::uint32_t psid, IConfigContext& context,
                                                 bool /*details*/) {
    return Find(context).ByPsid(psid);
}

const IMetadata& CSqliteProvider::MetadataByName(const std::string& name, IConfigContext& context,
                                                 bool /*details*/) {
    return Find(context).ByName(name);
}

const std::vector<const ISubsystemInfo*>& CSqliteProvider::SubsystemInfos(IConfigContext& context) {
    static const std::vector<const ISubsystemInfo*> none;
    const System* system = FindSystem(context);
    return system == nullptr ? none : system->infos;
}

const std::vector<const IChipInfo*>& CSqliteProvider::ChipInfos(IConfigContext& /*context*/) {
    return Open().chips;
}

void CSqliteProvider::Refresh() {
    if (mpContent) mRetired.push_back(std::move(mpContent));
    mpLastSystem = nullptr;
}

bool CSqliteProvider::Read(IConfigContext& context) {
    const std::uint64_t errorsBefore = CTheMsgHnd::ErrorsEver();
    const std::string& lines = Find(context).DefaultLines();
    // `Find` returns an empty subsystem both for an unknown one and after a failure, which stores an error.
    if (CTheMsgHnd::ErrorsEver() != errorsBefore) return false;
    if (lines.empty()) return true;

    std::size_t type = 0;
    while (!context.TagMatches(STR_SUBSYSTEM_TYPE, static_cast<std::int32_t>(type))) ++type;
    std::stringstream text;
    text << "subsystem=" << SUBSYSTEM_NAMES[type] << "\ndevice=rom\nstore=0\n" << lines;
    std::iostream* const stream = &text;
    const std::unique_ptr<IConfigReader> reader(
        CReaderWriterFactory::Ref().CreateReader("KesText", "", stream));
    if (!reader) {
        CTheMsgHnd::GetAppropriateHandler(CMessageHandler::GROUP_DEFAULT, "CSqliteProvider::Read", false)
            .SetErrorMsg(1, "KesText readerwriter plugin not found.");
        return false;
    }
    reader->SetMetadataProvider(this);
    reader->SetObserver(mpObserver);
    return reader->Read(context);
}

}  // namespace VemoKesConfigTools
