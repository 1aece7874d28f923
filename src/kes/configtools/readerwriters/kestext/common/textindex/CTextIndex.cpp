#include "kes/configtools/readerwriters/kestext/common/textindex/CTextIndex.h"

#include "kes/configtools/readerwriters/kestext/common/textindex/CIndexingReader.h"
#include "model/CKesContext.h"
#include "model/CMetadataProviderFactory.h"

#include <algorithm>
#include <memory>
#include <sstream>
#include <utility>

namespace VemoKesConfigTools {

CTextIndex::CTextIndex(std::string text, IMetadataProvider& provider, std::string_view systemLabel)
    : mText(std::move(text)) {
    Read(provider, systemLabel);
}

CTextIndex::CTextIndex(std::string text, const std::string& database, std::string_view systemLabel)
    : mText(std::move(text)) {
    const std::unique_ptr<IMetadataProvider> provider(
        CMetadataProviderFactory::Ref().Create("sqlite", database));
    if (provider) Read(*provider, systemLabel);
}

void CTextIndex::Read(IMetadataProvider& provider, std::string_view systemLabel) {
    std::istringstream stream(mText, std::ios::in | std::ios::binary);
    CKesContext context;
    context.SetChip(systemLabel);
    context.SetTag(STR_INSERT_MODE, STR_OVERWRITE);
    CIndexingReader reader(stream, mLines);
    reader.SetMetadataProvider(&provider);
    reader.Read(context);
    MapToBytes();
}

/// The reader counts each end of a line as one character; some are two bytes.
void CTextIndex::MapToBytes() {
    std::vector<std::size_t> behindPairs;  // where, in characters, a byte more was passed
    for (std::size_t at = mText.find('\r'); at != std::string::npos; at = mText.find('\r', at)) {
        ++at;
        if (at == mText.size() || (mText[at] != '\n' && mText[at] != '\r')) continue;
        behindPairs.push_back(at - behindPairs.size());
        ++at;
    }
    if (behindPairs.empty()) return;
    const auto toBytes = [&](std::size_t& offset) {
        const auto passed = std::ranges::upper_bound(behindPairs, offset) - behindPairs.begin();
        offset += static_cast<std::size_t>(passed);
    };
    for (TextLine& line : mLines) {
        for (TextRange* range : {&line.all, &line.key, &line.value}) {
            toBytes(range->begin);
            toBytes(range->end);
        }
    }
}

}  // namespace VemoKesConfigTools
