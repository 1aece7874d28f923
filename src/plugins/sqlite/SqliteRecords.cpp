#include "plugins/sqlite/SqliteRecords.h"

namespace VemoKesConfigTools {

CSqliteMetadata::CSqliteMetadata(metadb::RecordData data, std::uint32_t psid, MetadataTypeEnum type,
                                 const IMetadataDetail* detail, const std::vector<metadb::IndexData>& indexes)
    : mData(std::move(data)), mPsid(psid), mType(type), mpDetail(detail) {
    for (const metadb::IndexData& index : indexes) {
        mIndexes.emplace_back(index.name, index.min, index.max,
                              index.isEnum ? CTableIndex::INDEX_TYPE_ENUM : CTableIndex::INDEX_TYPE_INT,
                              CTableIndex::EnumMap(index.values.begin(), index.values.end()));
    }
}

}  // namespace VemoKesConfigTools
