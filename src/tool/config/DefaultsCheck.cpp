#include "tool/config/DefaultsCheck.h"

#include "facade/FrameworkFacade.h"
#include "tool/keys/Listener.h"
#include "tool/keys/Session.h"
#include "tool/output/ExitCodes.h"

#include <map>
#include <sstream>
#include <utility>

namespace kes::tool {

namespace metadb = VemoKesConfigTools::metadb;

namespace {

struct Origin {
    const metadb::KeyData* key;
    const metadb::DefaultValue* value;
};

/// Writes each default value on a line of its own, and remembers whose line it is.
std::map<std::uint32_t, Origin> WriteDefaults(std::ostream& text, const metadb::SystemData& system) {
    std::map<std::uint32_t, Origin> origins;
    std::uint32_t line = 1;
    for (const metadb::SubsystemData& subsystem : system.subsystems) {
        bool first = true;
        for (const metadb::KeyData& key : subsystem.keys) {
            for (const metadb::DefaultValue& value : key.defaults) {
                if (first) {
                    text << "subsystem=" << subsystem.name << "\ndevice=rom\nstore=0\n";
                    line += 3;
                    first = false;
                }
                text << key.psid << (value.indexes.empty() ? "" : ".") << value.indexes << " = "
                     << value.value << '\n';
                origins.emplace(line++, Origin{&key, &value});
            }
        }
    }
    return origins;
}

}  // namespace

std::vector<metadb::SourceFault> CheckDefaults(const std::string& plugins, const std::string& database,
                                               const std::vector<metadb::SystemData>& systems) {
    std::vector<metadb::SourceFault> faults;
    if (systems.empty()) return faults;
    Settings settings;
    settings.plugins = plugins;
    settings.database = database;
    const Session session(settings);
    api::FrameworkFacade facade(database);
    for (const metadb::SystemData& system : systems) {
        std::ostringstream text;
        const std::map<std::uint32_t, Origin> origins = WriteDefaults(text, system);
        if (origins.empty()) continue;

        const Listener listener;
        facade.OwningChip(session.FindChip(system.label));
        facade.LoadTextFromMemory(std::move(text).str(), /*merge=*/false);
        for (const auto& [number, error] : listener.OtherErrors()) throw Failure(EXIT_SYSTEM, error);
        for (const VemoKesConfigTools::TextFinding& finding : listener.Findings()) {
            const auto origin = origins.find(finding.line);
            if (origin == origins.end())
                throw Failure(EXIT_SYSTEM, "defaults of " + system.label + ": " + finding.text);
            // The key stands in front already.
            VemoKesConfigTools::TextFinding shown = finding;
            shown.key.clear();
            faults.push_back({origin->second.value->place,
                              "default of key \"" + origin->second.key->name + "\": " + shown.Message()});
        }
    }
    return faults;
}

}  // namespace kes::tool
