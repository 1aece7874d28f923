#pragma once

#include "model/IMetadataProvider.h"

#include <cstdint>

namespace VemoKesConfigTools {

class CKesConfigReader;
class CKesParser;
class CKesContext;
class IConfigReaderElementObserver;

/// The three parts of a place in a text; -1 where a part is not set.
struct CStoreAddress {
    std::int32_t mSubsystem = -1;
    std::int32_t mDevice = -1;
    std::int32_t mStore = -1;
};

/// What reader, parser and tokens share during one pass. Owns nothing.
struct CParseContext {
    IConfigReaderElementObserver* mpElementObserver = nullptr;  ///< receives the elements; null at the start
    CKesContext* mpConfigContext = nullptr;  ///< the context of the read; holds the current place
    CKesConfigReader* mpReader = nullptr;
    CKesParser* mpParser = nullptr;
    CStoreAddress mPrefix;  ///< the place named in front of the key of this line
    CStoreAddress mInfo;    ///< the place that the keyword lines set
    IMetadataProvider* mpProvider = nullptr;

    /// The record of a name at the context's place, with details. The tokens of one line ask for the same
    /// name several times; it is looked up once.
    const IMetadata& ByName(const std::string& name);
    /// Forgets the record: a new line begins, or the place has changed.
    void ForgetName() { mpNamed = nullptr; }

private:
    const IMetadata* mpNamed = nullptr;
    std::string mName;
};

}  // namespace VemoKesConfigTools
