#pragma once

#include "messages/Export.h"
#include "model/IConfigContext.h"
#include "model/Words.h"

#include <map>
#include <optional>
#include <string>

namespace VemoKesConfigTools {

/// A context with a table of tags and the subsystem type. Named fields and the tags of the same name are one
/// value with two views. A text that is no number, set on a numeric field, leaves the field without a value.
class KES_API CBaseContext : public IConfigContext {
public:
    CBaseContext() = default;
    CBaseContext(const CBaseContext&) = default;
    CBaseContext& operator=(const CBaseContext&) = default;
    ~CBaseContext() override = default;

    std::string Name() const override;
    bool IsValid() const override;
    void SetTag(std::string_view tag) override;
    void SetTag(std::string_view tag, std::int32_t value) override;
    void SetTag(std::string_view tag, std::string_view value) override;
    void SetTags(std::string_view tag, std::string_view values) override;
    std::string GetTag(std::string_view tag) const override;
    std::vector<std::string> GetTags(std::string_view tag) const override;
    bool TagMatches(std::string_view tag, std::int32_t value) const override;
    bool TagMatches(std::string_view tag, std::string_view value) const override;
    IConfigContext* Clone() const override;
    void Parse(std::string_view text) override;

    /// A value of `SubsystemTypes`, or -1 for no single subsystem.
    void SetSubsystemType(std::int32_t type) { mSubsystemType = type; }
    /// The subsystem type, -1 when none was set.
    std::int32_t SubsystemType() const { return mSubsystemType.value_or(-1); }
    bool HasSubsystemType() const { return mSubsystemType.has_value(); }

protected:
    using NumberField = std::optional<std::int32_t>;

    /// The numeric field that a tag names, null when there is none.
    virtual const NumberField* FindNumber(std::string_view tag) const;
    /// The textual field that a tag names, null when there is none.
    virtual const std::string* FindText(std::string_view tag) const;

private:
    NumberField* FindNumber(std::string_view tag) {
        return const_cast<NumberField*>(static_cast<const CBaseContext*>(this)->FindNumber(tag));
    }
    std::string* FindText(std::string_view tag) {
        return const_cast<std::string*>(static_cast<const CBaseContext*>(this)->FindText(tag));
    }

    std::map<std::string, std::string, std::less<>> mTags;
    NumberField mSubsystemType;
};

}  // namespace VemoKesConfigTools
