#include "plugins/image/DeviceImage.h"

#include "messages/CTheMsgHnd.h"
#include "model/Words.h"
#include "plugins/binary/Bytes.h"
#include "plugins/binary/Refusal.h"

#include <algorithm>
#include <utility>

namespace VemoKesConfigTools {

namespace {

std::string HeadOf(const files::InPlaceFile& file) {
    return file.Read(0, std::min<std::uint64_t>(file.Size(), HEAD_SIZE));
}

/// The end of the programmed bytes in one-time-programmable memory.
std::uint64_t EndOfProgrammed(std::string_view area) { return area.find_last_not_of('\0') + 1; }

}  // namespace

std::string EncodeContent(const std::vector<EncodedPlace>& places) {
    const auto hasKeys = [](const EncodedPlace& place) { return place.keyCount != 0; };
    std::string content;
    ByteWriter(content).Number(static_cast<std::uint64_t>(std::ranges::count_if(places, hasKeys)));
    for (const EncodedPlace& place : places) {
        if (hasKeys(place)) AppendPlace(content, place);
    }
    return content;
}

std::vector<EncodedPlace> DecodeContent(std::string_view content) {
    constexpr std::size_t LEAST_PLACE_SIZE = 7;
    ByteReader bytes(content);
    const std::size_t count = bytes.Count(LEAST_PLACE_SIZE);
    std::vector<EncodedPlace> places;
    for (std::size_t i = 0; i < count; ++i) places.push_back(ReadPlace(bytes));
    bytes.ExpectEnd();
    return places;
}

DeviceImage::DeviceImage(const std::string& path, files::LockMode access)
    : mPath(path), mFile(path, access), mHeader(DecodeHeader(HeadOf(mFile), mFile.Size())) {
    mDirectoryBank = BankOfSelector(mFile.Read(SELECTOR_OFFSET, 1)[0]);
    const std::uint64_t offset =
        mHeader.directoryOffset + std::uint64_t{mHeader.directoryBankSize} * mDirectoryBank;
    mDirectory = DecodeDirectory(mFile.Read(offset, mHeader.directoryBankSize), mHeader);
}

DeviceImage::DeviceImage(const std::string& path, files::LockMode access, ImageFamily family)
    : DeviceImage(path, access) {
    if (mHeader.family != family) {
        throw Refusal(STR_OPERATION_INVALID, "is an image of the family " +
                                                 std::string(NameOf(mHeader.family)) + ", not " +
                                                 std::string(NameOf(family)));
    }
}

std::optional<std::string> DeviceImage::CurrentIn(const StoreRecord& store, std::uint32_t half) const {
    const std::uint32_t offset =
        IsOneTime(store) ? store.offset + store.current : store.BankOffset(half, store.current);
    const std::string bytes = mFile.Read(offset, std::uint64_t{store.length} + BANK_OVERHEAD);
    const FoundBank bank = LookAtBank(bytes);
    const bool isCurrent = bank.isWhole && bank.sequence == store.sequence &&
                           bank.content.size() == store.length && Crc32(bank.content) == store.crc;
    return isCurrent ? std::optional(std::string(bank.content)) : std::nullopt;
}

std::string DeviceImage::Content(std::size_t position) const {
    const StoreRecord& store = mDirectory.stores.at(position);
    if (store.sequence == 0) return EncodeContent({});
    const std::string name = NameOfStore(mHeader.family, store);
    std::optional<std::string> first = CurrentIn(store, 0);
    std::optional<std::string> second = store.paired ? CurrentIn(store, 1) : std::nullopt;
    if (!first && !second) throw Refusal(STR_PACKINT_ERROR, name + " is damaged");
    if (store.paired && !(first && second)) {
        CTheMsgHnd::GetAppropriateHandler(CMessageHandler::GROUP_DEFAULT, "DeviceImage::Content", false)
            .NotifyStatus(CMessageHandler::STATUS_LEVEL_WARNING,
                          mPath + ": " + name + ": half " + (first ? "1" : "0") +
                              " of the pair is damaged, the other one is used");
    }
    return std::move(first ? *first : *second);
}

bool DeviceImage::NeedsRepair(std::size_t position) const {
    const StoreRecord& store = mDirectory.stores.at(position);
    return store.sequence != 0 && store.paired &&
           CurrentIn(store, 0).has_value() != CurrentIn(store, 1).has_value();
}

std::string DeviceImage::ReadArea(const StoreRecord& store) const {
    return mFile.Read(store.offset, store.AreaSize(IsOneTime(store)));
}

std::uint32_t DeviceImage::NextSegment(const StoreRecord& store) const {
    // The programmed bytes may end before the current segment does, if its last bytes are zero. They may also
    // end after it, where an interrupted save has left part of a segment.
    const std::uint64_t currentEnd =
        store.sequence == 0 ? 0 : std::uint64_t{store.current} + BANK_OVERHEAD + store.length;
    const std::uint64_t next = Align(std::max(EndOfProgrammed(ReadArea(store)), currentEnd));
    return static_cast<std::uint32_t>(std::min<std::uint64_t>(next, store.bankSize));
}

std::uint32_t DeviceImage::RoomFor(const StoreRecord& store) const {
    const std::uint32_t taken = BANK_OVERHEAD + (IsOneTime(store) ? NextSegment(store) : 0);
    return store.bankSize - std::min(store.bankSize, taken);
}

std::uint32_t DeviceImage::FreeOf(const ImageMemory& memory, const std::vector<StoreRecord>& stores) const {
    std::uint64_t end = memory.offset;
    for (const StoreRecord& store : stores) {
        if (store.device == memory.device)
            end = std::max(end, store.offset + store.AreaSize(memory.oneTimeProgrammable));
    }
    const std::uint64_t memoryEnd = std::uint64_t{memory.offset} + memory.size;
    return static_cast<std::uint32_t>(memoryEnd - std::min(memoryEnd, Align(end)));
}

void DeviceImage::CheckRoom(const Change& change, const std::string& directory) const {
    for (const auto& [position, content] : change.contents) {
        const StoreRecord& store = change.directory.stores.at(position);
        CheckFits(mHeader.family, store, RoomFor(store), content.size());
    }
    if (directory.size() > mHeader.directoryBankSize) {
        throw Refusal(STR_FILE_WRITE_ERR, "the directory has room for " +
                                              std::to_string(mHeader.directoryBankSize) + " bytes, " +
                                              std::to_string(directory.size()) + " are needed");
    }
}

void DeviceImage::Commit(Change change) {
    change.directory.sequence = NextSequence(mDirectory.sequence);
    CheckRoom(change, EncodeDirectory(change.directory));
    // The order makes the save atomic: first the contents, to banks not in use, then the directory, to its
    // unused bank, and at last the one byte that selects this bank. Each step must be on the device before
    // the next begins; until the last one, the image has its old content.
    for (const auto& [position, content] : change.contents)
        WriteBank(change.directory.stores.at(position), content);
    if (!change.contents.empty()) mFile.Sync();

    const std::uint32_t bank = 1 - mDirectoryBank;
    mFile.Write(mHeader.directoryOffset + std::uint64_t{mHeader.directoryBankSize} * bank,
                EncodeDirectory(change.directory));
    mFile.Sync();
    mFile.Write(SELECTOR_OFFSET, std::string(1, SelectorOf(bank)));
    mFile.Sync();
    mDirectoryBank = bank;
    mDirectory = std::move(change.directory);
}

void DeviceImage::WriteBank(StoreRecord& store, std::string_view content) {
    const std::uint32_t sequence = NextSequence(store.sequence);
    const std::string bank = EncodeBank(sequence, content);
    if (IsOneTime(store)) {
        store.current = NextSegment(store);
        Program(store.offset + store.current, bank);
    } else {
        store.current = store.sequence == 0 ? 0 : 1 - store.current;
        for (std::uint32_t half = 0; half < (store.paired ? 2U : 1U); ++half)
            mFile.Write(store.BankOffset(half, store.current), bank);
    }
    store.sequence = sequence;
    store.length = static_cast<std::uint32_t>(content.size());
    store.crc = Crc32(content);
}

void DeviceImage::Program(std::uint32_t offset, std::string_view bytes) {
    // Checked against the memory itself, right before programming: bits that are set can never be cleared.
    const std::string before = mFile.Read(offset, bytes.size());
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const auto cleared = static_cast<unsigned char>(before[i]) & ~static_cast<unsigned>(bytes[i]);
        if ((cleared & 0xFFU) != 0) {
            throw Refusal(STR_UNEXPECTED_ERR, "bits of one-time-programmable memory would be cleared at " +
                                                  std::to_string(offset + i));
        }
    }
    mFile.Write(offset, bytes);
}

}  // namespace VemoKesConfigTools
