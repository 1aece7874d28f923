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

/// The bytes of a content: how many places there are, and their blocks. Places without keys are left out.
std::string EncodeContent(const std::vector<EncodedPlace>& places);
/// The places of a content. Throws `Refusal`.
std::vector<EncodedPlace> DecodeContent(std::string_view content);

/// An open device image. It hands out what counts and nothing else, and changes as a whole or not at all.
/// Stores are named by their position in the directory. Every failure throws `Refusal`, or
/// `FileError` where the file failed.
class DeviceImage {
public:
    /// Opens an image of this family and checks all of it but the contents of stores.
    DeviceImage(const std::string& path, files::LockMode access, ImageFamily family);
    /// The same for an image of any family.
    DeviceImage(const std::string& path, files::LockMode access);

    const ImageHeader& Header() const { return mHeader; }
    const ImageDirectory& Directory() const { return mDirectory; }

    /// The current content of a store, checked. Of a pair one whole half is enough; what is wrong with the
    /// other one goes to the message service as a warning.
    std::string Content(std::size_t position) const;
    /// Whether one half of a pair holds the current content and the other one does not.
    bool NeedsRepair(std::size_t position) const;
    /// How large a content the store can take now.
    std::uint32_t RoomFor(const StoreRecord& store) const;
    /// The bytes that a memory has behind its last store.
    std::uint32_t FreeOf(const ImageMemory& memory, const std::vector<StoreRecord>& stores) const;
    /// The whole area of a store.
    std::string ReadArea(const StoreRecord& store) const;

    /// What a save makes of the image.
    struct Change {
        ImageDirectory directory;                     ///< but for its sequence and what tells of contents
        std::map<std::size_t, std::string> contents;  ///< of those stores that get a new one
    };
    /// Checks that everything fits, writes the contents and then the directory that makes them count.
    void Commit(Change change);

private:
    bool IsOneTime(const StoreRecord& store) const {
        return mHeader.MemoryOf(store.device)->oneTimeProgrammable;
    }
    /// The current content as a half holds it; none when it is damaged there.
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
