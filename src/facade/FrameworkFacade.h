#pragma once

#include "host/HostCollections.h"
#include "host/HostString.h"
#include "messages/Export.h"
#include "metadata/Chip.h"
#include "metadata/Enumerations.h"
#include "metadata/KeyValue.h"
#include "metadata/Metadata.h"
#include "metadata/Place.h"
#include "metadata/Store.h"
#include "metadata/Subsystem.h"

#include <functional>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace VemoKesConfigTools {
class CChipConfig;
class CElement;
class CKesContext;
class CSubsystemConfig;
class IConfigReader;
class IConfigWriter;
class IMetadataProvider;
}  // namespace VemoKesConfigTools

namespace VEMO::Kes::ConfigurationTools {

struct PluginWords;

/// How a text is written.
struct TextForm {
    /// One line for each key, without comments and continued lines.
    bool simple = false;
    /// Every value is written in a form that reads back and that its metadata asks for: keys that the
    /// metadata does not know and values that were given raw come out raw, texts quoted, MAC addresses as
    /// such. A save of what has no such form fails with a message that names the key: an index above
    /// 2147483647, a raw value with braces, names or numbers below 0.
    bool readsBack = false;
};

/// A chunk file at hand.
struct ChunkContent {
    std::string name;  ///< how messages name it
    std::string bytes;
};

/// One chip's configuration, as a host works on it. Build it after `Framework::Init`, set `OwningChip`, then
/// load. Used from one thread at a time.
///
/// An operation that fails gives false or null, and stores why: see `Framework::Error` and
/// `Framework::GetLastError`. Whole loads clear what was stored before. A facade whose plug-ins are not there
/// comes up all the same, with the name of what is missing stored as an error of number 1; the operations
/// that need it fail with the same error. Exceptions, of the allocator for one, reach the host unchanged.
class KES_API FrameworkFacade {
public:
    /// A facade on the metadata database of this name, without a chip.
    explicit FrameworkFacade(const HostString& dbName);
    FrameworkFacade(const FrameworkFacade&) = delete;
    FrameworkFacade& operator=(const FrameworkFacade&) = delete;
    ~FrameworkFacade();

    /// The chip set last; null before the first.
    const std::shared_ptr<Chip>& OwningChip() const { return mOwningChip; }
    /// Sets the chip and drops all configuration and all defaults, also when it is the same chip.
    void OwningChip(std::shared_ptr<Chip> chip);

    /// Begins an empty configuration for the chip.
    bool LoadBlank();
    /// Whether the configuration mixes subsystem types.
    bool IsMixedSubsystemTypes() const;
    /// Reads a text file. One that cannot be read whole counts as empty, and a status report tells the cause.
    /// Without `merge` the configuration is emptied first, even if the file cannot be
    /// read; with it, keys of the file replace those that are there. A bad line costs that line only: all
    /// good ones are in the configuration although the result is false.
    bool LoadText(const HostString& filePath, bool merge);
    /// Writes the configuration as a text file; one that is there is replaced. The configuration stays as it
    /// is. Unknown keys come out in a form that does not read back, texts as octets; see `TextForm`. After a
    /// failure the file may hold a part of it.
    bool SaveText(const HostString& filePath);
    /// The same in a form of the host's choice.
    bool SaveText(const HostString& filePath, const TextForm& form);
    /// `LoadText` of a text at hand; an empty one is refused in the words for an empty file.
    bool LoadTextFromMemory(std::string text, bool merge);
    /// `SaveText` into `text`, which stays as it is after a failure. `ReplaceFile` puts it in place of a file
    /// without ever losing one of the two.
    bool SaveTextToMemory(std::string& text, const TextForm& form);
    /// Reads all files `*.kcf` of a folder, without its sub-folders, in the order that the file system gives;
    /// keys of a later file replace those of an earlier one. Empty and unreadable files are passed over. The
    /// result is that of the last file read: one that failed before it has left its message, see
    /// `Framework::Error`. False when no file was read. Without `merge` the configuration is emptied first.
    /// Throws `std::filesystem::filesystem_error` for a folder that cannot be listed.
    bool LoadBinary(const HostString& folderPath, bool merge);
    /// `LoadBinary` of the files of a folder at hand, in their order.
    bool LoadBinaryFromMemory(const std::vector<ChunkContent>& files, bool merge);
    /// Writes the configuration as chunk files into a folder. What is there under their names is replaced.
    bool SaveBinary(const HostString& folderPath);
    /// Where this configuration differs first from another one in places, keys or values, in words; null when
    /// they are the same. A place without keys counts as none; the order of places and keys, and the stores
    /// are not compared.
    HostString FirstDifference(const FrameworkFacade& other) const;

    /// The stores of the configuration: those of the last load in their fixed order of devices, and those
    /// known before. Null once the facade is released.
    HostListRef<std::shared_ptr<Store>> GetStores() const;
    /// The places of the configuration in the order in which they were met, with their numbers of keys. Null
    /// once the facade is released.
    HostListRef<std::shared_ptr<Place>> GetPlaces() const;

    // Devices, reached through the plug-in of their family, which alone knows what `connection` means. An
    // operation blocks until its plug-in returns. A load empties the configuration before it reaches for the
    // device, unless it merges; what the device holds then replaces what is there key by key. A save leaves
    // the configuration as it is.

    /// Reads the stores of a device through "KLD770xDevice".
    bool LoadFromDeviceOstrel(const HostString& connection, bool merge);
    /// Reads an EEPROM through "KesEeprom".
    bool LoadFromDeviceKesEeprom(const HostString& connection, bool merge);
    /// Reads a store set of a device through "KesIsp": a number of `DeviceNvsTypes`, or all of them for
    /// `DEVICE_TYPE_ALL` and `DEVICE_TYPE_NONE`. Always empties the configuration first. For all, and for
    /// `DEVICE_TYPE_DEV_CFG`, the firmware's store set is then added to the default values; a first reading
    /// that failed is not followed by a second one.
    bool LoadFromDeviceKesCrs(const HostString& connection, DeviceNvsTypes aFilter);
    /// Writes the configuration to a device through "KLD770xDevice", which is told whether to merge it with
    /// what the device holds.
    bool SaveToDeviceOstrel(const HostString& connection, bool isMerging);
    /// Writes the configuration to an EEPROM of 2 to the power of `aEepromSizeExp` bytes through "KesEeprom".
    /// `aEepromI2cMask` is the mask of its address on the I2C bus. A number of 0 or less leaves it to the
    /// plug-in.
    bool SaveToDeviceKesEeprom(const HostString& connection, std::int32_t aEepromSizeExp,
                               std::int32_t aEepromI2cMask);
    /// Writes the configuration to a device through "KesIsp", and has it reset afterwards on request.
    bool SaveToDeviceKesCrs(const HostString& connection, bool aDoResetAfterWrite);
    /// Makes a store on a device through "KLD770xDevice". `location` is otp, smem or mtp; only on smem can
    /// the store be one of a pair. Of `storeId` and `applicationId` the low 16 bits count. A place that can
    /// have no such store is refused without clearing what was stored before. `GetStores` shows the store
    /// once a load has met it. Needs no chip.
    bool CreateKeyStore(const HostString& connection, DeviceNvsTypes location, std::int32_t storeId,
                        std::int32_t storeSizeInBytes, std::int32_t applicationId, bool paired);

    // Single values. A key is addressed by its number and, for a table key, its indexes; a null list of
    // indexes is an empty one. Values come and go as text. None of these operations clears an error that was
    // stored before, and none takes longer in a large configuration than in a small one.

    using IndexListRef = HostListRef<std::int32_t>;
    using SubsystemRef = std::shared_ptr<Subsystem>;

    /// Whether the configuration holds any key.
    bool HasValue() const;
    /// Whether it holds any key of this subsystem type.
    bool HasValue(const SubsystemRef& subsystem) const;
    /// Whether it holds this key number, with or without indexes. False for a layer of 0 or less.
    bool HasValue(const SubsystemRef& subsystem, std::int32_t psId, std::int32_t layer) const;
    /// Whether it holds this very key. False for a layer of 0 or less.
    bool HasValue(const SubsystemRef& subsystem, std::int32_t psId, std::int32_t layer,
                  const IndexListRef& indexes) const;
    /// A key as the lines of a text: its label in a comment, name, " = " and value, newline. Null for a key
    /// that is not there; a default is no value. Of several places the one in which this key was written last
    /// counts. `GetValues` has the value alone.
    HostString GetValue(const SubsystemRef& subsystem, std::int32_t psId, const IndexListRef& indexes,
                        std::int32_t layer);
    /// The same in the bytes that a text has, which need not be UTF-8: `GetValue` shows U+FFFD for those.
    /// False for a key that is not there; `text` is then left alone.
    bool GetValueBytes(const SubsystemRef& subsystem, std::int32_t psId, const IndexListRef& indexes,
                       std::int32_t layer, std::string& text);
    /// Sets a key, which replaces all that the place holds of it. `device` is otp, smem, mtp or eeprom; on
    /// eeprom `store` is 1 to 15. `value` is what a text has behind "=": an empty one removes the key, and
    /// what follows a newline in it is a line of its own. When any of the lines is refused, nothing changes;
    /// the place in the message is that in a text made for the purpose. A place that a good call left without
    /// keys stays only if it was there before. A layer of 0 or less is refused without a message.
    bool SetValue(const SubsystemRef& subsystem, std::int32_t psId, const IndexListRef& indexes,
                  std::int32_t device, std::int32_t store, std::int32_t layerIndex, const HostString& value);
    /// The same, but the key goes behind those that the place holds of it. An empty value adds a key without
    /// a value.
    bool AddValue(const SubsystemRef& subsystem, std::int32_t psId, const IndexListRef& indexes,
                  std::int32_t device, std::int32_t store, std::int32_t layerIndex, const HostString& value);
    /// `SetValue` and `AddValue` with the bytes of a text as value.
    bool SetValueBytes(const SubsystemRef& subsystem, std::int32_t psId, const IndexListRef& indexes,
                       std::int32_t device, std::int32_t store, std::int32_t layerIndex,
                       const std::string& value);
    bool AddValueBytes(const SubsystemRef& subsystem, std::int32_t psId, const IndexListRef& indexes,
                       std::int32_t device, std::int32_t store, std::int32_t layerIndex,
                       const std::string& value);
    /// Removes a key from one place, of any device; also one that the metadata does not know. False when it
    /// is not there.
    bool RemoveValue(const SubsystemRef& subsystem, std::int32_t psId, const IndexListRef& indexes,
                     std::int32_t device, std::int32_t store);
    /// All keys of the configuration, place by place in their order, with those defaults that have been
    /// loaded. Null once the facade is released.
    HostListRef<std::shared_ptr<KeyValue>> GetValues();
    /// One key as each place holds it, the newest where there are several. Empty when it is nowhere, null
    /// once the facade is released.
    HostListRef<std::shared_ptr<KeyValue>> GetValues(const SubsystemRef& subsystem, std::int32_t psId,
                                                     const IndexListRef& indexes);

    // Default values, which are kept apart from the configuration. They come from the database, or from a
    // device, whose defaults go first. None of these operations clears an error.

    /// Adds the default values of a subsystem from the database; what was loaded before is replaced.
    bool LoadDefaults(const SubsystemRef& subsystem);
    /// Loads the defaults of these subsystems in place of all that was there. A subsystem that fails does not
    /// keep the others from being loaded, and makes the result false.
    bool ReloadKnownDefaults(const HostListRef<SubsystemRef>& subsystems);
    /// Whether any default came from a device.
    bool HasDeviceDefaults() const;
    /// Whether there is a default of this key number, with or without indexes, from the database or a device.
    bool HasAnyDefault(const SubsystemRef& subsystem, std::int32_t psId) const;
    /// Whether the database has a default of this key number, with or without indexes.
    bool HasDefault(const SubsystemRef& subsystem, std::int32_t psId) const;
    /// Whether the database has a default of this very key.
    bool HasDefault(const SubsystemRef& subsystem, std::int32_t psId, const IndexListRef& indexes) const;
    /// The default of a key in the form of `GetValue`; null without one.
    HostString GetDefault(const SubsystemRef& subsystem, std::int32_t psId, const IndexListRef& indexes);
    /// All default values. Null once the facade is released.
    HostListRef<std::shared_ptr<KeyValue>> GetDefaultValues();

    /// Records for the keys of a subsystem, in the configuration or among the defaults, that the metadata
    /// does not know, so that a host can show and edit them. For the subsystem type psaudio every key has
    /// one, with what the metadata knows of it. By key number; empty when there is none.
    HostMapRef<std::int32_t, std::shared_ptr<Metadata>> GetPopulatedRawmodeMetadata(
        const SubsystemRef& subsystem) const;

    /// Releases all that the facade holds. Later operations fail. A second call does nothing.
    void Dispose();

private:
    bool CanRead(const char* function) const;
    bool CanWrite(const char* function) const;
    VemoKesConfigTools::CKesContext LoadContext() const;
    std::unique_ptr<VemoKesConfigTools::IConfigReader> BeginDeviceLoad(const char* function,
                                                                       const PluginWords& plugin,
                                                                       const HostString& connection,
                                                                       bool merge, void* argument);
    std::unique_ptr<VemoKesConfigTools::IConfigWriter> BeginSave(const char* function,
                                                                 const PluginWords& plugin,
                                                                 const HostString& target, void* argument);
    bool SetAddValue(const SubsystemRef& subsystem, std::int32_t psId, const IndexListRef& indexes,
                     std::int32_t device, std::int32_t store, std::int32_t layerIndex,
                     const std::string& value, bool add);
    static std::string indexedPsid(std::int32_t psId, const IndexListRef& indexes);
    VemoKesConfigTools::CKesContext QuestionContext(const Subsystem& subsystem, std::int32_t layer) const;
    std::optional<std::string> TextOf(const VemoKesConfigTools::CElement& element,
                                      VemoKesConfigTools::CKesContext& context);
    std::string LineValueOf(VemoKesConfigTools::CElement& element, VemoKesConfigTools::CKesContext& context);
    std::shared_ptr<KeyValue> ValueOf(const VemoKesConfigTools::CSubsystemConfig& place,
                                      VemoKesConfigTools::CElement& element);
    HostListRef<std::shared_ptr<KeyValue>> ValuesOf(const VemoKesConfigTools::CChipConfig& chip);
    void EmptyBuffer();
    bool FillBuffer(const char* function, const std::function<std::string()>& read);
    bool BeginBinaryLoad(const char* function, bool merge);
    bool ReadChunk(const std::string& name);
    bool WriteText(const char* function, VemoKesConfigTools::IConfigWriter& writer, const TextForm& form);

    std::unique_ptr<VemoKesConfigTools::CChipConfig> mpFileChip;     ///< the configuration under work
    std::unique_ptr<VemoKesConfigTools::CChipConfig> mpDefaultChip;  ///< the default values
    std::unique_ptr<VemoKesConfigTools::IMetadataProvider> mpProvider;
    /// Shared by all operations; each empties it first.
    std::unique_ptr<std::stringstream> mpBuffer;
    std::unique_ptr<VemoKesConfigTools::IConfigWriter> mpBuffWriter;    ///< text, into the buffer
    std::unique_ptr<VemoKesConfigTools::IConfigReader> mpTextReader;    ///< text, from the buffer
    std::unique_ptr<VemoKesConfigTools::IConfigReader> mpBinaryReader;  ///< chunks, from the buffer
    std::shared_ptr<Chip> mOwningChip;
};

}  // namespace VEMO::Kes::ConfigurationTools
