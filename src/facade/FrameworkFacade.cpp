#include "facade/FrameworkFacade.h"

#include "facade/FacadeSupport.h"
#include "files/Files.h"
#include "model/CChipConfig.h"
#include "model/CMetadataProviderFactory.h"
#include "model/CRawKeysWriter.h"
#include "model/CReaderWriterFactory.h"
#include "model/CStoreInfo.h"
#include "model/CSubsystemConfig.h"
#include "model/IConfigReader.h"
#include "model/IConfigWriter.h"
#include "model/IMetadataProvider.h"

#include <optional>
#include <sstream>
#include <utility>

namespace VEMO::Kes::ConfigurationTools {

using namespace VemoKesConfigTools;

FrameworkFacade::FrameworkFacade(const HostString& dbName) {
    constexpr const char* FUNCTION = KES_FACADE_FUNCTION("FrameworkFacade");
    CTheMsgHnd::GetAppropriateHandler(CMessageHandler::GROUP_MANAGED_API, FUNCTION, true);
    mpFileChip = std::make_unique<CChipConfig>();
    mpDefaultChip = std::make_unique<CChipConfig>();
    mpProvider.reset(CMetadataProviderFactory::Ref().Create("sqlite", Framework::GetString(dbName)));
    mpBuffer = std::make_unique<std::stringstream>(std::ios::in | std::ios::out | std::ios::binary);
    std::iostream* const stream = mpBuffer.get();
    CReaderWriterFactory& factory = CReaderWriterFactory::Ref();

    mpBuffWriter.reset(factory.CreateWriter(KESTEXT.name, "", stream));
    if (mpBuffWriter) mpBuffWriter->SetMetadataProvider(mpProvider.get());
    const auto makeReader = [&](const PluginWords& plugin) {
        std::unique_ptr<IConfigReader> reader(factory.CreateReader(plugin.name, "", stream));
        if (reader) {
            reader->SetMetadataProvider(mpProvider.get());
            reader->SetObserver(mpFileChip.get());
        }
        return reader;
    };
    mpTextReader = makeReader(KESTEXT);
    mpBinaryReader = makeReader(PACKINT);

    if (!mpProvider) Fail(FUNCTION, ERROR_PLUGIN, NO_PROVIDER);
    if (!mpBuffWriter || !mpTextReader) Fail(FUNCTION, ERROR_PLUGIN, KESTEXT.absent);
    if (!mpBinaryReader) Fail(FUNCTION, ERROR_PLUGIN, PACKINT.absent);
}

FrameworkFacade::~FrameworkFacade() { Dispose(); }

void FrameworkFacade::Dispose() {
    // Readers and writers first: they refer to the buffer, the provider and the configuration.
    mpBinaryReader.reset();
    mpTextReader.reset();
    mpBuffWriter.reset();
    mpBuffer.reset();
    mpProvider.reset();
    mpDefaultChip.reset();
    mpFileChip.reset();
}

void FrameworkFacade::OwningChip(std::shared_ptr<Chip> chip) {
    mOwningChip = std::move(chip);
    if (mpFileChip) mpFileChip->Clear();
    if (mpDefaultChip) mpDefaultChip->Clear();
}

bool FrameworkFacade::LoadBlank() {
    constexpr const char* FUNCTION = KES_FACADE_FUNCTION("LoadBlank");
    DefaultHandler(FUNCTION).ClearError(CMessageHandler::GROUP_DEFAULT);
    if (!mpFileChip) return true;
    EmptyBuffer();
    mpFileChip->PrepareForChip(mOwningChip ? mOwningChip->ChipId() : std::uint16_t{0});
    return true;
}

bool FrameworkFacade::IsMixedSubsystemTypes() const { return mpFileChip && mpFileChip->IsHeterogeneous(); }

bool FrameworkFacade::LoadText(const HostString& filePath, bool merge) {
    constexpr const char* FUNCTION = KES_FACADE_FUNCTION("LoadText");
    DefaultHandler(FUNCTION).ClearError(CMessageHandler::GROUP_DEFAULT);
    if (!CanRead(FUNCTION)) return false;
    EmptyBuffer();
    if (!merge) mpFileChip->PrepareForChip(mOwningChip->ChipId());
    if (!FillBuffer(FUNCTION, [&] {
            return files::ReadFile(Framework::GetString(filePath), files::Readable::REGULAR_FILES).bytes;
        })) {
        return Fail(FUNCTION, ERROR_DATA, NO_TEXT);
    }
    CKesContext context = LoadContext();
    return mpTextReader->Read(context);
}

bool FrameworkFacade::LoadTextFromMemory(std::string text, bool merge) {
    constexpr const char* FUNCTION = KES_FACADE_FUNCTION("LoadTextFromMemory");
    DefaultHandler(FUNCTION).ClearError(CMessageHandler::GROUP_DEFAULT);
    if (!CanRead(FUNCTION)) return false;
    EmptyBuffer();
    if (!merge) mpFileChip->PrepareForChip(mOwningChip->ChipId());
    if (text.empty()) return Fail(FUNCTION, ERROR_DATA, NO_TEXT);
    mpBuffer->str(std::move(text));
    CKesContext context = LoadContext();
    return mpTextReader->Read(context);
}

bool FrameworkFacade::SaveText(const HostString& filePath) { return SaveText(filePath, TextForm()); }

bool FrameworkFacade::SaveText(const HostString& filePath, const TextForm& form) {
    constexpr const char* FUNCTION = KES_FACADE_FUNCTION("SaveText");
    const std::unique_ptr<IConfigWriter> writer = BeginSave(FUNCTION, KESTEXT, filePath, nullptr);
    return writer && WriteText(FUNCTION, *writer, form);
}

bool FrameworkFacade::SaveTextToMemory(std::string& text, const TextForm& form) {
    constexpr const char* FUNCTION = KES_FACADE_FUNCTION("SaveTextToMemory");
    std::stringstream out;
    std::iostream* const stream = &out;
    const std::unique_ptr<IConfigWriter> writer = BeginSave(FUNCTION, KESTEXT, "", stream);
    if (!writer || !WriteText(FUNCTION, *writer, form)) return false;
    text = std::move(out).str();
    return true;
}

bool FrameworkFacade::WriteText(const char* function, IConfigWriter& writer, const TextForm& form) {
    CKesContext context = FileContext(*mOwningChip);
    if (form.simple) context.SetTag(STR_TXT_SIMPLE_MODE, STR_TRUE);
    if (!form.readsBack) return mpFileChip->Write(writer, context);
    CRawKeysWriter front(writer, *mpProvider);
    if (!mpFileChip->Write(front, context)) return false;
    return !front.Fault() || Fail(function, ERROR_DATA, front.Fault()->c_str());
}

HostString FrameworkFacade::FirstDifference(const FrameworkFacade& other) const {
    if (!mpFileChip || !other.mpFileChip) return "a facade is released";
    const std::optional<std::string> difference = mpFileChip->FirstDifference(*other.mpFileChip);
    return difference ? HostString(*difference) : HostString();
}

HostListRef<std::shared_ptr<Store>> FrameworkFacade::GetStores() const {
    if (!mpFileChip) return nullptr;
    auto list = std::make_shared<std::vector<std::shared_ptr<Store>>>();
    for (const CStoreInfo* store : mpFileChip->Stores()) {
        list->push_back(std::make_shared<Store>(static_cast<std::uint16_t>(store->DeviceId()),
                                                store->StoreId(), store->StoreSize(), store->StoreSizeFree(),
                                                store->Paired()));
    }
    return list;
}

HostListRef<std::shared_ptr<Place>> FrameworkFacade::GetPlaces() const {
    if (!mpFileChip) return nullptr;
    auto list = std::make_shared<std::vector<std::shared_ptr<Place>>>();
    for (const auto& [number, subsystem] : mpFileChip->Subsystems()) {
        const CKesContext& place = subsystem->Place();
        list->push_back(std::make_shared<Place>(static_cast<SubsystemTypes>(place.SubsystemType()),
                                                place.Device(), place.Store(),
                                                static_cast<std::uint32_t>(subsystem->Elements().size())));
    }
    return list;
}

/// Returns false and stores an error if something is missing that reading a text needs.
bool FrameworkFacade::CanRead(const char* function) const {
    if (!mpProvider) return Fail(function, ERROR_PLUGIN, NO_PROVIDER);
    if (!mpTextReader) return Fail(function, ERROR_PLUGIN, KESTEXT.absent);
    if (!mOwningChip) return Fail(function, ERROR_DATA, NO_CHIP);
    return true;
}

/// Returns false and stores an error if something is missing that writing keys as text needs.
bool FrameworkFacade::CanWrite(const char* function) const {
    if (!mpProvider) return Fail(function, ERROR_PLUGIN, NO_PROVIDER);
    if (!mpBuffWriter) return Fail(function, ERROR_PLUGIN, KESTEXT.absent);
    return true;
}

/// The context of a load. Also has the provider load the metadata of the chip.
CKesContext FrameworkFacade::LoadContext() const {
    CKesContext context = FileContext(*mOwningChip);
    context.SetTag(STR_INSERT_MODE, STR_OVERWRITE);
    mpProvider->MetadataList(context, true);
    return context;
}

/// Creates a writer for one save, with the metadata provider set. Returns null and stores an error if the
/// save is not possible. If it returns a writer, the configuration and the chip exist.
std::unique_ptr<IConfigWriter> FrameworkFacade::BeginSave(const char* function, const PluginWords& plugin,
                                                          const HostString& target, void* argument) {
    const std::string name = Framework::GetString(target);
    std::unique_ptr<IConfigWriter> writer(
        CReaderWriterFactory::Ref().CreateWriter(plugin.name, name, argument));
    // Cleared only now: an error that the failed creation stored is replaced by the message below.
    DefaultHandler(function).ClearError(CMessageHandler::GROUP_DEFAULT);
    if (!writer) {
        FailWithout(function, plugin, name);
    } else if (!mpProvider) {
        Fail(function, ERROR_PLUGIN, NO_PROVIDER);
        writer.reset();
    } else if (!mOwningChip) {
        Fail(function, ERROR_DATA, NO_CHIP);
        writer.reset();
    } else {
        writer->SetMetadataProvider(mpProvider.get());
    }
    return writer;
}

void FrameworkFacade::EmptyBuffer() {
    mpBuffer->str(std::string());
    mpBuffer->clear();
}

/// Fills the buffer with the bytes that `read` returns. Returns false if there are none, or if `read` throws
/// `FileError`, which is then passed on as a status report.
bool FrameworkFacade::FillBuffer(const char* function, const std::function<std::string()>& read) {
    try {
        std::string content = read();
        if (content.empty()) return false;
        mpBuffer->str(std::move(content));
        return true;
    } catch (const files::FileError& error) {
        DefaultHandler(function).NotifyStatus(CMessageHandler::STATUS_LEVEL_WARNING, error.what());
        return false;
    }
}

}  // namespace VEMO::Kes::ConfigurationTools
