#pragma once

#include "model/CChipConfig.h"

namespace VemoKesConfigTools {

/// One change of a configuration, made of any number of reads, that is kept as a whole or not at all. While
/// it lives, the configuration notes what each change of a key takes away; so its cost follows from what is
/// changed, not from what is there. One at a time for a configuration, which must not be emptied meanwhile.
class KES_API CConfigTransaction {
public:
    explicit CConfigTransaction(CChipConfig& config) : mConfig(config) { config.BeginTransaction(); }
    CConfigTransaction(const CConfigTransaction&) = delete;
    CConfigTransaction& operator=(const CConfigTransaction&) = delete;
    /// Takes back keys, places and stores, unless `Commit` was called.
    ~CConfigTransaction() { mConfig.EndTransaction(mKeep); }

    /// Keeps the changes, without the places that they brought and left without keys, and these places'
    /// stores.
    void Commit() { mKeep = true; }

private:
    CChipConfig& mConfig;
    bool mKeep = false;
};

}  // namespace VemoKesConfigTools
