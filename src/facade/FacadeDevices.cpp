// Configurations in the stores of devices.

#include "facade/FacadeSupport.h"
#include "facade/FrameworkFacade.h"
#include "model/CChipConfig.h"
#include "model/CReaderWriterFactory.h"
#include "model/CStoreInfo.h"
#include "model/IConfigReader.h"
#include "model/IConfigWriter.h"
#include "model/IMetadataProvider.h"

namespace VEMO::Kes::ConfigurationTools {

using namespace VemoKesConfigTools;

namespace {

constexpr const char* NO_CONNECTION = "no connection is given";
constexpr PluginWords OSTREL{"KLD770xDevice", "KLD770xDevice readerwriter plugin not found.", NO_CONNECTION};
constexpr PluginWords EEPROM{"KesEeprom", "KesEeprom readerwriter plugin not found.", NO_CONNECTION};
constexpr PluginWords CRS{"KesIsp", "KesIsp readerwriter plugin not found.", NO_CONNECTION};

constexpr std::int32_t ANY_SUBSYSTEM = -1;

}  // namespace

/// Creates a reader for one load, with the metadata provider set and the configuration as its observer.
/// Returns null and stores an error if the load is not possible. If it returns a reader, the default values
/// and the chip exist too.
std::unique_ptr<IConfigReader> FrameworkFacade::BeginDeviceLoad(const char* function,
                                                                const PluginWords& plugin,
                                                                const HostString& connection, bool merge,
                                                                void* argument) {
    DefaultHandler(function).ClearError(CMessageHandler::GROUP_DEFAULT);
    if (!mOwningChip) {
        Fail(function, ERROR_DATA, NO_CHIP);
        return nullptr;
    }
    // Emptied before the device is accessed: after a failed load, old keys must not pass for the device's.
    if (!merge && mpFileChip) mpFileChip->PrepareForChip(mOwningChip->ChipId());
    const std::string name = Framework::GetString(connection);
    std::unique_ptr<IConfigReader> reader(
        CReaderWriterFactory::Ref().CreateReader(plugin.name, name, argument));
    if (!reader) {
        FailWithout(function, plugin, name);
    } else if (!mpProvider) {
        Fail(function, ERROR_PLUGIN, NO_PROVIDER);
        reader.reset();
    } else {
        reader->SetMetadataProvider(mpProvider.get());
        reader->SetObserver(mpFileChip.get());
    }
    return reader;
}

bool FrameworkFacade::LoadFromDeviceOstrel(const HostString& connection, bool merge) {
    bool flag = true;
    const std::unique_ptr<IConfigReader> reader =
        BeginDeviceLoad(KES_FACADE_FUNCTION("LoadFromDeviceOstrel"), OSTREL, connection, merge, &flag);
    if (!reader) return false;
    CKesContext context = LoadContext();
    return reader->Read(context);
}

bool FrameworkFacade::LoadFromDeviceKesEeprom(const HostString& connection, bool merge) {
    const std::unique_ptr<IConfigReader> reader =
        BeginDeviceLoad(KES_FACADE_FUNCTION("LoadFromDeviceKesEeprom"), EEPROM, connection, merge, nullptr);
    if (!reader) return false;
    CKesContext context = LoadContext();
    return reader->Read(context);
}

bool FrameworkFacade::LoadFromDeviceKesCrs(const HostString& connection, DeviceNvsTypes aFilter) {
    const std::unique_ptr<IConfigReader> reader = BeginDeviceLoad(KES_FACADE_FUNCTION("LoadFromDeviceKesCrs"),
                                                                  CRS, connection, /*merge=*/false, nullptr);
    if (!reader) return false;
    CKesContext context = LoadContext();
    const bool readAll = aFilter == DEVICE_TYPE_ALL || aFilter == DEVICE_TYPE_NONE;
    if (readAll) {
        context.SetTag(STR_STORESET_FILTER);
    } else {
        context.SetTag(STR_STORESET_FILTER, aFilter);
    }
    const bool good = reader->Read(context);
    if (!readAll && aFilter != DEVICE_TYPE_DEV_CFG) return good;

    // The firmware's store set applies to all keys that the device does not set, so it holds the defaults.
    reader->SetObserver(mpDefaultChip.get());
    context.SetTag(STR_STORESET_FILTER, DEVICE_TYPE_FW_CFG);
    return good && reader->Read(context);
}

bool FrameworkFacade::SaveToDeviceOstrel(const HostString& connection, bool isMerging) {
    const std::unique_ptr<IConfigWriter> writer =
        BeginSave(KES_FACADE_FUNCTION("SaveToDeviceOstrel"), OSTREL, connection, &isMerging);
    if (!writer) return false;
    CKesContext context = FileContext(*mOwningChip);
    return mpFileChip->Write(*writer, context);
}

bool FrameworkFacade::SaveToDeviceKesEeprom(const HostString& connection, std::int32_t aEepromSizeExp,
                                            std::int32_t aEepromI2cMask) {
    const std::unique_ptr<IConfigWriter> writer =
        BeginSave(KES_FACADE_FUNCTION("SaveToDeviceKesEeprom"), EEPROM, connection, nullptr);
    if (!writer) return false;
    CKesContext context = FileContext(*mOwningChip);
    context.SetSubsystemType(ANY_SUBSYSTEM);
    context.SetTag(STR_FILE_MODE, STR_FILE_MODE_DIR);
    context.SetTag(STR_INSERT_MODE, STR_OVERWRITE);
    context.SetTag(STR_EEPROM_SIZE_EXP, aEepromSizeExp);
    context.SetTag(STR_EEPROM_I2C_MASK, aEepromI2cMask);
    return mpFileChip->Write(*writer, context);
}

bool FrameworkFacade::SaveToDeviceKesCrs(const HostString& connection, bool aDoResetAfterWrite) {
    const std::unique_ptr<IConfigWriter> writer =
        BeginSave(KES_FACADE_FUNCTION("SaveToDeviceKesCrs"), CRS, connection, nullptr);
    if (!writer) return false;
    CKesContext context = FileContext(*mOwningChip);
    context.SetTag(STR_FILE_MODE, STR_FILE_MODE_DIR);
    context.SetTag(STR_INSERT_MODE, STR_OVERWRITE);
    if (aDoResetAfterWrite) context.SetTag(STR_RESET_DEVICE_AFTER, STR_TRUE);
    return mpFileChip->Write(*writer, context);
}

bool FrameworkFacade::CreateKeyStore(const HostString& connection, DeviceNvsTypes location,
                                     std::int32_t storeId, std::int32_t storeSizeInBytes,
                                     std::int32_t applicationId, bool paired) {
    constexpr const char* FUNCTION = KES_FACADE_FUNCTION("CreateKeyStore");
    if (location != DEVICE_TYPE_OTP && location != DEVICE_TYPE_SMEM && location != DEVICE_TYPE_MTP) {
        return Fail(FUNCTION, ERROR_PLUGIN, "KLD770xDevice NVS location does not support creating store.");
    }
    if (paired && location != DEVICE_TYPE_SMEM) {
        return Fail(FUNCTION, ERROR_PLUGIN,
                    "KLD770xDevice NVS location does not support creating a paired store.");
    }
    CStoreInfo store;
    store.SetDeviceId(static_cast<IStoreManager::DEVICE>(location));
    store.SetStoreId(static_cast<std::uint16_t>(storeId));
    store.SetStoreSize(static_cast<std::uint32_t>(storeSizeInBytes));
    store.SetLinkedStoreId(static_cast<std::uint16_t>(applicationId));
    store.SetPaired(paired);

    const std::string name = Framework::GetString(connection);
    const std::unique_ptr<IStoreManager> manager(
        CReaderWriterFactory::Ref().CreateStoreManager(OSTREL.name, name, nullptr));
    CMessageHandler& handler = DefaultHandler(FUNCTION);
    // `CreateStore` returns nothing: whether an error is stored afterwards tells the outcome.
    handler.ClearError(CMessageHandler::GROUP_DEFAULT);
    if (!manager) return FailWithout(FUNCTION, OSTREL, name);
    CKesContext context;
    manager->CreateStore(store, context);
    return !handler.IsErrorSet(CMessageHandler::GROUP_DEFAULT, true);
}

}  // namespace VEMO::Kes::ConfigurationTools
