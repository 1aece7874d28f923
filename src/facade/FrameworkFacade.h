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
    /// One line per key, without comments and continuation lines.
    bool simple = false;
    /// Every value is written in a form that can be read again and that its metadata asks for: raw for keys
    /// that are not in the metadata and for values that were given raw, texts quoted, MAC addresses as such.
    /// Saving a value that has no such form (an index above 2147483647, a raw value with braces, names or
    /// negative numbers) fails with a message that names the key.
    bool readsBack = false;
};

/// The content of a chunk file in memory.
struct ChunkContent {
    std::string name;  ///< used in messages
    std::string bytes;
};

/// A host's access to the configuration of one chip. Create it after `Framework::Init`, set `OwningChip`,
/// then load. Use it from one thread at a time.
///
/// An operation that fails returns false or null and stores an error: see `Framework::Error` and
/// `Framework::GetLastError`. Loading a configuration clears errors stored before. A facade can be created
/// even if plug-ins are missing; an error of number 1 then names the missing plug-in, and the operations that
/// need it fail with the same error. Exceptions, such as `std::bad_alloc`, are passed on to the host.
class KES_API FrameworkFacade {
public:
    /// A facade that uses the metadata database with this file name; no chip is set.
    explicit FrameworkFacade(const HostString& dbName);
    FrameworkFacade(const FrameworkFacade&) = delete;
    FrameworkFacade& operator=(const FrameworkFacade&) = delete;
    ~FrameworkFacade();

    /// The chip that was set; null if none was.
    const std::shared_ptr<Chip>& OwningChip() const { return mOwningChip; }
    /// Sets the chip and discards the configuration and all defaults, even if it is the same chip.
    void OwningChip(std::shared_ptr<Chip> chip);

    /// Starts an empty configuration for the chip.
    bool LoadBlank();
    /// Whether the configuration mixes subsystem types.
    bool IsMixedSubsystemTypes() const;
    /// Reads a text file. A file that cannot be read completely counts as empty, and a status report gives
    /// the cause. Without `merge` the configuration is emptied first, even if the file cannot be read; with
    /// it, keys of the file replace existing ones. Only invalid lines are skipped: the result is then false,
    /// but all valid lines are in the configuration.
    bool LoadText(const HostString& filePath, bool merge);
    /// Writes the configuration to a text file, replacing an existing one. Unknown keys are written in a form
    /// that cannot be read again, and texts as octets; see `TextForm`. After a failure the file may be
    /// incomplete.
    bool SaveText(const HostString& filePath);
    /// The same, in the given form.
    bool SaveText(const HostString& filePath, const TextForm& form);
    /// Like `LoadText`, from memory; an empty text fails with the same message as an empty file.
    bool LoadTextFromMemory(std::string text, bool merge);
    /// Like `SaveText`, into `text`, which is unchanged after a failure. Use `ReplaceFile` to write the text
    /// to a file atomically.
    bool SaveTextToMemory(std::string& text, const TextForm& form);
    /// Reads all files `*.kcf` of a folder, excluding subfolders, in file system order; keys of a later file
    /// replace those of an earlier one. Empty and unreadable files are skipped. Returns the result of the
    /// last file read; if an earlier one failed, its error is stored, see `Framework::Error`. Returns false
    /// if no file was read. Without `merge` the configuration is emptied first. Throws
    /// `std::filesystem::filesystem_error` if the folder cannot be listed.
    bool LoadBinary(const HostString& folderPath, bool merge);
    /// Like `LoadBinary`, for files in memory, in the given order.
    bool LoadBinaryFromMemory(const std::vector<ChunkContent>& files, bool merge);
    /// Writes the configuration as chunk files to a folder, replacing existing files of the same names.
    bool SaveBinary(const HostString& folderPath);
    /// Describes the first difference from another configuration in places, keys or values; null if they are
    /// equal. A place without keys is ignored; the order of places and keys, and the stores, are not
    /// compared.
    HostString FirstDifference(const FrameworkFacade& other) const;

    /// The stores of the configuration: those of the last load, in the fixed order of devices, and those
    /// known before. Null after `Dispose`.
    HostListRef<std::shared_ptr<Store>> GetStores() const;
    /// The places of the configuration, in the order in which they were first used, with their numbers of
    /// keys. Null after `Dispose`.
    HostListRef<std::shared_ptr<Place>> GetPlaces() const;

    // Devices are accessed through the plug-in of their family, which alone interprets `connection`. An
    // operation blocks until its plug-in returns. A load empties the configuration before it accesses the
    // device; with merging, the keys of the device replace existing ones instead. A save does not change the
    // configuration.

    /// Reads the stores of a device through "KLD770xDevice".
    bool LoadFromDeviceOstrel(const HostString& connection, bool merge);
    /// Reads an EEPROM through "KesEeprom".
    bool LoadFromDeviceKesEeprom(const HostString& connection, bool merge);
    /// Reads a store set of a device through "KesIsp": the one that `aFilter` selects, or all of them for
    /// `DEVICE_TYPE_ALL` and `DEVICE_TYPE_NONE`. Always empties the configuration first. If that succeeds and
    /// `aFilter` selects all or `DEVICE_TYPE_DEV_CFG`, the firmware's store set is then read into the default
    /// values.
    bool LoadFromDeviceKesCrs(const HostString& connection, DeviceNvsTypes aFilter);
    /// Writes the configuration to a device through "KLD770xDevice"; `isMerging` tells the plug-in whether to
    /// merge it with the content of the device.
    bool SaveToDeviceOstrel(const HostString& connection, bool isMerging);
    /// Writes the configuration to an EEPROM of 2^`aEepromSizeExp` bytes through "KesEeprom".
    /// `aEepromI2cMask` is the mask of its address on the I2C bus. For a number of 0 or less the plug-in
    /// chooses a value.
    bool SaveToDeviceKesEeprom(const HostString& connection, std::int32_t aEepromSizeExp,
                               std::int32_t aEepromI2cMask);
    /// Writes the configuration to a device through "KesIsp", and has the device reset afterwards if
    /// requested.
    bool SaveToDeviceKesCrs(const HostString& connection, bool aDoResetAfterWrite);
    /// Creates a store on a device through "KLD770xDevice". `location` is otp, smem or mtp; only on smem can
    /// the store be paired. Only the low 16 bits of `storeId` and `applicationId` are used. If the location
    /// is not possible, the operation fails without clearing earlier errors. `GetStores` lists the store only
    /// after a load that finds it. Needs no chip.
    bool CreateKeyStore(const HostString& connection, DeviceNvsTypes location, std::int32_t storeId,
                        std::int32_t storeSizeInBytes, std::int32_t applicationId, bool paired);

    // Single values. A key is addressed by its number and, for a table key, its indexes; a null list of
    // indexes counts as empty. Values are passed as text. None of these operations clears errors stored
    // before, and none takes longer in a large configuration than in a small one.

    using IndexListRef = HostListRef<std::int32_t>;
    using SubsystemRef = std::shared_ptr<Subsystem>;

    /// Whether the configuration holds any key.
    bool HasValue() const;
    /// Whether it holds any key of this subsystem type.
    bool HasValue(const SubsystemRef& subsystem) const;
    /// Whether it holds a key with this number, with any indexes or none. False for a layer of 0 or less.
    bool HasValue(const SubsystemRef& subsystem, std::int32_t psId, std::int32_t layer) const;
    /// Whether it holds the key with exactly these indexes. False for a layer of 0 or less.
    bool HasValue(const SubsystemRef& subsystem, std::int32_t psId, std::int32_t layer,
                  const IndexListRef& indexes) const;
    /// A key as lines of text: its label as a comment, then name, " = ", value and newline. Null if the key
    /// does not exist; defaults are not considered. If several places have the key, the one in which it was
    /// written last is used. `GetValues` returns the value alone.
    HostString GetValue(const SubsystemRef& subsystem, std::int32_t psId, const IndexListRef& indexes,
                        std::int32_t layer);
    /// The same as bytes, which need not be valid UTF-8: `GetValue` replaces invalid ones by U+FFFD. Returns
    /// false and leaves `text` unchanged if the key does not exist.
    bool GetValueBytes(const SubsystemRef& subsystem, std::int32_t psId, const IndexListRef& indexes,
                       std::int32_t layer, std::string& text);
    /// Sets a key, replacing all occurrences of it in the place. `device` is otp, smem, mtp or eeprom; on
    /// eeprom `store` is 1 to 15. `value` is what follows "=" in a text: an empty one removes the key, and
    /// what follows a newline in it is a separate line. If any line is invalid, nothing is changed; the
    /// position in the message refers to a text that is generated internally. If a successful call leaves the
    /// place without keys, the place remains only if it existed before. Fails without a message for a layer
    /// of 0 or less.
    bool SetValue(const SubsystemRef& subsystem, std::int32_t psId, const IndexListRef& indexes,
                  std::int32_t device, std::int32_t store, std::int32_t layerIndex, const HostString& value);
    /// The same, but the key is added after existing occurrences of it in the place. An empty value adds a
    /// key without a value.
    bool AddValue(const SubsystemRef& subsystem, std::int32_t psId, const IndexListRef& indexes,
                  std::int32_t device, std::int32_t store, std::int32_t layerIndex, const HostString& value);
    /// Like `SetValue` and `AddValue`, with the value as the bytes of a text.
    bool SetValueBytes(const SubsystemRef& subsystem, std::int32_t psId, const IndexListRef& indexes,
                       std::int32_t device, std::int32_t store, std::int32_t layerIndex,
                       const std::string& value);
    bool AddValueBytes(const SubsystemRef& subsystem, std::int32_t psId, const IndexListRef& indexes,
                       std::int32_t device, std::int32_t store, std::int32_t layerIndex,
                       const std::string& value);
    /// Removes a key from one place of any device, even if it is not in the metadata. Returns false if the
    /// key does not exist.
    bool RemoveValue(const SubsystemRef& subsystem, std::int32_t psId, const IndexListRef& indexes,
                     std::int32_t device, std::int32_t store);
    /// All keys of the configuration, in order, place by place, with the defaults as far as they have been
    /// loaded. Null after `Dispose`.
    HostListRef<std::shared_ptr<KeyValue>> GetValues();
    /// One key in each place that has it; the newest if a place has several. Empty if there is none, null
    /// after `Dispose`.
    HostListRef<std::shared_ptr<KeyValue>> GetValues(const SubsystemRef& subsystem, std::int32_t psId,
                                                     const IndexListRef& indexes);

    // Default values are kept separately from the configuration. They come from the database or from a
    // device; those of a device take precedence. None of these operations clears errors.

    /// Loads the default values of a subsystem from the database, replacing those loaded before.
    bool LoadDefaults(const SubsystemRef& subsystem);
    /// Replaces all defaults by those of these subsystems. If one subsystem fails, the others are still
    /// loaded, but the result is false.
    bool ReloadKnownDefaults(const HostListRef<SubsystemRef>& subsystems);
    /// Whether any default came from a device.
    bool HasDeviceDefaults() const;
    /// Whether there is a default for this key number, with any indexes or none, from the database or a
    /// device.
    bool HasAnyDefault(const SubsystemRef& subsystem, std::int32_t psId) const;
    /// Whether there is a default from the database for this key number, with any indexes or none.
    bool HasDefault(const SubsystemRef& subsystem, std::int32_t psId) const;
    /// Whether there is a default from the database for the key with exactly these indexes.
    bool HasDefault(const SubsystemRef& subsystem, std::int32_t psId, const IndexListRef& indexes) const;
    /// The default of a key in the form of `GetValue`; null if it has none.
    HostString GetDefault(const SubsystemRef& subsystem, std::int32_t psId, const IndexListRef& indexes);
    /// All default values. Null after `Dispose`.
    HostListRef<std::shared_ptr<KeyValue>> GetDefaultValues();

    /// Records for those keys of a subsystem, in the configuration or the defaults, that are not in the
    /// metadata, so that a host can show and edit them. For the subsystem type psaudio every key gets a
    /// record, filled from its metadata if there is any. By key number; empty if there are none.
    HostMapRef<std::int32_t, std::shared_ptr<Metadata>> GetPopulatedRawmodeMetadata(
        const SubsystemRef& subsystem) const;

    /// Releases all resources of the facade. Later operations fail. A second call has no effect.
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

    std::unique_ptr<VemoKesConfigTools::CChipConfig> mpFileChip;     ///< the configuration
    std::unique_ptr<VemoKesConfigTools::CChipConfig> mpDefaultChip;  ///< the default values
    std::unique_ptr<VemoKesConfigTools::IMetadataProvider> mpProvider;
    /// Input or output of the reader and writers below. Shared by all operations; each empties it first.
    std::unique_ptr<std::stringstream> mpBuffer;
    std::unique_ptr<VemoKesConfigTools::IConfigWriter> mpBuffWriter;    ///< text, into the buffer
    std::unique_ptr<VemoKesConfigTools::IConfigReader> mpTextReader;    ///< text, from the buffer
    std::unique_ptr<VemoKesConfigTools::IConfigReader> mpBinaryReader;  ///< chunks, from the buffer
    std::shared_ptr<Chip> mOwningChip;
};

}  // namespace VEMO::Kes::ConfigurationTools
