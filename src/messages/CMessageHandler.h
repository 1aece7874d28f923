#pragma once

#include "messages/CMessageHandlerObserver.h"
#include "messages/Export.h"

#include <cstdint>
#include <string>

namespace VemoKesConfigTools {

/// Reports for one message group. All handlers share one store of errors, one paragraph string and one set of
/// observers, so that an error stored through any of them is seen through all. Handlers are made by
/// `CTheMsgHnd` and live as long as the process. Every operation may be called on any thread.
class KES_API CMessageHandler {
public:
    /// The source of a message. Groups without a name here share the handler of `GROUP_DEFAULT`.
    enum GroupEnum : std::int32_t {
        GROUP_MANAGED_API = 6,   ///< entry traces of the host API
        GROUP_KESTEXT = 26,      ///< text reader and writer
        GROUP_STRINGUTIL = 103,  ///< string utilities
        GROUP_DEFAULT = 120,     ///< errors of the host API, and all that has no group of its own
        GROUP_ANY = 121          ///< as an argument only: every group
    };

    enum StatusLevels : std::int32_t {
        STATUS_LEVEL_ERROR = 0,
        STATUS_LEVEL_WARNING = 1,
        STATUS_LEVEL_INFO = 2
    };

    explicit CMessageHandler(GroupEnum group) noexcept : mGroup(group) {}
    CMessageHandler(const CMessageHandler&) = delete;
    CMessageHandler& operator=(const CMessageHandler&) = delete;

    /// Stores an error, in place of the oldest once 1,000 are stored. Number 0 speaks of data or an argument,
    /// number 1 of a missing plug-in or capability.
    bool SetErrorMsg(std::int16_t number, const std::string& text);
    /// Rewrites the newest error to `TEXT: OLD TEXT` under the new number; observers are told. False when
    /// none is stored.
    bool ModifyErrorMsg(std::int16_t number, const std::string& text, GroupEnum group);
    /// Whether any error is stored, of whatever group. The arguments do not narrow the question.
    bool IsErrorSet(GroupEnum group, bool all) const;
    /// The newest error, which stays stored. False with nothing stored; the arguments are then left alone.
    bool LastError(std::int16_t& number, std::string& text, GroupEnum& group) const;
    /// Empties the store, whatever the group.
    void ClearError(GroupEnum group);

    /// Passes a report on to the observers. It is no error.
    void NotifyStatus(StatusLevels level, const std::string& text);
    /// Passes a finding in a text on to the observers. It is not stored.
    void NotifyFinding(const TextFinding& finding);
    /// Tells the observers how many bytes of a text have been read.
    void NotifyProgress(std::uint64_t bytes);

    /// The text between the paragraphs of a long message, common to all handlers; a newline at first.
    void SetParagraphString(const std::string& text);
    std::string GetParagraphString() const;

    /// Passes one line of the debug trace to the observers. Call it behind `CTheMsgHnd::DebugActivated()`
    /// only. `level` is 1 to 3 for lines of a module and 0 for entry and exit of a function; `isExit` marks
    /// the latter.
    void DebugOutputInHandler(std::uint32_t level, bool reserved, bool isExit, const char* function,
                              const char* file, std::uint32_t line, const char* format, ...) KES_PRINTF(8, 9);

private:
    GroupEnum mGroup;
};

}  // namespace VemoKesConfigTools
