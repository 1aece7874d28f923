#include "plugins/image/ImageInfo.h"

#include "plugins/binary/Refusal.h"
#include "plugins/image/Connection.h"
#include "plugins/image/DeviceImage.h"
#include "plugins/image/ImageStores.h"

#include <string_view>

namespace VemoKesConfigTools {

namespace {

BankInfo BankInfoOf(const StoreRecord& store, std::string_view bytes, std::uint32_t half, bool isCurrent) {
    const FoundBank bank = LookAtBank(bytes);
    if (!bank.isWhole) {
        const bool isEmpty = bank.isBlank && !isCurrent;
        return {half, 0, isEmpty ? BankState::Empty : BankState::Damaged};
    }
    if (!isCurrent) return {half, bank.sequence, BankState::Previous};
    // The bank is valid, but not the one that the directory describes.
    if (bank.sequence != store.sequence || Crc32(bank.content) != store.crc)
        return {half, 0, BankState::Damaged};
    return {half, bank.sequence, BankState::Current};
}

std::vector<BankInfo> BanksOf(const StoreRecord& store, std::string_view area) {
    std::vector<BankInfo> banks;
    for (std::uint32_t half = 0; half < (store.paired ? 2U : 1U); ++half) {
        for (std::uint32_t bank = 0; bank < 2; ++bank) {
            const bool isCurrent = store.sequence != 0 && bank == store.current;
            const std::uint32_t offset = store.BankOffset(half, bank) - store.offset;
            banks.push_back(BankInfoOf(store, area.substr(offset, store.bankSize), half, isCurrent));
        }
    }
    return banks;
}

/// The segments of one-time-programmable memory, in order. The remains of an interrupted save count as one
/// damaged segment.
std::vector<BankInfo> SegmentsOf(const StoreRecord& store, std::string_view area) {
    std::vector<BankInfo> segments;
    const std::size_t end = area.find_last_not_of('\0') + 1;
    for (std::uint64_t at = 0; at < end;) {
        const bool isCurrent = store.sequence != 0 && at == store.current;
        const FoundBank found = LookAtBank(area.substr(at));
        const BankInfo segment = BankInfoOf(store, area.substr(at), 0, isCurrent);
        // The length of a damaged segment is unknown, so it is skipped in steps of the alignment.
        const bool goesOn = segment.state == BankState::Damaged && !segments.empty() &&
                            segments.back().state == BankState::Damaged;
        if (!goesOn && segment.state != BankState::Empty) segments.push_back(segment);
        at = found.isWhole ? Align(at + BANK_OVERHEAD + found.content.size()) : at + ALIGNMENT;
    }
    // The directory refers to a current segment that is not there at all.
    if (store.sequence != 0 && store.current >= end) segments.push_back({0, 0, BankState::Damaged});
    return segments;
}

StoreDetails DetailsOf(const DeviceImage& image, std::size_t position) {
    const StoreRecord& store = image.Directory().stores[position];
    StoreDetails details{store.device,
                         store.id,
                         store.applicationId,
                         store.bankSize,
                         FreeIn(image, store),
                         0,
                         store.paired,
                         store.automatic,
                         store.takesEveryId,
                         store.takesOtherPlaces,
                         {}};
    const std::string area = image.ReadArea(store);
    const bool isOneTime = image.Header().MemoryOf(store.device)->oneTimeProgrammable;
    details.banks = isOneTime ? SegmentsOf(store, area) : BanksOf(store, area);
    try {
        details.placeCount = static_cast<std::uint32_t>(DecodeContent(image.Content(position)).size());
    } catch (const Refusal&) {
        details.placeCount = 0;
    }
    return details;
}

}  // namespace

ImageInfo ReadImageInfo(const std::string& connection) {
    const DeviceImage image(PathOfConnection(connection), files::LockMode::SHARED);
    const ImageHeader& header = image.Header();
    const ImageDirectory& directory = image.Directory();
    ImageInfo info{header.family,
                   header.chipId,
                   directory.systemLabel,
                   header.size,
                   header.i2cMask,
                   directory.resets,
                   {},
                   {}};
    for (const ImageMemory& memory : header.memories) {
        info.memories.push_back(
            {memory.device, memory.size, image.FreeOf(memory, directory.stores), memory.oneTimeProgrammable});
    }
    for (std::size_t i = 0; i < directory.stores.size(); ++i) info.stores.push_back(DetailsOf(image, i));
    return info;
}

std::optional<std::string> SystemOfImage(const std::string& connection) {
    try {
        const DeviceImage image(PathOfConnection(connection), files::LockMode::SHARED);
        if (image.Directory().systemLabel.empty()) return std::nullopt;
        return image.Directory().systemLabel;
    } catch (const Refusal&) {
        return std::nullopt;
    } catch (const files::FileError&) {
        return std::nullopt;
    }
}

}  // namespace VemoKesConfigTools
