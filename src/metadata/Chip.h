#pragma once

#include "host/HostString.h"
#include "metadata/RecordTrace.h"

#include <any>
#include <cstdint>
#include <utility>

namespace VEMO::Kes::ConfigurationTools {

/// One chip with one firmware system.
class Chip {
public:
    /// Empty texts and the chip id 0.
    Chip() : Chip("", 0, "", "", "", "", "", "") {}
    Chip(HostString name, std::uint16_t chipId, HostString romName, HostString romVersion,
         HostString systemVersionLabel, HostString systemDescription, HostString systemVersion,
         HostString buildDate)
        : mName(std::move(name)),
          mChipId(chipId),
          mRomName(std::move(romName)),
          mRomVersion(std::move(romVersion)),
          mSystemVersionLabel(std::move(systemVersionLabel)),
          mSystemDescription(std::move(systemDescription)),
          mSystemVersion(std::move(systemVersion)),
          mBuildDate(std::move(buildDate)) {
        TraceRecord("VEMO::Kes::ConfigurationTools::Chip::Chip");
    }

    const HostString& Name() const { return mName; }
    std::uint16_t ChipId() const { return mChipId; }
    const HostString& RomName() const { return mRomName; }
    const HostString& RomVersion() const { return mRomVersion; }
    /// The label by which all other operations refer to the firmware system.
    const HostString& SystemVersionLabel() const { return mSystemVersionLabel; }
    const HostString& SystemDescription() const { return mSystemDescription; }
    const HostString& SystemVersion() const { return mSystemVersion; }
    const HostString& BuildDate() const { return mBuildDate; }
    /// An object of the host; the library does not use it.
    const std::any& Tag() const { return mTag; }
    void Tag(std::any tag) { mTag = std::move(tag); }

private:
    HostString mName;
    std::uint16_t mChipId;
    HostString mRomName;
    HostString mRomVersion;
    HostString mSystemVersionLabel;
    HostString mSystemDescription;
    HostString mSystemVersion;
    HostString mBuildDate;
    std::any mTag;
};

}  // namespace VEMO::Kes::ConfigurationTools
