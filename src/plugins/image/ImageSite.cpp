#include "plugins/image/ImageSite.h"

#include "files/Files.h"
#include "files/InPlaceFile.h"
#include "files/ReplaceFile.h"
#include "plugins/image/ImageFormat.h"

#include <algorithm>
#include <cerrno>
#include <string_view>

namespace VemoKesConfigTools {

namespace {

bool IsBlank(const files::InPlaceFile& file) {
    constexpr std::uint64_t STEP = 1U << 16U;
    const char blank = file.Size() == 0 ? '\1' : file.Read(0, 1)[0];
    if (blank != ERASED && blank != '\0') return false;
    for (std::uint64_t at = 0; at < file.Size(); at += STEP) {
        const std::string bytes = file.Read(at, std::min(STEP, file.Size() - at));
        if (bytes.find_first_not_of(blank) != std::string::npos) return false;
    }
    return true;
}

void WriteInPlace(const std::string& path, const ImageSite& site, std::string_view bytes) {
    files::InPlaceFile file(path, files::LockMode::EXCLUSIVE);
    // The head is invalidated first and written last, each step synced: an interrupted write must not leave a
    // valid head on incomplete content.
    if (site.state != SiteState::Blank) {
        file.Write(0, std::string(HEAD_SIZE, ERASED));
        file.Sync();
    }
    file.Write(HEAD_SIZE, bytes.substr(HEAD_SIZE));
    file.Sync();
    file.Write(0, bytes.substr(0, HEAD_SIZE));
    file.Sync();
}

}  // namespace

ImageSite LookAtSite(const std::string& path) {
    const std::optional<files::FileStatus> status = files::Look(path);
    if (!status) return {};
    const files::InPlaceFile file(path, files::LockMode::SHARED);
    const bool isBlockDevice = status->kind == files::FileKind::BLOCK_DEVICE;
    const std::string start = file.Read(0, std::min<std::uint64_t>(file.Size(), IMAGE_MAGIC.size()));
    if (start == IMAGE_MAGIC) return {SiteState::Image, file.Size(), isBlockDevice};
    return {IsBlank(file) ? SiteState::Blank : SiteState::Other, file.Size(), isBlockDevice};
}

void PutImage(const std::string& path, const ImageSite& site, const std::string& bytes) {
    if (site.isBlockDevice) return WriteInPlace(path, site, bytes);
    try {
        files::ReplaceFile(path, bytes);
    } catch (const files::FileError& error) {
        // No new file can be created here: fall back to writing in place, if the size allows it.
        const bool isFixed = error.Number() == EACCES || error.Number() == EPERM;
        if (!isFixed || site.state == SiteState::Missing || site.size != bytes.size()) throw;
        WriteInPlace(path, site, bytes);
    }
}

}  // namespace VemoKesConfigTools
