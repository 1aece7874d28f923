#pragma once

#include "messages/Export.h"

#include <cstdint>
#include <string>

namespace VemoKesConfigTools {

/// One finding in an input text, in machine-readable form. The text of the error that the reader stores
/// includes the same finding.
struct TextFinding {
    std::uint32_t line = 0;       ///< Line, counted from 1; 0 if the finding concerns the text as a whole.
    std::uint32_t column = 0;     ///< Column in bytes, counted from 1; 0 if `line` is 0.
    std::int32_t code = 0;        ///< Number of the kind of error, stable between versions.
    std::string text;             ///< The kind of error in words.
    std::string key;              ///< The key of the line, if known; may be empty.
    std::string detail;           ///< Details specific to this finding; may be empty.
    std::int32_t subsystem = -1;  ///< Type of the subsystem that the line belongs to; -1 if there is none.

    /// All that the finding says, on one line: `TEXT: KEY DETAIL`.
    KES_API std::string Message() const;
};

/// Observes the message service. Derive from it, override the operations of interest and pass the object to
/// `CTheMsgHnd::AddObserver`. The service does not own it; remove it before it is destroyed. Operations are
/// called on the reporting thread, concurrently if several threads report, and must not report anything
/// themselves. An operation may remove its own observer.
class KES_API CMessageHandlerObserver {
public:
    CMessageHandlerObserver() = default;
    CMessageHandlerObserver(const CMessageHandlerObserver&) = delete;
    CMessageHandlerObserver& operator=(const CMessageHandlerObserver&) = delete;
    virtual ~CMessageHandlerObserver();

    /// An error was stored.
    virtual void OnError(std::int16_t /*number*/, const std::string& /*text*/) {}
    /// A status report, which is not an error.
    virtual void OnStatus(std::int32_t /*level*/, const std::string& /*text*/) {}
    /// A finding in a text. The error that summarizes all findings of the text follows through `OnError`.
    virtual void OnFinding(const TextFinding& /*finding*/) {}
    /// One line of the debug trace, without a line end.
    virtual void OnTrace(const std::string& /*line*/) {}
    /// How many bytes of a text have been read so far; called about once per MiB.
    virtual void OnProgress(std::uint64_t /*bytes*/) {}
    /// The error last passed to `OnError` was changed: it now has this number and text.
    virtual void OnErrorModified(std::int16_t /*number*/, const std::string& /*text*/) {}
};

}  // namespace VemoKesConfigTools
