#pragma once

namespace VemoKesConfigTools {

class IConfigContext;
class IConfigWriter;

/// What can be written. Slot order is contract.
class IWritable {
public:
    /// Drives the writer over this object. True when all was written.
    virtual bool Write(IConfigWriter& writer, IConfigContext& context) = 0;
    virtual ~IWritable() = default;

protected:
    IWritable() = default;
    IWritable(const IWritable&) = default;
    IWritable& operator=(const IWritable&) = default;
};

}  // namespace VemoKesConfigTools
