#pragma once

#include "host/HostString.h"
#include "messages/Export.h"
#include "metadata/Enumerations.h"

#include <any>
#include <utility>

namespace VEMO::Kes::ConfigurationTools {

/// One subsystem of a chip.
class KES_API Subsystem {
public:
    /// Empty texts and the type -1.
    Subsystem();
    /// The type is derived from the name, ignoring case; -1 for an unknown name.
    Subsystem(HostString name, HostString version, HostString alias, HostString layer, HostString variant,
              HostString description, HostString buildDate);

    const HostString& Name() const { return mName; }
    const HostString& Version() const { return mVersion; }
    const HostString& Alias() const { return mAlias; }
    const HostString& Layer() const { return mLayer; }
    const HostString& Variant() const { return mVariant; }
    const HostString& Description() const { return mDescription; }
    const HostString& BuildDate() const { return mBuildDate; }
    SubsystemTypes Type() const { return mType; }
    /// An object of the host; the library does not use it.
    const std::any& Tag() const { return mTag; }
    void Tag(std::any tag) { mTag = std::move(tag); }

    /// The name of a subsystem type; empty for an unknown number.
    static HostString NameOf(SubsystemTypes type);

private:
    HostString mName;
    HostString mVersion;
    HostString mAlias;
    HostString mLayer;
    HostString mVariant;
    HostString mDescription;
    HostString mBuildDate;
    SubsystemTypes mType = SUBSYSTEM_TYPE_NONE;
    std::any mTag;
};

}  // namespace VEMO::Kes::ConfigurationTools
