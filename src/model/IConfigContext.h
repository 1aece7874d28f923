#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace VemoKesConfigTools {

/// Says on what an operation works: chip, subsystem, device, store, layer and mode, as tags with a textual or
/// numeric value (`Words.h` has the names). It travels with every call between host API, model, readers,
/// writers and the metadata provider; a reader changes the context it was given as it moves through its
/// input. A context belongs to the one operation that made it. Slot order is contract.
class IConfigContext {
public:
    /// The context's name, for messages.
    virtual std::string Name() const = 0;
    /// Whether the context can be used.
    virtual bool IsValid() const = 0;
    /// Sets a tag without a value: it reads as the empty text and matches nothing.
    virtual void SetTag(std::string_view tag) = 0;
    virtual void SetTag(std::string_view tag, std::int32_t value) = 0;
    virtual void SetTag(std::string_view tag, std::string_view value) = 0;
    /// Sets a tag to several values, separated by commas.
    virtual void SetTags(std::string_view tag, std::string_view values) = 0;
    /// The tag's value, numbers in decimal; empty when the tag is not set or has no value.
    virtual std::string GetTag(std::string_view tag) const = 0;
    /// All values of a tag, in the order they were given.
    virtual std::vector<std::string> GetTags(std::string_view tag) const = 0;
    virtual bool TagMatches(std::string_view tag, std::int32_t value) const = 0;
    /// Whether the tag is set to this text. A tag without a value matches nothing, not even the empty text.
    virtual bool TagMatches(std::string_view tag, std::string_view value) const = 0;
    /// A new copy of the same class. The caller owns it.
    virtual IConfigContext* Clone() const = 0;
    /// Sets tags from a text of the form `tag=value;tag=value`. A piece without "=" sets a tag without a
    /// value.
    virtual void Parse(std::string_view text) = 0;
    virtual ~IConfigContext() = default;

protected:
    IConfigContext() = default;
    IConfigContext(const IConfigContext&) = default;
    IConfigContext& operator=(const IConfigContext&) = default;
};

}  // namespace VemoKesConfigTools
