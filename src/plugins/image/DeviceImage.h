#pragma once

#include "files/InPlaceFile.h"
#include "plugins/binary/Places.h"
#include "plugins/image/ImageFormat.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace VemoKesConfigTools {

/// Encodes a store's content: the number of places, then the places. Places without keys are omitted.
std::string EncodeContent(const std::vector<EncodedPlace>& places);
/// Decodes a store's content. Throws `Refusal`.
std::vector<EncodedPlace> DecodeContent(std::string_view content);

/// An open device image. It returns only the current content, and a change is made completely or not at all.
/// Stores are identified by their position in the directory. A failure throws `Refusal`, or `FileError` if
/// the file cannot be accessed.
class DeviceImage {
public:
    /// Opens an image of this family and checks everything but the contents of stores.
    DeviceImage(const std::string& path, files::LockMode access, ImageFamily family);
    /// The same for an image of any family.
    DeviceImage(const std::string& path, files::LockMode access);

    const ImageHeader& Header() const { return mHeader; }
    const ImageDirectory& Directory() const { return mDirectory; }

    /// The current content of a store, verified. For a paired store one valid half is enough; damage to the
    /// other one is reported to the message service as a warning.
    std::string Content(std::size_t position) const;
    /// Whether only one half of a paired store has the current content.
    bool NeedsRepair(std::size_t position) const;
    /// The largest content, in bytes, that can be written to the store now.
    std::uint32_t RoomFor(const StoreRecord& store) const;
    /// The number of bytes in a memory after its last store.
    std::uint32_t FreeOf(const ImageMemory& memory, const std::vector<StoreRecord>& stores) const;
    /// All bytes of a store's area.
    std::string ReadArea(const StoreRecord& store) const;

    /// The changes that a save makes to the image.
    struct Change {
        ImageDirectory directory;  ///< without its sequence number and the data about contents
        std::map<std::size_t, std::string> contents;  ///< new contents, by store
    };
    /// Checks that everything fits, writes the contents and then the directory, which activates them.
    void Commit(Change change);

private:
    bool IsOneTime(const StoreRecord& store) const {
        return mHeader.MemoryOf(store.device)->oneTimeProgrammable;
    }
    /// The current content in one half; empty if it is damaged there.
    std::optional<std::string> CurrentIn(const StoreRecord& store, std::uint32_t half) const;
    std::uint32_t NextSegment(const StoreRecord& store) const;
    void CheckRoom(const Change& change, const std::string& directory) const;
    void WriteBank(StoreRecord& store, std::string_view content);
    void Program(std::uint32_t offset, std::string_view bytes);

    std::string mPath;
    files::InPlaceFile mFile;
    ImageHeader mHeader;
    std::uint32_t mDirectoryBank = 0;
    ImageDirectory mDirectory;
};

}  // namespace VemoKesConfigTools
