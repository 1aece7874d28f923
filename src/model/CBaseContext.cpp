#include "model/CBaseContext.h"

#include <charconv>

namespace VemoKesConfigTools {

namespace {

std::optional<std::int32_t> ToNumber(std::string_view text) {
    std::int32_t number = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end) return std::nullopt;
    return number;
}

}  // namespace

std::string CBaseContext::Name() const { return "CBaseContext"; }

bool CBaseContext::IsValid() const { return true; }

void CBaseContext::SetTag(std::string_view tag) {
    if (NumberField* number = FindNumber(tag)) {
        number->reset();
    } else if (std::string* text = FindText(tag)) {
        text->clear();
    } else if (const auto found = mTags.find(tag); found != mTags.end()) {
        found->second.clear();
    }
}

void CBaseContext::SetTag(std::string_view tag, std::int32_t value) {
    if (NumberField* number = FindNumber(tag)) {
        *number = value;
        return;
    }
    SetTag(tag, std::string_view(std::to_string(value)));
}

void CBaseContext::SetTag(std::string_view tag, std::string_view value) {
    if (NumberField* number = FindNumber(tag)) {
        *number = ToNumber(value);
    } else if (std::string* text = FindText(tag)) {
        *text = value;
    } else if (const auto found = mTags.find(tag); found != mTags.end()) {
        found->second = value;
    } else {
        mTags.emplace(tag, value);
    }
}

void CBaseContext::SetTags(std::string_view tag, std::string_view values) { SetTag(tag, values); }

std::string CBaseContext::GetTag(std::string_view tag) const {
    if (const NumberField* number = FindNumber(tag))
        return *number ? std::to_string(**number) : std::string();
    if (const std::string* text = FindText(tag)) return *text;
    const auto found = mTags.find(tag);
    return found == mTags.end() ? std::string() : found->second;
}

std::vector<std::string> CBaseContext::GetTags(std::string_view tag) const {
    std::vector<std::string> values;
    const std::string all = GetTag(tag);
    std::string_view rest = all;
    while (!rest.empty()) {
        const std::size_t comma = rest.find(',');
        values.emplace_back(rest.substr(0, comma));
        rest = comma == std::string_view::npos ? std::string_view() : rest.substr(comma + 1);
    }
    return values;
}

bool CBaseContext::TagMatches(std::string_view tag, std::int32_t value) const {
    if (const NumberField* number = FindNumber(tag)) return *number == value;
    return ToNumber(GetTag(tag)) == value;
}

bool CBaseContext::TagMatches(std::string_view tag, std::string_view value) const {
    return !value.empty() && GetTag(tag) == value;
}

IConfigContext* CBaseContext::Clone() const { return new CBaseContext(*this); }

void CBaseContext::Parse(std::string_view text) {
    while (!text.empty()) {
        const std::size_t end = text.find(';');
        const std::string_view piece = text.substr(0, end);
        const std::size_t equals = piece.find('=');
        if (equals != std::string_view::npos) {
            SetTag(piece.substr(0, equals), piece.substr(equals + 1));
        } else if (!piece.empty()) {
            SetTag(piece);
        }
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
    }
}

const CBaseContext::NumberField* CBaseContext::FindNumber(std::string_view tag) const {
    return tag == STR_SUBSYSTEM_TYPE ? &mSubsystemType : nullptr;
}

const std::string* CBaseContext::FindText(std::string_view /*tag*/) const { return nullptr; }

}  // namespace VemoKesConfigTools
