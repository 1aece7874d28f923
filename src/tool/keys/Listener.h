#pragma once

#include "messages/CMessageHandlerObserver.h"
#include "messages/CTheMsgHnd.h"

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace kes::tool {

/// Collects what the library says while this lives.
class Listener final : public VemoKesConfigTools::CMessageHandlerObserver {
public:
    using Error = std::pair<std::int16_t, std::string>;

    using Found = std::function<void(const VemoKesConfigTools::TextFinding&)>;
    /// `progress`, if there is one, is told how many bytes of a text have been read. `found`, if there is
    /// one, takes the findings as they come, which are then not collected.
    explicit Listener(std::function<void(std::uint64_t)> progress = {}, Found found = {})
        : mProgress(std::move(progress)), mFound(std::move(found)) {
        VemoKesConfigTools::CTheMsgHnd::AddObserver(*this);
    }
    ~Listener() override { VemoKesConfigTools::CTheMsgHnd::RemoveObserver(*this); }

    void OnFinding(const VemoKesConfigTools::TextFinding& finding) override {
        mAnyFinding = true;
        if (mFound) {
            mFound(finding);
        } else {
            mFindings.push_back(finding);
        }
    }
    void OnError(std::int16_t number, const std::string& text) override {
        mErrors.emplace_back(number, text);
    }
    void OnErrorModified(std::int16_t number, const std::string& text) override {
        if (!mErrors.empty()) mErrors.back() = {number, text};
    }
    void OnStatus(std::int32_t /*level*/, const std::string& text) override { mStatuses.push_back(text); }
    void OnProgress(std::uint64_t bytes) override {
        if (mProgress) mProgress(bytes);
    }

    bool AnyFinding() const { return mAnyFinding; }
    /// Those that no `found` has taken.
    const std::vector<VemoKesConfigTools::TextFinding>& Findings() const { return mFindings; }
    const std::vector<std::string>& Statuses() const { return mStatuses; }
    /// The errors that are no findings of a text. The last error of a text with findings only sums these up.
    std::vector<Error> OtherErrors() const {
        return {mErrors.begin(), mErrors.end() - (mAnyFinding && !mErrors.empty() ? 1 : 0)};
    }

private:
    std::function<void(std::uint64_t)> mProgress;
    Found mFound;
    bool mAnyFinding = false;
    std::vector<VemoKesConfigTools::TextFinding> mFindings;
    std::vector<Error> mErrors;
    std::vector<std::string> mStatuses;
};

}  // namespace kes::tool
