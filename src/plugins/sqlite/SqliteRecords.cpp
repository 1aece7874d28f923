#include "plugins/sqlite/SqliteRecords.h"

namespace VemoKesConfigTools {

CSqliteMetadata::CSqliteMetadata(metadb::RecordData data, std::uint32_t psid, MetadataTypeEnum type,
                                 const IMetadataDetail* detail, const std::vector<metadb::IndexData>& indexes)
    : mPsid(psid), mType(type), mpDetail(detail), mData(std::move(data)) {
    for (const metadb::IndexData& index : indexes) {
        mIndexes.emplace_back(index.name, index.min, index.max,
                              index.isEnum ? CTableIndex::INDEX_TYPE_ENUM : CTableIndex::INDEX_TYPE_INT,
                              CTableIndex::EnumMap(index.values.begin(), index.values.end()));
    }
}

}  // namespace VemoKesConfigTools
