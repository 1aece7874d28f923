#pragma once

#include "model/PluginDescriptor.h"

#include <map>
#include <string>
#include <vector>

namespace VemoKesConfigTools {

/// The plug-in files of this process, shared by the two factories. Each file is opened once.
class PluginRegistry {
public:
    static PluginRegistry& Ref();

    /// The plug-ins of the folder: regular files that match `PLUGIN_WILDCARD`, in name order, sub-folders
    /// left alone. A file that is no plug-in of this ABI version is left out with a debug line that says why.
    std::vector<const KesPluginDescriptor*> Load(const std::string& folder);
    /// Tells the observers, as status reports, what was left out and why. For those who miss a plug-in.
    void ReportLeftOut() const;

private:
    PluginRegistry() = default;
    const KesPluginDescriptor* Open(const std::string& path);
    void LeaveOut(const std::string& path, const std::string& why);

    std::map<std::string, const KesPluginDescriptor*> mOpened;
    std::map<std::string, std::string> mLeftOut;  ///< why, by path
};

}  // namespace VemoKesConfigTools
