#include "plugins/sqlite/SqliteRecords.h"

namespace VemoKesConfigTools {

CSqliteMetadata::CSqliteMetadata(const metadb::RecordData& data, std::uint32_t psid, MetadataTypeEnum type,
                                 const IMetadataDetail* detail, const std::vector<metadb::IndexData>& indexes,
                                 CTextPool& texts)
    : mPsid(psid),
      mUid(data.uid),
      mType(type),
      mIsArray(data.isArray),
      mIsInternal(data.isInternal),
      mName(texts.Keep(data.name)),
      mTypeName(texts.Share(data.type)),
      mMin(data.min),
      mMax(data.max),
      mFormat(texts.Share(data.format)),
      mArrayMin(data.arrayMin),
      mArrayMax(data.arrayMax),
      mpDetail(detail),
      mLabel(texts.Keep(data.label)),
      mDescription(texts.Keep(data.description)),
      mDescriptionInternal(texts.Keep(data.descriptionInternal)),
      mUnits(texts.Share(data.units)),
      mAccess(texts.Share(data.access)),
      mOid(texts.Share(data.oid)),
      mSource(texts.Share(data.source)) {
    mIndexes.reserve(indexes.size());
    for (const metadb::IndexData& index : indexes) {
        mIndexes.emplace_back(index.name, index.min, index.max,
                              index.isEnum ? CTableIndex::INDEX_TYPE_ENUM : CTableIndex::INDEX_TYPE_INT,
                              CTableIndex::EnumMap(index.values.begin(), index.values.end()));
    }
}

}  // namespace VemoKesConfigTools
