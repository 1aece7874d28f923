#pragma once

#include "host/HostCollections.h"
#include "host/HostString.h"
#include "messages/Export.h"
#include "metadata/Chip.h"
#include "metadata/Place.h"
#include "metadata/Store.h"

#include <iosfwd>
#include <memory>
#include <string>

namespace VemoKesConfigTools {
class CChipConfig;
class IConfigReader;
class IConfigWriter;
class IMetadataProvider;
}  // namespace VemoKesConfigTools

namespace VEMO::Kes::ConfigurationTools {

/// How a text is written.
struct TextForm {
    /// One line for each key, without comments and continued lines.
    bool simple = false;
    /// Every value is written in a form that reads back and that its metadata asks for: keys that the
    /// metadata does not know and values that were given raw come out raw, texts quoted, MAC addresses as
    /// such.
    bool readsBack = false;
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
    /// Reads a text file. Without `merge` the configuration is emptied first, even if the file cannot be
    /// read; with it, keys of the file replace those that are there. A bad line costs that line only: all
    /// good ones are in the configuration although the result is false.
    bool LoadText(const HostString& filePath, bool merge);
    /// Writes the configuration as a text file; one that is there is replaced. The configuration stays as it
    /// is. After a failure the file may hold a part of it.
    bool SaveText(const HostString& filePath);
    /// The same in a form of the host's choice.
    bool SaveText(const HostString& filePath, const TextForm& form);
    /// Where this configuration differs first from another one in places, keys or values, in words; null when
    /// they are the same. Stores are not compared.
    HostString FirstDifference(const FrameworkFacade& other) const;

    /// The stores of the configuration: those of the last load in their fixed order of devices, and those
    /// known before. Null once the facade is released.
    HostListRef<std::shared_ptr<Store>> GetStores() const;
    /// The places of the configuration in the order in which they were met, with their numbers of keys. Null
    /// once the facade is released.
    HostListRef<std::shared_ptr<Place>> GetPlaces() const;

    /// Releases all that the facade holds. Later operations fail. A second call does nothing.
    void Dispose();

private:
    bool CanRead(const char* function) const;
    void EmptyBuffer();
    bool FillBuffer(const std::string& path);

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
