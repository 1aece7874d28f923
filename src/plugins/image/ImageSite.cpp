#include "plugins/image/ImageSite.h"

#include "model/Words.h"
#include "plugins/binary/Refusal.h"
#include "plugins/binary/SafeFile.h"
#include "plugins/image/ImageFile.h"
#include "plugins/image/ImageFormat.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace VemoKesConfigTools {

namespace {

bool IsBlank(const ImageFile& file) {
    constexpr std::uint64_t STEP = 1U << 16U;
    const char blank = file.Size() == 0 ? '\1' : file.Read(0, 1)[0];
    if (blank != ERASED && blank != '\0') return false;
    for (std::uint64_t at = 0; at < file.Size(); at += STEP) {
        const std::string bytes = file.Read(at, std::min(STEP, file.Size() - at));
        if (bytes.find_first_not_of(blank) != std::string::npos) return false;
    }
    return true;
}

void AddFile(const std::string& path, const std::string& bytes) {
    try {
        FileReplacement replacement;
        replacement.Add(path, bytes);
        replacement.Commit();
    } catch (const Refusal& refusal) {
        // Who reports it names the path already.
        const std::string cause = refusal.what();
        const std::string start = path + ": ";
        throw Refusal(refusal.Text(), cause.starts_with(start) ? cause.substr(start.size()) : cause);
    }
}

}  // namespace

ImageSite LookAtSite(const std::string& path) {
    std::error_code failed;
    if (!std::filesystem::exists(path, failed) && !failed) return {SiteState::Missing, 0};
    const ImageFile file(path, ImageFile::Access::Reading);
    const std::string start = file.Read(0, std::min<std::uint64_t>(file.Size(), IMAGE_MAGIC.size()));
    if (start == IMAGE_MAGIC) return {SiteState::Image, file.Size()};
    return {IsBlank(file) ? SiteState::Blank : SiteState::Other, file.Size()};
}

void PutImage(const std::string& path, const ImageSite& site, const std::string& bytes) {
    if (site.state == SiteState::Missing || site.size != bytes.size()) {
        AddFile(path, bytes);
        return;
    }
    const std::string_view whole = bytes;
    const ImageFile file(path, ImageFile::Access::Writing);
    if (site.state != SiteState::Blank) {
        file.Write(0, std::string(HEAD_SIZE, ERASED));
        file.Sync();
    }
    file.Write(HEAD_SIZE, whole.substr(HEAD_SIZE));
    file.Sync();
    file.Write(0, whole.substr(0, HEAD_SIZE));
    file.Sync();
}

}  // namespace VemoKesConfigTools
