#pragma once

#include "messages/Export.h"
#include "model/CElement.h"
#include "model/CKesContext.h"
#include "model/IConfigReaderElementObserver.h"
#include "model/IConfigReaderObserver.h"
#include "model/IElementProvider.h"
#include "model/IWritable.h"
#include "model/MetadataTypes.h"

#include <cstdint>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace VemoKesConfigTools {

class CChangeLog;
class CStoreInfo;
class CSubsystemConfig;

/// One chip's configuration in memory: one `CSubsystemConfig` for each place (subsystem type, device, store,
/// layer or none) in the order in which places were met, and the list of stores. It fills as the observer of
/// readers; reads add to what is there. Owns all that it holds. Used from one thread at a time.
///
/// Layers: a place without a layer is configuration and answers to every layer from 1 up. A place of layer n
/// answers to n, and for n from 1 to 15 also to 16, all combined. Layer 0, the defaults, answers to 0 only.
/// The tag `STR_LAYER_FILTER` with n widens a question to all layers up to n; what is not layer 0 then wins.
///
/// A question that several places can answer is answered from the one in which that key was written last.
class KES_API CChipConfig final : public IConfigReaderObserver,
                                  public IConfigReaderElementObserver,
                                  public IWritable,
                                  public IElementProvider {
public:
    CChipConfig();
    CChipConfig(const CChipConfig&) = delete;
    CChipConfig& operator=(const CChipConfig&) = delete;
    ~CChipConfig() override;

    void OnReadStarted(IConfigReader& reader, IConfigContext& context) override;
    void OnSubsystemFound(IConfigReader& reader, IConfigContext& context) override;
    void OnSubsystemCompleted(IConfigReader& reader, IConfigContext& context) override;
    void OnReadEnded(IConfigReader& reader, IConfigContext& context) override;
    bool OnElementFound(CElement* element, IConfigContext& context) override;
    /// Drives the writer over all places and elements. True when no error was stored meanwhile.
    bool Write(IConfigWriter& writer, IConfigContext& context) override;
    const CElement& Element(const std::string& key, IConfigContext& context) const override;
    const CElement& Element(std::uint32_t psid, IConfigContext& context) const override;

    /// Empties the configuration and sets it up for the chip with this id.
    void PrepareForChip(std::uint16_t chipId);
    /// Empties the configuration: no subsystem, element or store remains.
    void Clear();
    /// Whether the places are of two or more subsystem types.
    bool IsHeterogeneous() const { return mPlacesByType.size() > 1; }
    /// The chip id that the configuration was prepared for, 0 before.
    std::uint16_t ChipId() const { return mChipId; }

    /// The places. The key is a running number in the order of first arrival.
    const std::map<std::string, CSubsystemConfig*>& Subsystems() const { return mSubsystems; }
    /// The stores: those of the last read in the reader's order, and those known before. What a read does not
    /// know of a store stays as an earlier read had it.
    const std::list<CStoreInfo*>& Stores() const { return mStores; }
    /// Where the other configuration differs first in places, keys or values, in words. A place without keys
    /// counts as none; the order of places and keys, stores and chip id are not compared.
    std::optional<std::string> FirstDifference(const CChipConfig& other) const;
    bool HasElements() const;
    bool HasElements(SubSystemTypeEnum type) const;
    /// Whether this psid is there, with or without indexes, in this subsystem type and layer.
    bool HasElements(std::uint32_t psid, SubSystemTypeEnum type, std::uint16_t layer) const;

private:
    friend class CConfigTransaction;

    struct PlaceKey {
        std::int32_t type;
        std::int32_t device;
        std::int32_t store;
        std::optional<std::int32_t> layer;
        bool operator==(const PlaceKey&) const = default;
    };
    struct PlaceHash {
        std::size_t operator()(const PlaceKey& key) const noexcept;
    };
    using Places = std::vector<CSubsystemConfig*>;

    void BeginTransaction();
    void EndTransaction(bool keep);
    void RemovePlace(const CSubsystemConfig& place);
    bool HasPlaceOn(const CStoreInfo& store) const;
    static PlaceKey KeyOf(const CKesContext& place);
    CSubsystemConfig& PlaceOf(IConfigContext& context);
    const Places& PlacesFor(const CKesContext& question) const;
    const CElement& Look(std::uint32_t psid, std::span<const std::uint32_t> indices,
                         IConfigContext& context) const;

    std::unique_ptr<CChangeLog> mpLog;  ///< places refer to it
    std::map<std::string, CSubsystemConfig*> mSubsystems;
    std::list<CStoreInfo*> mStores;
    std::unordered_map<PlaceKey, std::unique_ptr<CSubsystemConfig>, PlaceHash> mPlaces;
    std::map<std::int32_t, Places> mPlacesByType;
    Places mPlacesInOrder;
    PlaceKey mLastKey{};
    CSubsystemConfig* mpLastPlace =
        nullptr;  ///< the place of `mLastKey`: readers name the same one over and over
    CElement mNotFound;
    std::uint16_t mChipId = 0;
};

}  // namespace VemoKesConfigTools
