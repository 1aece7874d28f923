#pragma once

#include "messages/Export.h"

#include <cstdint>
#include <string>

namespace VemoKesConfigTools {

/// One finding in an input text, as a machine can use it. The same finding is also part of the text of the
/// error that the reader stores.
struct TextFinding {
    std::uint32_t line = 0;       ///< Line, counted from 1; 0 when the finding concerns the text as a whole.
    std::uint32_t column = 0;     ///< Column in bytes, counted from 1; 0 when `line` is 0.
    std::int32_t code = 0;        ///< Number of the kind of error, stable between versions.
    std::string text;             ///< The kind of error in words.
    std::string key;              ///< The key of the line, as far as it is known; may be empty.
    std::string detail;           ///< What belongs to this one finding; may be empty.
    std::int32_t subsystem = -1;  ///< Type of the subsystem that the line belongs to; -1 when it has none.

    /// All that the finding says, on one line: `TEXT: KEY DETAIL`.
    KES_API std::string Message() const;
};

/// Watches the message service. Derive, override what is of interest, and hand the object to
/// `CTheMsgHnd::AddObserver`. Not owned by the service; remove it before it goes. Operations are called on
/// the thread that reports, on several at a time if several report, and must not report themselves. An
/// operation may remove its own observer.
class KES_API CMessageHandlerObserver {
public:
    CMessageHandlerObserver() = default;
    CMessageHandlerObserver(const CMessageHandlerObserver&) = delete;
    CMessageHandlerObserver& operator=(const CMessageHandlerObserver&) = delete;
    virtual ~CMessageHandlerObserver();

    /// An error was stored.
    virtual void OnError(std::int16_t /*number*/, const std::string& /*text*/) {}
    /// A status report, which is no error.
    virtual void OnStatus(std::int32_t /*level*/, const std::string& /*text*/) {}
    /// A finding in a text. The error that sums up all findings of the text follows through `OnError`.
    virtual void OnFinding(const TextFinding& /*finding*/) {}
    /// One line of the debug trace, without a line end.
    virtual void OnTrace(const std::string& /*line*/) {}
    /// How far the reading of a text has come, now and then: about once per MiB.
    virtual void OnProgress(std::uint64_t /*bytes*/) {}
    /// The newest error was rewritten: it is the one that `OnError` told last, now with this number and text.
    virtual void OnErrorModified(std::int16_t /*number*/, const std::string& /*text*/) {}
};

}  // namespace VemoKesConfigTools
