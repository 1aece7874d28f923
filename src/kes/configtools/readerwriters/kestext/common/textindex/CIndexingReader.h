#pragma once

#include "kes/configtools/readerwriters/kestext/common/kesparser/CKesConfigReader.h"
#include "kes/configtools/readerwriters/kestext/common/textindex/CTextIndex.h"
#include "model/IConfigReaderElementObserver.h"
#include "model/IConfigReaderObserver.h"

#include <istream>
#include <vector>

namespace VemoKesConfigTools {

/// The reader of texts with a parser that notes where things stand, in characters as the reader counts them.
/// It is its own observer: keys are noted and not kept.
class CIndexingReader final : public CKesConfigReader,
                              public IConfigReaderObserver,
                              public IConfigReaderElementObserver {
public:
    /// Notes the lines of the stream. Neither is owned.
    CIndexingReader(std::istream& stream, std::vector<TextLine>& lines);

    CParser* CreateParser(CTextReader* source) override;

    void OnReadStarted(IConfigReader& /*reader*/, IConfigContext& /*context*/) override {}
    void OnSubsystemFound(IConfigReader& reader, IConfigContext& context) override;
    void OnSubsystemCompleted(IConfigReader& /*reader*/, IConfigContext& /*context*/) override {}
    void OnReadEnded(IConfigReader& /*reader*/, IConfigContext& /*context*/) override {}
    bool OnElementFound(CElement* element, IConfigContext& context) override;

private:
    std::vector<TextLine>& mLines;
    TextPlace mPlace;  ///< where keys land
};

}  // namespace VemoKesConfigTools
