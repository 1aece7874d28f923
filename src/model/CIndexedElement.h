#pragma once

#include "model/CElement.h"

#include <string>
#include <utility>
#include <vector>

namespace VemoKesConfigTools {

/// The concrete element: a key with its name and, for a table key, its indexes.
class KES_API CIndexedElement final : public CElement {
public:
    /// The name is empty when the key has no metadata. Takes over the payloads. `changed` tells that the
    /// element differs from what was read.
    CIndexedElement(std::uint32_t psid, const std::string& name, const std::vector<std::uint32_t>& indices,
                    const std::vector<IPayload*>& payloads, bool changed)
        : CElement(psid, payloads, changed), mName(name), mIndices(indices) {}
    /// The same without a copy of anything.
    CIndexedElement(std::uint32_t psid, std::string&& name, std::vector<std::uint32_t>&& indices,
                    std::vector<IPayload*>&& payloads, bool changed)
        : CElement(psid, std::move(payloads), changed),
          mName(std::move(name)),
          mIndices(std::move(indices)) {}

    std::span<const std::uint32_t> Indices() const override { return mIndices; }
    std::string ToString() const override;

    const std::string& Name() const { return mName; }

private:
    std::string mName;
    std::vector<std::uint32_t> mIndices;
};

}  // namespace VemoKesConfigTools
