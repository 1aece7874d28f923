#pragma once

#include "kes/configtools/readerwriters/kestext/common/textparser/CParseContext.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/CTextReader.h"
#include "model/CStoreInfo.h"
#include "model/IConfigReader.h"
#include "model/IStoreManager.h"

#include <cstdint>
#include <istream>
#include <list>
#include <string>
#include <unordered_map>

namespace VemoKesConfigTools {

class CKesParser;
class CParser;
class CUnicodeFile;
struct CParserError;

/// The reader of the text format, on a file or a stream. A bad line costs that line: its message is collected
/// with line and column, and the pass goes on; only an unknown or missing subsystem ends it early. It also
/// lists the stores that the last pass met. A reader may be used for several passes, from one thread at a
/// time, and one pass at a time in a process.
class CKesConfigReader : public IConfigReader, public IStoreManager {
public:
    /// Reads the file of this name, opened anew for each pass.
    explicit CKesConfigReader(const std::string& fileName) : mFileName(fileName) {}
    /// Reads the stream, not owned, from where it stands to its end.
    explicit CKesConfigReader(std::istream* stream) : mpInputStream(stream) {}
    CKesConfigReader(const CKesConfigReader&) = delete;
    CKesConfigReader& operator=(const CKesConfigReader&) = delete;
    ~CKesConfigReader() override { ClearStoreList(mStores); }

    void SetObserver(IConfigReaderObserver* observer) override { mpObserver = observer; }
    /// Only while a pass runs.
    void SetElementObserver(IConfigReaderElementObserver* observer) override;
    void SetMetadataProvider(IMetadataProvider* provider) override { mpProvider = provider; }
    /// One pass over the text. The context must be a `CKesContext`. True when no error was found; otherwise
    /// all of them are in one message of number 0. Each is also passed on as a finding.
    bool Read(IConfigContext& context) override;
    /// The line parser of a pass, owned by the caller; it must be a `CKesParser`.
    virtual CParser* CreateParser(CTextReader* source);

    /// A text has no stores to create or refresh.
    void CreateStore(CStoreInfo& /*store*/, IConfigContext& /*context*/) override {}
    void RefreshStoreInfo(CStoreInfo& /*store*/, IConfigContext& /*context*/) override {}
    /// The stores of the last pass on otp, mtp, smem and eeprom, in this order. Valid until the next pass.
    const std::list<CStoreInfo*>& GetStoresInfo(IConfigContext& /*context*/) override { return mStores; }

    IConfigReaderObserver* Observer() const { return mpObserver; }
    /// A store that this pass has met, null when it has not.
    const CStoreInfo* FindStore(IStoreManager::DEVICE device, std::uint16_t store) const;
    const CStoreInfo* AddStore(IStoreManager::DEVICE device, std::uint16_t store, std::uint16_t order);

protected:
    CParseContext* mpParseContext = nullptr;  ///< the record of the running pass

private:
    struct Collected {
        std::uint32_t count = 0;
        std::string text;
    };

    bool ReadStream(std::istream& stream, CKesContext& context);
    void RunPass(CParser& parser, CUnicodeFile& file, Collected& errors);
    void CollectLine(const CUnicodeFile& file, const CParserError& error, const std::string& text,
                     Collected& errors);
    void CheckStoreLimit(Collected& errors);
    void ReorderStores();

    IConfigReaderObserver* mpObserver = nullptr;
    IMetadataProvider* mpProvider = nullptr;
    std::list<CStoreInfo*> mStores;
    std::unordered_map<std::uint64_t, const CStoreInfo*>
        mStoreIndex;  ///< of the running pass, by device and number
    std::istream* mpInputStream = nullptr;
    std::string mFileName;
};

}  // namespace VemoKesConfigTools
