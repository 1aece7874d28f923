#pragma once

#include "model/CElement.h"

#include <memory>
#include <span>
#include <string>
#include <vector>

namespace VemoKesConfigTools {

/// The concrete element: a key with its name and, for a table key, its indexes.
class KES_API CIndexedElement final : public CElement {
public:
    /// The name is empty when the key has no metadata, or when the record that comes with `Use` tells it.
    /// Takes over the payloads. `changed` tells that the element differs from what was read.
    CIndexedElement(std::uint32_t psid, const std::string& name, const std::vector<std::uint32_t>& indices,
                    const std::vector<IPayload*>& payloads, bool changed);

    std::span<const std::uint32_t> Indices() const override {
        return mpRare ? std::span<const std::uint32_t>(mpRare->indices) : std::span<const std::uint32_t>();
    }
    std::string ToString() const override;

    /// The name that was given, or else that of the record; empty without either.
    std::string Name() const;

private:
    /// What few elements have.
    struct Rare {
        std::string name;
        std::vector<std::uint32_t> indices;
    };
    std::unique_ptr<const Rare> mpRare;
};

}  // namespace VemoKesConfigTools
