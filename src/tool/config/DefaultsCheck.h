#pragma once

#include "metadb/JsonSource.h"

#include <string>
#include <vector>

namespace kes::tool {

/// Reads all default values of the systems as a text on the database made of them, so that one grammar
/// serves, and gives what is wrong with them, at their places in the sources. Throws `Failure` when that
/// cannot be done.
std::vector<VemoKesConfigTools::metadb::SourceFault> CheckDefaults(
    const std::string& plugins, const std::string& database,
    const std::vector<VemoKesConfigTools::metadb::SystemData>& systems);

}  // namespace kes::tool
