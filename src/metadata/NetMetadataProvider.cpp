#include "metadata/NetMetadataProvider.h"

#include "messages/CTheMsgHnd.h"
#include "model/CKesContext.h"
#include "model/CMetadataDetail.h"
#include "model/CMetadataProviderFactory.h"
#include "model/CStructField.h"
#include "model/CTableIndex.h"
#include "model/IChipInfo.h"
#include "model/IMetadata.h"
#include "model/IMetadataProvider.h"
#include "model/ISubsystemInfo.h"
#include "model/PluginRegistry.h"

#include <cstdlib>
#include <string>

namespace VEMO::Kes::ConfigurationTools {

using namespace VemoKesConfigTools;

namespace {

#define KES_API_FUNCTION(name) "VEMO::Kes::ConfigurationTools::NetMetadataProvider::" name

CMessageHandler& Handler(const char* function) {
    CTheMsgHnd::Instance();
    return CTheMsgHnd::GetAppropriateHandler(CMessageHandler::GROUP_DEFAULT, function, false);
}

std::unique_ptr<CKesContext> KeyContext(const HostString& system, SubsystemTypes type) {
    auto context = std::make_unique<CKesContext>();
    context->SetChip(system.ToNarrow());
    context->SetSubsystemType(type);
    context->SetLayerNumber(LayerIndexVals::Defaults);
    return context;
}

}  // namespace

NetMetadataProvider::NetMetadataProvider(const HostString& dbName) {
    constexpr const char* FUNCTION = KES_API_FUNCTION("NetMetadataProvider");
    CTheMsgHnd::GetAppropriateHandler(CMessageHandler::GROUP_MANAGED_API, FUNCTION, true);
    mpProvider.reset(CMetadataProviderFactory::Ref().Create("sqlite", dbName.ToNarrow()));
    if (mpProvider) return;
    // The plug-in may exist but have failed to load: report that first.
    PluginRegistry::Ref().ReportLeftOut();
    Handler(FUNCTION).SetErrorMsg(1, "sqlite metadata plugin not found.");
}

NetMetadataProvider::~NetMetadataProvider() = default;

bool NetMetadataProvider::IsProviderValid() const {
    if (mpProvider) return true;
    Handler(KES_API_FUNCTION("IsProviderValid")).SetErrorMsg(1, "SQLite Metadata provider plugin not found");
    return false;
}

bool NetMetadataProvider::IsErrorSet(const char* function) const {
    return Handler(function).IsErrorSet(CMessageHandler::GROUP_ANY, true);
}

NetMetadataProvider::MetadataMapRef NetMetadataProvider::GetMetadatas(const HostString& system,
                                                                      const HostString& /*firmwareVersion*/,
                                                                      SubsystemTypes subsystemType) {
    if (!IsProviderValid()) return nullptr;
    mpContext = KeyContext(system, subsystemType);
    const auto& list = mpProvider->MetadataList(*mpContext, false);
    if (IsErrorSet(KES_API_FUNCTION("GetMetadatas"))) return nullptr;
    auto map = std::make_shared<HostMap<std::int32_t, std::shared_ptr<Metadata>>>();
    // The list also has struct fields, which have no key number.
    for (const auto& [uid, metadata] : list) {
        if (metadata->IsValid() && metadata->Psid() != 0) map->Add(metadata->Uid(), Build(*metadata));
    }
    return map;
}

std::shared_ptr<Metadata> NetMetadataProvider::GetMetadataByPsid(const HostString& system,
                                                                 SubsystemTypes subsystemType,
                                                                 std::int32_t psid) {
    if (!IsProviderValid() || psid == 0) return nullptr;
    const std::unique_ptr<CKesContext> context = KeyContext(system, subsystemType);
    const IMetadata& metadata = mpProvider->MetadataByPsid(static_cast<std::uint32_t>(psid), *context, false);
    if (IsErrorSet(KES_API_FUNCTION("GetMetadataByPsid")) || !metadata.IsValid()) return nullptr;
    return Build(metadata);
}

std::shared_ptr<Metadata> NetMetadataProvider::GetMetadataByName(const HostString& system,
                                                                 SubsystemTypes subsystemType,
                                                                 const HostString& name) {
    if (!IsProviderValid()) return nullptr;
    const std::unique_ptr<CKesContext> context = KeyContext(system, subsystemType);
    const IMetadata& metadata = mpProvider->MetadataByName(name.ToNarrow(), *context, false);
    if (IsErrorSet(KES_API_FUNCTION("GetMetadataByName")) || !metadata.IsValid()) return nullptr;
    return Build(metadata);
}

std::shared_ptr<MetadataDetails> NetMetadataProvider::GetMetadataDetails(
    const std::shared_ptr<Subsystem>& subsystem, const std::shared_ptr<Metadata>& metadata) {
    if (!metadata) return nullptr;
    if (metadata->Details()) return metadata->Details();
    if (!IsProviderValid()) return nullptr;
    // Without an earlier listing the chip is unknown.
    if (!mpContext || !subsystem) return nullptr;
    mpContext->SetTag(STR_SUBSYSTEM_TYPE, subsystem->Type());
    const IMetadata& record =
        mpProvider->MetadataByUid(static_cast<std::uint32_t>(metadata->Uid()), *mpContext, true);
    if (!record.IsValid()) return nullptr;

    std::shared_ptr<MetadataDetails> result;
    switch (record.MetadataType()) {
        case METADATA_TYPE_SIMPLE:
            result = std::make_shared<MetadataDetails>("");
            metadata->SetElementType(Metadata::GetSimpleType(record.TypeName()));
            break;
        case METADATA_TYPE_ENUM: {
            result = std::make_shared<MetadataDetails>(record.TypeName());
            const IMetadataDetail* detail = record.Detail();
            if (detail == nullptr || detail->Enums() == nullptr) break;
            for (const auto& [name, value] : *detail->Enums()) result->GetEnums()->Add(name, value);
            break;
        }
        case METADATA_TYPE_STRUCT:
            result = BuildStruct(subsystem, record);
            break;
        case METADATA_TYPE_UNKNOWN:
            break;
    }
    metadata->SetDetails(result);
    return result;
}

std::shared_ptr<MetadataDetails> NetMetadataProvider::BuildStruct(const std::shared_ptr<Subsystem>& subsystem,
                                                                  const IMetadata& metadata) {
    auto result = std::make_shared<MetadataDetails>(metadata.TypeName());
    const IMetadataDetail* detail = metadata.Detail();
    if (detail == nullptr) return result;
    for (const CStructField* field : detail->Fields()) {
        const std::shared_ptr<Metadata> record = Build(*field->Metadata());
        record->SetDetails(GetMetadataDetails(subsystem, record));
        result->GetStructFields()->push_back(
            std::make_shared<StructField>(record, field->ElemLsbBitPos(), field->ElemBitWidth()));
    }
    return result;
}

HostListRef<std::shared_ptr<Subsystem>> NetMetadataProvider::GetSubsystems(const HostString& chip) {
    if (!IsProviderValid()) return nullptr;
    auto list = std::make_shared<std::vector<std::shared_ptr<Subsystem>>>();
    mpContext = std::make_unique<CKesContext>();
    mpContext->SetChip(chip.ToNarrow());
    for (const ISubsystemInfo* info : mpProvider->SubsystemInfos(*mpContext)) {
        list->push_back(std::make_shared<Subsystem>(info->Name(), info->Version(), info->Alias(),
                                                    info->Layer(), info->Variant(), info->Description(),
                                                    info->BuildDate()));
    }
    return list;
}

HostListRef<std::shared_ptr<Chip>> NetMetadataProvider::GetChips() {
    if (!IsProviderValid()) return nullptr;
    CKesContext temporary;
    if (mpContext) mpContext->SetChip("");
    auto list = std::make_shared<std::vector<std::shared_ptr<Chip>>>();
    for (const IChipInfo* info : mpProvider->ChipInfos(mpContext ? *mpContext : temporary)) {
        const auto chipId = static_cast<std::uint16_t>(std::atoi(info->ChipId().c_str()));
        list->push_back(std::make_shared<Chip>(info->Name(), chipId, info->RomName(), info->RomVersion(),
                                               info->SystemVersionLabel(), info->SystemDescription(),
                                               info->SystemVersion(), info->BuildDate()));
    }
    return list;
}

void NetMetadataProvider::Refresh() {
    if (IsProviderValid()) mpProvider->Refresh();
}

void NetMetadataProvider::Dispose() {
    mpProvider.reset();
    mpContext.reset();
}

std::shared_ptr<Metadata> NetMetadataProvider::Build(const IMetadata& metadata) {
    auto record = std::make_shared<Metadata>(
        metadata.Uid(), static_cast<std::int32_t>(metadata.Psid()), metadata.Name(), metadata.Label(),
        Metadata::GetSimpleType(metadata.TypeName()), Metadata::GetAccessRights(metadata.AccessRightName()),
        metadata.IsInternal(), metadata.IsArray(), static_cast<std::int32_t>(metadata.ArrayMinLength()),
        static_cast<std::int32_t>(metadata.ArrayMaxLength()), metadata.Description(), metadata.Min(),
        metadata.Max(), metadata.MetadataType(), metadata.Format(), metadata.DescriptionInternal(),
        metadata.Oid(), metadata.SourceReference(), metadata.Units(), metadata.NumIndexes());
    AddTableIndexes(*record, metadata);
    return record;
}

void NetMetadataProvider::AddTableIndexes(Metadata& managedMd, const IMetadata& unmanagedMd) {
    const std::uint32_t count = unmanagedMd.NumIndexes();
    for (std::uint32_t position = 1; position <= count; ++position) {
        const CTableIndex* index = unmanagedMd.TableIndexAt(static_cast<std::uint16_t>(position));
        if (index == nullptr) continue;
        const auto type = index->Type() == CTableIndex::INDEX_TYPE_ENUM ? TableIndex::INDEX_TYPE_ENUM
                                                                        : TableIndex::INDEX_TYPE_INT;
        auto managed = std::make_shared<TableIndex>(index->Name(), static_cast<std::uint32_t>(index->Min()),
                                                    static_cast<std::uint32_t>(index->Max()), type);
        if (type == TableIndex::INDEX_TYPE_ENUM) {
            for (const auto& [label, value] : index->Enums()) {
                managed->AddEnum(label, static_cast<std::uint32_t>(value));
            }
        }
        managedMd.AddTableIndex(std::move(managed));
    }
}

}  // namespace VEMO::Kes::ConfigurationTools
