// Records for keys that are not in the metadata.

#include "facade/FrameworkFacade.h"
#include "model/CChipConfig.h"
#include "model/CSubsystemConfig.h"
#include "model/IMetadata.h"

namespace VEMO::Kes::ConfigurationTools {

using namespace VemoKesConfigTools;

namespace {

constexpr const char* INTERNAL_LABEL = "Internal Key";
constexpr const char* INTERNAL_DESCRIPTION = "Vemo internal key - do not modify unless advised by Vemo";

/// A record for a key that has metadata, possibly of unknown type. It is always writable, regardless of the
/// access right of the key.
std::shared_ptr<Metadata> RecordOf(std::int32_t psid, const IMetadata& m, bool known) {
    return std::make_shared<Metadata>(
        m.Uid(), psid, known ? m.Name() : std::to_string(psid), known ? m.Label() : INTERNAL_LABEL,
        Metadata::GetSimpleType(m.TypeName()), AccessRights::ReadWrite, m.IsInternal(), m.IsArray(),
        static_cast<std::int32_t>(m.ArrayMinLength()), static_cast<std::int32_t>(m.ArrayMaxLength()),
        known ? m.Description() : INTERNAL_DESCRIPTION, m.Min(), m.Max(),
        known ? m.MetadataType() : METADATA_TYPE_UNKNOWN, m.Format(), m.DescriptionInternal(), m.Oid(),
        m.SourceReference(), m.Units(), m.NumIndexes());
}

std::shared_ptr<Metadata> RecordOf(std::int32_t psid) {
    return std::make_shared<Metadata>(0, psid, std::to_string(psid), INTERNAL_LABEL, SimpleElementTypes::None,
                                      AccessRights::ReadWrite, true, false, 0, 0, INTERNAL_DESCRIPTION, 0, 0,
                                      METADATA_TYPE_UNKNOWN, "", "", "", "", "", 0U);
}

using RecordMap = HostMap<std::int32_t, std::shared_ptr<Metadata>>;

void AddRecords(const CSubsystemConfig& place, RecordMap& map) {
    for (const CElement* element : place.Elements()) {
        const auto psid = static_cast<std::int32_t>(element->PsId());
        if (map.Contains(psid)) continue;
        const IMetadata* m = element->Metadata();
        if (m == nullptr) {
            map.Add(psid, RecordOf(psid));
            continue;
        }
        const bool known = m->MetadataType() != METADATA_TYPE_UNKNOWN;
        if (known && place.Type() != SUBSYSTEM_TYPE_PSAUDIO) continue;
        map.Add(psid, RecordOf(psid, *m, known));
    }
}

}  // namespace

HostMapRef<std::int32_t, std::shared_ptr<Metadata>> FrameworkFacade::GetPopulatedRawmodeMetadata(
    const SubsystemRef& subsystem) const {
    auto map = std::make_shared<RecordMap>();
    if (!subsystem) return map;
    for (const CChipConfig* chip : {mpFileChip.get(), mpDefaultChip.get()}) {
        if (chip == nullptr) continue;
        for (const auto& [number, place] : chip->Subsystems()) {
            if (place == nullptr || place->Type() != static_cast<std::uint16_t>(subsystem->Type())) continue;
            AddRecords(*place, *map);
        }
    }
    return map;
}

}  // namespace VEMO::Kes::ConfigurationTools
