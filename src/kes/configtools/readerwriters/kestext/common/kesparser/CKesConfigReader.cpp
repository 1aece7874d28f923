#include "kes/configtools/readerwriters/kestext/common/kesparser/CKesConfigReader.h"

#include "files/Files.h"
#include "kes/configtools/readerwriters/kestext/common/kesparser/CKesParser.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/CUnicodeFile.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/KesTextTrace.h"
#include "kes/configtools/readerwriters/kestext/common/textparser/LineFilters.h"
#include "model/CKesContext.h"
#include "model/IConfigReaderObserver.h"

#include <memory>
#include <sstream>
#include <typeinfo>
#include <utility>

namespace VemoKesConfigTools {

namespace {

constexpr std::size_t MAXIMUM_STORES = 15;

CMessageHandler& Handler() { return KesTextHandler("CKesConfigReader::Read"); }

std::string Paragraph() { return Handler().GetParagraphString(); }

std::uint64_t StoreKey(IStoreManager::DEVICE device, std::uint16_t store) {
    return static_cast<std::uint64_t>(static_cast<std::uint32_t>(device)) << 16U | store;
}

}  // namespace

void CKesConfigReader::SetElementObserver(IConfigReaderElementObserver* observer) {
    if (mpParseContext != nullptr) mpParseContext->mpElementObserver = observer;
}

CParser* CKesConfigReader::CreateParser(CTextReader* source) {
    return new CKesParser(source, mpParseContext);
}

bool CKesConfigReader::Read(IConfigContext& context) {
    bool result = false;
    KESTEXT_SENTRY_RETURNING("CKesConfigReader::Read", result);
    auto& kesContext = static_cast<CKesContext&>(context);
    if (mpInputStream != nullptr) return result = ReadStream(*mpInputStream, kesContext);

    std::istringstream text;
    try {
        text.str(files::ReadFile(mFileName, files::Readable::REGULAR_FILES).bytes);
    } catch (const files::FileError& error) {
        Handler().NotifyStatus(CMessageHandler::STATUS_LEVEL_WARNING, error.what());
        Handler().SetErrorMsg(0, "Cannot open " + mFileName);
        return result;
    }
    return result = ReadStream(text, kesContext);
}

bool CKesConfigReader::ReadStream(std::istream& stream, CKesContext& context) {
    ClearStoreList(mStores);
    mStoreIndex.clear();
    CUnicodeFile file(&stream);
    CConcatLineFilter joined(&file);
    CLineCommentFilter withoutLineComments(&joined, "#");
    CBlockCommentFilter source(&withoutLineComments);

    CParseContext pass;
    pass.mpConfigContext = &context;
    pass.mpReader = this;
    pass.mpProvider = mpProvider;
    struct Running {
        Running(CParseContext*& slot, CParseContext* value) : mSlot(slot) { mSlot = value; }
        Running(const Running&) = delete;
        Running& operator=(const Running&) = delete;
        ~Running() { mSlot = nullptr; }
        CParseContext*& mSlot;
    } const running(mpParseContext, &pass);

    const std::unique_ptr<CParser> parser(CreateParser(&source));
    auto& kesParser = static_cast<CKesParser&>(*parser);
    pass.mpParser = &kesParser;
    if (typeid(kesParser) == typeid(CKesParser) && kesParser.Source() == &source) kesParser.ReadPlainLines();
    Collected errors;
    mpObserver->OnReadStarted(*this, context);
    RunPass(*parser, file, errors);
    ReorderStores();
    CheckStoreLimit(errors);
    mpObserver->OnReadEnded(*this, context);
    if (errors.count == 0) return true;

    const std::string paragraph = Paragraph();
    std::string text = errors.count == 1 ? std::string() : paragraph;
    text.append(errors.text).append(paragraph).append(paragraph).append(std::to_string(errors.count));
    text.append(errors.count == 1 ? " error found" : " errors found");
    Handler().SetErrorMsg(0, text);
    return false;
}

void CKesConfigReader::RunPass(CParser& parser, CUnicodeFile& file, Collected& errors) {
    for (;;) {
        const CParserError error = parser.Parse();
        const std::string text = parser.GetErrorText(error);
        const bool atEnd = error.mCode == PE_END_OF_DATA || error.mCode == PE_NO_CONFIG_DATA;
        if (error.mCode == PE_NO_CONFIG_DATA) {
            Handler().NotifyStatus(CMessageHandler::STATUS_LEVEL_INFO, text);
        } else if (!atEnd) {
            CollectLine(file, error, text, errors);
        }
        parser.DropLine();
        if (atEnd || error.mCode == PE_SUBSYSTEM_NOT_SET || error.mCode == PE_UNKNOWN_SUBSYSTEM) return;
    }
}

void CKesConfigReader::CollectLine(const CUnicodeFile& file, const CParserError& error,
                                   const std::string& text, Collected& errors) {
    const std::int32_t prefix = mpParseContext->mPrefix.mSubsystem;
    const TextFinding finding{file.GetLine() + 1,
                              file.GetColumn() + 1,
                              error.mCode,
                              text,
                              error.mKey,
                              error.mDetail,
                              prefix != -1 ? prefix : mpParseContext->mInfo.mSubsystem};
    ++errors.count;
    errors.text.append(Paragraph()).append("line ").append(std::to_string(finding.line));
    errors.text.append(", column ")
        .append(std::to_string(finding.column))
        .append(": ")
        .append(finding.Message());
    Handler().NotifyFinding(finding);
}

void CKesConfigReader::CheckStoreLimit(Collected& errors) {
    if (mStores.size() <= MAXIMUM_STORES) return;
    TextFinding finding;
    finding.text = "Found " + std::to_string(mStores.size()) + " Configuration stores in file, only " +
                   std::to_string(MAXIMUM_STORES) + " are supported";
    ++errors.count;
    errors.text.append(Paragraph()).append(finding.text);
    Handler().NotifyFinding(finding);
}

const CStoreInfo* CKesConfigReader::FindStore(IStoreManager::DEVICE device, std::uint16_t store) const {
    const auto found = mStoreIndex.find(StoreKey(device, store));
    return found == mStoreIndex.end() ? nullptr : found->second;
}

const CStoreInfo* CKesConfigReader::AddStore(IStoreManager::DEVICE device, std::uint16_t store,
                                             std::uint16_t order) {
    auto info = std::make_unique<CStoreInfo>(device, store, CStoreInfo::UNKNOWN_SIZE, -1, std::uint16_t{0},
                                             order, false);
    mStores.push_back(info.get());
    const CStoreInfo* added = info.release();
    mStoreIndex.emplace(StoreKey(device, store), added);
    return added;
}

void CKesConfigReader::ReorderStores() {
    mStoreIndex.clear();
    std::list<CStoreInfo*> ordered;
    for (const IStoreManager::DEVICE device : {IStoreManager::DEVICE_OTP, IStoreManager::DEVICE_MTP,
                                               IStoreManager::DEVICE_SMEM, IStoreManager::DEVICE_EEPROM}) {
        for (auto store = mStores.begin(); store != mStores.end();) {
            const auto next = std::next(store);
            if ((*store)->DeviceId() == device) ordered.splice(ordered.end(), mStores, store);
            store = next;
        }
    }
    ClearStoreList(mStores);
    mStores = std::move(ordered);
}

}  // namespace VemoKesConfigTools
